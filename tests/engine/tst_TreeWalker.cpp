#include "engine/ComparisonFileCollection.h"
#include "engine/NameBlock.h"
#include "engine/TreeWalker.h"
#include "support/ChildRun.h"
#include "support/PairLog.h"
#include "support/TestTree.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QScopeGuard>
#include <QTest>

#include <algorithm>
#include <climits>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const QByteArray deepName(200, 'd');

bool writeDeep(const QByteArray &root, int depth, const QList<QByteArray> &files) {
    int folder = ::open(root.constData(), O_DIRECTORY | O_CLOEXEC);
    for (int i = 0; i < depth && folder >= 0; ++i) {
        ::mkdirat(folder, deepName.constData(), 0755);
        const int next = ::openat(folder, deepName.constData(), O_DIRECTORY | O_CLOEXEC);
        ::close(folder);
        folder = next;
    }
    bool written = folder >= 0;
    for (const QByteArray &file : files) {
        const QByteArray text = file.mid(file.indexOf('=') + 1);
        const int fd = ::openat(folder, file.left(file.indexOf('=')).constData(),
                                O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
        written = written && ::write(fd, text.constData(), size_t(text.size())) == text.size();
        ::close(fd);
    }
    ::close(folder);
    return written;
}

void removeDeep(const QByteArray &root) {
    QProcess::execute(QStringLiteral("rm"),
                      {QStringLiteral("-rf"), QFile::decodeName(root + '/' + deepName)});
}

QList<QByteArray> walk(const QByteArray &root, const QString &rootText) {
    QList<QByteArray> walked;
    TreeWalker walker({
        [] { return false; },
        [&walked](const FolderRef &folder, std::vector<QByteArray> &files) {
            for (const QByteArray &name : files)
                walked << folder->relativeNativePath() + '/' + name;
            return true;
        },
        [](const FolderRef &, int) { QFAIL("a folder could not be read"); },
        {},
    });
    walker.walk(FolderRef::make(root, root.size(), rootText));
    return walked;
}

bool run(const QString &command) {
    QStringList arguments = QProcess::splitCommand(command);
    QProcess process;
    process.start(arguments.takeFirst(), arguments);
    return process.waitForFinished(30000) && process.exitStatus() == QProcess::NormalExit &&
           process.exitCode() == 0;
}

} // namespace

class tst_TreeWalker : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void unreadableFolder_data() {
        QTest::addColumn<bool>("inSource");
        QTest::addColumn<int>("mode"); // of the folder; -1 the root r--, -2 the root removed
        QTest::newRow("destination r--") << false << 0444;
        QTest::newRow("destination --x") << false << 0111;
        QTest::newRow("source r--") << true << 0444;
        QTest::newRow("root of the source r--") << true << -1;
        QTest::newRow("root of the source gone") << true << -2;
        QTest::newRow("root of the destination gone") << false << -2;
    }
    void unreadableFolder() {
        if (!ChildRun::isChild())
            return ChildRun::run(ChildRun::unprivileged(), "unreadableFolder");
        QFETCH(bool, inSource);
        QFETCH(int, mode);
        TestTree readable, locked;
        const QStringList names{"locked/a.txt", "locked/sub/b.txt", "open.txt"};
        for (const QString &name : names)
            QVERIFY(readable.write(name, "x") && locked.write(name, "x"));
        const QByteArray folder =
            mode < 0 ? locked.nativePath("").chopped(1) : locked.nativePath("locked");
        if (mode == -2)
            QVERIFY(QDir(locked.root()).removeRecursively());
        else
            QVERIFY(::chmod(folder.constData(), mode < 0 ? 0444 : mode_t(mode)) == 0);
        QStringList expected;
        for (const QString &name : names) {
            const bool behind = mode < 0 || name.startsWith(QLatin1String("locked/"));
            expected << QLatin1String(!behind    ? "%1 | %1 | 1"
                                      : inSource ? "- | %1 | 13"
                                                 : "%1 | - | 14")
                            .arg(name);
        }
        for (const bool prepared : {false, true}) {
            ComparisonFileCollection sourceFiles, destinationFiles;
            ComparisonFileCollection &lockedFiles = inSource ? sourceFiles : destinationFiles;
            if (prepared)
                lockedFiles.prepareRootFolder(locked.root());
            sourceFiles.setRootFolder(inSource ? locked.root() : readable.root());
            destinationFiles.setRootFolder(inSource ? readable.root() : locked.root());
            int status = -1;
            QCOMPARE(comparePairs(sourceFiles, destinationFiles, 1, &status), expected);
            QCOMPARE(status, int(Pairscope::StatusComplete));
            QCOMPARE(lockedFiles.Problems().size(), 1);
            QCOMPARE(lockedFiles.Problems().first().nativePath, folder);
            QVERIFY(lockedFiles.Problems().first().reason.contains(
                QLatin1String(mode == -2 ? "No such file" : "ermission")));
            QCOMPARE((inSource ? destinationFiles : sourceFiles).Problems().size(), 0);
        }
        ::chmod(folder.constData(), 0755);
    }
    void pathsPastTheLimit() {
        TestTree source, destination;
        const QByteArray sourceRoot = source.nativePath("").chopped(1);
        const QByteArray destinationRoot = destination.nativePath("").chopped(1);
        constexpr int depth = 24; // about 4,800 bytes of path
        QVERIFY(writeDeep(sourceRoot, depth, {"deep.txt=same size 1", "only.txt=extra"}));
        QVERIFY(writeDeep(destinationRoot, depth, {"deep.txt=same size 2"}));
        ComparisonFileCollection sourceFiles, destinationFiles;
        sourceFiles.setRootFolder(source.root());
        destinationFiles.setRootFolder(destination.root());
        QVERIFY(sourceFiles.Item(1)->NativePath().size() > PATH_MAX);
        const QStringList pairs = comparePairs(sourceFiles, destinationFiles, 1 | 32);
        removeDeep(sourceRoot);
        removeDeep(destinationRoot);
        QCOMPARE(pairs.size(), 2);
        QVERIFY(pairs[0].endsWith(QLatin1String("deep.txt | 5")));
        QVERIFY(pairs[1].endsWith(QLatin1String("only.txt | - | 3")));
        QVERIFY(sourceFiles.Problems().isEmpty());
    }
    void nameByteOrder() {
        QList<QByteArray> names = QByteArray("abcdefgh|abcdefghi|abcdefgh\xff|abcdefgi|abc|abc\x01|"
                                             "abcdefgh\x01|B|b|\xc3\xa9|\xff|a b|ab|abcdefghij")
                                      .split('|');
        TestTree tree;
        for (const QByteArray &name : names)
            QVERIFY(tree.writeNative(name, "x") && tree.writeNative("sub/" + name, "x"));
        const QList<QByteArray> walked = walk(tree.nativePath("").chopped(1), tree.root());
        std::sort(names.begin(), names.end());
        QList<QByteArray> expected;
        for (const QByteArray &folder : {QByteArray(), QByteArray("sub")}) {
            for (const QByteArray &name : names)
                expected << folder + '/' + name;
        }
        QCOMPARE(walked, expected);
        for (const QByteArray &name : names) {
            ::unlink(tree.nativePath(name).constData());
            ::unlink(tree.nativePath("sub/" + name).constData());
        }
    }
    void namesShareABlockButNotChanges() {
        QByteArray first;
        QByteArray second;
        {
            NameBlock block(7);
            first = block.add("abc", 3);
            second = block.add("de", 2);
        }
        QCOMPARE(qstrlen(first.constData()), 3u);
        first.append("XYZ"); // the block is still shared with the second name
        QCOMPARE(second, QByteArray("de"));
        second.append("!!!!!"); // its sole holder now
        QCOMPARE(first, QByteArray("abcXYZ"));
        QCOMPARE(second, QByteArray("de!!!!!"));
    }
    void listingWithoutTypes() {
        TestTree tree;
        const QString image = tree.path(QStringLiteral("ext.img"));
        const QString mountPoint = tree.path(QStringLiteral("mnt"));
        QVERIFY(tree.mkdir(QStringLiteral("mnt")));
        if (!run(QStringLiteral("truncate -s 4M ") + image) ||
            !run(QStringLiteral("mkfs.ext4 -q -O ^filetype,^has_journal ") + image) ||
            !run(QStringLiteral("mount -o loop ") + image + QLatin1Char(' ') + mountPoint))
            QSKIP("an ext4 image cannot be made and mounted here (needs root and a loop device)");
        const auto unmount = qScopeGuard([&] { run(QStringLiteral("umount ") + mountPoint); });
        QVERIFY(tree.write(QStringLiteral("mnt/sub/inner"), "x"));
        QVERIFY(tree.write(QStringLiteral("mnt/top"), "x"));
        QCOMPARE(walk(tree.nativePath("mnt"), mountPoint),
                 (QList<QByteArray>{"/top", "sub/inner"}));
    }
};

QTEST_GUILESS_MAIN(tst_TreeWalker)
#include "tst_TreeWalker.moc"
