#include "reports/NameEscaping.h"

#include "cli/CompareRun.h"
#include "support/ChildRun.h"
#include "support/CliResult.h"
#include "support/TestTree.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QScopeGuard>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr time_t Base = 1700000000; // 2023-11-14 22:13:20 UTC

/** Runs pairscope-cli in \a locale at UTC+02:30, so offsets and a date rollover show. */
CliResult runCli(const QStringList &arguments, bool unprivileged = false,
                 const QString &locale = QStringLiteral("C.UTF-8")) {
    return CliResult::run(arguments, {}, {"LC_ALL=" + locale, "TZ=XYZ-02:30"},
                          unprivileged ? ChildRun::unprivileged() : QStringList());
}

/** One pair of every kind; Case.TXT and case.txt pair only when case is ignored. */
class PairTree {
public:
    PairTree() {
        const struct {
            const char *path;
            QByteArray content;
            int age; // seconds after Base
        } files[] = {
            {"src/same.txt", "same", 0},       {"dst/same.txt", "same", 0},
            {"src/size.txt", "1234", 0},       {"dst/size.txt", "12345", 0},
            {"src/content.txt", "AAAA", 0},    {"dst/content.txt", "AAAB", 0},
            {"src/newer.txt", "newer", 100},   {"dst/newer.txt", "newer", 0},
            {"src/near.txt", "near", 0},       {"dst/near.txt", "near", 2},
            {"src/read-only.txt", "ro", 0},    {"dst/read-only.txt", "ro", 0},
            {"src/Case.TXT", "case", 0},       {"dst/case.txt", "case", 0},
            {"src/a/only-source.txt", "s", 0}, {"dst/b/only-destination.txt", "d", 0},
        };
        for (const auto &file : files) {
            m_tree.write(QLatin1String(file.path), file.content);
            m_tree.setTimes(QLatin1String(file.path), Base + file.age);
        }
        ::chmod(m_tree.nativePath("dst/read-only.txt").constData(), 0444);
    }

    TestTree &tree() { return m_tree; }
    QString source() const { return m_tree.path("src"); }
    QString destination() const { return m_tree.path("dst"); }
    QStringList arguments(const QStringList &options) const {
        return options + QStringList{source(), destination()};
    }

private:
    TestTree m_tree;
};

/** The pair of \a root whose path is \a path. */
QJsonObject pairAt(const QJsonObject &root, const QString &path) {
    for (const QJsonValue &value : root["pairs"].toArray()) {
        if (value["path"].toString() == path)
            return value.toObject();
    }
    return {};
}

int codeAt(const QJsonObject &root, const QString &path) {
    return pairAt(root, path)["code"].toInt();
}

} // namespace

/** pairscope-cli run as a program: its formats, exit statuses and problem reports. */
class tst_PairscopeCli : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void tsvByComparisons_data() {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QByteArray>("expected");
        const QByteArray onlySource = "3\tdestination does not exist\ta/only-source.txt\n";
        const QByteArray onlyDestination = "2\tsource does not exist\tb/only-destination.txt\n";
        QTest::newRow("default: sizes and modified dates")
            << QStringList()
            << "3\tdestination does not exist\tCase.TXT\n" + onlySource + onlyDestination +
                   "2\tsource does not exist\tcase.txt\n7\tsource is newer\tnewer.txt\n" +
                   "4\tsize is different\tsize.txt\n";
        QTest::newRow("existence, every pair, case ignored")
            << QStringList{"-a", "-c", "existence", "--case", "insensitive"}
            << "1\t\tCase.TXT\n" + onlySource + onlyDestination +
                   "1\t\tcontent.txt\n1\t\tnear.txt\n1\t\tnewer.txt\n1\t\tread-only.txt\n"
                   "1\t\tsame.txt\n1\t\tsize.txt\n";
    }
    void tsvByComparisons() {
        QFETCH(QStringList, options);
        PairTree pair;
        const CliResult result = runCli(pair.arguments(options + QStringList{"--format", "tsv"}));
        QCOMPARE(result.err, QByteArray());
        QTEST(result.out, "expected");
        QCOMPARE(result.exitCode, 1);
    }
    void jsonCarriesBothSides() {
        PairTree pair;
        QCOMPARE(::chmod(QFile::encodeName(pair.source() + "/size.txt").constData(), 0640), 0);
        const CliResult result = runCli(pair.arguments({"--format=json", "-c", "size,crc"}));
        QCOMPARE(result.exitCode, 1);
        const QJsonObject root = QJsonDocument::fromJson(result.out).object();
        QCOMPARE(root["pairs"].toArray().size(), 6);
        const QJsonObject size = pairAt(root, "size.txt");
        QCOMPARE(size["code"].toInt(), 4);
        const QJsonObject source = size["source"].toObject();
        QCOMPARE(source["size"].toInteger(), 4);
        QCOMPARE(size["destination"].toObject()["size"].toInteger(), 5);
        QCOMPARE(source["modified"].toString(), "2023-11-15T00:43:20+02:30");
        QCOMPARE(source["permissions"].toString(), "0640");
        const QJsonObject onlySource = pairAt(root, "a/only-source.txt");
        QVERIFY(onlySource["destination"].isNull()); // not an object of zeros
        QCOMPARE(onlySource["source"].toObject()["size"].toInteger(), 1);
    }
    void textFollowsTheLocale() {
        PairTree pair;
        for (int i = 0; i < 1000; ++i) {
            for (const char *side : {"src/many/f", "dst/many/f"}) {
                const QString name = QLatin1String(side) + QString::number(i);
                pair.tree().write(name, "x");
                pair.tree().setTimes(name, Base);
            }
        }
        const CliResult result =
            runCli(pair.arguments({"-c", "size,modified,attributes"}), false, "de_DE.UTF-8");
        QCOMPARE(result.exitCode, 1);
        QVERIFY2(result.out.endsWith("source is newer             newer.txt\n"
                                     "attributes are different    read-only.txt\n"
                                     "size is different           size.txt\n"
                                     "1.010 pairs: 1.003 identical, 2 source does not exist, 2 "
                                     "destination does not exist, 1 size is different, 1 "
                                     "attributes are different, 1 source is newer.\n"),
                 result.out.constData());
    }
    void refusesRoots_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("message");
        QTest::newRow("source is a file")
            << QStringList{"@/file", "@"} << QByteArray("pairscope-cli: @/file: not a folder\n");
        QTest::newRow("both missing")
            << QStringList{"@/none", "@/gone"}
            << QByteArray("pairscope-cli: @/none: No such file or directory\n"
                          "pairscope-cli: @/gone: No such file or directory\n");
    }
    void refusesRoots() {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, message);
        TestTree tree;
        tree.write("file", "not a folder");
        arguments.replaceInStrings("@", tree.root());
        const CliResult result = runCli(arguments);
        QCOMPARE(result.exitCode, 2);
        QCOMPARE(result.out, QByteArray());
        QCOMPARE(result.err, message.replace('@', QFile::encodeName(tree.root())));
    }
    void oddNames() {
        TestTree tree;
        const QList<QByteArray> names = {"new\nline.txt", "tab\there.txt", "back\\slash.txt",
                                         "caf\xe9.txt"};
        const auto removeLatin1 =
            qScopeGuard([&tree] { ::unlink(tree.nativePath("src/caf\xe9.txt").constData()); });
        for (const QByteArray &name : names)
            QVERIFY(tree.writeNative("src/" + name, name));
        QVERIFY(tree.mkdir("dst"));
        const QStringList roots{tree.path("src"), tree.path("dst")};
        const CliResult tsv = runCli(QStringList{"--format=tsv"} + roots);
        QCOMPARE(tsv.out, QByteArray("3\tdestination does not exist\tback\\\\slash.txt\n"
                                     "3\tdestination does not exist\tcaf\xe9.txt\n"
                                     "3\tdestination does not exist\tnew\\nline.txt\n"
                                     "3\tdestination does not exist\ttab\\there.txt\n"));
        const QJsonObject latin1 = pairAt(
            QJsonDocument::fromJson(runCli(QStringList{"--format=json"} + roots).out).object(),
            QString::fromUtf8("caf\xef\xbf\xbd.txt"));
        QCOMPARE(latin1["pathBytes"].toString(), "caf\\xe9.txt");
        QVERIFY(runCli(roots).out.contains("destination does not exist  new\\nline.txt\n"));
    }
    void rootGoneAfterTheCheck() {
        PairTree pair;
        CliOptions options;
        options.source = QFile::encodeName(pair.source());
        options.destination = QFile::encodeName(pair.destination());
        QVERIFY(QDir(pair.destination()).removeRecursively());
        CompareRun run(options);
        QVERIFY(run.run());
        QCOMPARE(run.problems().size(), 1);
        QCOMPARE(run.problems().first().line(),
                 options.destination + ": No such file or directory");
    }
    void unreadableFoldersAndFiles() {
        if (::geteuid() != 0)
            QSKIP("needs root to make files that an ordinary user may not read");
        if (const QString reason = ChildRun::refusal(ChildRun::unprivileged()); !reason.isEmpty())
            QSKIP(qPrintable(reason));
        PairTree pair;
        const QByteArray source = QFile::encodeName(pair.source());
        for (const QString side : {"src/", "dst/"}) {
            pair.tree().write(side + "locked/inside.txt", "hidden");
            pair.tree().write(side + "listed/inside.txt", side.toUtf8()); // four bytes
        }
        const QByteArray odd = source + "/odd\nname\xe9";
        QCOMPARE(::mkdir(odd.constData(), 0700), 0);
        QVERIFY(pair.tree().writeNative("src/odd\nname\xe9/f", "x"));
        const auto removeOdd = qScopeGuard([&odd] {
            ::unlink((odd + "/f").constData());
            ::rmdir(odd.constData());
        });
        QProcess::execute("chmod", {"-R", "a+rX", pair.tree().root()});
        for (const auto &[path, mode] :
             {std::pair{source + "/locked", 0700}, std::pair{source + "/listed", 0744},
              std::pair{odd, 0700},
              std::pair{QFile::encodeName(pair.destination()) + "/same.txt", 0600}})
            QCOMPARE(::chmod(path.constData(), mode_t(mode)), 0);
        const CliResult result = runCli(pair.arguments({"--format=json", "-c", "size,crc"}), true);
        QCOMPARE(result.exitCode, 2);
        QCOMPARE(result.err.count('\n'), 4);
        for (const QByteArray &line :
             {"pairscope-cli: " + source + "/locked: Permission denied\n",
              "pairscope-cli: " + source + "/listed: Permission denied\n",
              "pairscope-cli: " + source + "/odd\\nname\xe9: Permission denied\n",
              "pairscope-cli: " + QFile::encodeName(pair.destination()) +
                  "/same.txt: could not be read: Permission denied\n"})
            QVERIFY2(result.err.contains(line), result.err.constData());
        const QJsonObject root = QJsonDocument::fromJson(result.out).object();
        QCOMPARE(codeAt(root, "content.txt"), 5);
        QCOMPARE(codeAt(root, "same.txt"), 14);
        QCOMPARE(codeAt(root, "locked/inside.txt"), 13); // unknown, not missing
        const QJsonObject listed = pairAt(root, "listed/inside.txt");
        QVERIFY(listed["source"].isNull());
        QCOMPARE(listed["destination"].toObject()["size"].toInteger(), 4);
        bool oddListed = false;
        for (const QJsonValue &problem : root["problems"].toArray())
            oddListed |=
                problem["pathBytes"].toString() == QString::fromUtf8(NameEscaping::bytes(odd));
        QVERIFY(oddListed);
    }
    void exitStatusAndProgress() {
        PairTree pair;
        const CliResult same = runCli({pair.source(), pair.source()});
        QCOMPARE(same.exitCode, 0);
        QVERIFY(!same.out.isEmpty());
        QCOMPARE(same.err, QByteArray()); // a pipe: no progress unless forced
        const CliResult quiet = runCli(pair.arguments({"-q"}));
        QCOMPARE(quiet.exitCode, 1);
        QCOMPARE(quiet.out + quiet.err, QByteArray());
        const CliResult forced = runCli(pair.arguments({"--progress"}));
        QVERIFY2(forced.err.startsWith("\rBuilding source file list (1)"), forced.err.constData());
        QVERIFY2(forced.err.contains("\rInitializing comparison data"), forced.err.constData());
        QCOMPARE(forced.out, runCli(pair.arguments({"--no-progress"})).out);
    }
};

QTEST_GUILESS_MAIN(tst_PairscopeCli)
#include "tst_PairscopeCli.moc"
