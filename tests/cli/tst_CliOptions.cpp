#include "reports/NameEscaping.h"

#include "cli/CompareRun.h"
#include "cli/ProgressLine.h"
#include "engine/PathHelpers.h"
#include "support/TestTree.h"

#include <QTest>

#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr time_t Base = 1700000000;

/** \a arguments split at blanks; "@" stands for an empty argument. */
QList<QByteArray> split(const QByteArray &arguments) {
    QList<QByteArray> list = arguments.split(' ');
    list.removeAll(QByteArray());
    std::replace(list.begin(), list.end(), QByteArray("@"), QByteArray());
    return list;
}

/** The roots, the comparisons, the chunk size, the flags that are on and the format. */
QByteArray described(const CliOptions &o) {
    const char *const formats[] = {"text", "tsv", "json"};
    return o.source + ' ' + o.destination + ' ' + QByteArray::number(o.comparisons) + ' ' +
           QByteArray::number(o.chunkSize) + (o.doCRCLast ? " crc-last" : "") +
           (o.includeSlack ? " slack" : "") + (o.listAll ? " all" : "") +
           (o.quiet ? " quiet" : "") + ' ' + formats[int(o.format)];
}

/** "code[,further differences] path" per listed pair of a run with \a options on src, dst. */
QByteArray listed(const QByteArray &options, const TestTree &tree, bool differences = false) {
    QString error;
    const CliOptions parsed = CliOptions::parse(
        split(options + ' ' + tree.nativePath("src") + ' ' + tree.nativePath("dst")), &error);
    if (!error.isEmpty())
        return error.toUtf8();
    CompareRun run(parsed);
    run.run();
    QByteArray out;
    for (const ReportPair &pair : run.pairs()) {
        QByteArrayList codes{QByteArray::number(pair.code)};
        const QList<int> all = pair.source->Differences().codes();
        for (qsizetype i = 1; differences && i < all.size(); ++i)
            codes << QByteArray::number(all.at(i));
        out += codes.join(',') + ' ' + pair.path() + '\n';
    }
    return out;
}

} // namespace

/** Option parsing, the compare options run in this process on real trees, and name escaping. */
class tst_CliOptions : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void parsesOptions_data() {
        QTest::addColumn<QByteArray>("arguments");
        QTest::addColumn<QByteArray>("parsed");
        const std::pair<const char *, const char *> parsed[] = {
            {"a b", "a b 3 65536 crc-last slack text"},
            {"-aqcSize,CRC --format=json --chunk-size=1024 a b",
             "a b 33 1024 crc-last slack all quiet json"},
            {"a --crc-first b -c size --no-slack --format tsv", "a b 1 65536 tsv"},
            {"-a -- -a --help", "-a --help 3 65536 crc-last slack all text"}};
        for (const auto &[arguments, described] : parsed)
            QTest::newRow(arguments) << QByteArray(arguments) << QByteArray(described);
    }
    void parsesOptions() {
        QFETCH(QByteArray, arguments);
        QString error;
        const CliOptions options = CliOptions::parse(split(arguments), &error);
        QVERIFY2(error.isEmpty(), qPrintable(error));
        QTEST(described(options), "parsed");
    }
    void refusesBadArguments_data() {
        QTest::addColumn<QByteArray>("arguments");
        QTest::addColumn<QString>("reason");
        const std::pair<const char *, const char *> refused[] = {
            {"", "expected two folders"},
            {"a b c", "too many arguments: 'c'"},
            {"-ax a b", "unknown option '-x'"},
            {"-c size,colour a b", "unknown comparison 'colour'"},
            {"a b --compare", "option '--compare' needs a value"},
            {"-aq=1 a b", "option '-q' takes no value"},
            {"--chunk-size 64k a b", "invalid --chunk-size '64k'"},
            {"--chunk-size=16777217 a b", "--chunk-size '16777217' is out of range"},
            {"--time-shift=1h a b", "invalid --time-shift '1h'"},
            {"-c existence,size a b", "existence cannot be combined"},
            {"--exclude-from /nonexistent/rules a b",
             "cannot read --exclude-from '/nonexistent/rules': No such file or directory"},
            {"a @", "DESTINATION is an empty argument"},
            {"--case x\ny a b", "unknown --case 'x\\ny'"}, // the newline stays escaped
            {"- -", "standard input (-) can stand for one side only"},
            {"--crc a b", "--crc belongs with"},
            {"--manifest a b", "--manifest takes"},
            {"--manifest -c crc a", "'-c' belongs to a compare"}};
        for (const auto &[arguments, reason] : refused)
            QTest::newRow(reason) << QByteArray(arguments) << QString::fromUtf8(reason);
    }
    void refusesBadArguments() {
        QFETCH(QByteArray, arguments);
        QFETCH(QString, reason);
        QString error;
        CliOptions::parse(split(arguments), &error);
        QVERIFY2(error.startsWith(reason), qPrintable(error));
        QVERIFY(!error.contains(QLatin1Char('\n')));
    }
    void timeShifts_data() {
        QTest::addColumn<QByteArray>("options");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("half an hour only")
            << QByteArray("--time-shift=30") << QByteArray("8 hour-and-2s.txt\n8 hour.txt\n");
        QTest::newRow("an hour among others, with the slack")
            << QByteArray("--time-shift=30 --time-shift=60") << QByteArray();
        QTest::newRow("an hour, no slack")
            << QByteArray("--time-shift 60 --no-slack") << QByteArray("8 hour-and-2s.txt\n");
    }
    void timeShifts() {
        QFETCH(QByteArray, options);
        TestTree tree;
        const std::pair<const char *, int> files[] = {{"hour.txt", 3600},
                                                      {"hour-and-2s.txt", 3602}};
        for (const auto &[name, shift] : files) {
            for (const QString side : {"src/", "dst/"}) {
                QVERIFY(tree.write(side + QLatin1String(name), "x"));
                QVERIFY(
                    tree.setTimes(side + QLatin1String(name), Base + (side == "dst/" ? shift : 0)));
            }
        }
        QTEST(listed(options, tree), "expected");
    }
    void everyDifference_data() {
        QTest::addColumn<QByteArray>("compare");
        QTest::addColumn<QByteArray>("expected");
        // a.txt differs in size, modified date and permissions; b.txt in content and date only.
        QTest::newRow("size, date, attributes")
            << QByteArray("size,modified,attributes") << QByteArray("4,8,6 a.txt\n8 b.txt\n");
        QTest::newRow("in the order of the tests, not of the option")
            << QByteArray("attributes,modified") << QByteArray("8,6 a.txt\n8 b.txt\n");
        QTest::newRow("checksum last: read only when nothing else differs")
            << QByteArray("size,crc") << QByteArray("4 a.txt\n5 b.txt\n");
        QTest::newRow("checksum first: then the dates")
            << QByteArray("crc,modified --crc-first") << QByteArray("5,8 a.txt\n5,8 b.txt\n");
    }
    void everyDifference() {
        QFETCH(QByteArray, compare);
        TestTree tree;
        for (const QString side : {"src/", "dst/"}) {
            const bool dst = side == "dst/";
            QVERIFY(tree.write(side + "a.txt", dst ? "aaaaa" : "aaaa"));
            QVERIFY(tree.write(side + "b.txt", dst ? "BBBB" : "bbbb"));
            for (const char *name : {"a.txt", "b.txt"})
                QVERIFY(tree.setTimes(side + name, Base + (dst ? 100 : 0)));
        }
        QCOMPARE(::chmod(tree.nativePath("dst/a.txt").constData(), 0600), 0);
        QTEST(listed("-c " + compare, tree, true), "expected");
    }
    void listsInByteOrderOfWholePaths() {
        TestTree tree;
        for (const QString side : {"src/", "dst/"}) {
            for (const char *name : {"b", "a0", "a/y/z", "a/x", "a.b"})
                QVERIFY(tree.write(side + name, side == "src/" ? "1" : "22"));
        }
        // '.' < '/' < '0': a folder's files fall between names its name begins.
        QCOMPARE(listed("-c size", tree), QByteArray("4 a.b\n4 a/x\n4 a/y/z\n4 a0\n4 b\n"));
    }
    void filters_data() {
        QTest::addColumn<QByteArray>("options");
        QTest::addColumn<QByteArray>("expected");
        const std::pair<const char *, const char *> filtered[] = {
            {"--exclude *.log", "4 a.txt\n4 build/out.o\n4 sub/t.tmp\n"}, // any depth, both sides
            {"--exclude=build/", "4 a.txt\n2 only.log\n4 sub/keep.log\n4 sub/t.tmp\n4 x.log\n"},
            {"--gitignore", "4 a.txt\n4 build/out.o\n2 only.log\n4 x.log\n"}, // each in its folder
            {"--exclude-from @rules", "4 a.txt\n4 sub/t.tmp\n4 x.log\n"}};
        for (const auto &[options, expected] : filtered)
            QTest::newRow(options) << QByteArray(options) << QByteArray(expected);
    }
    void filters() {
        QFETCH(QByteArray, options);
        TestTree tree;
        for (const QString side : {"src/", "dst/"}) {
            for (const char *name : {"a.txt", "x.log", "build/out.o", "sub/keep.log", "sub/t.tmp"})
                QVERIFY(tree.write(side + name, side == "src/" ? "1" : "22"));
            QVERIFY(tree.write(side + ".gitignore", "*.tmp\n"));
            QVERIFY(tree.write(side + "sub/.gitignore", "*.log\n"));
        }
        QVERIFY(tree.write("dst/only.log", "1"));
        QVERIFY(tree.write("rules", "# rules\nbuild/\n*.log\n!x.log\n"));
        options.replace("@rules", tree.nativePath("rules"));
        QTEST(listed(options + " -c size", tree), "expected");
    }
    void fileGoneDuringTheRunIsListedOnce() {
        TestTree tree;
        QVERIFY(tree.write("src/a.txt", "1") && tree.write("dst/a.txt", "22"));
        QVERIFY(tree.write("src/z.txt", "z"));
        // Gone once the walks are over, before its turn: a.txt is decided, then the run restarts.
        QByteArray doomed = tree.nativePath("src/z.txt");
        cookie_io_functions_t io{};
        io.write = [](void *path, const char *text, size_t size) {
            if (QByteArray(text, qsizetype(size)).contains("Analyzing"))
                ::unlink(static_cast<QByteArray *>(path)->constData());
            return ssize_t(size);
        };
        std::FILE *stream = ::fopencookie(&doomed, "w", io);
        ProgressLine progress(stream);
        CliOptions options;
        options.source = tree.nativePath("src");
        options.destination = tree.nativePath("dst");
        CompareRun run(options);
        run.setProgressLine(&progress);
        QVERIFY(run.run());
        std::fclose(stream);
        QCOMPARE(run.restarts(), 1);
        QCOMPARE(run.pairs().size(), size_t(1));
        QCOMPARE(run.pairCount(), 1);
    }
    void escapesNames_data() {
        // tsv keeps bytes that are not UTF-8; readable shows text as text and the rest escaped.
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArray>("tsv");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QByteArray>("readable");
        QTest::addColumn<bool>("validUtf8");
        QTest::newRow("tab, newline, backslash")
            << QByteArray("t\tn\nb\\") << QByteArray("t\\tn\\nb\\\\")
            << QByteArray("t\\x09n\\x0ab\\\\") << QByteArray("t\\tn\\nb\\\\") << true;
        QTest::newRow("backslash-x as text")
            << QByteArray("caf\\xe9") << QByteArray("caf\\\\xe9") << QByteArray("caf\\\\xe9")
            << QByteArray("caf\\\\xe9") << true;
        const QByteArray utf8("\xc3\xa9 \xe2\x82\xac\xf0\x9f\x98\x80");
        QTest::newRow("UTF-8") << utf8 << utf8
                               << QByteArray("\\xc3\\xa9 \\xe2\\x82\\xac\\xf0\\x9f\\x98\\x80")
                               << utf8 << true;
        QTest::newRow("control byte and tab beside a stray byte")
            << QByteArray("a\x01\xe9\t") << QByteArray("a\x01\xe9\\t")
            << QByteArray("a\\x01\\xe9\\x09") << QByteArray("a\\x01\\xe9\\t") << false;
        const std::pair<const char *, const char *> invalid[] = {
            {"caf\xe9", "caf\\xe9"},
            {"a\x80", "a\\x80"},         // lone continuation byte
            {"\xc0\xaf", "\\xc0\\xaf"},  // overlong slash
            {"a\xe2\x82", "a\\xe2\\x82"} // cut short at the end
        };
        for (const auto &[name, bytes] : invalid)
            QTest::newRow(bytes) << QByteArray(name) << QByteArray(name) << QByteArray(bytes)
                                 << QByteArray(bytes) << false;
    }
    void escapesNames() {
        QFETCH(QByteArray, name);
        QTEST(NameEscaping::tsv(name), "tsv");
        QTEST(NameEscaping::bytes(name), "bytes");
        QTEST(NameEscaping::readable(name).toUtf8(), "readable");
        QTEST(IsValidUtf8(name), "validUtf8");
    }
};

QTEST_GUILESS_MAIN(tst_CliOptions)
#include "tst_CliOptions.moc"
