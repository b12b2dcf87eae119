#include "engine/ComparisonSet.h"

#include <QTest>

class tst_ComparisonSet : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void description_data();
    void description();
};

void tst_ComparisonSet::description_data() {
    QTest::addColumn<int>("bits");
    QTest::addColumn<bool>("crcLast");
    QTest::addColumn<QString>("text");
    QTest::newRow("existence") << 0 << true << "Compare File Existence Only";
    QTest::newRow("sizes and modified") << 3 << true << "Compare File Sizes, Date Modified";
    QTest::newRow("three dates") << 14 << false << "Compare Modified/Created/Accessed Dates";
    QTest::newRow("modified created") << 6 << true << "Compare Modified/Created Dates";
    QTest::newRow("created accessed") << 12 << true << "Compare Date Created/Accessed";
    QTest::newRow("checksum alone") << 32 << false << "Compare CRC-32 Checksums";
    QTest::newRow("all, crc last")
        << 63 << true
        << "Compare File Sizes, Modified/Created/Accessed Dates, Attributes, CRC-32 Checksums";
    QTest::newRow("all, crc first")
        << 63 << false
        << "Compare File Sizes, CRC-32 Checksums, Modified/Created/Accessed Dates, Attributes";
}

void tst_ComparisonSet::description() {
    QFETCH(int, bits);
    QFETCH(bool, crcLast);
    QFETCH(QString, text);
    QCOMPARE(ComparisonDescription(bits, crcLast), text);
}

QTEST_GUILESS_MAIN(tst_ComparisonSet)
#include "tst_ComparisonSet.moc"
