#include "cli/CliOptions.h"
#include "cli/NameEscaping.h"
#include "engine/PathHelpers.h"

#include <QTest>

namespace {

QList<QByteArray> split(const char *arguments) {
    QList<QByteArray> list;
    for (const QByteArray &part : QByteArray(arguments).split(' ')) {
        if (!part.isEmpty())
            list.append(part);
    }
    return list;
}

} // namespace

/** Option parsing and the escaping of names in the three output formats. */
class tst_CliOptions : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void parsesOptions_data();
    void parsesOptions();
    void refusesBadArguments_data();
    void refusesBadArguments();
    void escapesNames_data();
    void escapesNames();
};

void tst_CliOptions::parsesOptions_data() {
    QTest::addColumn<QByteArray>("arguments");
    QTest::addColumn<int>("comparisons");
    QTest::addColumn<int>("chunkSize");
    QTest::addColumn<bool>("doCRCLast");
    QTest::addColumn<bool>("includeSlack");
    QTest::addColumn<bool>("listAll");
    QTest::addColumn<bool>("quiet");
    QTest::addColumn<int>("format");

    const int text = int(OutputFormat::Text);
    QTest::newRow("defaults") << QByteArray("a b") << 3 << 65536 << true << true << false << false
                              << text;
    QTest::newRow("bundled flags, attached values, upper case")
        << QByteArray("-aqc Size,CRC --format=json --chunk-size=1024 a b") << 33 << 1024 << true
        << true << true << true << int(OutputFormat::Json);
    QTest::newRow("flags after the roots")
        << QByteArray("a --crc-first b --no-slack --format tsv") << 3 << 65536 << false << false
        << false << false << int(OutputFormat::Tsv);
    QTest::newRow("roots after --")
        << QByteArray("-a -- -a --help") << 3 << 65536 << true << true << true << false << text;
}

void tst_CliOptions::parsesOptions() {
    QFETCH(QByteArray, arguments);
    QString error;
    const CliOptions options = CliOptions::parse(split(arguments.constData()), &error);
    QVERIFY2(error.isEmpty(), qPrintable(error));
    QTEST(options.comparisons, "comparisons");
    QTEST(options.chunkSize, "chunkSize");
    QTEST(options.doCRCLast, "doCRCLast");
    QTEST(options.includeSlack, "includeSlack");
    QTEST(options.listAll, "listAll");
    QTEST(options.quiet, "quiet");
    QTEST(int(options.format), "format");
    QCOMPARE(options.source.isEmpty(), false);
    QCOMPARE(options.destination.isEmpty(), false);
}

void tst_CliOptions::refusesBadArguments_data() {
    QTest::addColumn<QByteArray>("arguments");
    QTest::addColumn<QString>("reason");

    QTest::newRow("no roots") << QByteArray("") << "expected two folders";
    QTest::newRow("three roots") << QByteArray("a b c") << "too many arguments: 'c'";
    QTest::newRow("unknown short in bundle") << QByteArray("-ax a b") << "unknown option '-x'";
    QTest::newRow("unknown comparison")
        << QByteArray("-c size,colour a b") << "unknown comparison 'colour'";
    QTest::newRow("value missing at the end")
        << QByteArray("a b --compare") << "option '--compare' needs a value";
    QTest::newRow("value on a bundled flag")
        << QByteArray("-aq=1 a b") << "option '-q' takes no value";
    QTest::newRow("chunk size not a number")
        << QByteArray("--chunk-size 64k a b") << "invalid --chunk-size '64k'";
    QTest::newRow("chunk size above the ceiling")
        << QByteArray("--chunk-size=16777217 a b") << "--chunk-size '16777217' is out of range";
    QTest::newRow("existence with another")
        << QByteArray("-c existence,size a b") << "existence cannot be combined";
    QTest::newRow("empty destination") << QByteArray("a @") << "DESTINATION is an empty argument";
    QTest::newRow("a newline in an argument stays escaped")
        << QByteArray("--case x\ny a b") << "unknown --case 'x\\ny'";
    QTest::newRow("standard input for both sides")
        << QByteArray("- -") << "standard input (-) can stand for one side only";
    QTest::newRow("--crc without --manifest") << QByteArray("--crc a b") << "--crc belongs with";
    QTest::newRow("manifest of two roots") << QByteArray("--manifest a b") << "--manifest takes";
}

void tst_CliOptions::refusesBadArguments() {
    QFETCH(QByteArray, arguments);
    QFETCH(QString, reason);
    QString error;
    // "@" stands for an empty argument.
    QList<QByteArray> list = split(arguments.constData());
    for (QByteArray &argument : list) {
        if (argument == "@")
            argument.clear();
    }
    CliOptions::parse(list, &error);
    QVERIFY2(error.startsWith(reason), qPrintable(error));
    QVERIFY(!error.contains(QLatin1Char('\n')));
}

void tst_CliOptions::escapesNames_data() {
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("tsv");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("readable");
    QTest::addColumn<bool>("validUtf8");

    QTest::newRow("tab, newline, backslash")
        << QByteArray("t\tn\nb\\") << QByteArray("t\\tn\\nb\\\\") << QByteArray("t\\x09n\\x0ab\\\\")
        << "t\\tn\\nb\\\\" << true;
    // A backslash is doubled for people too: this name and the Latin-1 byte below differ.
    QTest::newRow("backslash-x as text") << QByteArray("caf\\xe9") << QByteArray("caf\\\\xe9")
                                         << QByteArray("caf\\\\xe9") << "caf\\\\xe9" << true;
    // Two-, three- and four-byte sequences.
    QTest::newRow("UTF-8") << QByteArray("\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80")
                           << QByteArray("\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80")
                           << QByteArray("\\xc3\\xa9\\xe2\\x82\\xac\\xf0\\x9f\\x98\\x80")
                           << QString::fromUtf8("\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80") << true;
    QTest::newRow("Latin-1 byte") << QByteArray("caf\xe9") << QByteArray("caf\xe9")
                                  << QByteArray("caf\\xe9") << "caf\\xe9" << false;
    QTest::newRow("overlong slash") << QByteArray("\xc0\xaf") << QByteArray("\xc0\xaf")
                                    << QByteArray("\\xc0\\xaf") << "\\xc0\\xaf" << false;
    QTest::newRow("cut short at the end") << QByteArray("a\xe2\x82") << QByteArray("a\xe2\x82")
                                          << QByteArray("a\\xe2\\x82") << "a\\xe2\\x82" << false;
}

void tst_CliOptions::escapesNames() {
    QFETCH(QByteArray, name);
    QTEST(NameEscaping::tsv(name), "tsv");
    QTEST(NameEscaping::bytes(name), "bytes");
    QTEST(NameEscaping::readable(name), "readable");
    QTEST(IsValidUtf8(name), "validUtf8");
}

QTEST_GUILESS_MAIN(tst_CliOptions)
#include "tst_CliOptions.moc"
