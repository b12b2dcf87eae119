#include "engine/ComparisonFileCollection.h"
#include "engine/DifferenceCode.h"
#include "support/TestTree.h"
#include "views/AddToListview.h"
#include "views/ColumnLayout.h"
#include "views/FileListModel.h"
#include "views/ListColumns.h"
#include "views/ListSorting.h"
#include "views/ListView.h"
#include "views/RecordText.h"

#include <QAbstractItemModelTester>
#include <QDateTime>
#include <QHeaderView>
#include <QLocale>
#include <QSignalSpy>
#include <QTest>

class tst_FileListModel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        // Three files on both sides whose sizes and dates sort otherwise by value than by their
        // texts ("10 bytes" before "9 bytes"), and a few more in the source.
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        const auto at = [](int year, int month) {
            return QDateTime(QDate(year, month, 5), QTime(12, 0)).toSecsSinceEpoch();
        };
        for (TestTree &tree : m_trees) {
            QVERIFY(tree.write("a.bin", QByteArray(10, 'a')) &&
                    tree.setTimes("a.bin", at(2023, 9)));
            QVERIFY(tree.write("b.bin", QByteArray(9, 'b')) &&
                    tree.setTimes("b.bin", at(2023, 10)));
            QVERIFY(tree.write("c.bin", QByteArray(100, 'c')) &&
                    tree.setTimes("c.bin", at(2022, 11)));
        }
        for (const char *name : {"sub/other.txt", "sub/gone.txt", "sub/tool.exe", "sub/setup.exe"})
            QVERIFY(m_trees[0].write(QLatin1String(name), "x"));
        m_files[0].setRootFolder(m_trees[0].root());
        m_files[1].setRootFolder(m_trees[1].root());
    }
    void init() {
        for (ComparisonFileCollection &files : m_files) {
            for (const ComparisonFilePtr &file : files) {
                file->UpdateDetails();
                file->setDifferenceCode(DifferenceCode::Size);
            }
        }
    }
    void modelRules() {
        ListView view;
        QAbstractItemModelTester tester(view.files(),
                                        QAbstractItemModelTester::FailureReportingMode::QtTest);
        // Rows are counted and found at once, and reach the view with the next batch.
        AddToListview(record("b.bin"), &view, nullptr);
        QCOMPARE(view.files()->rowOfKey(record("b.bin")->Key()), 0);
        QCOMPARE(view.files()->rowCount(), 0);
        QTRY_COMPARE(view.files()->rowCount(), 1);
        list(0, view);
        view.files()->setBoldDifferent(true);
        view.files()->setFullPath(true);
        view.selectAll();
        QVERIFY(SortListView(&view, &m_files[0], ColumnType::Size, false));
        view.files()->removeRowsIf(
            [&](int row) { return view.files()->record(row)->Size() == 10; });
        view.files()->clear();
        QCOMPARE(view.files()->rowCount(), 0);
    }
    void listingAgainUpdatesTheRowInPlace() {
        ListView view;
        list(0, view);
        QSignalSpy changed(view.files(), &QAbstractItemModel::dataChanged);
        // The same file walked again, as after a new compare: a new record for the row of its key.
        ComparisonFileCollection again;
        again.setRootFolder(m_trees[0].root());
        const ComparisonFilePtr b = again.Item(m_trees[0].path("b.bin"));
        b->UpdateDetails();
        b->setSize(1234);
        QCOMPARE(AddToListview(b, &view, nullptr), 1);
        QCOMPARE(names(view), (QStringList{"a.bin", "b.bin", "c.bin"}));
        QCOMPARE(view.files()->record(view.files()->rowOfKey(b->Key())), b);
        QCOMPARE(view.files()->text(1, ColumnType::Size), QStringLiteral("1,234 bytes"));
        b->setAttributes(FileAttributes::Hidden);
        b->setMode(0100640); // a regular file, rw-r-----
        QCOMPARE(view.files()->text(1, ColumnType::Attributes), QStringLiteral("H -rw-r-----"));
        // The root is matched without regard to case.
        b->setParentFolder(m_trees[0].root().toUpper() + QStringLiteral("/Sub/deep/"));
        QCOMPARE(view.files()->text(1, ColumnType::InFolder), QStringLiteral("Sub/deep"));
        // Past a terabyte sizes still sort by value.
        record("a.bin")->setSize(2'000'000'000'000);
        b->setSize(999'999'999'999);
        QVERIFY(RecordText::SortString(*b, 3) < RecordText::SortString(*record("a.bin"), 3));
        view.files()->flush();
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed[0][0].toModelIndex().row(), 1); // that row alone
        QCOMPARE(changed[0][1].toModelIndex().row(), 1);
        record("a.bin")->setDifferenceCode(DifferenceCode::Equal);
        const auto bold = [&](int row) {
            return view.files()->index(row, 0).data(Qt::FontRole).value<QFont>().bold();
        };
        QVERIFY(!bold(1));
        view.files()->setBoldDifferent(true);
        QCOMPARE(changed.count(), 2);
        QVERIFY(!bold(0) && bold(1));
    }
    void removingKeepsOrderSelectionAndFocus() {
        ListView view;
        list(0, view);
        view.setSelectedRows({true, false, true});
        view.setFocusedRow(2);
        QCOMPARE(view.files()->removeRowsIf(
                     [&](int row) { return view.files()->record(row)->Size() == 10; }),
                 1);
        QCOMPARE(names(view), (QStringList{"b.bin", "c.bin"}));
        QCOMPARE(view.files()->rowOfKey(record("c.bin")->Key()), 1);
        QCOMPARE(view.selectedRows(), (std::vector<bool>{false, true}));
        QCOMPARE(view.focusedRow(), 1);
        // A key listed again comes back at the end; a sort moves the stale marks with their rows.
        QCOMPARE(AddToListview(record("a.bin"), &view, nullptr), 2);
        view.files()->markAllStale();
        AddToListview(record("a.bin"), &view, nullptr);
        QVERIFY(SortListView(&view, &m_files[0], ColumnType::Size, false)); // c, a, b
        QCOMPARE(view.files()->removeStaleRows(), 2);
        QCOMPARE(names(view), (QStringList{"a.bin"}));
        QCOMPARE(view.files()->rowOfKey(record("a.bin")->Key()), 0);
        QCOMPARE(view.files()->rowOfKey(record("c.bin")->Key()), -1);
        QCOMPARE(view.selectedRows(), (std::vector<bool>{false}));
    }
    void sorted_data() {
        QTest::addColumn<int>("side");
        QTest::addColumn<int>("collection");
        QTest::addColumn<int>("type");
        QTest::addColumn<bool>("ascending");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("size descending")
            << 0 << 0 << 3 << false << QStringList{"c.bin", "a.bin", "b.bin"};
        QTest::newRow("modified ascending")
            << 0 << 0 << 5 << true << QStringList{"c.bin", "a.bin", "b.bin"};
        // Rows the collection does not know are ordered by their displayed texts: 10, 100, 9.
        QTest::newRow("size by text with the other side's collection")
            << 1 << 0 << 3 << true << QStringList{"a.bin", "c.bin", "b.bin"};
        QTest::newRow("no collection")
            << 0 << -1 << 3 << true << QStringList{"a.bin", "c.bin", "b.bin"};
    }
    void sorted() {
        QFETCH(int, side);
        QFETCH(int, collection);
        QFETCH(int, type);
        QFETCH(bool, ascending);
        ListView view;
        list(side, view);
        view.setSelectedRows({false, true, false}); // b.bin
        view.setFocusedRow(2);                      // c.bin
        const ComparisonFilePtr selected = view.selectedRecord();
        const ComparisonFilePtr focused = view.files()->record(2);
        QVERIFY(SortListView(&view, collection < 0 ? nullptr : &m_files[size_t(collection)], type,
                             ascending));
        QTEST(names(view), "expected");
        // The selection and the focus stay with their files.
        QCOMPARE(view.selectedRecord(), selected);
        QCOMPARE(view.files()->record(view.focusedRow()), focused);
    }
    void icons() {
        ImageList images;
        ListView view;
        for (const char *name : {"sub/other.txt", "sub/gone.txt", "sub/tool.exe", "sub/setup.exe"})
            AddToListview(record(QLatin1String(name)), &view, &images);
        view.files()->flush();
        const auto icon = [](const ListView &list, int row) {
            return list.files()->index(row, 0).data(Qt::DecorationRole).value<QIcon>().cacheKey();
        };
        // The two text files share one image; each program has its own.
        QCOMPARE(images.Count(), 3);
        QCOMPARE(icon(view, 0), icon(view, 1));
        // A file gone before it is listed shows the first image.
        QVERIFY(QFile::remove(m_trees[0].path("sub/gone.txt")));
        ImageList first;
        first.Add(QStringLiteral("first"), images.Icon(3));
        ListView later;
        AddToListview(record("sub/gone.txt"), &later, &first);
        later.files()->flush();
        QCOMPARE(first.Count(), 1);
        QCOMPARE(icon(later, 0), first.Icon(1).cacheKey());
    }

private:
    ComparisonFilePtr record(const QString &relative) const {
        return m_files[0].Item(m_trees[0].path(relative));
    }
    /** Lists the .bin files of \a side in \a view, in the collection's order. */
    void list(int side, ListView &view) {
        ColumnLayout::LoadLayout(&view, side == 1, true);
        for (const ComparisonFilePtr &file : m_files[size_t(side)])
            if (file->Name().endsWith(QLatin1String(".bin")))
                AddToListview(file, &view, nullptr);
        view.files()->flush();
    }
    static QStringList names(const ListView &view) {
        QStringList result;
        for (int row = 0; row < view.files()->count(); ++row)
            result << view.files()->text(row, ColumnType::Name);
        return result;
    }

    std::array<TestTree, 2> m_trees;
    std::array<ComparisonFileCollection, 2> m_files;
};

QTEST_MAIN(tst_FileListModel)
#include "tst_FileListModel.moc"
