#include "engine/ComparisonFileCollection.h"
#include "support/ChildRun.h"
#include "support/PairLog.h"
#include "support/TestTree.h"

#include <QTest>

#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/**
 * Creates \a depth nested folders of 200-byte names below \a root, one at a time relative to
 * the last (their paths soon pass PATH_MAX), and writes \a content to "deep.txt" in the last;
 * \a extra, when given, is written beside it as "only.txt".
 */
bool writeDeep(const QByteArray &root, int depth, const QByteArray &content,
               const QByteArray &extra = {}) {
    int folder = ::open(root.constData(), O_DIRECTORY | O_CLOEXEC);
    const QByteArray name(200, 'd');
    for (int i = 0; i < depth && folder >= 0; ++i) {
        if (::mkdirat(folder, name.constData(), 0755) != 0 && errno != EEXIST)
            return false;
        const int next = ::openat(folder, name.constData(), O_DIRECTORY | O_CLOEXEC);
        ::close(folder);
        folder = next;
    }
    if (folder < 0)
        return false;
    bool written = true;
    for (const auto &[file, text] :
         {std::pair{"deep.txt", content}, std::pair{"only.txt", extra}}) {
        if (text.isEmpty())
            continue;
        const int fd = ::openat(folder, file, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        written =
            written && fd >= 0 && ::write(fd, text.constData(), size_t(text.size())) == text.size();
        if (fd >= 0)
            ::close(fd);
    }
    ::close(folder);
    return written;
}

/** Removes the nested folders of writeDeep(), which a path-based removal cannot reach. */
void removeDeep(const QByteArray &root) {
    QList<int> folders{::open(root.constData(), O_DIRECTORY | O_CLOEXEC)};
    const QByteArray name(200, 'd');
    while (folders.last() >= 0) {
        const int next = ::openat(folders.last(), name.constData(), O_DIRECTORY | O_CLOEXEC);
        if (next < 0)
            break;
        folders << next;
    }
    const int last = folders.takeLast();
    ::unlinkat(last, "deep.txt", 0);
    ::unlinkat(last, "only.txt", 0);
    ::close(last);
    while (!folders.isEmpty()) {
        const int folder = folders.takeLast();
        ::unlinkat(folder, name.constData(), AT_REMOVEDIR);
        ::close(folder);
    }
}

} // namespace

class tst_TreeFaults : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void unreadableFolder_data();
    void unreadableFolder();
    void pathsPastTheLimit();
};

void tst_TreeFaults::unreadableFolder_data() {
    QTest::addColumn<bool>("inSource");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QStringList>("expected");
    // Listed but not entered (r--), neither (---), entered but not listed (--x): what lies
    // behind is unknown, never missing, and nothing restarts the run.
    const QStringList behindDestination{"locked/a.txt | - | 14", "locked/sub/b.txt | - | 14",
                                        "open.txt | open.txt | 1"};
    const QStringList behindSource{"- | locked/a.txt | 13", "- | locked/sub/b.txt | 13",
                                   "open.txt | open.txt | 1"};
    QTest::newRow("destination r--") << false << 0444 << behindDestination;
    QTest::newRow("destination ---") << false << 0 << behindDestination;
    QTest::newRow("destination --x") << false << 0111 << behindDestination;
    QTest::newRow("source r--") << true << 0444 << behindSource;
    QTest::newRow("root of the source r--")
        << true << -1
        << QStringList{"- | locked/a.txt | 13", "- | locked/sub/b.txt | 13", "- | open.txt | 13"};
}

void tst_TreeFaults::unreadableFolder() {
    // Root reads everything: the folder can only be unreadable to an ordinary user.
    if (!ChildRun::isChild())
        return ChildRun::run(ChildRun::unprivileged(), "unreadableFolder");
    QFETCH(bool, inSource);
    QFETCH(int, mode);
    QFETCH(QStringList, expected);
    TestTree readable;
    TestTree locked;
    for (TestTree *tree : {&readable, &locked}) {
        QVERIFY(tree->write(QStringLiteral("locked/a.txt"), "a"));
        QVERIFY(tree->write(QStringLiteral("locked/sub/b.txt"), "b"));
        QVERIFY(tree->write(QStringLiteral("open.txt"), "o"));
    }
    const QByteArray folder =
        mode < 0 ? locked.nativePath("").chopped(1) : locked.nativePath("locked");
    QVERIFY(::chmod(folder.constData(), mode < 0 ? 0444 : mode_t(mode)) == 0);
    ComparisonFileCollection sourceFiles;
    ComparisonFileCollection destinationFiles;
    sourceFiles.setRootFolder(inSource ? locked.root() : readable.root());
    destinationFiles.setRootFolder(inSource ? readable.root() : locked.root());
    int status = -1;
    const QStringList pairs = comparePairs(sourceFiles, destinationFiles, 1, &status);
    ::chmod(folder.constData(), 0755);
    QCOMPARE(pairs, expected);
    QCOMPARE(status, int(Pairscope::StatusComplete));
    // The folder is the one problem, once.
    const ComparisonFileCollection &lockedFiles = inSource ? sourceFiles : destinationFiles;
    QCOMPARE(lockedFiles.Problems().size(), 1);
    QCOMPARE(lockedFiles.Problems().first().nativePath, folder);
    QVERIFY(lockedFiles.Problems().first().reason.contains(QLatin1String("ermission")));
    QCOMPARE((inSource ? destinationFiles : sourceFiles).Problems().size(), 0);
}

void tst_TreeFaults::pathsPastTheLimit() {
    TestTree source;
    TestTree destination;
    const QByteArray sourceRoot = source.nativePath("").chopped(1);
    const QByteArray destinationRoot = destination.nativePath("").chopped(1);
    constexpr int depth = 24; // about 4,800 bytes of path
    QVERIFY(writeDeep(sourceRoot, depth, "same size 1", "extra"));
    QVERIFY(writeDeep(destinationRoot, depth, "same size 2"));
    ComparisonFileCollection sourceFiles;
    ComparisonFileCollection destinationFiles;
    sourceFiles.setRootFolder(source.root());
    destinationFiles.setRootFolder(destination.root());
    QCOMPARE(sourceFiles.Count(), 2);
    QVERIFY(sourceFiles.Item(1)->NativePath().size() > PATH_MAX);
    // Sizes, modified dates and checksums: the checksums tell the two files apart.
    const QStringList pairs = comparePairs(sourceFiles, destinationFiles, 1 | 32);
    removeDeep(sourceRoot);
    removeDeep(destinationRoot);
    QCOMPARE(pairs.size(), 2);
    QVERIFY(pairs[0].endsWith(QLatin1String("deep.txt | 5")));
    QVERIFY(pairs[1].endsWith(QLatin1String("only.txt | - | 3")));
    QVERIFY(sourceFiles.Problems().isEmpty());
}

QTEST_GUILESS_MAIN(tst_TreeFaults)
#include "tst_TreeFaults.moc"
