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

/**
 * Runs pairscope-cli with \a arguments, in \a locale and a pinned time zone (UTC+02:30, so that
 * offsets and a date that rolls over show), optionally as the unprivileged user.
 */
CliResult runCli(const QStringList &arguments, bool unprivileged = false,
                 const QString &locale = QStringLiteral("C.UTF-8")) {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), locale);
    environment.insert(QStringLiteral("TZ"), QStringLiteral("XYZ-02:30"));
    process.setProcessEnvironment(environment);
    const QStringList command = (unprivileged ? ChildRun::unprivileged() : QStringList()) +
                                QStringList{QStringLiteral(PAIRSCOPE_CLI_PATH)} + arguments;
    process.start(command.first(), command.mid(1));
    return CliResult::of(process);
}

/**
 * A source and a destination tree with one pair of every kind, all times Base unless said: names
 * differing only in letter case are two files, or one identical pair when case is ignored.
 */
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
        ::chmod(QFile::encodeName(m_tree.path(QStringLiteral("dst/read-only.txt"))).constData(),
                0444);
    }

    TestTree &tree() { return m_tree; }
    QString source() const { return m_tree.path(QStringLiteral("src")); }
    QString destination() const { return m_tree.path(QStringLiteral("dst")); }
    /** \a options followed by the two roots. */
    QStringList arguments(const QStringList &options) const {
        return options + QStringList{source(), destination()};
    }

private:
    TestTree m_tree;
};

} // namespace

/** pairscope-cli run as a program: its formats, exit statuses and problem reports. */
class tst_PairscopeCli : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void tsvByComparisons_data();
    void tsvByComparisons();
    void jsonCarriesBothSides();
    void textFollowsTheLocale();
    void refusesRoots_data();
    void refusesRoots();
    void oddNames();
    void rootGoneAfterTheCheck();
    void unreadableFoldersAndFiles();
    void exitStatusAndProgress();
};

namespace {

QJsonObject parsed(const QByteArray &json) {
    return QJsonDocument::fromJson(json).object();
}

/** The pair of \a root whose path is \a path. */
QJsonObject pairAt(const QJsonObject &root, const QString &path) {
    for (const QJsonValue &value : root[QLatin1String("pairs")].toArray()) {
        if (value[QLatin1String("path")].toString() == path)
            return value.toObject();
    }
    return {};
}

} // namespace

void tst_PairscopeCli::tsvByComparisons_data() {
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
        << QStringList{QStringLiteral("-a"), QStringLiteral("-c"), QStringLiteral("existence"),
                       QStringLiteral("--case"), QStringLiteral("insensitive")}
        << "1\t\tCase.TXT\n" + onlySource + onlyDestination +
               "1\t\tcontent.txt\n1\t\tnear.txt\n1\t\tnewer.txt\n1\t\tread-only.txt\n"
               "1\t\tsame.txt\n1\t\tsize.txt\n";
}

void tst_PairscopeCli::tsvByComparisons() {
    QFETCH(QStringList, options);
    PairTree pair;
    const CliResult result = runCli(
        pair.arguments(options + QStringList{QStringLiteral("--format"), QStringLiteral("tsv")}));
    QCOMPARE(result.err, QByteArray());
    QTEST(result.out, "expected");
    QCOMPARE(result.exitCode, 1);
}

void tst_PairscopeCli::jsonCarriesBothSides() {
    PairTree pair;
    QCOMPARE(
        ::chmod(QFile::encodeName(pair.source() + QStringLiteral("/size.txt")).constData(), 0640),
        0);
    const CliResult result = runCli(pair.arguments(
        {QStringLiteral("--format=json"), QStringLiteral("-c"), QStringLiteral("size,crc")}));
    QCOMPARE(result.exitCode, 1);
    const QJsonObject root = parsed(result.out);
    QCOMPARE(root[QLatin1String("pairs")].toArray().size(), 6);
    const QJsonObject size = pairAt(root, QStringLiteral("size.txt"));
    QCOMPARE(size[QLatin1String("code")].toInt(), 4);
    const QJsonObject source = size[QLatin1String("source")].toObject();
    QCOMPARE(source[QLatin1String("size")].toInteger(), 4);
    QCOMPARE(size[QLatin1String("destination")].toObject()[QLatin1String("size")].toInteger(), 5);
    // Local time at UTC+02:30 is past midnight: the offset and the date both show.
    QCOMPARE(source[QLatin1String("modified")].toString(),
             QStringLiteral("2023-11-15T00:43:20+02:30"));
    QCOMPARE(source[QLatin1String("permissions")].toString(), QStringLiteral("0640"));
    // A side that does not exist is null, not an object of zeros.
    const QJsonObject onlySource = pairAt(root, QStringLiteral("a/only-source.txt"));
    QVERIFY(onlySource[QLatin1String("destination")].isNull());
    QCOMPARE(onlySource[QLatin1String("source")].toObject()[QLatin1String("size")].toInteger(), 1);
}

void tst_PairscopeCli::textFollowsTheLocale() {
    PairTree pair;
    // Enough identical pairs that the count needs the locale's digit grouping.
    for (int i = 0; i < 1000; ++i) {
        for (const char *side : {"src/many/f", "dst/many/f"}) {
            const QString name = QLatin1String(side) + QString::number(i);
            pair.tree().write(name, "x");
            pair.tree().setTimes(name, Base);
        }
    }
    const CliResult result =
        runCli(pair.arguments({QStringLiteral("-c"), QStringLiteral("size,modified,attributes")}),
               false, QStringLiteral("de_DE.UTF-8"));
    QCOMPARE(result.exitCode, 1);
    QCOMPARE(result.out, "Compare File Sizes, Date Modified, Attributes\n"
                         "destination does not exist  Case.TXT\n"
                         "destination does not exist  a/only-source.txt\n"
                         "source does not exist       b/only-destination.txt\n"
                         "source does not exist       case.txt\n"
                         "source is newer             newer.txt\n"
                         "attributes are different    read-only.txt\n"
                         "size is different           size.txt\n"
                         "1.010 pairs: 1.003 identical, 2 source does not exist, 2 destination "
                         "does not exist, 1 size is different, 1 attributes are different, "
                         "1 source is newer.\n");
}

void tst_PairscopeCli::refusesRoots_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("message");
    QTest::newRow("source is a file")
        << QStringList{"@/file", "@"} << QByteArray("pairscope-cli: @/file: not a folder\n");
    QTest::newRow("empty source")
        << QStringList{QString(), "@"}
        << QByteArray("pairscope-cli: SOURCE is an empty argument; give a folder "
                      "(see pairscope-cli --help)\n");
    QTest::newRow("both missing") << QStringList{"@/none", "@/gone"}
                                  << QByteArray(
                                         "pairscope-cli: @/none: No such file or directory\n"
                                         "pairscope-cli: @/gone: No such file or directory\n");
}

void tst_PairscopeCli::refusesRoots() {
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, message);
    TestTree tree;
    tree.write(QStringLiteral("file"), "not a folder");
    arguments.replaceInStrings(QStringLiteral("@"), tree.root());
    const CliResult result = runCli(arguments);
    QCOMPARE(result.exitCode, 2);
    QCOMPARE(result.out, QByteArray());
    QCOMPARE(result.err, message.replace('@', QFile::encodeName(tree.root())));
}

void tst_PairscopeCli::oddNames() {
    TestTree tree;
    const QList<QByteArray> names = {"new\nline.txt", "tab\there.txt", "back\\slash.txt",
                                     "caf\xe9.txt"};
    // The temporary folder's own clean-up cannot see a name that is not UTF-8.
    const auto removeLatin1 =
        qScopeGuard([&tree] { ::unlink(tree.nativePath("src/caf\xe9.txt").constData()); });
    for (const QByteArray &name : names)
        QVERIFY(tree.writeNative("src/" + name, name));
    QVERIFY(tree.mkdir(QStringLiteral("dst")));

    const QStringList roots{tree.path(QStringLiteral("src")), tree.path(QStringLiteral("dst"))};
    const CliResult tsv = runCli(QStringList{QStringLiteral("--format=tsv")} + roots);
    QCOMPARE(tsv.out, QByteArray("3\tdestination does not exist\tback\\\\slash.txt\n"
                                 "3\tdestination does not exist\tcaf\xe9.txt\n"
                                 "3\tdestination does not exist\tnew\\nline.txt\n"
                                 "3\tdestination does not exist\ttab\\there.txt\n"));
    const QJsonObject latin1 =
        pairAt(parsed(runCli(QStringList{QStringLiteral("--format=json")} + roots).out),
               QString::fromUtf8("caf\xef\xbf\xbd.txt"));
    QCOMPARE(latin1[QLatin1String("pathBytes")].toString(), QStringLiteral("caf\\xe9.txt"));
    QVERIFY(runCli(roots).out.contains("destination does not exist  new\\nline.txt\n"));
}

void tst_PairscopeCli::rootGoneAfterTheCheck() {
    // Past the check of the roots, one can still go (an unmounted disk) before the walk.
    PairTree pair;
    CliOptions options;
    options.source = QFile::encodeName(pair.source());
    options.destination = QFile::encodeName(pair.destination());
    QVERIFY(QDir(pair.destination()).removeRecursively());
    CompareRun run(options);
    QVERIFY(run.run());
    QCOMPARE(run.problems().size(), 1);
    QCOMPARE(run.problems().first().line(), options.destination + ": No such file or directory");
}

void tst_PairscopeCli::unreadableFoldersAndFiles() {
    // Root makes files that the program, run as an ordinary user, may not read.
    if (::geteuid() != 0)
        QSKIP("needs root to make files that an ordinary user may not read");
    if (const QString reason = ChildRun::refusal(ChildRun::unprivileged()); !reason.isEmpty())
        QSKIP(qPrintable(reason));
    PairTree pair;
    const QByteArray source = QFile::encodeName(pair.source());
    // A folder that cannot be read at all, one that can be listed but not entered, one named
    // with a newline and a byte that is not UTF-8, and a file that cannot be read.
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
    QProcess::execute(QStringLiteral("chmod"),
                      {QStringLiteral("-R"), QStringLiteral("a+rX"), pair.tree().root()});
    for (const auto &[path, mode] :
         {std::pair{source + "/locked", 0700}, std::pair{source + "/listed", 0744},
          std::pair{odd, 0700},
          std::pair{QFile::encodeName(pair.destination()) + "/same.txt", 0600}})
        QCOMPARE(::chmod(path.constData(), mode_t(mode)), 0);

    const CliResult result =
        runCli(pair.arguments({QStringLiteral("--format=json"), QStringLiteral("-c"),
                               QStringLiteral("size,crc")}),
               true);
    QCOMPARE(result.exitCode, 2);
    // One line per problem whatever the name holds, its bytes as they are: each folder once,
    // and the file whose contents could not be read.
    QCOMPARE(result.err.count('\n'), 4);
    for (const QByteArray &line :
         {"pairscope-cli: " + source + "/locked: Permission denied\n",
          "pairscope-cli: " + source + "/listed: Permission denied\n",
          "pairscope-cli: " + source + "/odd\\nname\xe9: Permission denied\n",
          "pairscope-cli: " + QFile::encodeName(pair.destination()) +
              "/same.txt: could not be read: Permission denied\n"})
        QVERIFY2(result.err.contains(line), result.err.constData());

    const QJsonObject root = parsed(result.out);
    // Everything that could be compared is still there; behind a folder that could not be
    // read nothing is known, which is not "missing".
    QCOMPARE(pairAt(root, QStringLiteral("content.txt"))[QLatin1String("code")].toInt(), 5);
    QCOMPARE(pairAt(root, QStringLiteral("same.txt"))[QLatin1String("code")].toInt(), 14);
    QCOMPARE(pairAt(root, QStringLiteral("locked/inside.txt"))[QLatin1String("code")].toInt(), 13);
    // The side whose properties could not be read is null; the other side's are there.
    const QJsonObject listed = pairAt(root, QStringLiteral("listed/inside.txt"));
    QVERIFY(listed[QLatin1String("source")].isNull());
    QCOMPARE(listed[QLatin1String("destination")].toObject()[QLatin1String("size")].toInteger(), 4);
    bool oddListed = false;
    for (const QJsonValue &problem : root[QLatin1String("problems")].toArray())
        oddListed |= problem[QLatin1String("pathBytes")].toString() ==
                     QString::fromUtf8(NameEscaping::bytes(odd));
    QVERIFY(oddListed);
}

void tst_PairscopeCli::exitStatusAndProgress() {
    PairTree pair;
    const CliResult same = runCli({pair.source(), pair.source()});
    QCOMPARE(same.exitCode, 0);
    QVERIFY(!same.out.isEmpty());
    QCOMPARE(same.err, QByteArray()); // a pipe: no progress unless forced
    const CliResult quiet = runCli(pair.arguments({QStringLiteral("-q")}));
    QCOMPARE(quiet.exitCode, 1);
    QCOMPARE(quiet.out + quiet.err, QByteArray());
    const CliResult forced = runCli(pair.arguments({QStringLiteral("--progress")}));
    // The first report and the start of the comparison are always drawn; the rest is throttled.
    QVERIFY2(forced.err.startsWith("\rBuilding source file list (1)"), forced.err.constData());
    QVERIFY2(forced.err.contains("\rInitializing comparison data"), forced.err.constData());
    QCOMPARE(forced.out, runCli(pair.arguments({QStringLiteral("--no-progress")})).out);
}

QTEST_GUILESS_MAIN(tst_PairscopeCli)
#include "tst_PairscopeCli.moc"
