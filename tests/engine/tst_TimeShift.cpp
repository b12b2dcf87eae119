#include "engine/PairTest.h"

#include <QTest>

/** Dates a whole number of minutes apart that count as equal. */
class tst_TimeShift : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void datesDiffer_data();
    void datesDiffer();
};

void tst_TimeShift::datesDiffer_data() {
    QTest::addColumn<qint64>("seconds");
    QTest::addColumn<int>("nanoseconds");
    QTest::addColumn<bool>("slack");
    QTest::addColumn<bool>("differ");

    // b = a + seconds (+ nanoseconds); the shift is one hour.
    QTest::newRow("an hour later") << qint64(3600) << 0 << false << false;
    QTest::newRow("an hour earlier") << qint64(-3600) << 0 << false << false;
    QTest::newRow("an hour and a nanosecond, no slack") << qint64(3600) << 1 << false << true;
    QTest::newRow("an hour and a nanosecond, slack") << qint64(3600) << 1 << true << false;
    QTest::newRow("an hour and 2 s, slack") << qint64(3602) << 0 << true << false;
    QTest::newRow("an hour less 2 s, slack") << qint64(-3598) << 0 << true << false;
    QTest::newRow("an hour and 3 s, slack") << qint64(3603) << 0 << true << true;
    QTest::newRow("two hours") << qint64(7200) << 0 << true << true;
    QTest::newRow("half an hour") << qint64(1800) << 0 << true << true;
    QTest::newRow("equal") << qint64(0) << 0 << false << false;
}

void tst_TimeShift::datesDiffer() {
    QFETCH(qint64, seconds);
    QFETCH(int, nanoseconds);
    QFETCH(bool, slack);
    const FileTime a(1700000000, 500000000);
    const FileTime b(a.seconds() + seconds, a.nanoseconds() + nanoseconds);
    QTEST(::datesDiffer(a, b, slack, {3600}), "differ");
    QTEST(::datesDiffer(b, a, slack, {3600}), "differ");
    // No shift: only the dates themselves count.
    if (seconds != 0)
        QVERIFY(::datesDiffer(a, b, slack, {}));
    QVERIFY(::datesDiffer(a, FileTime(), slack, {3600}));
}

QTEST_GUILESS_MAIN(tst_TimeShift)
#include "tst_TimeShift.moc"
