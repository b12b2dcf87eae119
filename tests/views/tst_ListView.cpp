#include "views/ListModel.h"
#include "views/ListView.h"

#include <QAbstractItemModelTester>
#include <QHeaderView>
#include <QLocale>
#include <QSignalSpy>
#include <QTest>

namespace {

// Rows "k0".."k<n-1>" with texts "t0".. and one sub-item each.
void fill(ListView &list, int count) {
    for (int i = 0; i < count; ++i) {
        ListItem item = list.AddItem(QStringLiteral("k%1").arg(i), QStringLiteral("t%1").arg(i));
        item.setSubItems(1, QStringLiteral("s%1").arg(i));
    }
}

QStringList keys(const ListView &list) {
    QStringList result;
    for (int i = 1; i <= list.ItemCount(); ++i)
        result.append(list.Item(i).Key());
    return result;
}

} // namespace

class tst_ListView : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void modelRules();
    void rowsReachTheViewInBatches();
    void keyedLookup_data();
    void keyedLookup();
    void removeItemsIf_data();
    void removeItemsIf();
    void removingAColumnShiftsSubItems();
    void columnOrder_data();
    void columnOrder();
    void sortedByDisplayedText_data();
    void sortedByDisplayedText();
    void sortKeepsSelectionAndFocus();
    void boldRowsFollowTheTag();
};

void tst_ListView::initTestCase() {
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void tst_ListView::modelRules() {
    ListView list;
    QAbstractItemModelTester tester(list.listModel(),
                                    QAbstractItemModelTester::FailureReportingMode::QtTest);
    list.AddColumn(QStringLiteral("#1"), QStringLiteral("Name"), 100);
    list.AddColumn(QStringLiteral("#3"), QStringLiteral("Size"), 50, Qt::AlignRight);
    fill(list, 50);
    list.flushRows();
    list.setSortKey(1);
    list.setSortOrder(Qt::DescendingOrder);
    list.setSorted(true);
    list.AddItem(QStringLiteral("late"), QStringLiteral("m")); // placed while sorted
    list.setSorted(false);
    list.SelectAll();
    list.RemoveItem(3);
    list.RemoveItemsIf([](const ListRow &row) { return row.index % 2 == 0; });
    list.RemoveItemsIf([](const ListRow &row) { return row.index < 5; });
    list.AddColumn(QStringLiteral("#9"), QStringLiteral("Difference"), 80);
    list.RemoveColumnAt(1);
    list.setBoldDifferent(true);
    list.ClearColumns();
    list.ClearItems();
    QCOMPARE(list.listModel()->rowCount(), 0);
}

void tst_ListView::rowsReachTheViewInBatches() {
    ListView list;
    list.AddColumn(QStringLiteral("#1"), QStringLiteral("Name"), 100);
    QSignalSpy inserted(list.listModel(), &QAbstractItemModel::rowsInserted);
    fill(list, 1000);
    // The list counts them at once; the view is told once, when the event loop runs.
    QCOMPARE(list.ItemCount(), 1000);
    QCOMPARE(list.listModel()->rowCount(), 0);
    QTRY_COMPARE(list.listModel()->rowCount(), 1000);
    QCOMPARE(inserted.count(), 1);
}

void tst_ListView::keyedLookup_data() {
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("as added") << "none" << QStringList{"k0", "k1", "k2", "k3", "k4"};
    QTest::newRow("sorted descending") << "sort" << QStringList{"k4", "k3", "k2", "k1", "k0"};
    QTest::newRow("middle removed") << "remove" << QStringList{"k0", "k1", "k3", "k4"};
    QTest::newRow("row placed while sorted")
        << "insert" << QStringList{"k0", "k1", "k2", "new", "k3", "k4"};
}

void tst_ListView::keyedLookup() {
    QFETCH(QString, operation);
    QFETCH(QStringList, expected);
    ListView list;
    list.AddColumn(QStringLiteral("#1"), QStringLiteral("Name"), 100);
    fill(list, 5);
    if (operation == QLatin1String("sort")) {
        list.setSortOrder(Qt::DescendingOrder);
        list.setSorted(true);
    } else if (operation == QLatin1String("remove")) {
        list.RemoveItem(3);
    } else if (operation == QLatin1String("insert")) {
        list.setSorted(true);
        list.AddItem(QStringLiteral("new"), QStringLiteral("t25"));
    }
    QCOMPARE(keys(list), expected);
    // Every key leads to its row, wherever the row went.
    for (int i = 0; i < expected.size(); ++i)
        QCOMPARE(list.ItemByKey(expected[i]).Index(), i + 1);
    QVERIFY(!list.ItemByKey(QStringLiteral("k9")));
    if (operation == QLatin1String("remove"))
        QVERIFY(!list.ItemByKey(QStringLiteral("k2")));
}

void tst_ListView::removeItemsIf_data() {
    QTest::addColumn<int>("modulus");
    // Every 10th row removed: few runs, each announced. Every other row: so many runs that
    // the model is reset and the view's state must be restored.
    QTest::newRow("few runs") << 10;
    QTest::newRow("many runs") << 2;
}

void tst_ListView::removeItemsIf() {
    QFETCH(int, modulus);
    ListView list;
    list.AddColumn(QStringLiteral("#1"), QStringLiteral("Name"), 100);
    fill(list, 400);
    list.flushRows();
    std::vector<bool> wanted(400, false);
    wanted[1] = wanted[3] = wanted[10] = wanted[399] = true;
    list.SetSelectedRows(wanted);
    list.SetFocusedRow(3);
    const QStringList before = keys(list);

    const int removed =
        list.RemoveItemsIf([modulus](const ListRow &row) { return row.index % modulus == 0; });
    QCOMPARE(removed, 400 / modulus);

    QStringList expected;
    for (int i = 0; i < before.size(); ++i) {
        if (i % modulus != 0)
            expected.append(before[i]);
    }
    QCOMPARE(keys(list), expected);
    QStringList selected;
    for (int i = 1; i <= list.ItemCount(); ++i) {
        if (list.Item(i).Selected())
            selected.append(list.Item(i).Key());
    }
    // Row 10 was selected and removed in both cases.
    QCOMPARE(selected, (QStringList{"k1", "k3", "k399"}));
    QCOMPARE(list.Item(list.FocusedRow() + 1).Key(), QStringLiteral("k3"));
    QCOMPARE(list.ItemByKey(QStringLiteral("k5")).Index(),
             expected.indexOf(QStringLiteral("k5")) + 1);
}

void tst_ListView::removingAColumnShiftsSubItems() {
    ListView list;
    for (int i = 0; i < 4; ++i)
        list.AddColumn(QStringLiteral("#%1").arg(i + 1), QStringLiteral("c%1").arg(i), 50);
    ListItem item = list.AddItem(QStringLiteral("a"), QStringLiteral("text"));
    item.setSubItems(1, QStringLiteral("one"));
    item.setSubItems(2, QStringLiteral("two"));
    item.setSubItems(3, QStringLiteral("three"));

    list.RemoveColumnAt(2);
    QCOMPARE(list.Column(2)->Key(), QStringLiteral("#3"));
    QCOMPARE(list.Column(2)->SubItemIndex(), 1);
    QCOMPARE(item.SubItems(1), QStringLiteral("two"));
    QCOMPARE(item.SubItems(2), QStringLiteral("three"));

    // Clearing the headers keeps the item text: it belongs to the row.
    list.ClearColumns();
    QCOMPARE(item.Text(), QStringLiteral("text"));
    QCOMPARE(item.SubItems(1), QString());
}

void tst_ListView::columnOrder_data() {
    QTest::addColumn<std::vector<int>>("order");
    QTest::addColumn<std::vector<int>>("expected");
    QTest::newRow("permutation") << std::vector<int>{3, 0, 1, 2} << std::vector<int>{3, 0, 1, 2};
    QTest::newRow("repeated entry skipped, unplaced column last")
        << std::vector<int>{3, 0, 0, 2} << std::vector<int>{3, 0, 2, 1};
    QTest::newRow("out of range skipped")
        << std::vector<int>{7, 2, -1, 1} << std::vector<int>{2, 1, 0, 3};
}

void tst_ListView::columnOrder() {
    QFETCH(std::vector<int>, order);
    QFETCH(std::vector<int>, expected);
    ListView list;
    for (int i = 0; i < 4; ++i)
        list.AddColumn(QStringLiteral("#%1").arg(i + 1), QStringLiteral("c%1").arg(i), 50);
    list.SetColumnOrder(order);
    QCOMPARE(list.ColumnOrder(), expected);
    for (size_t position = 0; position < expected.size(); ++position)
        QCOMPARE(list.Column(expected[position] + 1)->Position(), int(position));
}

void tst_ListView::sortedByDisplayedText_data() {
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<int>("order");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("letter case ignored")
        << QStringList{"b", "A", "a", "B"} << int(Qt::AscendingOrder)
        << QStringList{"A", "a", "b", "B"};
    QTest::newRow("descending stays stable")
        << QStringList{"a", "b", "A", "B"} << int(Qt::DescendingOrder)
        << QStringList{"b", "B", "a", "A"};
}

void tst_ListView::sortedByDisplayedText() {
    QFETCH(QStringList, texts);
    QFETCH(int, order);
    QFETCH(QStringList, expected);
    ListView list;
    list.AddColumn(QStringLiteral("#1"), QStringLiteral("Name"), 100);
    list.AddColumn(QStringLiteral("#2"), QStringLiteral("Other"), 100);
    for (const QString &text : texts)
        list.AddItem(QString(), QString()).setSubItems(1, text);
    list.setSortKey(1);
    list.setSortOrder(Qt::SortOrder(order));
    list.setSorted(true);
    QStringList sorted;
    for (int i = 1; i <= list.ItemCount(); ++i)
        sorted.append(list.Item(i).SubItems(1));
    QCOMPARE(sorted, expected);
    QCOMPARE(list.header()->sortIndicatorSection(), 1);
}

void tst_ListView::sortKeepsSelectionAndFocus() {
    ListView list;
    list.AddColumn(QStringLiteral("#1"), QStringLiteral("Name"), 100);
    fill(list, 20);
    list.Item(2).setSelected(true);
    list.Item(5).setSelected(true);
    list.SetFocusedRow(4);
    list.setSortOrder(Qt::DescendingOrder);
    list.setSorted(true);
    QVERIFY(list.ItemByKey(QStringLiteral("k1")).Selected());
    QVERIFY(list.ItemByKey(QStringLiteral("k4")).Selected());
    QCOMPARE(list.SelectedCount(), 2);
    QCOMPARE(list.Item(list.FocusedRow() + 1).Key(), QStringLiteral("k4"));
}

void tst_ListView::boldRowsFollowTheTag() {
    ListView list;
    list.AddColumn(QStringLiteral("#1"), QStringLiteral("Name"), 100);
    list.AddItem(QStringLiteral("same"), QStringLiteral("a")).setTag(1);
    list.AddItem(QStringLiteral("differs"), QStringLiteral("b")).setTag(4);
    list.flushRows();
    const QAbstractItemModel *model = list.listModel();
    const auto isBold = [model](int row) {
        return model->data(model->index(row, 0), Qt::FontRole).value<QFont>().bold();
    };
    QVERIFY(!isBold(0) && !isBold(1));
    list.setBoldDifferent(true);
    QVERIFY(!isBold(0));
    QVERIFY(isBold(1));
    list.Item(1).setTag(4);
    QVERIFY(isBold(0));
}

QTEST_MAIN(tst_ListView)
#include "tst_ListView.moc"
