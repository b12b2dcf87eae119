#include "engine/ComparisonFileCollection.h"
#include "engine/TemporaryCopyName.h"
#include "support/CopyScript.h"
#include "support/TestProfile.h"
#include "support/TestTree.h"
#include "tools/CopyJob.h"
#include "tools/CopySystemCalls.h"

#include <QScopeGuard>
#include <QTest>

#include <csignal>
#include <dirent.h>
#include <sys/wait.h>

namespace {

/** Every event of the copy's system calls, in order: "fsync <inode>", "place <name>". */
QStringList g_calls;
QByteArray g_watchedTarget; // its state is noted before each call that places a file

void note(const QString &event) {
    struct stat st {};
    const bool there = ::lstat(g_watchedTarget.constData(), &st) == 0;
    g_calls.append(event +
                   (there ? QStringLiteral(" (target there)") : QStringLiteral(" (no target)")));
}

int recordingFsync(int fd) {
    struct stat st {};
    ::fstat(fd, &st);
    note(QStringLiteral("fsync %1").arg(st.st_ino));
    return ::fsync(fd);
}

int recordingRename(int from, const char *a, int to, const char *b, unsigned int flags) {
    note(QStringLiteral("rename"));
    return ::renameat2(from, a, to, b, flags);
}

int recordingLink(int from, const char *a, int to, const char *b, int flags) {
    note(QStringLiteral("link"));
    return ::linkat(from, a, to, b, flags);
}

int refusedWithEperm(int, off_t) {
    errno = EPERM;
    return -1;
}

int chmodNotImplemented(int, mode_t) {
    errno = ENOSYS;
    return -1;
}

int noUnnamedFiles(int) {
    errno = EOPNOTSUPP;
    return -1;
}

int failingFsync(int) {
    errno = EIO;
    return -1;
}

/** Puts the real system calls back when the test ends. */
auto restoredSystemCalls() {
    return qScopeGuard([] { CopySystemCalls::current() = CopySystemCalls::real(); });
}

/** The names in \a folder, "." and ".." left out. */
QList<QByteArray> entries(const QByteArray &folder) {
    QList<QByteArray> names;
    if (DIR *dir = ::opendir(folder.constData())) {
        while (const dirent *entry = ::readdir(dir)) {
            if (qstrcmp(entry->d_name, ".") != 0 && qstrcmp(entry->d_name, "..") != 0)
                names.append(entry->d_name);
        }
        ::closedir(dir);
    }
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace

/** The copy's safety: it stays below the chosen roots and leaves no moment without a target. */
class tst_CopySafety : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void staysBelowTheRoots_data();
    void staysBelowTheRoots();
    void killedCopyLeavesNothingListed_data();
    void killedCopyLeavesNothingListed();
    void refusedPermissionsAndTruncationAreNotes();
    void targetIsNeverMissingAndDataIsFlushedFirst();
    void targetThatAppearsIsKept();
    void copyCarriesNoSetIdBits();
    void foldersMadeForAFailedCopyAreRemoved();

private:
    TestProfile m_profile;
};

void tst_CopySafety::initTestCase() {
    QVERIFY(m_profile.isValid());
}

void tst_CopySafety::staysBelowTheRoots_data() {
    QTest::addColumn<QString>("change"); // made after the review, before the copy
    QTest::addColumn<QString>("message");
    QTest::newRow("target folder is a link")
        << QStringLiteral("dst/sub") << QStringLiteral("is a symbolic link");
    QTest::newRow("deeper target folder is a link")
        << QStringLiteral("dst/sub/deep") << QStringLiteral("is a symbolic link");
    QTest::newRow("source folder is a link")
        << QStringLiteral("src/sub") << QStringLiteral("is a symbolic link");
    QTest::newRow("destination root vanished")
        << QStringLiteral("dst") << QStringLiteral("no longer exists");
}

void tst_CopySafety::staysBelowTheRoots() {
    QFETCH(QString, change);
    QFETCH(QString, message);
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral("src/sub/deep/inner.txt"), "ours"));
    QVERIFY(tree.write(QStringLiteral("outside/deep/inner.txt"), "not to be touched"));
    QVERIFY(tree.mkdir(QStringLiteral("dst/sub")));
    const CopyItem copied = item(tree, "src/sub/deep/inner.txt", "dst/sub/deep/inner.txt");
    QVERIFY(QDir(tree.path(change)).removeRecursively());
    if (change != QLatin1String("dst")) {
        // The link leads where the same path would name the file outside the tree.
        const QByteArray outside = change.endsWith(QLatin1String("deep"))
                                       ? tree.nativePath("outside/deep")
                                       : tree.nativePath("outside");
        QCOMPARE(::symlink(outside.constData(), tree.nativePath(change.toUtf8()).constData()), 0);
    }
    CopyJob job({copied});
    job.setPromptBeforeOverwriting(false);
    ScriptedObserver observer;
    observer.trashAnswers.push_back(ReplaceAnswer::Yes);
    const CopyOutcome outcome = job.run(observer).front();
    QCOMPARE(outcome.status, CopyOutcome::Failed);
    QVERIFY2(outcome.message.contains(message), qPrintable(outcome.message));
    QCOMPARE(readNative(tree.nativePath("outside/deep/inner.txt")),
             QByteArray("not to be touched"));
    if (change == QLatin1String("dst"))
        QVERIFY(!existsNative(tree.nativePath("dst"))); // not created again
    if (change.startsWith(QLatin1String("src")))
        QVERIFY(!existsNative(tree.nativePath("dst/sub/deep"))); // nothing read through it
    QVERIFY(leftovers(tree.root()).isEmpty());
}

void tst_CopySafety::killedCopyLeavesNothingListed_data() {
    QTest::addColumn<bool>("unnamed");
    QTest::newRow("unnamed temporary file") << true;
    QTest::newRow("named where unnamed ones are missing") << false;
}

void tst_CopySafety::killedCopyLeavesNothingListed() {
    QFETCH(bool, unnamed);
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral("src/big"), randomBytes(24 * 1024 * 1024)));
    QVERIFY(tree.write(QStringLiteral("dst/kept"), "kept"));
    const CopyItem copied = item(tree, "src/big", "dst/big");
    const pid_t child = ::fork();
    QVERIFY(child >= 0);
    if (child == 0) {
        // Killed half-way through the data, as by `kill -9`: no clean-up runs.
        if (!unnamed)
            CopySystemCalls::current().openUnnamed = noUnnamedFiles;
        CopyJob job({copied});
        ScriptedObserver observer;
        observer.onProgress = [](const CopyProgress &p) {
            if (p.bytesDone > 0)
                ::raise(SIGKILL);
            return true;
        };
        job.run(observer);
        ::_exit(0); // not reached
    }
    int status = 0;
    QCOMPARE(::waitpid(child, &status, 0), child);
    QVERIFY(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);

    const QList<QByteArray> names = entries(tree.nativePath("dst"));
    if (unnamed) {
        QCOMPARE(names, QList<QByteArray>{"kept"});
    } else {
        QCOMPARE(names.size(), 2); // the partial file is there, under a name of its own
        QVERIFY(TemporaryCopyName::isTemporaryCopyName(names.first().constData()));
        ::unlink((tree.nativePath("dst/") + names.first()).constData());
        QVERIFY(tree.write(QStringLiteral("dst/") + QString::fromLatin1(names.first()), "x"));
    }
    // The next compare lists the real file only.
    ComparisonFileCollection listed;
    listed.setRootFolder(tree.path(QStringLiteral("dst")));
    QCOMPARE(listed.Count(), 1);
    QCOMPARE(listed.Item(1)->Name(), QStringLiteral("kept"));
}

void tst_CopySafety::refusedPermissionsAndTruncationAreNotes() {
    // FAT over FUSE: no permissions at all, and no truncation.
    auto restore = restoredSystemCalls();
    CopySystemCalls::current().fchmod = chmodNotImplemented;
    CopySystemCalls::current().ftruncate = refusedWithEperm;
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral("src/plain"), "plain"));
    QVERIFY(tree.write(QStringLiteral("src/holes"), "head"));
    QCOMPARE(::truncate(tree.nativePath("src/holes").constData(), 1024 * 1024), 0);
    CopyJob job({item(tree, "src/plain", "dst/plain"), item(tree, "src/holes", "dst/holes")});
    ScriptedObserver observer;
    const auto outcomes = job.run(observer);
    for (const CopyOutcome &outcome : outcomes) {
        QCOMPARE(outcome.status, CopyOutcome::Copied);
        QVERIFY2(outcome.message.contains(QLatin1String("cannot hold the permissions")),
                 qPrintable(outcome.message));
    }
    QCOMPARE(readNative(tree.nativePath("dst/plain")), QByteArray("plain"));
    const QByteArray holes = readNative(tree.nativePath("dst/holes"));
    QCOMPARE(holes.size(), 1024 * 1024);
    QVERIFY(holes.startsWith("head") && holes.count('\0') == 1024 * 1024 - 4);
}

void tst_CopySafety::targetIsNeverMissingAndDataIsFlushedFirst() {
    auto restore = restoredSystemCalls();
    CopySystemCalls::current().fsync = recordingFsync;
    CopySystemCalls::current().renameat2 = recordingRename;
    CopySystemCalls::current().linkat = recordingLink;
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral("src/f"), "new"));
    QVERIFY(tree.write(QStringLiteral("dst/f"), "old"));
    g_watchedTarget = tree.nativePath("dst/f");
    g_calls.clear();
    CopyJob job({item(tree, "src/f", "dst/f")});
    job.setPromptBeforeOverwriting(false);
    ScriptedObserver observer;
    QCOMPARE(job.run(observer).front().status, CopyOutcome::Copied);

    struct stat copy {};
    QCOMPARE(::stat(g_watchedTarget.constData(), &copy), 0);
    const qsizetype flushed =
        g_calls.indexOf(QStringLiteral("fsync %1 (target there)").arg(copy.st_ino));
    QVERIFY2(flushed >= 0, qPrintable(g_calls.join(QLatin1String(", "))));
    for (qsizetype i = 0; i < g_calls.size(); ++i) {
        QVERIFY2(g_calls[i].endsWith(QLatin1String("(target there)")), qPrintable(g_calls[i]));
        if (!g_calls[i].startsWith(QLatin1String("fsync")))
            QVERIFY2(i > flushed, "the copy was put in place before its data was flushed");
    }
    QCOMPARE(readNative(g_watchedTarget), QByteArray("new"));
    const QStringList trashed = QDir(m_profile.trashFiles()).entryList({QStringLiteral("f*")});
    QVERIFY(!trashed.isEmpty());
    QCOMPARE(
        readNative(QFile::encodeName(m_profile.trashFiles() + QLatin1Char('/') + trashed.last())),
        QByteArray("old"));
}

void tst_CopySafety::targetThatAppearsIsKept() {
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral("src/new"), randomBytes(20 * 1024 * 1024)));
    QVERIFY(tree.mkdir(QStringLiteral("dst")));
    CopyJob job({item(tree, "src/new", "dst/new")});
    ScriptedObserver observer;
    observer.onProgress = [&](const CopyProgress &p) {
        if (p.bytesDone > 0 && !existsNative(tree.nativePath("dst/new")))
            tree.write(QStringLiteral("dst/new"), "theirs");
        return true;
    };
    const CopyOutcome outcome = job.run(observer).front();
    QCOMPARE(outcome.status, CopyOutcome::Failed);
    QVERIFY2(outcome.message.contains(QLatin1String("appeared")), qPrintable(outcome.message));
    QCOMPARE(readNative(tree.nativePath("dst/new")), QByteArray("theirs"));
    QVERIFY(observer.asked.isEmpty());
    QVERIFY(leftovers(tree.root()).isEmpty());
}

void tst_CopySafety::copyCarriesNoSetIdBits() {
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral("src/tool"), "#!/bin/sh\n"));
    QCOMPARE(::chmod(tree.nativePath("src/tool").constData(), 06755), 0);
    CopyJob job({item(tree, "src/tool", "dst/tool")});
    ScriptedObserver observer;
    QCOMPARE(job.run(observer).front().status, CopyOutcome::Copied);
    struct stat copy {};
    QCOMPARE(::stat(tree.nativePath("dst/tool").constData(), &copy), 0);
    QCOMPARE(copy.st_mode & 07777, mode_t(0755));
}

void tst_CopySafety::foldersMadeForAFailedCopyAreRemoved() {
    auto restore = restoredSystemCalls();
    CopySystemCalls::current().fsync = failingFsync;
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral("src/a/b/c.txt"), "c"));
    QVERIFY(tree.write(QStringLiteral("dst/a/other"), "other"));
    CopyJob job({item(tree, "src/a/b/c.txt", "dst/a/b/c.txt"),
                 item(tree, "src/a/b/c.txt", "dst/new/deeper/c.txt")});
    ScriptedObserver observer;
    for (const CopyOutcome &outcome : job.run(observer)) {
        QCOMPARE(outcome.status, CopyOutcome::Failed);
        QVERIFY2(outcome.message.contains(QLatin1String("Input/output error")),
                 qPrintable(outcome.message));
    }
    QCOMPARE(entries(tree.nativePath("dst")), QList<QByteArray>{"a"});
    QCOMPARE(entries(tree.nativePath("dst/a")), QList<QByteArray>{"other"});
}

QTEST_GUILESS_MAIN(tst_CopySafety)
#include "tst_CopySafety.moc"
