#include "support/ChildRun.h"
#include "support/CopyScript.h"
#include "support/TestProfile.h"
#include "support/TestTree.h"
#include "tools/CopyJob.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <QTest>

#include <deque>
#include <fcntl.h>
#include <functional>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

class tst_CopyJob : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void copiesIntoMissingFoldersInOrder();
    void copiesExactNames_data();
    void copiesExactNames();
    void perFileErrorsLetTheRestGoOn_data();
    void perFileErrorsLetTheRestGoOn();
    void copiesSymbolicLinkAsLink();
    void sourceChangingWhileCopyingIsDiscarded_data();
    void sourceChangingWhileCopyingIsDiscarded();
    void cancelLeavesNoPartialFile();
    void replaceQuestion_data();
    void replaceQuestion();
    void overwrittenFileGoesToTheTrash();
    void refusedTrashAsksBeforeReplacingForGood_data();
    void refusedTrashAsksBeforeReplacingForGood();
    void sparseAndHugeFiles();
    void diskFullKeepsTheOldTarget();
    void readOnlyTargetFolderIsAPerFileError();

private:
    TestProfile m_profile;
};

void tst_CopyJob::initTestCase() {
    QVERIFY(m_profile.isValid());
}

void tst_CopyJob::copiesIntoMissingFoldersInOrder() {
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral("src/a.txt"), "alpha"));
    QVERIFY(tree.write(QStringLiteral("src/sub/deep/b.txt"), "beta"));
    QVERIFY(tree.write(QStringLiteral("src/empty"), ""));
    QVERIFY(tree.setTimes(QStringLiteral("src/a.txt"), 1234567890, 123456789));
    QCOMPARE(::chmod(tree.nativePath("src/a.txt").constData(), 0640), 0);
    CopyJob job({item(tree, "src/a.txt", "dst/a.txt"),
                 item(tree, "src/sub/deep/b.txt", "dst/sub/deep/b.txt"),
                 item(tree, "src/empty", "dst/x/empty")});
    ScriptedObserver observer;
    QList<int> order;
    observer.onProgress = [&](const CopyProgress &p) {
        if (p.current >= 0 && (order.isEmpty() || order.last() != p.current))
            order.append(p.current);
        return true;
    };
    const auto outcomes = job.run(observer);
    for (const CopyOutcome &outcome : outcomes)
        QCOMPARE(outcome.status, CopyOutcome::Copied);
    QCOMPARE(order, (QList<int>{0, 1, 2}));
    QCOMPARE(readNative(tree.nativePath("dst/a.txt")), QByteArray("alpha"));
    QCOMPARE(readNative(tree.nativePath("dst/sub/deep/b.txt")), QByteArray("beta"));
    QCOMPARE(readNative(tree.nativePath("dst/x/empty")), QByteArray());
    QVERIFY(observer.asked.isEmpty());
    QCOMPARE(observer.last.filesDone, 3);
    QCOMPARE(observer.last.bytesDone, observer.last.bytesTotal);
    QCOMPARE(observer.last.bytesTotal, 9);
    QVERIFY(leftovers(tree.root()).isEmpty());
    // The source's modification time to the nanosecond, and its permissions.
    struct stat copy {};
    QCOMPARE(::stat(tree.nativePath("dst/a.txt").constData(), &copy), 0);
    QCOMPARE(copy.st_mtim.tv_sec, time_t(1234567890));
    QCOMPARE(copy.st_mtim.tv_nsec, 123456789L);
    QCOMPARE(copy.st_mode & 07777, mode_t(0640));
}

void tst_CopyJob::copiesExactNames_data() {
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("not UTF-8") << QByteArray("caf\xe9 \xff\xfe.txt");
    QTest::newRow("255 bytes") << QByteArray(251, 'n') + ".txt";
}

void tst_CopyJob::copiesExactNames() {
    QFETCH(QByteArray, name);
    QCOMPARE(name.size() <= 255, true);
    TestTree tree;
    QVERIFY(tree.writeNative("src/" + name, "exact"));
    CopyJob job({item(tree, "src/" + name, "dst/" + name)});
    ScriptedObserver observer;
    const auto outcome = job.run(observer).front();
    QVERIFY2(outcome.status == CopyOutcome::Copied, qPrintable(outcome.message));
    QCOMPARE(readNative(tree.nativePath("dst/" + name)), QByteArray("exact"));
    QVERIFY(leftovers(tree.root()).isEmpty());
    // QTemporaryDir cannot remove a name that is not UTF-8.
    ::unlink(tree.nativePath("src/" + name).constData());
    ::unlink(tree.nativePath("dst/" + name).constData());
}

void tst_CopyJob::perFileErrorsLetTheRestGoOn_data() {
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<QString>("message");
    QTest::newRow("name of 256 bytes") << QByteArray(256, 'n') << QStringLiteral("longer than 255");
    QTest::newRow("target is a folder") << QByteArray("folder") << QStringLiteral("same name");
    QTest::newRow("target is the source")
        << QByteArray("../src/bad") << QStringLiteral("same file");
    QTest::newRow("target is a folder's name")
        << QByteArray("plain/inner") << QStringLiteral("is in the way");
    QTest::newRow("special source") << QByteArray("fifo") << QStringLiteral("special file");
    QTest::newRow("source deleted after the review")
        << QByteArray("gone") << QStringLiteral("The source file no longer exists.");
}

void tst_CopyJob::perFileErrorsLetTheRestGoOn() {
    QFETCH(QByteArray, target);
    QFETCH(QString, message);
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral("src/bad"), "bad"));
    QVERIFY(tree.write(QStringLiteral("src/good"), "good"));
    QVERIFY(tree.mkdir(QStringLiteral("dst/folder")));
    QVERIFY(tree.write(QStringLiteral("dst/plain"), "a file"));
    QByteArray source = tree.nativePath("src/bad");
    if (target == "fifo") {
        source = tree.nativePath("src/fifo");
        QCOMPARE(::mkfifo(source.constData(), 0644), 0);
    }
    if (target == "gone")
        source = tree.nativePath("src/gone");
    // "../src/bad" is the source itself, below the source's own root.
    const CopyItem first = target.startsWith("..")
                               ? item(tree, "src/bad", "src/bad")
                               : CopyItem{source, tree.nativePath("dst/" + target),
                                          tree.nativePath("src"), tree.nativePath("dst")};
    CopyJob job({first, item(tree, "src/good", "dst/good")});
    ScriptedObserver observer;
    const auto outcomes = job.run(observer);
    QCOMPARE(outcomes[0].status, CopyOutcome::Failed);
    QVERIFY2(outcomes[0].message.contains(message), qPrintable(outcomes[0].message));
    QCOMPARE(outcomes[1].status, CopyOutcome::Copied);
    QCOMPARE(readNative(tree.nativePath("src/bad")), QByteArray("bad"));
    QCOMPARE(readNative(tree.nativePath("dst/plain")), QByteArray("a file"));
    QVERIFY(!existsNative(tree.nativePath("dst/gone")));
    QVERIFY(leftovers(tree.root()).isEmpty());
}

void tst_CopyJob::copiesSymbolicLinkAsLink() {
    TestTree tree;
    QVERIFY(tree.mkdir(QStringLiteral("src")));
    const QByteArray link = tree.nativePath("src/link");
    QCOMPARE(::symlink("../nowhere/at all", link.constData()), 0);
    const timespec times[2] = {{1000000000, 5}, {1100000000, 987654321}};
    QCOMPARE(::utimensat(AT_FDCWD, link.constData(), times, AT_SYMLINK_NOFOLLOW), 0);
    CopyJob job({item(tree, "src/link", "dst/link")});
    ScriptedObserver observer;
    QCOMPARE(job.run(observer).front().status, CopyOutcome::Copied);

    char text[64] = {};
    QCOMPARE(::readlink(tree.nativePath("dst/link").constData(), text, sizeof text - 1), 17);
    QCOMPARE(QByteArray(text), QByteArray("../nowhere/at all"));
    struct stat copy {};
    QCOMPARE(::lstat(tree.nativePath("dst/link").constData(), &copy), 0);
    QCOMPARE(copy.st_mtim.tv_sec, time_t(1100000000));
    QCOMPARE(copy.st_mtim.tv_nsec, 987654321L);
}

void tst_CopyJob::sourceChangingWhileCopyingIsDiscarded_data() {
    QTest::addColumn<QString>("change");
    QTest::addColumn<QString>("message");
    QTest::newRow("rewritten in place") << QStringLiteral("rewrite") << QStringLiteral("changed");
    QTest::newRow("replaced") << QStringLiteral("replace") << QStringLiteral("replaced");
}

void tst_CopyJob::sourceChangingWhileCopyingIsDiscarded() {
    QFETCH(QString, change);
    QFETCH(QString, message);
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral("src/big"), randomBytes(20 * 1024 * 1024)));
    QVERIFY(tree.setTimes(QStringLiteral("src/big"), 1000000000));
    QVERIFY(tree.write(QStringLiteral("dst/big"), "old"));
    const QByteArray source = tree.nativePath("src/big");
    CopyJob job({item(tree, "src/big", "dst/big")});
    job.setPromptBeforeOverwriting(false);
    ScriptedObserver observer;
    bool changed = false;
    observer.onProgress = [&](const CopyProgress &p) {
        if (p.bytesDone > 0 && !changed) {
            changed = true;
            if (change == QLatin1String("rewrite")) {
                const int fd = ::open(source.constData(), O_WRONLY);
                (void)!::pwrite(fd, "X", 1, 0);
                ::close(fd);
            } else {
                tree.write(QStringLiteral("src/other"), "other");
                ::rename(tree.nativePath("src/other").constData(), source.constData());
            }
        }
        return true;
    };
    const CopyOutcome outcome = job.run(observer).front();
    QVERIFY(changed);
    QCOMPARE(outcome.status, CopyOutcome::Failed);
    QVERIFY2(outcome.message.contains(message), qPrintable(outcome.message));
    QCOMPARE(readNative(tree.nativePath("dst/big")), QByteArray("old"));
    QVERIFY(leftovers(tree.root()).isEmpty());
}

void tst_CopyJob::cancelLeavesNoPartialFile() {
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral("src/1"), "first"));
    QVERIFY(tree.write(QStringLiteral("src/2"), randomBytes(24 * 1024 * 1024)));
    QVERIFY(tree.write(QStringLiteral("src/3"), "third"));
    QVERIFY(tree.write(QStringLiteral("dst/2"), "old second"));
    CopyJob job(
        {item(tree, "src/1", "dst/1"), item(tree, "src/2", "dst/2"), item(tree, "src/3", "dst/3")});
    job.setPromptBeforeOverwriting(false);
    ScriptedObserver observer;
    qint64 cancelledAt = -1;
    observer.onProgress = [&](const CopyProgress &p) {
        if (p.current == 1 && p.bytesDone > 5) {
            cancelledAt = p.bytesDone;
            return false;
        }
        return true;
    };
    const auto outcomes = job.run(observer);
    QVERIFY(job.wasCancelled());
    QVERIFY(cancelledAt > 5 && cancelledAt < 5 + 24 * 1024 * 1024);
    QCOMPARE(outcomes[0].status, CopyOutcome::Copied);
    QCOMPARE(outcomes[1].status, CopyOutcome::NotCopied);
    QCOMPARE(outcomes[2].status, CopyOutcome::NotCopied);
    QCOMPARE(readNative(tree.nativePath("dst/2")), QByteArray("old second"));
    QVERIFY(!existsNative(tree.nativePath("dst/3")));
    QVERIFY(leftovers(tree.root()).isEmpty());
}

void tst_CopyJob::replaceQuestion_data() {
    QTest::addColumn<QList<int>>("answers");
    QTest::addColumn<int>("questions");
    QTest::addColumn<QByteArray>("expected"); // what each of a, b, c holds afterwards
    using A = ReplaceAnswer;
    QTest::newRow("yes, no, yes") << QList<int>{int(A::Yes), int(A::No), int(A::Yes)} << 3
                                  << QByteArray("AbC");
    QTest::newRow("yes to all") << QList<int>{int(A::YesToAll)} << 1 << QByteArray("ABC");
    QTest::newRow("cancel at the second")
        << QList<int>{int(A::Yes), int(A::Cancel)} << 2 << QByteArray("Abc");
}

void tst_CopyJob::replaceQuestion() {
    QFETCH(QList<int>, answers);
    QFETCH(int, questions);
    QFETCH(QByteArray, expected);
    TestTree tree;
    std::vector<CopyItem> items;
    for (const char *name : {"a", "b", "c"}) {
        const QByteArray n(name);
        QVERIFY(tree.writeNative("src/" + n, n.toUpper()));
        QVERIFY(tree.writeNative("dst/" + n, n));
        items.push_back(item(tree, "src/" + n, "dst/" + n));
    }
    CopyJob job(items);
    job.setPromptBeforeOverwriting(true);
    ScriptedObserver observer;
    for (int answer : answers)
        observer.answers.push_back(ReplaceAnswer(answer));
    job.run(observer);
    QCOMPARE(observer.asked.size(), questions);
    QByteArray result;
    for (const char *name : {"a", "b", "c"})
        result += readNative(tree.nativePath("dst/" + QByteArray(name)));
    QCOMPARE(result, expected);
    QVERIFY(leftovers(tree.root()).isEmpty());
}

void tst_CopyJob::overwrittenFileGoesToTheTrash() {
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral("src/Report Final.txt"), "new text"));
    QVERIFY(tree.write(QStringLiteral("dst/Report Final.txt"), "old text, kept in the trash"));
    const QByteArray target = tree.nativePath("dst/Report Final.txt");
    CopyJob job({item(tree, "src/Report Final.txt", "dst/Report Final.txt")});
    ScriptedObserver observer;
    observer.answers.push_back(ReplaceAnswer::Yes);
    QCOMPARE(job.run(observer).front().status, CopyOutcome::Copied);
    QCOMPARE(observer.asked, QList<QByteArray>{target});
    QCOMPARE(readNative(target), QByteArray("new text"));

    // The desktop trash layout: the file under files/, its
    // original path in info/<name>.trashinfo.
    const QByteArray escaped = QByteArray(target).toPercentEncoding("/");
    QString trashedName;
    const QStringList infos = QDir(m_profile.trashInfo()).entryList(QDir::Files);
    for (const QString &info : infos) {
        QFile file(m_profile.trashInfo() + QLatin1Char('/') + info);
        QVERIFY(file.open(QIODevice::ReadOnly));
        if (file.readAll().contains("Path=" + escaped + '\n'))
            trashedName = info.chopped(int(qstrlen(".trashinfo")));
    }
    QVERIFY2(!trashedName.isEmpty(), qPrintable(infos.join(QLatin1Char(','))));
    QCOMPARE(readNative(QFile::encodeName(m_profile.trashFiles() + QLatin1Char('/') + trashedName)),
             QByteArray("old text, kept in the trash"));

    // The desktop's own listing needs its virtual file system; where it runs, it must agree.
    QProcess gio;
    gio.start(QStringLiteral("gio"), {QStringLiteral("trash"), QStringLiteral("--list")});
    if (gio.waitForFinished(20000) && gio.exitStatus() == QProcess::NormalExit &&
        gio.exitCode() == 0) {
        QVERIFY2(gio.readAllStandardOutput().contains(target), "gio trash --list lacks the file");
    } else {
        qInfo("`gio trash --list` is unavailable here (%s); checked the trash folders directly",
              gio.readAllStandardError().trimmed().constData());
    }
}

void tst_CopyJob::refusedTrashAsksBeforeReplacingForGood_data() {
    QTest::addColumn<QString>("blocked"); // a file where this trash folder belongs
    QTest::addColumn<int>("answer");
    QTest::addColumn<QByteArray>("expected"); // what f and g hold afterwards
    QTest::addColumn<int>("status");
    // The whole trash refused: known before copying, so one question for both files, before
    // the first, and no "Replace?" for them.
    QTest::newRow("known: replace for good") << QStringLiteral("Trash") << int(ReplaceAnswer::Yes)
                                             << QByteArray("FG") << int(CopyOutcome::Copied);
    QTest::newRow("known: keep") << QStringLiteral("Trash") << int(ReplaceAnswer::No)
                                 << QByteArray("fg") << int(CopyOutcome::Skipped);
    // Refused only when the file is moved: asked per file, after the copy took the name; No
    // puts the old file back.
    QTest::newRow("found late: replace for good")
        << QStringLiteral("Trash/info") << int(ReplaceAnswer::Yes) << QByteArray("FG")
        << int(CopyOutcome::Copied);
    QTest::newRow("found late: keep") << QStringLiteral("Trash/info") << int(ReplaceAnswer::No)
                                      << QByteArray("fg") << int(CopyOutcome::Skipped);
}

void tst_CopyJob::refusedTrashAsksBeforeReplacingForGood() {
    QFETCH(QString, blocked);
    QFETCH(int, answer);
    QFETCH(QByteArray, expected);
    QFETCH(int, status);
    const QString trash = m_profile.dataHome() + QStringLiteral("/Trash");
    const QString aside = trash + QStringLiteral(".aside");
    QDir().mkpath(m_profile.dataHome());
    QVERIFY(!QFile::exists(trash) || QFile::rename(trash, aside));
    QDir().mkpath(trash);
    QVERIFY(QDir(trash).removeRecursively());
    QDir().mkpath(QFileInfo(m_profile.dataHome() + QLatin1Char('/') + blocked).path());
    QFile blocker(m_profile.dataHome() + QLatin1Char('/') + blocked);
    QVERIFY(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    auto restore = qScopeGuard([&] {
        QFile::remove(trash);
        QDir(trash).removeRecursively();
        QFile::rename(aside, trash);
    });

    TestTree tree;
    for (const char *name : {"f", "g"}) {
        const QByteArray n(name);
        QVERIFY(tree.writeNative("src/" + n, n.toUpper()));
        QVERIFY(tree.writeNative("dst/" + n, n));
    }
    CopyJob job({item(tree, "src/f", "dst/f"), item(tree, "src/g", "dst/g")});
    job.setPromptBeforeOverwriting(true);
    ScriptedObserver observer;
    const bool known = blocked == QLatin1String("Trash");
    observer.trashAnswers = {ReplaceAnswer(answer), ReplaceAnswer(answer)};
    if (!known)
        observer.answers = {ReplaceAnswer::Yes, ReplaceAnswer::Yes};
    QList<int> firstProgress;
    observer.onProgress = [&](const CopyProgress &) {
        if (firstProgress.isEmpty())
            firstProgress = {int(observer.askedAllWithoutTrash.size()), int(observer.asked.size())};
        return true;
    };
    const auto outcomes = job.run(observer);
    if (known) {
        QCOMPARE(observer.askedAllWithoutTrash,
                 (QList<QByteArray>{tree.nativePath("dst/f"), tree.nativePath("dst/g")}));
        QCOMPARE(firstProgress, (QList<int>{2, 0})); // asked before the copy started
        QVERIFY(observer.asked.isEmpty());
        QVERIFY(observer.askedWithoutTrash.isEmpty());
    } else {
        QVERIFY(observer.askedAllWithoutTrash.isEmpty());
        QCOMPARE(observer.askedWithoutTrash.size(), 2);
    }
    QCOMPARE(int(outcomes[0].status), status);
    QCOMPARE(int(outcomes[1].status), status);
    QCOMPARE(readNative(tree.nativePath("dst/f")) + readNative(tree.nativePath("dst/g")), expected);
    QVERIFY(leftovers(tree.root()).isEmpty());
}

void tst_CopyJob::sparseAndHugeFiles() {
    // A 5 GiB file that is mostly hole: offsets past 4 GiB, and holes that must stay holes
    // (the copy would otherwise take 5 GiB of disk and minutes).
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral("src/sparse"), "head"));
    const QByteArray source = tree.nativePath("src/sparse");
    const qint64 size = 5LL * 1024 * 1024 * 1024;
    const int fd = ::open(source.constData(), O_WRONLY);
    QVERIFY(fd >= 0);
    QCOMPARE(::pwrite(fd, "middle", 6, 3LL * 1024 * 1024 * 1024), ssize_t(6));
    QCOMPARE(::pwrite(fd, "tail", 4, size - 4), ssize_t(4));
    ::close(fd);
    struct stat before {};
    QCOMPARE(::stat(source.constData(), &before), 0);
    if (before.st_blocks * 512 > 64 * 1024 * 1024)
        QSKIP("this file system does not keep holes");

    CopyJob job({item(tree, "src/sparse", "dst/sparse")});
    ScriptedObserver observer;
    QCOMPARE(job.run(observer).front().status, CopyOutcome::Copied);
    QCOMPARE(observer.last.bytesTotal, size);
    struct stat copy {};
    QCOMPARE(::stat(tree.nativePath("dst/sparse").constData(), &copy), 0);
    QCOMPARE(qint64(copy.st_size), size);
    QVERIFY(copy.st_blocks * 512 <= 64 * 1024 * 1024);
    const int in = ::open(tree.nativePath("dst/sparse").constData(), O_RDONLY);
    char buffer[8] = {};
    QCOMPARE(::pread(in, buffer, 4, 0), ssize_t(4));
    QCOMPARE(QByteArray(buffer, 4), QByteArray("head"));
    QCOMPARE(::pread(in, buffer, 8, 3LL * 1024 * 1024 * 1024 - 1), ssize_t(8));
    QCOMPARE(QByteArray(buffer, 8), QByteArray("\0middle\0", 8));
    QCOMPARE(::pread(in, buffer, 4, size - 4), ssize_t(4));
    QCOMPARE(QByteArray(buffer, 4), QByteArray("tail"));
    ::close(in);
}

void tst_CopyJob::diskFullKeepsTheOldTarget() {
    if (!ChildRun::isChild()) {
        // A private mount namespace, so the small file system is nobody else's business.
        ChildRun::run(::geteuid() == 0
                          ? QStringList{QStringLiteral("unshare"), QStringLiteral("-m")}
                          : QStringList{QStringLiteral("unshare"), QStringLiteral("-Urm")},
                      "diskFullKeepsTheOldTarget");
        return;
    }
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral("src/big"), randomBytes(2 * 1024 * 1024)));
    QVERIFY(tree.write(QStringLiteral("src/small"), "small"));
    QVERIFY(tree.mkdir(QStringLiteral("full")));
    const QByteArray full = tree.nativePath("full");
    QVERIFY2(::mount("tmpfs", full.constData(), "tmpfs", 0, "size=1m") == 0,
             qPrintable(qt_error_string(errno)));
    auto unmount = qScopeGuard([&] { ::umount2(full.constData(), MNT_DETACH); });
    const QByteArray old = randomBytes(100 * 1024);
    QVERIFY(tree.writeNative("full/big", old));

    CopyJob job({item(tree, "src/big", "full/big"), item(tree, "src/small", "full/small")});
    job.setPromptBeforeOverwriting(false);
    ScriptedObserver observer;
    observer.trashAnswers.push_back(ReplaceAnswer::Yes); // not reached: the copy fails first
    const auto outcomes = job.run(observer);
    QCOMPARE(outcomes[0].status, CopyOutcome::Failed);
    QVERIFY2(outcomes[0].message.contains(QLatin1String("No space left")),
             qPrintable(outcomes[0].message));
    QVERIFY(observer.askedWithoutTrash.isEmpty());
    QVERIFY(readNative(full + "/big") == old);
    QCOMPARE(outcomes[1].status, CopyOutcome::Copied);
    QCOMPARE(readNative(full + "/small"), QByteArray("small"));
    QVERIFY(leftovers(QFile::decodeName(full)).isEmpty());
}

void tst_CopyJob::readOnlyTargetFolderIsAPerFileError() {
    if (::geteuid() == 0 && !ChildRun::isChild()) {
        // Root writes anywhere: the folder's permissions only bind an ordinary user.
        ChildRun::run(ChildRun::unprivileged(), "readOnlyTargetFolderIsAPerFileError");
        return;
    }
    QVERIFY2(::geteuid() != 0, "must run unprivileged");
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral("src/1"), "one"));
    QVERIFY(tree.write(QStringLiteral("src/2"), "two"));
    QVERIFY(tree.write(QStringLiteral("src/3"), "three"));
    QVERIFY(tree.write(QStringLiteral("dst/locked/2"), "old two"));
    QCOMPARE(::chmod(tree.nativePath("dst/locked").constData(), 0555), 0);
    auto unlock = qScopeGuard([&] { ::chmod(tree.nativePath("dst/locked").constData(), 0755); });

    CopyJob job({item(tree, "src/1", "dst/locked/1"), item(tree, "src/2", "dst/locked/2"),
                 item(tree, "src/3", "dst/open/3")});
    job.setPromptBeforeOverwriting(false);
    ScriptedObserver observer;
    const auto outcomes = job.run(observer);
    QCOMPARE(outcomes[0].status, CopyOutcome::Failed);
    QVERIFY2(outcomes[0].message.contains(QLatin1String("Permission denied")),
             qPrintable(outcomes[0].message));
    QCOMPARE(outcomes[1].status, CopyOutcome::Failed);
    QCOMPARE(readNative(tree.nativePath("dst/locked/2")), QByteArray("old two"));
    QCOMPARE(outcomes[2].status, CopyOutcome::Copied);
    QCOMPARE(readNative(tree.nativePath("dst/open/3")), QByteArray("three"));
    QVERIFY(!existsNative(tree.nativePath("dst/locked/1")));
}

QTEST_GUILESS_MAIN(tst_CopyJob)
#include "tst_CopyJob.moc"
