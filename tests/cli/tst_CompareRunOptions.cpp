#include "cli/CompareRun.h"
#include "support/TestTree.h"

#include <QFile>
#include <QTest>

namespace {

constexpr time_t Base = 1700000000;

/**
 * The listed pairs of a run with \a arguments: "code path" a line, sorted by path, each code
 * followed by the pair's further differences when \a differences is set ("4,7,6 path").
 */
QByteArray listed(QStringList arguments, const TestTree &tree, bool differences = false) {
    arguments << tree.path(QStringLiteral("src")) << tree.path(QStringLiteral("dst"));
    QList<QByteArray> native;
    for (const QString &argument : arguments)
        native << argument.toUtf8();
    QString error;
    const CliOptions options = CliOptions::parse(native, &error);
    if (!error.isEmpty())
        return error.toUtf8();
    CompareRun run(options);
    run.run();
    QByteArray out;
    for (const ReportPair &pair : run.pairs()) {
        QByteArrayList codes{QByteArray::number(pair.code)};
        const QList<int> all = pair.source->Differences().codes();
        for (qsizetype i = 1; differences && i < all.size(); ++i)
            codes << QByteArray::number(all.at(i));
        out += codes.join(',') + ' ' + pair.path + '\n';
    }
    return out;
}

} // namespace

/** pairscope-cli's compare options, run in this process on real trees. */
class tst_CompareRunOptions : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void timeShifts_data();
    void timeShifts();
    void everyDifference_data();
    void everyDifference();
    void filters_data();
    void filters();
};

void tst_CompareRunOptions::timeShifts_data() {
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("expected");

    const QStringList hour{QStringLiteral("--time-shift"), QStringLiteral("60")};
    QTest::newRow("no shift") << QStringList() << QByteArray("8 hour-and-2s.txt\n8 hour.txt\n");
    // Repeated shifts all count; each within the two-second slack.
    QTest::newRow("an hour among others, with the slack")
        << QStringList{QStringLiteral("--time-shift=30"), QStringLiteral("--time-shift=60")}
        << QByteArray();
    QTest::newRow("an hour, no slack")
        << hour + QStringList{QStringLiteral("--no-slack")} << QByteArray("8 hour-and-2s.txt\n");
    QTest::newRow("half an hour only") << QStringList{QStringLiteral("--time-shift=30")}
                                       << QByteArray("8 hour-and-2s.txt\n8 hour.txt\n");
    QTest::newRow("not a number")
        << QStringList{QStringLiteral("--time-shift=1h")}
        << QByteArray("invalid --time-shift '1h'; give a whole number of minutes, 1 to 10080");
}

void tst_CompareRunOptions::timeShifts() {
    QFETCH(QStringList, options);
    TestTree tree;
    for (const char *name : {"hour.txt", "hour-and-2s.txt", "same.txt"}) {
        for (const char *side : {"src/", "dst/"}) {
            const QString path = QLatin1String(side) + QLatin1String(name);
            QVERIFY(tree.write(path, "x"));
            QVERIFY(tree.setTimes(path, Base));
        }
    }
    QVERIFY(tree.setTimes(QStringLiteral("dst/hour.txt"), Base + 3600));
    QVERIFY(tree.setTimes(QStringLiteral("dst/hour-and-2s.txt"), Base + 3602));
    QTEST(listed(options, tree), "expected");
}

void tst_CompareRunOptions::everyDifference_data() {
    QTest::addColumn<QString>("compare");
    QTest::addColumn<QByteArray>("expected");

    // a.txt differs in size, modified date and permissions; b.txt in content and date only.
    QTest::newRow("size, date, attributes")
        << QStringLiteral("size,modified,attributes") << QByteArray("4,8,6 a.txt\n8 b.txt\n");
    QTest::newRow("in the order of the tests, not of the option")
        << QStringLiteral("attributes,modified") << QByteArray("8,6 a.txt\n8 b.txt\n");
    QTest::newRow("checksum last: read only when nothing else differs")
        << QStringLiteral("size,crc") << QByteArray("4 a.txt\n5 b.txt\n");
    QTest::newRow("checksum first: then the dates")
        << QStringLiteral("crc,modified --crc-first") << QByteArray("5,8 a.txt\n5,8 b.txt\n");
}

void tst_CompareRunOptions::everyDifference() {
    QFETCH(QString, compare);
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral("src/a.txt"), "aaaa"));
    QVERIFY(tree.write(QStringLiteral("dst/a.txt"), "aaaaa"));
    QVERIFY(tree.write(QStringLiteral("src/b.txt"), "bbbb"));
    QVERIFY(tree.write(QStringLiteral("dst/b.txt"), "BBBB"));
    for (const char *side : {"src/", "dst/"}) {
        for (const char *name : {"a.txt", "b.txt"})
            QVERIFY(tree.setTimes(QLatin1String(side) + QLatin1String(name),
                                  Base + (side[0] == 'd' ? 100 : 0)));
    }
    QFile(tree.path(QStringLiteral("dst/a.txt")))
        .setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    QStringList options{QStringLiteral("-c")};
    options << compare.split(QLatin1Char(' '));
    QTEST(listed(options, tree, true), "expected");
}

void tst_CompareRunOptions::filters_data() {
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("expected");

    const auto options = [](const char *line) {
        return QString::fromLatin1(line).split(QLatin1Char(' '));
    };
    QTest::newRow("none") << QStringList()
                          << QByteArray("4 a.txt\n4 build/out.o\n2 only.log\n4 sub/keep.log\n"
                                        "4 sub/t.tmp\n4 x.log\n");
    QTest::newRow("a name at any depth, on both sides")
        << options("--exclude *.log") << QByteArray("4 a.txt\n4 build/out.o\n4 sub/t.tmp\n");
    QTest::newRow("a folder") << options("--exclude=build/")
                              << QByteArray("4 a.txt\n2 only.log\n4 sub/keep.log\n"
                                            "4 sub/t.tmp\n4 x.log\n");
    QTest::newRow("each .gitignore below its folder")
        << options("--gitignore") << QByteArray("4 a.txt\n4 build/out.o\n2 only.log\n4 x.log\n");
    QTest::newRow("from a file") << options("--exclude-from @rules")
                                 << QByteArray("4 a.txt\n4 sub/t.tmp\n4 x.log\n");
    QTest::newRow("an unreadable rules file")
        << options("--exclude-from /nonexistent/rules")
        << QByteArray("cannot read --exclude-from '/nonexistent/rules': No such file or directory");
}

void tst_CompareRunOptions::filters() {
    QFETCH(QStringList, options);
    TestTree tree;
    for (const char *name : {"a.txt", "x.log", "build/out.o", "sub/keep.log", "sub/t.tmp"}) {
        QVERIFY(tree.write(QLatin1String("src/") + QLatin1String(name), "1"));
        QVERIFY(tree.write(QLatin1String("dst/") + QLatin1String(name), "22"));
    }
    QVERIFY(tree.write(QStringLiteral("dst/only.log"), "1"));
    for (const char *side : {"src/", "dst/"}) {
        QVERIFY(tree.write(QLatin1String(side) + QLatin1String(".gitignore"), "*.tmp\n"));
        QVERIFY(tree.write(QLatin1String(side) + QLatin1String("sub/.gitignore"), "*.log\n"));
    }
    QVERIFY(tree.write(QStringLiteral("rules"), "# rules\nbuild/\n*.log\n!x.log\n"));
    options.replaceInStrings(QStringLiteral("@rules"), tree.path(QStringLiteral("rules")));
    QTEST(listed(options << QStringLiteral("-c") << QStringLiteral("size"), tree), "expected");
}

QTEST_GUILESS_MAIN(tst_CompareRunOptions)
#include "tst_CompareRunOptions.moc"
