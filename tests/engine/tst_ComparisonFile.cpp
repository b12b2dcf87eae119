#include "engine/ComparisonFile.h"
#include "support/TestTree.h"

#include <QLocale>
#include <QTest>

#include <sys/stat.h>

class tst_ComparisonFile : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void attributeString_data();
    void attributeString();
    void differenceText_data();
    void differenceText();
    void detailsFromDisk();
    void sizesBeyond32Bits();
    void dates();
    void folderColumn_data();
    void folderColumn();
    void nonUtf8Name();
};

void tst_ComparisonFile::initTestCase() {
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void tst_ComparisonFile::attributeString_data() {
    QTest::addColumn<int>("attributes");
    QTest::addColumn<uint>("mode");
    QTest::addColumn<QString>("letters");
    QTest::addColumn<QString>("column");
    QTest::newRow("none, mode never read") << 0 << 0u << ""
                                           << "";
    QTest::newRow("compressed lowers the letters only") << 2081 << uint(S_IFREG | 0444) << "ra"
                                                        << "ra -r--r--r--";
    QTest::newRow("every letter in order") << (1 | 2 | 4 | 32 | 1024) << 0u << "RHSAL"
                                           << "RHSAL";
    QTest::newRow("other bits ignored") << (16 | 8 | 128) << uint(S_IFREG | 0644) << ""
                                        << "-rw-r--r--";
    QTest::newRow("link") << 1024 << uint(S_IFLNK | 0777) << "L"
                          << "L lrwxrwxrwx";
    QTest::newRow("FIFO") << 4 << uint(S_IFIFO | 0600) << "S"
                          << "S prw-------";
    QTest::newRow("socket") << 4 << uint(S_IFSOCK | 0755) << "S"
                            << "S srwxr-xr-x";
    QTest::newRow("set-user-ID with execute, set-group-ID without")
        << 0 << uint(S_IFREG | S_ISUID | S_ISGID | 0744) << ""
        << "-rwsr-Sr--";
    QTest::newRow("sticky folder") << 0 << uint(S_IFDIR | S_ISVTX | 0777) << ""
                                   << "drwxrwxrwt";
}

void tst_ComparisonFile::attributeString() {
    QFETCH(int, attributes);
    QFETCH(uint, mode);
    QTEST(ComparisonFile::AttributeString(attributes), "letters");
    ComparisonFile record;
    record.setAttributes(attributes);
    record.setMode(mode);
    QTEST(record.ColumnString(8, false), "column");
    QTEST(record.SortString(8), "column");
}

void tst_ComparisonFile::differenceText_data() {
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    QTest::newRow("below range") << -2 << "";
    QTest::newRow("-1") << -1 << "file does not exist";
    QTest::newRow("1") << 1 << "";
    QTest::newRow("2") << 2 << "source does not exist";
    QTest::newRow("12") << 12 << "destination accessed more recently";
    QTest::newRow("14") << 14 << "destination could not be read";
    QTest::newRow("above range") << 15 << "";
}

void tst_ComparisonFile::differenceText() {
    QFETCH(int, code);
    QFETCH(QString, text);
    QCOMPARE(ComparisonFile::DifferenceText(code), text);
    ComparisonFile record;
    record.setDifferenceCode(code);
    QCOMPARE(record.ColumnString(9, false), text);
    QCOMPARE(record.SortString(9), text);
}

void tst_ComparisonFile::detailsFromDisk() {
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral(".hidden.txt"), "hello"));
    QVERIFY(::chmod(tree.nativePath(".hidden.txt").constData(), 0640) == 0);
    ComparisonFile record(FileObject::fromNativePath(tree.nativePath(".hidden.txt")));
    QVERIFY(!record.DetailsLoaded());
    QCOMPARE(record.Size(), 0);
    record.UpdateDetails();
    QVERIFY(record.DetailsLoaded());
    QCOMPARE(record.Size(), 5);
    QCOMPARE(record.ColumnString(3, false), QStringLiteral("5 bytes"));
    QCOMPARE(record.ColumnString(8, false), QStringLiteral("H -rw-r-----"));
    QCOMPARE(record.TypeString(), QStringLiteral("plain text document"));
    QCOMPARE(record.ColumnString(1, false), QStringLiteral(".hidden.txt"));
    QCOMPARE(record.ColumnString(0, false), QString());
    QCOMPARE(record.ColumnString(10, false), QString());

    // Details are read once: a vanished file keeps what was loaded.
    QVERIFY(QFile::remove(tree.path(QStringLiteral(".hidden.txt"))));
    record.UpdateDetails();
    QCOMPARE(record.Size(), 5);
}

void tst_ComparisonFile::sizesBeyond32Bits() {
    ComparisonFile big;
    big.setSize(5368709120LL);
    ComparisonFile small;
    small.setSize(999);
    QCOMPARE(big.ColumnString(3, false), QStringLiteral("5,368,709,120 bytes"));
    QCOMPARE(big.SortString(3), QStringLiteral("00000000005368709120"));
    QVERIFY(small.SortString(3) < big.SortString(3));
    QCOMPARE(ComparisonFile().ColumnString(3, false), QStringLiteral("0 bytes"));
}

void tst_ComparisonFile::dates() {
    ComparisonFile record;
    QCOMPARE(record.ColumnString(5, false), QString());
    QCOMPARE(record.SortString(6), QStringLiteral("000000000000.000000000000"));

    const QDateTime local(QDate(2024, 1, 2), QTime(3, 4, 5));
    record.setDateLastModified(FileTime::fromDateTime(local));
    record.setDateCreated(FileTime::fromDateTime(local.addDays(1)));
    QCOMPARE(record.ColumnString(5, false), QStringLiteral("1/2/24 3:04:05 AM"));
    QCOMPARE(record.SortString(5), QStringLiteral("000000045293.127835648149"));
    // Column 6 is the created date, 7 the accessed date (still none).
    QCOMPARE(record.ColumnString(6, false), QStringLiteral("1/3/24 3:04:05 AM"));
    QCOMPARE(record.ColumnString(7, false), QString());
}

void tst_ComparisonFile::folderColumn_data() {
    QTest::addColumn<QString>("folder");
    QTest::addColumn<bool>("full");
    QTest::addColumn<QString>("text");
    QTest::newRow("root itself, full") << "" << true << "ROOT";
    QTest::newRow("sub with separator") << "/Sub/" << false << "Sub";
    QTest::newRow("deeper, full") << "/Sub/deep/" << true << "ROOT/Sub/deep";
}

void tst_ComparisonFile::folderColumn() {
    QFETCH(QString, folder);
    QFETCH(bool, full);
    QFETCH(QString, text);
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral("a"), "x"));
    ComparisonFile record(FileObject::fromNativePath(tree.nativePath("a")));
    // The root is matched without regard to case.
    record.setParentFolder(tree.root().toUpper() + folder);
    QCOMPARE(record.RootPath(), tree.root());
    QCOMPARE(record.ColumnString(2, full),
             QString(text).replace(QLatin1String("ROOT"), tree.root().toUpper()));
}

void tst_ComparisonFile::nonUtf8Name() {
    TestTree tree;
    QVERIFY(tree.writeNative("A\xff.bin", "x"));
    ComparisonFile record(FileObject::fromNativePath(tree.nativePath("A\xff.bin")));
    QCOMPARE(record.NativePath(), tree.nativePath("A\xff.bin"));
    QCOMPARE(record.Name(), QString::fromUtf8("A\xEF\xBF\xBD.bin"));
    QVERIFY(record.Key().endsWith(QLatin1String("/A\\xFF.bin")));
    record.UpdateDetails();
    QCOMPARE(record.Size(), 1);
}

QTEST_GUILESS_MAIN(tst_ComparisonFile)
#include "tst_ComparisonFile.moc"
