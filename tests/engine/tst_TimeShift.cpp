#include "engine/PairTest.h"

#include <QTest>

/** When two dates differ: exactly, within the slack of two second boundaries, or by a shift. */
class tst_TimeShift : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void datesDiffer_data() {
        QTest::addColumn<qint64>("seconds");
        QTest::addColumn<int>("nanoseconds");
        QTest::addColumn<bool>("slack");
        QTest::addColumn<bool>("differ");
        // a is x.5 s; b is a + seconds, at the given nanoseconds; the shift is one hour.
        QTest::newRow("equal") << qint64(0) << 500000000 << false << false;
        QTest::newRow("2 s, slack") << qint64(2) << 500000000 << true << false;
        QTest::newRow("2 s, exact") << qint64(2) << 500000000 << false << true;
        QTest::newRow("3 s, slack") << qint64(3) << 500000000 << true << true;
        QTest::newRow("2.9 s over 3 boundaries") << qint64(3) << 400000000 << true << true;
        QTest::newRow("an hour later") << qint64(3600) << 500000000 << false << false;
        QTest::newRow("an hour and a nanosecond, exact")
            << qint64(3600) << 500000001 << false << true;
        QTest::newRow("an hour and a nanosecond, slack")
            << qint64(3600) << 500000001 << true << false;
        QTest::newRow("an hour less 2 s, slack") << qint64(-3598) << 500000000 << true << false;
        QTest::newRow("an hour and 3 s, slack") << qint64(3603) << 500000000 << true << true;
        QTest::newRow("two hours") << qint64(7200) << 500000000 << true << true;
        QTest::newRow("half an hour") << qint64(1800) << 500000000 << true << true;
    }
    void datesDiffer() {
        QFETCH(qint64, seconds);
        QFETCH(int, nanoseconds);
        QFETCH(bool, slack);
        QFETCH(bool, differ);
        const FileTime a(1700000000, 500000000);
        const FileTime b(a.seconds() + seconds, nanoseconds);
        QCOMPARE(::datesDiffer(a, b, slack, {3600}), differ);
        QCOMPARE(::datesDiffer(b, a, slack, {3600}), differ);
        // Without the shift, dates half an hour or more apart always differ.
        QCOMPARE(::datesDiffer(a, b, slack, {}), differ || qAbs(seconds) >= 1800);
        // "No date" equals only "no date".
        QVERIFY(::datesDiffer(a, FileTime(), slack, {3600}));
    }
};

QTEST_GUILESS_MAIN(tst_TimeShift)
#include "tst_TimeShift.moc"
