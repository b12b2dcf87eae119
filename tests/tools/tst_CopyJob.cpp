#include "engine/ComparisonFileCollection.h"
#include "engine/TemporaryCopyName.h"
#include "support/ChildRun.h"
#include "support/CopyScript.h"
#include "support/TestProfile.h"
#include "support/TestTree.h"
#include "tools/CopyJob.h"
#include "tools/CopySystemCalls.h"

#include <QScopeGuard>
#include <QTest>

#include <csignal>
#include <map>
#include <sys/mount.h>
#include <sys/wait.h>

namespace {

QStringList g_calls;
QByteArray g_watchedTarget;

void note(const QString &event) {
    g_calls.append(event + (existsNative(g_watchedTarget) ? QStringLiteral(" (target there)")
                                                          : QStringLiteral(" (gone)")));
}

auto restoredSystemCalls() {
    return qScopeGuard([] { CopySystemCalls::current() = CopySystemCalls::real(); });
}

/** One letter per outcome: Not copied, Copied, Skipped, Failed. */
QByteArray statuses(const std::vector<CopyOutcome> &outcomes) {
    QByteArray letters;
    for (const CopyOutcome &outcome : outcomes)
        letters += "NCSF"[outcome.status];
    return letters;
}

/** Each name copied from src, in capitals, over an older dst in lower case. */
std::vector<CopyItem> replaceable(TestTree &tree, std::initializer_list<QByteArray> names) {
    std::vector<CopyItem> items;
    for (const QByteArray &n : names) {
        tree.writeNative("src/" + n, n.toUpper());
        tree.writeNative("dst/" + n, n);
        items.push_back(item(tree, "src/" + n, "dst/" + n));
    }
    return items;
}

struct stat lstatOf(const QByteArray &path) {
    struct stat st {};
    ::lstat(path.constData(), &st);
    return st;
}

} // namespace

class tst_CopyJob : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_profile.isValid()); }
    void copiesFilesAndLinksExactly() {
        TestTree tree;
        const QByteArray odd = "caf\xe9 \xff\xfe.txt";
        const QByteArray longest = QByteArray(251, 'n') + ".txt";
        QVERIFY(tree.write(QStringLiteral("src/a.txt"), "alpha"));
        QVERIFY(tree.setTimes(QStringLiteral("src/a.txt"), 1234567890, 123456789));
        QCOMPARE(::chmod(tree.nativePath("src/a.txt").constData(), 06750), 0);
        QVERIFY(tree.write(QStringLiteral("src/sub/empty"), ""));
        QVERIFY(tree.writeNative("src/" + odd, "odd"));
        QVERIFY(tree.writeNative("src/" + longest, "long"));
        const QByteArray link = tree.nativePath("src/link");
        QCOMPARE(::symlink("../nowhere/at all", link.constData()), 0);
        const timespec times[2] = {{1000000000, 5}, {1100000000, 987654321}};
        QCOMPARE(::utimensat(AT_FDCWD, link.constData(), times, AT_SYMLINK_NOFOLLOW), 0);
        CopyJob job(
            {item(tree, "src/a.txt", "dst/a.txt"), item(tree, "src/sub/empty", "dst/x/y/empty"),
             item(tree, "src/" + odd, "dst/" + odd), item(tree, "src/" + longest, "dst/" + longest),
             item(tree, "src/link", "dst/link")});
        ScriptedObserver observer;
        QCOMPARE(statuses(job.run(observer)), QByteArray("CCCCC"));
        QCOMPARE(observer.last.filesDone, 5);
        QCOMPARE(observer.last.bytesDone, observer.last.bytesTotal);
        QCOMPARE(observer.last.bytesTotal, 5 + 3 + 4 + 17); // a link counts its text
        QByteArray copied;
        for (const QByteArray &name : {QByteArray("a.txt"), QByteArray("x/y/empty"), odd, longest})
            copied += readNative(tree.nativePath("dst/" + name));
        QCOMPARE(copied, QByteArray("alphaoddlong"));
        char text[64] = {};
        QCOMPARE(::readlink(tree.nativePath("dst/link").constData(), text, sizeof text - 1), 17);
        QCOMPARE(QByteArray(text), QByteArray("../nowhere/at all"));
        QCOMPARE(lstatOf(tree.nativePath("dst/a.txt")).st_mtim.tv_nsec, 123456789L);
        QCOMPARE(lstatOf(tree.nativePath("dst/link")).st_mtim.tv_nsec, 987654321L);
        QCOMPARE(lstatOf(tree.nativePath("dst/a.txt")).st_mode & 07777, mode_t(0750));
        QVERIFY(leftovers(tree.root()).isEmpty());
        ::unlink(tree.nativePath("src/" + odd).constData());
        ::unlink(tree.nativePath("dst/" + odd).constData());
    }
    void refusalIsOneFilesFailure_data() {
        QTest::addColumn<QStringList>("copy");
        QTest::newRow("name of 256 bytes")
            << QStringList{"src/bad", "dst/" + QString(256, 'n'), "longer than 255"};
        QTest::newRow("target is a folder") << QStringList{"src/bad", "dst/folder", "same name"};
        QTest::newRow("target is the source") << QStringList{"src/bad", "src/bad", "same file"};
        QTest::newRow("a file where a folder goes")
            << QStringList{"src/bad", "dst/plain/inner", "is in the way"};
        QTest::newRow("FIFO") << QStringList{"src/fifo", "dst/fifo", "special file"};
        QTest::newRow("source deleted after the review")
            << QStringList{"src/gone", "dst/gone", "no longer exists"};
        QTest::newRow("target folder is a link")
            << QStringList{"src/bad", "dst/link/deep/inner.txt", "is a symbolic link"};
        QTest::newRow("source folder is a link")
            << QStringList{"src/link/deep/inner.txt", "dst/inner.txt", "is a symbolic link"};
        QTest::newRow("target root vanished")
            << QStringList{"src/bad", "gone/bad", "no longer exists"};
        QTest::newRow("target root is a file")
            << QStringList{"src/bad", "file/bad", "is no longer a folder"};
    }
    void refusalIsOneFilesFailure() {
        QFETCH(QStringList, copy);
        const QString &source = copy[0], &target = copy[1], &message = copy[2];
        TestTree tree;
        for (const char *file :
             {"src/bad", "src/good", "dst/plain", "file", "outside/deep/inner.txt"})
            QVERIFY(tree.write(QLatin1String(file), file)); // each holds its path
        QVERIFY(tree.mkdir(QStringLiteral("dst/folder")));
        QCOMPARE(::mkfifo(tree.nativePath("src/fifo").constData(), 0644), 0);
        for (const char *link : {"src/link", "dst/link"})
            QCOMPARE(::symlink(tree.nativePath("outside").constData(),
                               tree.nativePath(link).constData()),
                     0);
        const auto path = [&](const QString &relative) {
            return tree.nativePath(relative.toUtf8());
        };
        const auto root = [&](const QString &relative) {
            return path(relative.section('/', 0, 0));
        };
        const bool existed = existsNative(path(target));
        CopyJob job({{path(source), path(target), root(source), root(target)},
                     item(tree, "src/good", "dst/good")});
        ScriptedObserver observer;
        observer.trashAnswers.push_back(ReplaceAnswer::Yes);
        const auto outcomes = job.run(observer);
        QCOMPARE(statuses(outcomes), QByteArray("FC"));
        QVERIFY2(outcomes[0].message.contains(message), qPrintable(outcomes[0].message));
        QCOMPARE(existsNative(path(target)), existed);
        for (const QByteArray file : {"src/bad", "dst/plain", "outside/deep/inner.txt"})
            QCOMPARE(readNative(tree.nativePath(file)), file);
        QVERIFY(leftovers(tree.root()).isEmpty());
    }
    void changeWhileCopyingIsNotOverwritten_data() {
        QTest::addColumn<QStringList>("change");
        QTest::newRow("source rewritten in place") << QStringList{"rewrite", "changed", "old"};
        QTest::newRow("source replaced") << QStringList{"replace", "replaced", "old"};
        QTest::newRow("a new target appears") << QStringList{"appear", "appeared", "theirs"};
    }
    void changeWhileCopyingIsNotOverwritten() {
        QFETCH(QStringList, change);
        TestTree tree;
        QVERIFY(tree.write(QStringLiteral("src/big"), randomBytes(20 * 1024 * 1024)));
        QVERIFY(tree.setTimes(QStringLiteral("src/big"), 1000000000));
        if (change[0] != QLatin1String("appear"))
            QVERIFY(tree.write(QStringLiteral("dst/big"), "old"));
        const QByteArray source = tree.nativePath("src/big");
        CopyJob job({item(tree, "src/big", "dst/big")});
        job.setPromptBeforeOverwriting(false);
        ScriptedObserver observer;
        bool changed = false;
        observer.onProgress = [&](const CopyProgress &p) {
            if (p.bytesDone == 0 || std::exchange(changed, true))
                return true;
            if (change[0] == QLatin1String("rewrite")) {
                const int fd = ::open(source.constData(), O_WRONLY);
                (void)!::pwrite(fd, "X", 1, 0);
                ::close(fd);
            } else if (change[0] == QLatin1String("replace")) {
                tree.write(QStringLiteral("src/other"), "other");
                ::rename(tree.nativePath("src/other").constData(), source.constData());
            } else {
                tree.write(QStringLiteral("dst/big"), "theirs");
            }
            return true;
        };
        const CopyOutcome outcome = job.run(observer).front();
        QVERIFY(changed);
        QCOMPARE(outcome.status, CopyOutcome::Failed);
        QVERIFY2(outcome.message.contains(change[1]), qPrintable(outcome.message));
        QCOMPARE(readNative(tree.nativePath("dst/big")), change[2].toUtf8());
        QVERIFY(leftovers(tree.root()).isEmpty());
    }
    void killedCopyLeavesNothingListed_data() {
        QTest::addColumn<bool>("unnamed");
        QTest::newRow("unnamed temporary file") << true;
        QTest::newRow("named where unnamed ones are missing") << false;
    }
    void killedCopyLeavesNothingListed() {
        QFETCH(bool, unnamed);
        TestTree tree;
        QVERIFY(tree.write(QStringLiteral("src/big"), randomBytes(24 * 1024 * 1024)));
        QVERIFY(tree.write(QStringLiteral("dst/kept"), "kept"));
        const CopyItem copied = item(tree, "src/big", "dst/big");
        const pid_t child = ::fork();
        QVERIFY(child >= 0);
        if (child == 0) {
            if (!unnamed)
                CopySystemCalls::current().openUnnamed = [](int) { return errno = EOPNOTSUPP, -1; };
            CopyJob job({copied});
            ScriptedObserver observer;
            observer.onProgress = [](const CopyProgress &p) {
                if (p.bytesDone > 0)
                    ::raise(SIGKILL);
                return true;
            };
            job.run(observer);
            ::_exit(0);
        }
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QVERIFY(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
        const QStringList names =
            QDir(tree.path(QStringLiteral("dst"))).entryList(QDir::Files | QDir::Hidden);
        QCOMPARE(names.size(), unnamed ? 1 : 2); // else the partial file, under a name of its own
        if (!unnamed)
            QVERIFY(TemporaryCopyName::isTemporaryCopyName(names.first().toLatin1().constData()));
        ComparisonFileCollection listed;
        listed.setRootFolder(tree.path(QStringLiteral("dst")));
        QCOMPARE(listed.Count(), 1);
        QCOMPARE(listed.Item(1)->Name(), QStringLiteral("kept"));
    }
    void replaceQuestion_data() {
        QTest::addColumn<QByteArray>("answers"); // Yes, No, All, Cancel
        QTest::addColumn<int>("stopAt"); // the progress display's Cancel in b, at this bytesDone
        QTest::addColumn<QByteArray>("expected"); // what a, b, c hold afterwards, and the statuses
        QTest::newRow("yes, no, yes") << QByteArray("YNY") << -1 << QByteArray("AbC CSC");
        QTest::newRow("yes to all") << QByteArray("A") << -1 << QByteArray("ABC CCC");
        QTest::newRow("cancel at the second") << QByteArray("YC") << -1 << QByteArray("Abc CNN");
        QTest::newRow("cancelled before the second")
            << QByteArray("A") << 1 << QByteArray("Abc CNN");
        QTest::newRow("cancelled while copying the second")
            << QByteArray("A") << 2 << QByteArray("Abc CNN");
    }
    void replaceQuestion() {
        QFETCH(QByteArray, answers);
        QFETCH(int, stopAt);
        TestTree tree;
        const auto items = replaceable(tree, {"a", "b", "c"});
        CopyJob job(items);
        ScriptedObserver observer;
        const std::map<char, ReplaceAnswer> answer{{'Y', ReplaceAnswer::Yes},
                                                   {'N', ReplaceAnswer::No},
                                                   {'A', ReplaceAnswer::YesToAll},
                                                   {'C', ReplaceAnswer::Cancel}};
        for (char letter : answers)
            observer.answers.push_back(answer.at(letter));
        observer.onProgress = [&](const CopyProgress &p) {
            return stopAt < 0 || p.current != 1 || p.bytesDone < stopAt;
        };
        const QByteArray outcomes = statuses(job.run(observer));
        QCOMPARE(observer.asked.size(), answers.size());
        QTEST(readNative(items[0].target) + readNative(items[1].target) +
                  readNative(items[2].target) + ' ' + outcomes,
              "expected");
        QCOMPARE(job.wasCancelled(), outcomes.contains('N'));
        QVERIFY(leftovers(tree.root()).isEmpty());
    }
    void targetIsNeverMissingAndOldGoesToTheTrash() {
        auto restore = restoredSystemCalls();
        CopySystemCalls &calls = CopySystemCalls::current();
        calls.fsync = [](int fd) {
            struct stat st {};
            ::fstat(fd, &st);
            note(QStringLiteral("fsync %1").arg(st.st_ino));
            return ::fsync(fd);
        };
        calls.renameat2 = [](int from, const char *a, int to, const char *b, unsigned flags) {
            return note(QStringLiteral("rename")), ::renameat2(from, a, to, b, flags);
        };
        calls.linkat = [](int from, const char *a, int to, const char *b, int flags) {
            return note(QStringLiteral("link")), ::linkat(from, a, to, b, flags);
        };
        TestTree tree;
        QVERIFY(tree.write(QStringLiteral("src/f"), "new"));
        QVERIFY(tree.write(QStringLiteral("dst/f"), "old"));
        g_watchedTarget = tree.nativePath("dst/f");
        g_calls.clear();
        CopyJob job({item(tree, "src/f", "dst/f")});
        job.setPromptBeforeOverwriting(false);
        ScriptedObserver observer;
        QCOMPARE(job.run(observer).front().status, CopyOutcome::Copied);
        QCOMPARE(readNative(g_watchedTarget), QByteArray("new"));

        struct stat copy {};
        QCOMPARE(::stat(g_watchedTarget.constData(), &copy), 0);
        const qsizetype flushed =
            g_calls.indexOf(QStringLiteral("fsync %1 (target there)").arg(copy.st_ino));
        QVERIFY2(flushed >= 0, qPrintable(g_calls.join(QLatin1String(", "))));
        for (qsizetype i = 0; i < g_calls.size(); ++i) {
            QVERIFY2(g_calls[i].endsWith(QLatin1String("(target there)")), qPrintable(g_calls[i]));
            QVERIFY2(i >= flushed || g_calls[i].startsWith(QLatin1String("fsync")),
                     "the copy was put in place before its data was flushed");
        }
        QCOMPARE(readNative(QFile::encodeName(m_profile.trashFiles()) + "/f"), QByteArray("old"));
        QVERIFY(readNative(QFile::encodeName(m_profile.trashInfo()) + "/f.trashinfo")
                    .contains("Path=" + g_watchedTarget.toPercentEncoding("/") + '\n'));
    }
    void refusedTrashAsksBeforeReplacingForGood_data() {
        QTest::addColumn<QString>("blocked"); // a file where this trash folder belongs
        QTest::addColumn<bool>("replace");
        QTest::newRow("known: replace for good") << QStringLiteral("Trash") << true;
        QTest::newRow("known: keep") << QStringLiteral("Trash") << false;
        QTest::newRow("found late: replace for good") << QStringLiteral("Trash/info") << true;
        QTest::newRow("found late: keep") << QStringLiteral("Trash/info") << false;
    }
    void refusedTrashAsksBeforeReplacingForGood() {
        QFETCH(QString, blocked);
        QFETCH(bool, replace);
        const QString trash = m_profile.dataHome() + QStringLiteral("/Trash");
        const QString aside = trash + QStringLiteral(".aside");
        QVERIFY(!QFile::exists(trash) || QFile::rename(trash, aside));
        auto restore = qScopeGuard([&] {
            QFile::remove(trash);
            QDir(trash).removeRecursively();
            QFile::rename(aside, trash);
        });
        const QString blocker = m_profile.dataHome() + QLatin1Char('/') + blocked;
        QDir().mkpath(QFileInfo(blocker).path());
        QVERIFY(QFile(blocker).open(QIODevice::WriteOnly));

        TestTree tree;
        const auto items = replaceable(tree, {"f", "g"});
        CopyJob job(items);
        ScriptedObserver observer;
        const ReplaceAnswer answer = replace ? ReplaceAnswer::Yes : ReplaceAnswer::No;
        observer.trashAnswers = {answer, answer};
        const bool known = blocked == QLatin1String("Trash");
        if (!known)
            observer.answers = {ReplaceAnswer::Yes, ReplaceAnswer::Yes};
        qsizetype askedBeforeCopying = -1;
        observer.onProgress = [&](const CopyProgress &) {
            if (askedBeforeCopying < 0)
                askedBeforeCopying = observer.askedAllWithoutTrash.size();
            return true;
        };
        const auto outcomes = job.run(observer);
        QCOMPARE(askedBeforeCopying, known ? 2 : 0);
        QCOMPARE(observer.askedAllWithoutTrash.size(), known ? 2 : 0);
        QCOMPARE(observer.askedWithoutTrash.size(), known ? 0 : 2);
        QCOMPARE(observer.asked.size(), known ? 0 : 2);
        QCOMPARE(statuses(outcomes), QByteArray(replace ? "CC" : "SS"));
        QCOMPARE(readNative(items[0].target) + readNative(items[1].target),
                 QByteArray(replace ? "FG" : "fg"));
        QVERIFY(leftovers(tree.root()).isEmpty());
    }
    void sparseAndHugeFiles() {
        TestTree tree;
        QVERIFY(tree.write(QStringLiteral("src/sparse"), "head"));
        const QByteArray source = tree.nativePath("src/sparse");
        const qint64 size = 5LL * 1024 * 1024 * 1024;
        const int fd = ::open(source.constData(), O_WRONLY);
        QCOMPARE(::pwrite(fd, "middle", 6, 3LL * 1024 * 1024 * 1024), ssize_t(6));
        QCOMPARE(::pwrite(fd, "tail", 4, size - 4), ssize_t(4));
        ::close(fd);
        struct stat st {};
        QCOMPARE(::stat(source.constData(), &st), 0);
        if (st.st_blocks * 512 > 64 * 1024 * 1024)
            QSKIP("this file system does not keep holes");

        CopyJob job({item(tree, "src/sparse", "dst/sparse")});
        ScriptedObserver observer;
        QCOMPARE(job.run(observer).front().status, CopyOutcome::Copied);
        QCOMPARE(::stat(tree.nativePath("dst/sparse").constData(), &st), 0);
        QCOMPARE(qint64(st.st_size), size);
        QVERIFY(st.st_blocks * 512 <= 64 * 1024 * 1024);
        QFile copy(tree.path(QStringLiteral("dst/sparse")));
        QVERIFY(copy.open(QIODevice::ReadOnly));
        const auto at = [&](qint64 offset, qint64 length) {
            return copy.seek(offset) ? copy.read(length) : "";
        };
        QCOMPARE(at(0, 4) + at(3LL * 1024 * 1024 * 1024 - 1, 8) + at(size - 4, 4),
                 QByteArray("head\0middle\0tail", 16));
    }
    void refusedCallsAreNotesOrFailures() {
        auto restore = restoredSystemCalls();
        CopySystemCalls::current().fchmod = [](int, mode_t) { return errno = ENOSYS, -1; };
        CopySystemCalls::current().ftruncate = [](int, off_t) { return errno = EPERM, -1; };
        TestTree tree;
        QVERIFY(tree.write(QStringLiteral("src/holes"), "head"));
        QCOMPARE(::truncate(tree.nativePath("src/holes").constData(), 1024 * 1024), 0);
        QVERIFY(tree.write(QStringLiteral("src/a/b/c.txt"), "c"));
        QVERIFY(tree.write(QStringLiteral("dst/a/other"), "other"));
        CopyJob notes({item(tree, "src/holes", "dst/holes")});
        ScriptedObserver observer;
        const CopyOutcome outcome = notes.run(observer).front();
        QCOMPARE(outcome.status, CopyOutcome::Copied);
        QVERIFY2(outcome.message.contains(QLatin1String("cannot hold the permissions")),
                 qPrintable(outcome.message));
        QCOMPARE(readNative(tree.nativePath("dst/holes")),
                 QByteArray("head") + QByteArray(1024 * 1024 - 4, '\0'));

        CopySystemCalls::current().fsync = [](int) { return errno = EIO, -1; };
        CopyJob failing({item(tree, "src/a/b/c.txt", "dst/a/b/c.txt"),
                         item(tree, "src/a/b/c.txt", "dst/new/deeper/c.txt")});
        const auto outcomes = failing.run(observer);
        QCOMPARE(statuses(outcomes), QByteArray("FF"));
        QVERIFY2(outcomes[1].message.contains(QLatin1String("Input/output error")),
                 qPrintable(outcomes[1].message));
        const auto all = QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot;
        QCOMPARE(QDir(tree.path(QStringLiteral("dst"))).entryList(all),
                 (QStringList{"a", "holes"}));
        QCOMPARE(QDir(tree.path(QStringLiteral("dst/a"))).entryList(all), QStringList{"other"});
    }
    void diskFullKeepsTheOldTarget() {
        if (!ChildRun::isChild()) {
            ChildRun::run({QStringLiteral("unshare"),
                           ::geteuid() == 0 ? QStringLiteral("-m") : QStringLiteral("-Urm")},
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
        observer.trashAnswers.push_back(ReplaceAnswer::Yes); // where this trash is refused
        const auto outcomes = job.run(observer);
        QCOMPARE(statuses(outcomes), QByteArray("FC"));
        QVERIFY2(outcomes[0].message.contains(QLatin1String("No space left")),
                 qPrintable(outcomes[0].message));
        QVERIFY(readNative(full + "/big") == old);
        QCOMPARE(readNative(full + "/small"), QByteArray("small"));
        QVERIFY(leftovers(QFile::decodeName(full)).isEmpty());
    }
    void readOnlyTargetFolderIsAPerFileError() {
        if (::geteuid() == 0 && !ChildRun::isChild()) {
            ChildRun::run(ChildRun::unprivileged(), "readOnlyTargetFolderIsAPerFileError");
            return;
        }
        QVERIFY2(::geteuid() != 0, "must run unprivileged");
        TestTree tree;
        for (const char *file : {"src/1", "src/2", "dst/locked/2"})
            QVERIFY(tree.write(QLatin1String(file), file));
        QCOMPARE(::chmod(tree.nativePath("dst/locked").constData(), 0555), 0);
        auto unlock =
            qScopeGuard([&] { ::chmod(tree.nativePath("dst/locked").constData(), 0755); });

        CopyJob job({item(tree, "src/1", "dst/locked/1"), item(tree, "src/2", "dst/locked/2"),
                     item(tree, "src/1", "dst/open/1")});
        job.setPromptBeforeOverwriting(false);
        ScriptedObserver observer;
        const auto outcomes = job.run(observer);
        QCOMPARE(statuses(outcomes), QByteArray("FFC"));
        QVERIFY2(outcomes[0].message.contains(QLatin1String("Permission denied")),
                 qPrintable(outcomes[0].message));
        QCOMPARE(readNative(tree.nativePath("dst/locked/2")), QByteArray("dst/locked/2"));
        QVERIFY(!existsNative(tree.nativePath("dst/locked/1")));
    }

private:
    TestProfile m_profile;
};

QTEST_GUILESS_MAIN(tst_CopyJob)
#include "tst_CopyJob.moc"
