#include "engine/ComparisonFile.h"
#include "support/TestTree.h"

#include <QLocale>
#include <QTest>

#include <sys/stat.h>

class tst_ComparisonFile : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }
    void attributeString_data();
    void attributeString();
    void differenceTextOutOfRange();
    void detailsFromDisk();
    void sizesBeyond32Bits();
    void folderColumn_data();
    void folderColumn();
};

void tst_ComparisonFile::attributeString_data() {
    QTest::addColumn<int>("attributes");
    QTest::addColumn<uint>("mode");
    QTest::addColumn<QString>("column");
    QTest::newRow("none, mode never read") << 0 << 0u << "";
    QTest::newRow("compressed lowers the letters only")
        << 2081 << uint(S_IFREG | 0444) << "ra -r--r--r--";
    QTest::newRow("every letter in order") << (1 | 2 | 4 | 32 | 1024) << 0u << "RHSAL";
    QTest::newRow("set-user-ID with execute, set-group-ID without")
        << 0 << uint(S_IFREG | S_ISUID | S_ISGID | 0744) << "-rwsr-Sr--";
    QTest::newRow("sticky folder") << 0 << uint(S_IFDIR | S_ISVTX | 0777) << "drwxrwxrwt";
}

void tst_ComparisonFile::attributeString() {
    QFETCH(int, attributes);
    QFETCH(uint, mode);
    ComparisonFile record;
    record.setAttributes(attributes);
    record.setMode(mode);
    QTEST(record.ColumnString(8, false), "column");
    QTEST(record.SortString(8), "column");
}

void tst_ComparisonFile::differenceTextOutOfRange() {
    QCOMPARE(ComparisonFile::DifferenceText(-2), QString());
    QCOMPARE(ComparisonFile::DifferenceText(14), QStringLiteral("destination could not be read"));
    QCOMPARE(ComparisonFile::DifferenceText(15), QString());
}

void tst_ComparisonFile::detailsFromDisk() {
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral(".hidden.txt"), "hello"));
    QVERIFY(::chmod(tree.nativePath(".hidden.txt").constData(), 0640) == 0);
    ComparisonFile record(FileObject::fromNativePath(tree.nativePath(".hidden.txt")));
    QCOMPARE(record.Size(), 0);
    record.UpdateDetails();
    QCOMPARE(record.Size(), 5);
    QCOMPARE(record.ColumnString(8, false), QStringLiteral("H -rw-r-----"));
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
    QVERIFY(small.SortString(3) < big.SortString(3));
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

QTEST_GUILESS_MAIN(tst_ComparisonFile)
#include "tst_ComparisonFile.moc"
