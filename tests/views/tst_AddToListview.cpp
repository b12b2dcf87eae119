#include "engine/ComparisonFileCollection.h"
#include "engine/IconKey.h"
#include "support/TestTree.h"
#include "views/AddToListview.h"
#include "views/ColumnLayout.h"
#include "views/FileIconCache.h"
#include "views/ImageList.h"
#include "views/ListColumns.h"
#include "views/ListView.h"

#include <QFile>
#include <QLocale>
#include <QTest>

/** Rows made from real records, and the icons they share. */
class tst_AddToListview : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void rowFromRecord_data();
    void rowFromRecord();
    void listingAgainUpdatesTheRow();
    void textsFollowTheRecordUntilSetByHand();
    void iconsAreShared();
    void fileWithoutIconShowsImageOne();

private:
    ComparisonFilePtr record(const QString &relative) const;

    TestTree m_tree;
    ComparisonFileCollection m_files;
};

void tst_AddToListview::initTestCase() {
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    QVERIFY(m_tree.write(QStringLiteral("Notes.TXT"), "hello"));
    QVERIFY(m_tree.write(QStringLiteral("sub/other.txt"), "x"));
    QVERIFY(m_tree.write(QStringLiteral("sub/tool.exe"), "MZ"));
    QVERIFY(m_tree.write(QStringLiteral("sub/setup.exe"), "MZ"));
    QVERIFY(m_tree.write(QStringLiteral("sub/gone.txt"), "soon gone"));
    m_files.setRootFolder(m_tree.root());
    QCOMPARE(m_files.Count(), 5);
}

ComparisonFilePtr tst_AddToListview::record(const QString &relative) const {
    return m_files.Item(m_tree.path(relative));
}

void tst_AddToListview::rowFromRecord_data() {
    QTest::addColumn<bool>("fullPath");
    QTest::addColumn<QString>("folder");
    QTest::newRow("folder below the root") << false << "sub";
    QTest::newRow("full path") << true << "";
}

void tst_AddToListview::rowFromRecord() {
    QFETCH(bool, fullPath);
    QFETCH(QString, folder);
    if (fullPath)
        folder = m_tree.path(QStringLiteral("sub"));
    ListView list;
    ColumnLayout::LoadLayout(&list, false, true);
    const ComparisonFilePtr file = record(QStringLiteral("sub/other.txt"));
    file->setDifferenceCode(4);
    const ListItem item = AddToListview(file, &list, nullptr, fullPath);
    QCOMPARE(item.Key(), m_tree.path(QStringLiteral("sub/other.txt")));
    QCOMPARE(item.Text(), QStringLiteral("other.txt"));
    QCOMPARE(item.Tag().toInt(), 4);
    QCOMPARE(item.Record(), file);
    const auto text = [&](int type) {
        return item.SubItems(list.ColumnByKey(ColumnKey(type))->SubItemIndex());
    };
    QCOMPARE(text(2), folder);
    QCOMPARE(text(3), QStringLiteral("1 bytes"));
    QCOMPARE(text(9), QStringLiteral("size is different"));
    QCOMPARE(item.SmallIcon(), 0);
}

void tst_AddToListview::listingAgainUpdatesTheRow() {
    ListView list;
    ColumnLayout::LoadLayout(&list, false, true);
    const ComparisonFilePtr file = record(QStringLiteral("Notes.TXT"));
    file->setDifferenceCode(7);
    AddToListview(file, &list, nullptr, false);
    file->setDifferenceCode(1);
    const ListItem again = AddToListview(file, &list, nullptr, false);
    QCOMPARE(list.ItemCount(), 1);
    QCOMPARE(again.Tag().toInt(), 1);
    QCOMPARE(again.SubItems(list.ColumnByKey(ColumnKey(9))->SubItemIndex()), QString());
}

void tst_AddToListview::textsFollowTheRecordUntilSetByHand() {
    ListView list;
    ColumnLayout::LoadLayout(&list, false, true);
    const ComparisonFilePtr file = record(QStringLiteral("sub/other.txt"));
    ListItem item = AddToListview(file, &list, nullptr, false);
    const auto column = [&](int type) { return list.ColumnByKey(ColumnKey(type))->SubItemIndex(); };
    QVERIFY(column(3) > column(2));

    // The row shows the record as it is now, not as it was when listed.
    file->setSize(1234);
    QCOMPARE(item.SubItems(column(3)), QStringLiteral("1,234 bytes"));
    item.setSubItems(column(3), QStringLiteral("by hand"));
    QCOMPARE(item.SubItems(column(3)), QStringLiteral("by hand"));
    QCOMPARE(item.SubItems(column(2)), QStringLiteral("sub"));

    // A removed column takes its own text along; the hand-set text moves with its column.
    list.RemoveColumnAt(column(2) + 1);
    QCOMPARE(list.ColumnByKey(ColumnKey(2)), nullptr);
    QCOMPARE(item.SubItems(column(3)), QStringLiteral("by hand"));
    QCOMPARE(item.SubItems(column(9)), ComparisonFile::DifferenceText(file->DifferenceCode()));
    QCOMPARE(item.Text(), QStringLiteral("other.txt"));

    // Listing the record again drops what was set by hand.
    AddToListview(file, &list, nullptr, false);
    QCOMPARE(item.SubItems(column(3)), QStringLiteral("1,234 bytes"));
    file->UpdateDetails();
    QCOMPARE(item.SubItems(column(3)), QStringLiteral("1 bytes"));
}

void tst_AddToListview::iconsAreShared() {
    ImageList images;
    ListView list;
    ColumnLayout::LoadLayout(&list, false, true);
    for (const char *name : {"Notes.TXT", "sub/other.txt", "sub/tool.exe", "sub/setup.exe"})
        AddToListview(record(QString::fromLatin1(name)), &list, &images, false);
    QCOMPARE(list.SmallIcons(), &images);
    // The two text files share one image; each program has its own.
    QCOMPARE(images.Count(), 3);
    QCOMPARE(list.Item(1).SmallIcon(), list.Item(2).SmallIcon());
    QVERIFY(list.Item(3).SmallIcon() != list.Item(4).SmallIcon());
    QVERIFY(list.Item(1).SmallIcon() != list.Item(3).SmallIcon());
    QVERIFY(!images.Icon(list.Item(1).SmallIcon()).isNull());
    // A listed record gives its key from its details, as the disk would.
    for (const char *name : {"Notes.TXT", "sub/tool.exe"}) {
        const ComparisonFilePtr file = record(QString::fromLatin1(name));
        file->UpdateDetails();
        QCOMPARE(RecordIconKey(*file), IconKey(m_tree.path(QString::fromLatin1(name)), {}));
    }
    // A folder has an icon of its own kind.
    QCOMPARE(FileIconCache::AddFileIcon(&images, QFile::encodeName(m_tree.path("sub"))),
             QStringLiteral(":"));
    QCOMPARE(images.Count(), 4);
}

void tst_AddToListview::fileWithoutIconShowsImageOne() {
    const ComparisonFilePtr file = record(QStringLiteral("sub/gone.txt"));
    file->UpdateDetails();
    QVERIFY(QFile::remove(m_tree.path(QStringLiteral("sub/gone.txt"))));
    QVERIFY(FileIconCache::GetFileIconPicture(file->NativePath()).isNull());

    ImageList images;
    images.Add(QStringLiteral("first"), QIcon());
    ListView list;
    ColumnLayout::LoadLayout(&list, false, true);
    const ListItem item = AddToListview(file, &list, &images, false);
    QCOMPARE(images.Count(), 1);
    QCOMPARE(item.SmallIcon(), 1);
}

QTEST_MAIN(tst_AddToListview)
#include "tst_AddToListview.moc"
