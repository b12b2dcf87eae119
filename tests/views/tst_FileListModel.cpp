#include "engine/ComparisonFileCollection.h"
#include "engine/DifferenceCode.h"
#include "engine/IconKey.h"
#include "support/TestTree.h"
#include "views/AddToListview.h"
#include "views/ColumnLayout.h"
#include "views/FileIconCache.h"
#include "views/FileListModel.h"
#include "views/ListSorting.h"
#include "views/ListView.h"

#include <QAbstractItemModelTester>
#include <QDateTime>
#include <QFile>
#include <QHeaderView>
#include <QLocale>
#include <QSignalSpy>
#include <QTest>

namespace {

time_t at(int year, int month, int day) {
    return QDateTime(QDate(year, month, day), QTime(12, 0)).toSecsSinceEpoch();
}

/** The names the rows of \a list show, in list order. */
QStringList names(const ListView &list) {
    QStringList result;
    for (int row = 0; row < list.files()->count(); ++row)
        result.append(list.files()->text(row, ColumnType::Name));
    return result;
}

} // namespace

/**
 * A source and a destination tree with the same three files, whose sizes and dates sort
 * differently by value than by their displayed texts ("10 bytes" before "9 bytes"), and a
 * few more files on the source side.
 */
class tst_FileListModel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void modelRules();
    void rowsReachTheViewInBatches();
    void textsComeFromTheRecord_data();
    void textsComeFromTheRecord();
    void listingAgainUpdatesTheRowInPlace();
    void changesReachTheView();
    void removingKeepsOrderSelectionAndFocus();
    void boldRowsAreTheDifferentOnes();
    void sorted_data();
    void sorted();
    void sortKeepsSelectionAndFocus();
    void iconsAreShared();
    void fileWithoutIconShowsImageOne();

private:
    ComparisonFilePtr record(const QString &relative) const {
        return m_files[0].Item(m_trees[0].path(relative));
    }
    void list(int side, ListView &view, ImageList *images = nullptr);

    std::array<TestTree, 2> m_trees;
    std::array<ComparisonFileCollection, 2> m_files;
};

void tst_FileListModel::initTestCase() {
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    for (TestTree &tree : m_trees) {
        QVERIFY(tree.write(QStringLiteral("a.bin"), QByteArray(10, 'a')));
        QVERIFY(tree.write(QStringLiteral("b.bin"), QByteArray(9, 'b')));
        QVERIFY(tree.write(QStringLiteral("c.bin"), QByteArray(100, 'c')));
        QVERIFY(tree.setTimes(QStringLiteral("a.bin"), at(2023, 9, 5)));
        QVERIFY(tree.setTimes(QStringLiteral("b.bin"), at(2023, 10, 5)));
        QVERIFY(tree.setTimes(QStringLiteral("c.bin"), at(2022, 11, 5)));
    }
    QVERIFY(m_trees[0].write(QStringLiteral("sub/other.txt"), "x"));
    QVERIFY(m_trees[0].write(QStringLiteral("sub/tool.exe"), "MZ"));
    QVERIFY(m_trees[0].write(QStringLiteral("sub/setup.exe"), "MZ"));
    QVERIFY(m_trees[0].write(QStringLiteral("sub/gone.txt"), "soon gone"));
    m_files[0].setRootFolder(m_trees[0].root());
    m_files[1].setRootFolder(m_trees[1].root());
    QCOMPARE(m_files[0].Count(), 7);
}

void tst_FileListModel::init() {
    for (ComparisonFileCollection &files : m_files) {
        for (const ComparisonFilePtr &file : files) {
            file->UpdateDetails();
            file->setDifferenceCode(DifferenceCode::Size);
        }
    }
}

void tst_FileListModel::list(int side, ListView &view, ImageList *images) {
    ColumnLayout::LoadLayout(&view, side == 1, true);
    for (const ComparisonFilePtr &file : m_files[size_t(side)]) {
        if (file->Name().endsWith(QLatin1String(".bin")))
            AddToListview(file, &view, images);
    }
    view.files()->flush();
}

void tst_FileListModel::modelRules() {
    ListView view;
    QAbstractItemModelTester tester(view.files(),
                                    QAbstractItemModelTester::FailureReportingMode::QtTest);
    list(0, view);
    view.files()->setBoldDifferent(true);
    view.files()->setFullPath(true);
    view.selectAll();
    QVERIFY(SortListView(&view, &m_files[0], ColumnType::Size, false));
    view.files()->removeRowsIf([&](int row) { return view.files()->record(row)->Size() == 10; });
    view.files()->clear();
    QCOMPARE(view.files()->rowCount(), 0);
}

void tst_FileListModel::rowsReachTheViewInBatches() {
    ListView view;
    AddToListview(record(QStringLiteral("a.bin")), &view, nullptr);
    AddToListview(record(QStringLiteral("b.bin")), &view, nullptr);
    // Counted and found at once, shown with the next batch.
    QCOMPARE(view.files()->count(), 2);
    QCOMPARE(view.files()->rowOfKey(record(QStringLiteral("b.bin"))->Key()), 1);
    QCOMPARE(view.files()->rowCount(), 0);
    QTRY_COMPARE(view.files()->rowCount(), 2);
}

void tst_FileListModel::textsComeFromTheRecord_data() {
    QTest::addColumn<bool>("fullPath");
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("text");
    QTest::newRow("name") << false << int(ColumnType::Name) << "other.txt";
    QTest::newRow("folder below the root") << false << int(ColumnType::InFolder) << "sub";
    QTest::newRow("full path") << true << int(ColumnType::InFolder) << "<root>/sub";
    QTest::newRow("size") << false << int(ColumnType::Size) << "1 bytes";
    QTest::newRow("difference") << false << int(ColumnType::Difference) << "size is different";
}

void tst_FileListModel::textsComeFromTheRecord() {
    QFETCH(bool, fullPath);
    QFETCH(int, type);
    QFETCH(QString, text);
    text.replace(QLatin1String("<root>"), m_trees[0].root());
    ListView view;
    view.files()->setFullPath(fullPath);
    const int row = AddToListview(record(QStringLiteral("sub/other.txt")), &view, nullptr);
    view.files()->flush();
    QCOMPARE(view.files()->index(row, FileListModel::columnOf(type)).data().toString(), text);
    // Sizes are right-aligned, everything else left-aligned.
    const int alignment =
        view.files()->index(row, FileListModel::columnOf(type)).data(Qt::TextAlignmentRole).toInt();
    QCOMPARE(bool(alignment & Qt::AlignRight), type == ColumnType::Size);
}

void tst_FileListModel::listingAgainUpdatesTheRowInPlace() {
    ListView view;
    list(0, view);
    const ComparisonFilePtr b = record(QStringLiteral("b.bin"));
    b->setDifferenceCode(DifferenceCode::Equal);
    b->setSize(1234);
    QCOMPARE(AddToListview(b, &view, nullptr), 1);
    QCOMPARE(names(view), (QStringList{"a.bin", "b.bin", "c.bin"}));
    // The row shows the record as it is now, not as it was when listed.
    QCOMPARE(view.files()->text(1, ColumnType::Size), QStringLiteral("1,234 bytes"));
    QCOMPARE(view.files()->text(1, ColumnType::Difference), QString());
}

void tst_FileListModel::changesReachTheView() {
    ListView view;
    list(0, view);
    QSignalSpy changed(view.files(), &QAbstractItemModel::dataChanged);
    // The same file walked again, as a refresh after a new compare: a new record for the row
    // of its key.
    ComparisonFileCollection again;
    again.setRootFolder(m_trees[0].root());
    const ComparisonFilePtr b = again.Item(m_trees[0].path(QStringLiteral("b.bin")));
    QCOMPARE(AddToListview(b, &view, nullptr), 1);
    QCOMPARE(view.files()->rowOfKey(b->Key()), 1);
    QCOMPARE(view.files()->record(1), b);
    view.files()->flush();
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed[0][0].toModelIndex().row(), 1);
    QCOMPARE(changed[0][1].toModelIndex().row(), 1);
    view.files()->setBoldDifferent(true);
    QCOMPARE(changed.count(), 2);
}

void tst_FileListModel::removingKeepsOrderSelectionAndFocus() {
    ListView view;
    list(0, view);
    view.setSelectedRows({true, false, true});
    view.setFocusedRow(2);
    const int removed = view.files()->removeRowsIf(
        [&](int row) { return view.files()->record(row)->Size() == 10; });
    QCOMPARE(removed, 1);
    QCOMPARE(names(view), (QStringList{"b.bin", "c.bin"}));
    QCOMPARE(view.files()->rowOfKey(record(QStringLiteral("c.bin"))->Key()), 1);
    QCOMPARE(view.selectedRows(), (std::vector<bool>{false, true}));
    QCOMPARE(view.focusedRow(), 1);
}

void tst_FileListModel::boldRowsAreTheDifferentOnes() {
    ListView view;
    list(0, view);
    record(QStringLiteral("a.bin"))->setDifferenceCode(DifferenceCode::Equal);
    const auto bold = [&](int row) {
        return view.files()->index(row, 0).data(Qt::FontRole).value<QFont>().bold();
    };
    QVERIFY(!bold(1));
    view.files()->setBoldDifferent(true);
    QVERIFY(!bold(0));
    QVERIFY(bold(1));
}

void tst_FileListModel::sorted_data() {
    QTest::addColumn<int>("side");
    QTest::addColumn<int>("collection");
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("ascending");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("size ascending")
        << 0 << 0 << 3 << true << QStringList{"b.bin", "a.bin", "c.bin"};
    QTest::newRow("size descending")
        << 0 << 0 << 3 << false << QStringList{"c.bin", "a.bin", "b.bin"};
    QTest::newRow("modified ascending")
        << 0 << 0 << 5 << true << QStringList{"c.bin", "a.bin", "b.bin"};
    QTest::newRow("name descending")
        << 0 << 0 << 1 << false << QStringList{"c.bin", "b.bin", "a.bin"};
    // Rows the collection does not know are ordered by their displayed texts: 10, 100, 9.
    QTest::newRow("size by text with the other side's collection")
        << 1 << 0 << 3 << true << QStringList{"a.bin", "c.bin", "b.bin"};
    QTest::newRow("no collection")
        << 0 << -1 << 3 << true << QStringList{"a.bin", "c.bin", "b.bin"};
}

void tst_FileListModel::sorted() {
    QFETCH(int, side);
    QFETCH(int, collection);
    QFETCH(int, type);
    QFETCH(bool, ascending);
    QFETCH(QStringList, expected);
    ListView view;
    list(side, view);
    QVERIFY(SortListView(&view, collection < 0 ? nullptr : &m_files[size_t(collection)], type,
                         ascending));
    QCOMPARE(names(view), expected);
    QCOMPARE(view.sortType(), type);
    QCOMPARE(view.sortOrder(), ascending ? Qt::AscendingOrder : Qt::DescendingOrder);
    QVERIFY(view.header()->isSortIndicatorShown());
    // Rows added later are appended, not placed.
    AddToListview(record(QStringLiteral("sub/other.txt")), &view, nullptr);
    QCOMPARE(names(view).last(), QStringLiteral("other.txt"));
    QVERIFY(!SortListView(&view, nullptr, 0, true));
}

void tst_FileListModel::sortKeepsSelectionAndFocus() {
    ListView view;
    list(0, view);
    view.setSelectedRows({true, false, false}); // a.bin
    view.setFocusedRow(2);                      // c.bin
    QVERIFY(SortListView(&view, &m_files[0], ColumnType::Size, false));
    QCOMPARE(view.selectedRecord(), record(QStringLiteral("a.bin")));
    QCOMPARE(view.files()->record(view.focusedRow()), record(QStringLiteral("c.bin")));
}

void tst_FileListModel::iconsAreShared() {
    ImageList images;
    ListView view;
    std::vector<int> rows;
    for (const char *name : {"sub/other.txt", "sub/gone.txt", "sub/tool.exe", "sub/setup.exe"})
        rows.push_back(AddToListview(record(QString::fromLatin1(name)), &view, &images));
    view.files()->flush();
    QCOMPARE(view.files()->icons(), &images);
    const auto icon = [&](int row) { return view.files()->index(row, 0).data(Qt::DecorationRole); };
    // The two text files share one image; each program has its own.
    QCOMPARE(images.Count(), 3);
    QVERIFY(!icon(0).value<QIcon>().isNull());
    QCOMPARE(icon(0).value<QIcon>().cacheKey(), icon(1).value<QIcon>().cacheKey());
    QCOMPARE(images.Key(2), m_trees[0].path(QStringLiteral("sub/tool.exe")).toLower());
    QCOMPARE(images.Key(3), m_trees[0].path(QStringLiteral("sub/setup.exe")).toLower());
    // A listed record gives its key from its details, as the disk would.
    for (const char *name : {"sub/other.txt", "sub/tool.exe"}) {
        QCOMPARE(RecordIconKey(*record(QString::fromLatin1(name))),
                 IconKey(m_trees[0].path(QString::fromLatin1(name)), {}));
    }
    // A folder has an icon of its own kind.
    QCOMPARE(FileIconCache::AddFileIcon(&images, QFile::encodeName(m_trees[0].path("sub"))),
             QStringLiteral(":"));
}

void tst_FileListModel::fileWithoutIconShowsImageOne() {
    TestTree tree;
    QVERIFY(tree.write(QStringLiteral("gone.txt"), "soon gone"));
    ComparisonFileCollection files;
    files.setRootFolder(tree.root());
    const ComparisonFilePtr file = files.Item(tree.path(QStringLiteral("gone.txt")));
    file->UpdateDetails();
    QVERIFY(QFile::remove(tree.path(QStringLiteral("gone.txt"))));

    ImageList images;
    const QIcon first = FileIconCache::GetFileIconPicture(QFile::encodeName(tree.root()));
    images.Add(QStringLiteral("first"), first);
    ListView view;
    AddToListview(file, &view, &images);
    view.files()->flush();
    QCOMPARE(images.Count(), 1);
    QCOMPARE(view.files()->index(0, 0).data(Qt::DecorationRole).value<QIcon>().cacheKey(),
             first.cacheKey());
}

QTEST_MAIN(tst_FileListModel)
#include "tst_FileListModel.moc"
