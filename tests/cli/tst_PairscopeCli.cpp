#include "cli/CompareRun.h"
#include "cli/NameEscaping.h"
#include "support/ChildRun.h"
#include "support/TestTree.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr time_t Base = 1700000000; // 2023-11-14 22:13:20 UTC

/** What one run of the program gave. */
struct CliResult {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

/** The locale the text format is checked in: en_US when installed, else C.UTF-8. */
QString pinnedLocale() {
    QProcess locales;
    locales.start(QStringLiteral("locale"), {QStringLiteral("-a")});
    locales.waitForFinished();
    const QByteArray all = locales.readAllStandardOutput().toLower();
    if (all.contains("en_us.utf8") || all.contains("en_us.utf-8"))
        return QStringLiteral("en_US.UTF-8");
    return QStringLiteral("C.UTF-8");
}

/**
 * Runs pairscope-cli with \a arguments, in \a locale and a pinned time zone (UTC+02:30, so that
 * offsets and a date that rolls over show), optionally as the unprivileged user.
 */
CliResult runCli(const QStringList &arguments, bool unprivileged = false,
                 const QString &locale = pinnedLocale()) {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), locale);
    environment.insert(QStringLiteral("TZ"), QStringLiteral("XYZ-02:30"));
    process.setProcessEnvironment(environment);
    const QString program = QStringLiteral(PAIRSCOPE_CLI_PATH);
    if (unprivileged) {
        const QStringList launcher = ChildRun::unprivileged();
        process.start(launcher.first(), launcher.mid(1) + QStringList{program} + arguments);
    } else {
        process.start(program, arguments);
    }
    CliResult result;
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return result;
    result.exitCode = process.exitCode();
    result.out = process.readAllStandardOutput();
    result.err = process.readAllStandardError();
    return result;
}

/**
 * A source and a destination tree with one pair of every kind; all times Base unless said:
 *   same.txt          identical
 *   size.txt          sizes differ
 *   content.txt       same size and date, other bytes (only a checksum tells)
 *   newer.txt         source 100 s later
 *   near.txt          destination 2 s later (equal with the slack)
 *   read-only.txt     the destination may not be written
 *   Case.TXT/case.txt names differ only in letter case: two files, or one identical pair
 *                     when case is ignored
 *   a/only-source.txt, b/only-destination.txt
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

/** Skips unless root can run the program as an ordinary user, who may not read everything. */
#define skipUnlessUnprivilegedRuns()                                                               \
    do {                                                                                           \
        if (::geteuid() != 0)                                                                      \
            QSKIP("needs root to make files that the program, run unprivileged, may not read");    \
        if (const QString reason = ChildRun::refusal(ChildRun::unprivileged()); !reason.isEmpty()) \
            QSKIP(qPrintable(reason));                                                             \
    } while (false)

/** Gives everyone read and search access from the tree's root down. */
void openUp(const QString &root) {
    QProcess::execute(QStringLiteral("chmod"),
                      {QStringLiteral("-R"), QStringLiteral("a+rX"), root});
}

} // namespace

/** pairscope-cli run as a program: its formats, exit statuses and problem reports. */
class tst_PairscopeCli : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tsvByComparisons_data();
    void tsvByComparisons();
    void jsonCarriesBothSides();
    void textIsAlignedAndSummed_data();
    void textIsAlignedAndSummed();
    void exitStatus_data();
    void exitStatus();
    void refusesRoots_data();
    void refusesRoots();
    void oddNames();
    void rootGoneAfterTheCheck_data();
    void rootGoneAfterTheCheck();
    void unreadableFolderAndFileAreReportedAndTheRestListed();
    void jsonSidesAndProblemsAsJudged();
    void progressOnlyWhenAsked();
};

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
        {QStringLiteral("--format=json"), QStringLiteral("-c"), QStringLiteral("size,crc"),
         QStringLiteral("--crc-first"), QStringLiteral("--chunk-size"), QStringLiteral("2048"),
         QStringLiteral("--case=insensitive")}));
    QCOMPARE(result.exitCode, 1);
    QJsonParseError error;
    const QJsonObject root = QJsonDocument::fromJson(result.out, &error).object();
    QVERIFY2(error.error == QJsonParseError::NoError, qPrintable(error.errorString()));

    QCOMPARE(root[QLatin1String("source")].toString(), pair.source());
    QCOMPARE(root[QLatin1String("destination")].toString(), pair.destination());
    const QJsonObject comparisons = root[QLatin1String("comparisons")].toObject();
    QCOMPARE(comparisons[QLatin1String("bits")].toInt(), 33);
    QCOMPARE(comparisons[QLatin1String("description")].toString(),
             QStringLiteral("Compare File Sizes, CRC-32 Checksums"));
    const QJsonObject options = root[QLatin1String("options")].toObject();
    QCOMPARE(options[QLatin1String("crcFirst")].toBool(), true);
    QCOMPARE(options[QLatin1String("slack")].toBool(), true);
    QCOMPARE(options[QLatin1String("chunkSize")].toInt(), 2048);

    QStringList paths;
    QJsonObject size;
    QJsonObject onlySource;
    for (const QJsonValue &value : root[QLatin1String("pairs")].toArray()) {
        const QJsonObject entry = value.toObject();
        paths << entry[QLatin1String("path")].toString();
        if (paths.last() == QLatin1String("size.txt"))
            size = entry;
        if (paths.last() == QLatin1String("a/only-source.txt"))
            onlySource = entry;
    }
    QCOMPARE(paths, QStringList({QStringLiteral("a/only-source.txt"),
                                 QStringLiteral("b/only-destination.txt"),
                                 QStringLiteral("content.txt"), QStringLiteral("size.txt")}));

    QCOMPARE(size[QLatin1String("code")].toInt(), 4);
    QCOMPARE(size[QLatin1String("text")].toString(), QStringLiteral("size is different"));
    const QJsonObject source = size[QLatin1String("source")].toObject();
    QCOMPARE(source[QLatin1String("size")].toInteger(), 4);
    QCOMPARE(size[QLatin1String("destination")].toObject()[QLatin1String("size")].toInteger(), 5);
    // Local time at UTC+02:30 is past midnight: the offset and the date both show.
    QCOMPARE(source[QLatin1String("modified")].toString(),
             QStringLiteral("2023-11-15T00:43:20+02:30"));
    QCOMPARE(source[QLatin1String("accessed")].toString(),
             QStringLiteral("2023-11-15T00:43:20+02:30"));
    const QJsonValue created = source[QLatin1String("created")];
    QVERIFY(created.isNull() ||
            QRegularExpression(QStringLiteral("^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d"
                                              "(\\.\\d{9})?\\+02:30$"))
                .match(created.toString())
                .hasMatch());
    QCOMPARE(source[QLatin1String("attributes")].toString(), QString());
    QCOMPARE(source[QLatin1String("permissions")].toString(), QStringLiteral("0640"));
    QCOMPARE(source[QLatin1String("kind")].toString(), QStringLiteral("file"));

    QVERIFY(onlySource[QLatin1String("destination")].isNull());
    QCOMPARE(onlySource[QLatin1String("source")].toObject()[QLatin1String("size")].toInteger(), 1);

    QCOMPARE(root[QLatin1String("pairsCompared")].toInt(), 9);
    const QJsonObject counts = root[QLatin1String("counts")].toObject();
    QCOMPARE(counts[QLatin1String("1")].toInt(), 5);
    QCOMPARE(counts[QLatin1String("5")].toInt(), 1);
    QVERIFY(root[QLatin1String("problems")].toArray().isEmpty());
}

void tst_PairscopeCli::textIsAlignedAndSummed_data() {
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QByteArray>("total");
    QTest::addColumn<QByteArray>("identical");

    // Qt formats numbers from its own locale data, so a locale need not be installed to be
    // followed; en_US is pinned where the system has it (C.UTF-8 groups digits alike).
    const QString pinned = pinnedLocale();
    if (!pinned.startsWith(QLatin1String("en_US")))
        qInfo("en_US.UTF-8 is not installed: the English rows run in C.UTF-8");
    QTest::newRow("English") << pinned << QByteArray("1,010") << QByteArray("1,003");
    QTest::newRow("German") << QStringLiteral("de_DE.UTF-8") << QByteArray("1.010")
                            << QByteArray("1.003");
}

void tst_PairscopeCli::textIsAlignedAndSummed() {
    QFETCH(QString, locale);
    QFETCH(QByteArray, total);
    QFETCH(QByteArray, identical);
    PairTree pair;
    // Enough identical pairs that the count needs the locale's digit grouping.
    for (int i = 0; i < 1000; ++i) {
        const QString name = QStringLiteral("many/f%1").arg(i);
        pair.tree().write(QLatin1String("src/") + name, "x");
        pair.tree().write(QLatin1String("dst/") + name, "x");
        pair.tree().setTimes(QLatin1String("src/") + name, Base);
        pair.tree().setTimes(QLatin1String("dst/") + name, Base);
    }
    const CliResult result =
        runCli(pair.arguments({QStringLiteral("-c"), QStringLiteral("size,modified,attributes")}),
               false, locale);
    QCOMPARE(result.exitCode, 1);
    QCOMPARE(result.out,
             "Compare File Sizes, Date Modified, Attributes\n"
             "destination does not exist  Case.TXT\n"
             "destination does not exist  a/only-source.txt\n"
             "source does not exist       b/only-destination.txt\n"
             "source does not exist       case.txt\n"
             "source is newer             newer.txt\n"
             "attributes are different    read-only.txt\n"
             "size is different           size.txt\n" +
                 total + " pairs: " + identical +
                 " identical, 2 source does not exist, 2 destination does not exist, "
                 "1 size is different, 1 attributes are different, 1 source is newer.\n");
}

void tst_PairscopeCli::exitStatus_data() {
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<bool>("identicalTrees");
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("printsReport");

    QTest::newRow("identical trees") << QStringList() << true << 0 << true;
    QTest::newRow("differences") << QStringList() << false << 1 << true;
    QTest::newRow("quiet") << QStringList{QStringLiteral("-q")} << false << 1 << false;
    QTest::newRow("help") << QStringList{QStringLiteral("--help")} << false << 0 << true;
}

void tst_PairscopeCli::exitStatus() {
    QFETCH(QStringList, options);
    QFETCH(bool, identicalTrees);
    TestTree tree;
    for (const char *side : {"src/", "dst/"}) {
        tree.write(QLatin1String(side) + QLatin1String("f.txt"), "same");
        tree.setTimes(QLatin1String(side) + QLatin1String("f.txt"), Base);
    }
    if (!identicalTrees)
        tree.write(QStringLiteral("dst/g.txt"), "extra");
    const CliResult result = runCli(
        options + QStringList{tree.path(QStringLiteral("src")), tree.path(QStringLiteral("dst"))});
    QTEST(result.exitCode, "status");
    QTEST(!result.out.isEmpty(), "printsReport");
    QCOMPARE(result.err, QByteArray());
}

void tst_PairscopeCli::refusesRoots_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("message");

    QTest::newRow("bad option") << QStringList{QStringLiteral("--colour"), QStringLiteral("@"),
                                               QStringLiteral("@")}
                                << QByteArray("pairscope-cli: unknown option '--colour' "
                                              "(see pairscope-cli --help)\n");
    QTest::newRow("source is a file") << QStringList{QStringLiteral("@/file"), QStringLiteral("@")}
                                      << QByteArray("pairscope-cli: @/file: not a folder\n");
    QTest::newRow("empty source")
        << QStringList{QString(), QStringLiteral("@")}
        << QByteArray("pairscope-cli: SOURCE is an empty argument; give a folder "
                      "(see pairscope-cli --help)\n");
    QTest::newRow("both missing") << QStringList{QStringLiteral("@/none"), QStringLiteral("@/gone")}
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
    const QList<QByteArray> names = {"two  blanks.txt", "new\nline.txt", "tab\there.txt",
                                     "back\\slash.txt", "caf\xe9.txt"};
    // The temporary folder's own clean-up cannot see a name that is not UTF-8.
    const auto removeLatin1 =
        qScopeGuard([&tree] { ::unlink(tree.nativePath("src/caf\xe9.txt").constData()); });
    for (const QByteArray &name : names)
        QVERIFY(tree.writeNative("src/" + name, name));
    QVERIFY(tree.mkdir(QStringLiteral("dst")));

    const QStringList roots{tree.path(QStringLiteral("src")), tree.path(QStringLiteral("dst"))};
    const CliResult tsv =
        runCli(QStringList{QStringLiteral("--format"), QStringLiteral("tsv")} + roots);
    QCOMPARE(tsv.exitCode, 1);
    QCOMPARE(tsv.out, QByteArray("3\tdestination does not exist\tback\\\\slash.txt\n"
                                 "3\tdestination does not exist\tcaf\xe9.txt\n"
                                 "3\tdestination does not exist\tnew\\nline.txt\n"
                                 "3\tdestination does not exist\ttab\\there.txt\n"
                                 "3\tdestination does not exist\ttwo  blanks.txt\n"));

    const CliResult json =
        runCli(QStringList{QStringLiteral("--format"), QStringLiteral("json")} + roots);
    QJsonParseError error;
    const QJsonArray pairs =
        QJsonDocument::fromJson(json.out, &error).object()[QLatin1String("pairs")].toArray();
    QVERIFY2(error.error == QJsonParseError::NoError, qPrintable(error.errorString()));
    QCOMPARE(pairs.size(), names.size());
    const QJsonObject latin1 = pairs.at(1).toObject();
    QCOMPARE(latin1[QLatin1String("path")].toString(), QString::fromUtf8("caf\xef\xbf\xbd.txt"));
    QCOMPARE(latin1[QLatin1String("pathBytes")].toString(), QStringLiteral("caf\\xe9.txt"));
    const QJsonObject newline = pairs.at(2).toObject();
    QCOMPARE(newline[QLatin1String("path")].toString(), QStringLiteral("new\nline.txt"));
    QVERIFY(!newline.contains(QLatin1String("pathBytes")));

    const CliResult text = runCli(roots);
    QVERIFY2(text.out.contains("destination does not exist  caf\\xe9.txt\n"), text.out.constData());
    QVERIFY2(text.out.contains("destination does not exist  new\\nline.txt\n"),
             text.out.constData());
}

void tst_PairscopeCli::rootGoneAfterTheCheck_data() {
    QTest::addColumn<bool>("sourceGone");
    QTest::newRow("source") << true;
    QTest::newRow("destination") << false;
}

void tst_PairscopeCli::rootGoneAfterTheCheck() {
    // The roots are checked before the walk; one can still go (an unmounted disk) before it.
    // The run is made here, past the check, as it would be then.
    QFETCH(bool, sourceGone);
    PairTree pair;
    CliOptions options;
    options.source = QFile::encodeName(pair.source());
    options.destination = QFile::encodeName(pair.destination());
    const QByteArray gone = sourceGone ? options.source : options.destination;
    QVERIFY(QDir(QFile::decodeName(gone)).removeRecursively());
    CompareRun run(options);
    QVERIFY(run.run());
    QCOMPARE(run.problems().size(), 1);
    QCOMPARE(run.problems().first().line(), gone + ": No such file or directory");
}

void tst_PairscopeCli::unreadableFolderAndFileAreReportedAndTheRestListed() {
    skipUnlessUnprivilegedRuns();
    PairTree pair;
    pair.tree().write(QStringLiteral("src/locked/inside.txt"), "hidden");
    pair.tree().write(QStringLiteral("dst/locked/inside.txt"), "hidden");
    openUp(pair.tree().root());
    const QByteArray locked = QFile::encodeName(pair.source()) + "/locked";
    QCOMPARE(::chmod(locked.constData(), 0700), 0);
    const QByteArray secret = QFile::encodeName(pair.destination()) + "/same.txt";
    QCOMPARE(::chmod(secret.constData(), 0600), 0);

    const CliResult result =
        runCli(pair.arguments({QStringLiteral("--format=tsv"), QStringLiteral("-c"),
                               QStringLiteral("size,modified,crc")}),
               true);
    QCOMPARE(result.exitCode, 2);
    // One line on standard error per problem, naming the path and the reason.
    const QList<QByteArray> problems = result.err.trimmed().split('\n');
    QCOMPARE(problems.size(), 2);
    QVERIFY2(problems.first().startsWith("pairscope-cli: " + locked + ": "),
             result.err.constData());
    QVERIFY2(problems.first().contains("Permission denied"), result.err.constData());
    QCOMPARE(problems.last(),
             "pairscope-cli: " + secret + ": could not be read: Permission denied");
    // Everything that could be compared is still there, including the destination's side of
    // the folder that could not be read.
    QVERIFY2(result.out.contains("4\tsize is different\tsize.txt\n"), result.out.constData());
    QVERIFY2(result.out.contains("5\tchecksum is different\tcontent.txt\n"),
             result.out.constData());
    QVERIFY2(result.out.contains("14\tdestination could not be read\tsame.txt\n"),
             result.out.constData());
    // Behind the folder that could not be read nothing is known: not "missing".
    QVERIFY2(result.out.contains("13\tsource could not be read\tlocked/inside.txt\n"),
             result.out.constData());
}

void tst_PairscopeCli::jsonSidesAndProblemsAsJudged() {
    skipUnlessUnprivilegedRuns();
    PairTree pair;
    // A folder that can be listed but not entered: its file is seen, its properties are not.
    pair.tree().write(QStringLiteral("src/listed/inside.txt"), "1234567");
    pair.tree().write(QStringLiteral("dst/listed/inside.txt"), "123");
    // A folder that cannot be read at all, named with a newline and a byte that is not UTF-8.
    const QByteArray oddPath = QFile::encodeName(pair.source()) + "/odd\nname\xe9";
    QCOMPARE(::mkdir(oddPath.constData(), 0700), 0);
    QVERIFY(pair.tree().writeNative("src/odd\nname\xe9/f", "x"));
    const auto removeOdd = qScopeGuard([&oddPath] {
        ::unlink((oddPath + "/f").constData());
        ::rmdir(oddPath.constData());
    });
    openUp(pair.tree().root());
    QCOMPARE(::chmod((QFile::encodeName(pair.source()) + "/listed").constData(), 0744), 0);
    QCOMPARE(::chmod(oddPath.constData(), 0700), 0);

    const CliResult result = runCli(pair.arguments({QStringLiteral("--format=json"),
                                                    QStringLiteral("-c"), QStringLiteral("size")}),
                                    true);
    QCOMPARE(result.exitCode, 2);
    // One line per problem whatever the name holds, its bytes as they are; the folder that
    // cannot be entered is a problem of its own.
    QVERIFY2(result.err.contains("pairscope-cli: " + QFile::encodeName(pair.source()) +
                                 "/odd\\nname\xe9: "),
             result.err.constData());
    QVERIFY2(result.err.contains(QFile::encodeName(pair.source()) + "/listed: "),
             result.err.constData());
    QCOMPARE(result.err.count('\n'), 2);

    QJsonParseError error;
    const QJsonObject root = QJsonDocument::fromJson(result.out, &error).object();
    QVERIFY2(error.error == QJsonParseError::NoError, qPrintable(error.errorString()));
    QJsonObject listed;
    for (const QJsonValue &value : root[QLatin1String("pairs")].toArray()) {
        if (value[QLatin1String("path")].toString() == QLatin1String("listed/inside.txt"))
            listed = value.toObject();
    }
    // The side whose properties could not be read has none, not a size of 0; the other
    // side's are still there.
    QVERIFY2(listed[QLatin1String("source")].isNull(), result.out.constData());
    QCOMPARE(listed[QLatin1String("destination")].toObject()[QLatin1String("size")].toInteger(), 3);

    const QJsonArray problems = root[QLatin1String("problems")].toArray();
    QCOMPARE(problems.size(), 2);
    const QJsonObject problem = problems.last().toObject();
    QCOMPARE(problem[QLatin1String("pathBytes")].toString(),
             QString::fromUtf8(NameEscaping::bytes(oddPath)));
    QVERIFY(!problem[QLatin1String("reason")].toString().isEmpty());
}

void tst_PairscopeCli::progressOnlyWhenAsked() {
    PairTree pair;
    // Standard error is a pipe here: no progress unless forced.
    QCOMPARE(runCli(pair.arguments({})).err, QByteArray());
    const CliResult forced = runCli(pair.arguments({QStringLiteral("--progress")}));
    // The first report and the start of the comparison are always drawn; the rest is throttled.
    QVERIFY2(forced.err.startsWith("\rBuilding source file list (1)"), forced.err.constData());
    QVERIFY2(forced.err.contains("\rInitializing comparison data"), forced.err.constData());
    QVERIFY2(forced.err.endsWith('\r'), forced.err.constData());
    QCOMPARE(forced.out, runCli(pair.arguments({QStringLiteral("--no-progress")})).out);
}

QTEST_GUILESS_MAIN(tst_PairscopeCli)
#include "tst_PairscopeCli.moc"
