#include "cli/CompareRun.h"
#include "support/TestTree.h"

#include <QTest>

namespace {

constexpr time_t Base = 1700000000;

/** The listed pairs of a run with \a arguments: "code path" a line, sorted by path. */
QByteArray listed(QStringList arguments, const TestTree &tree) {
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
    for (const ReportPair &pair : run.pairs())
        out += QByteArray::number(pair.code) + ' ' + pair.path + '\n';
    return out;
}

} // namespace

/** pairscope-cli's compare options, run in this process on real trees. */
class tst_CompareRunOptions : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void timeShifts_data();
    void timeShifts();
};

void tst_CompareRunOptions::timeShifts_data() {
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("expected");

    const QStringList hour{QStringLiteral("--time-shift"), QStringLiteral("60")};
    QTest::newRow("no shift") << QStringList() << QByteArray("8 hour-and-2s.txt\n8 hour.txt\n");
    QTest::newRow("an hour, with the slack") << hour << QByteArray();
    QTest::newRow("an hour, no slack")
        << hour + QStringList{QStringLiteral("--no-slack")} << QByteArray("8 hour-and-2s.txt\n");
    QTest::newRow("repeated") << QStringList{QStringLiteral("--time-shift=30"),
                                             QStringLiteral("--time-shift=60")}
                              << QByteArray();
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

QTEST_GUILESS_MAIN(tst_CompareRunOptions)
#include "tst_CompareRunOptions.moc"
