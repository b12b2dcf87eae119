#include "engine/ComparisonFileCollection.h"
#include "support/TestTree.h"
#include "views/AddToListview.h"
#include "views/ColumnLayout.h"
#include "views/LinkedListings.h"
#include "views/ListColumns.h"
#include "views/ListSorting.h"
#include "views/ListView.h"

#include <QDateTime>
#include <QLocale>
#include <QTest>

namespace {

/** The item texts (file names) in list order. */
QStringList names(const ListView &list) {
    QStringList result;
    for (int i = 1; i <= list.ItemCount(); ++i)
        result.append(list.Item(i).Text());
    return result;
}

time_t at(int year, int month, int day) {
    return QDateTime(QDate(year, month, day), QTime(12, 0)).toSecsSinceEpoch();
}

} // namespace

/**
 * Two trees with the same three files, whose sizes and dates sort differently by value than
 * by their displayed texts ("10 bytes" before "9 bytes"; "10/5/23" before "9/5/23").
 */
class tst_ListSorting : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void byValue_data();
    void byValue();
    void sameHeaderTogglesOtherHeaderAscends();
    void destinationHeaderSortsWithTheSourceCollection_data();
    void destinationHeaderSortsWithTheSourceCollection();

private:
    void fill(ListView &list, const ComparisonFileCollection &files);

    TestTree m_source;
    TestTree m_destination;
    ComparisonFileCollection m_sourceFiles;
    ComparisonFileCollection m_destinationFiles;
    ListView m_lists[2];
};

void tst_ListSorting::initTestCase() {
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    for (TestTree *tree : {&m_source, &m_destination}) {
        QVERIFY(tree->write(QStringLiteral("a.bin"), QByteArray(10, 'a')));
        QVERIFY(tree->write(QStringLiteral("b.bin"), QByteArray(9, 'b')));
        QVERIFY(tree->write(QStringLiteral("c.bin"), QByteArray(100, 'c')));
        QVERIFY(tree->setTimes(QStringLiteral("a.bin"), at(2023, 9, 5)));
        QVERIFY(tree->setTimes(QStringLiteral("b.bin"), at(2023, 10, 5)));
        QVERIFY(tree->setTimes(QStringLiteral("c.bin"), at(2022, 11, 5)));
    }
    m_sourceFiles.setRootFolder(m_source.root());
    m_destinationFiles.setRootFolder(m_destination.root());
    QCOMPARE(m_sourceFiles.Count(), 3);
}

void tst_ListSorting::fill(ListView &list, const ComparisonFileCollection &files) {
    list.ClearItems();
    for (const ComparisonFilePtr &record : files)
        AddToListview(record, &list, nullptr, false);
}

void tst_ListSorting::init() {
    for (int side = 0; side < 2; ++side) {
        ColumnLayout::LoadLayout(&m_lists[side], side == 1, true);
        m_lists[side].AddColumn(ColumnKey(6), ColumnCaption(6), 125);
        fill(m_lists[side], side == 0 ? m_sourceFiles : m_destinationFiles);
        m_lists[side].setSortKey(0);
        m_lists[side].setSortOrder(Qt::AscendingOrder);
    }
}

void tst_ListSorting::byValue_data() {
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("ascending");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("size ascending") << 3 << true << QStringList{"b.bin", "a.bin", "c.bin"};
    QTest::newRow("size descending") << 3 << false << QStringList{"c.bin", "a.bin", "b.bin"};
    QTest::newRow("modified ascending") << 5 << true << QStringList{"c.bin", "a.bin", "b.bin"};
}

void tst_ListSorting::byValue() {
    QFETCH(int, type);
    QFETCH(bool, ascending);
    QFETCH(QStringList, expected);
    ListView &list = m_lists[0];
    const ColumnHeader *column = list.ColumnByKey(ColumnKey(type));
    QVERIFY(SortListView(&list, &m_sourceFiles, column, ascending));
    QCOMPARE(names(list), expected);
    QCOMPARE(list.SortKey(), column->SubItemIndex());
    QCOMPARE(list.SortOrder(), ascending ? Qt::AscendingOrder : Qt::DescendingOrder);
    QVERIFY(!list.Sorted());
    // The rows show their display texts again after sorting on the hidden keys.
    for (int i = 1; i <= list.ItemCount(); ++i) {
        const ListItem item = list.Item(i);
        QCOMPARE(item.SubItems(column->SubItemIndex()), item.Record()->ColumnString(type, false));
    }
    const int sizeColumn = list.ColumnByKey(ColumnKey(3))->SubItemIndex();
    QCOMPARE(list.ItemByKey(m_sourceFiles.Item(1)->Key()).SubItems(sizeColumn),
             QStringLiteral("10 bytes"));
}

void tst_ListSorting::sameHeaderTogglesOtherHeaderAscends() {
    LinkedListings listings(&m_lists[0], &m_lists[1], [this](int side) {
        return side == 0 ? &m_sourceFiles : &m_destinationFiles;
    });
    listings.setLinked(true);
    ColumnHeader *size = m_lists[0].ColumnByKey(ColumnKey(3));
    ColumnHeader *name = m_lists[0].ColumnByKey(ColumnKey(1));
    const QStringList bySize{"b.bin", "a.bin", "c.bin"};
    const QStringList bySizeDown{"c.bin", "a.bin", "b.bin"};

    Q_EMIT m_lists[0].ColumnClick(size);
    QCOMPARE(names(m_lists[0]), bySize);
    QCOMPARE(names(m_lists[1]), bySize);
    Q_EMIT m_lists[0].ColumnClick(size);
    QCOMPARE(names(m_lists[0]), bySizeDown);
    QCOMPARE(names(m_lists[1]), bySizeDown);
    Q_EMIT m_lists[0].ColumnClick(name);
    QCOMPARE(names(m_lists[0]), (QStringList{"a.bin", "b.bin", "c.bin"}));
    QCOMPARE(m_lists[1].SortOrder(), Qt::AscendingOrder);
}

void tst_ListSorting::destinationHeaderSortsWithTheSourceCollection_data() {
    QTest::addColumn<bool>("linked");
    QTest::newRow("not linked") << false;
    QTest::newRow("linked") << true;
}

void tst_ListSorting::destinationHeaderSortsWithTheSourceCollection() {
    QFETCH(bool, linked);
    LinkedListings listings(&m_lists[0], &m_lists[1], [this](int side) {
        return side == 0 ? &m_sourceFiles : &m_destinationFiles;
    });
    listings.setLinked(linked);
    // The destination rows are not in the source collection, and the source rows not in
    // the destination collection: both keep their displayed texts and sort as text.
    const QStringList asText{"a.bin", "c.bin", "b.bin"}; // 10, 100, 9 bytes
    Q_EMIT m_lists[1].ColumnClick(m_lists[1].ColumnByKey(ColumnKey(3)));
    QCOMPARE(names(m_lists[1]), asText);
    const QStringList unsorted{"a.bin", "b.bin", "c.bin"};
    QCOMPARE(names(m_lists[0]), linked ? asText : unsorted);
}

QTEST_MAIN(tst_ListSorting)
#include "tst_ListSorting.moc"
