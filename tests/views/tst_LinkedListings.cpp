#include "engine/ComparisonFileCollection.h"
#include "support/TestTree.h"
#include "views/AddToListview.h"
#include "views/ColumnLayout.h"
#include "views/FileListModel.h"
#include "views/LinkedListings.h"
#include "views/ListSorting.h"
#include "views/ListView.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

namespace {

/** Two listings side by side in a window, each listing the files of a tree of its own. */
struct Window {
    Window(const QStringList &sourceNames, const QStringList &destinationNames,
           CaseRule rule = CaseRule::Insensitive) {
        lists[0] = new ListView(&widget);
        lists[1] = new ListView(&widget);
        auto *layout = new QHBoxLayout(&widget);
        layout->addWidget(lists[0]);
        layout->addWidget(lists[1]);
        widget.resize(800, 300);
        const QStringList names[2] = {sourceNames, destinationNames};
        for (int side = 0; side < 2; ++side) {
            for (const QString &name : names[side])
                QVERIFY(trees[side].write(name, name.toUtf8()));
            files[side].setCaseRule(rule);
            files[side].setRootFolder(trees[side].root());
            ColumnLayout::LoadLayout(lists[side], side == 1, true);
            // Listed in the order given, not in the walk's order.
            for (const QString &name : names[side])
                AddToListview(files[side].Item(trees[side].path(name)), lists[side], nullptr);
            lists[side]->files()->flush();
        }
        listings = std::make_unique<LinkedListings>(lists[0], lists[1],
                                                    [this](int side) { return &files[side]; });
    }

    /** The row of \a name in list \a side. */
    int row(int side, const QString &name) const {
        return lists[side]->files()->rowOfKey(files[side].Item(trees[side].path(name))->Key());
    }

    QStringList names(int side, bool selectedOnly = false) const {
        QStringList result;
        const std::vector<bool> selected = lists[side]->selectedRows();
        for (int row = 0; row < lists[side]->files()->count(); ++row) {
            if (!selectedOnly || selected[size_t(row)])
                result.append(lists[side]->files()->text(row, ColumnType::Name));
        }
        return result;
    }

    QWidget widget;
    std::array<ListView *, 2> lists{};
    std::array<TestTree, 2> trees;
    std::array<ComparisonFileCollection, 2> files;
    std::unique_ptr<LinkedListings> listings;
};

QStringList numbered(int count) {
    QStringList names;
    for (int i = 0; i < count; ++i)
        names.append(QStringLiteral("f%1").arg(i, 3, 10, QLatin1Char('0')));
    return names;
}

} // namespace

class tst_LinkedListings : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void selectionFollowsTheFile_data();
    void selectionFollowsTheFile();
    void selectionIsNotMirroredBack();
    void focusFollowsThePosition_data();
    void focusFollowsThePosition();
    void followerScrollsWithTheLeader_data();
    void followerScrollsWithTheLeader();
    void nothingScrollsWithAnEmptyList();
    void followerStopsWhenUnlinked();
    void headerClicksSortBothLists();
    void mouseClicksOnAHeader();
    void switchingOnSortsTheDestination_data();
    void switchingOnSortsTheDestination();
    void switchingOffLeavesEverything();
};

void tst_LinkedListings::selectionFollowsTheFile_data() {
    QTest::addColumn<int>("modelSide");
    QTest::addColumn<CaseRule>("rule");
    // Where case is ignored, as on a FAT stick, "sub/b" and "SUB/B" are one pair; where it
    // counts they are two files, and selecting one must not select the other.
    QTest::newRow("source selects") << 0 << CaseRule::Insensitive;
    QTest::newRow("destination selects") << 1 << CaseRule::Insensitive;
    QTest::newRow("case counts") << 0 << CaseRule::Sensitive;
}

void tst_LinkedListings::selectionFollowsTheFile() {
    QFETCH(int, modelSide);
    QFETCH(CaseRule, rule);
    // Differently ordered lists, each with a file the other side lacks.
    Window w({"a", "sub/b", "c", "only0"}, {"c", "only1", "SUB/B", "a"}, rule);
    w.listings->setLinked(true);
    const int followerSide = 1 - modelSide;
    w.lists[followerSide]->selectAll();

    ListView *model = w.lists[modelSide];
    std::vector<bool> wanted(4, false);
    wanted[size_t(w.row(modelSide, QStringLiteral("a")))] = true;
    wanted[size_t(w.row(modelSide, modelSide == 0 ? QStringLiteral("sub/b")
                                                  : QStringLiteral("SUB/B")))] = true;
    wanted[size_t(w.row(modelSide, modelSide == 0 ? QStringLiteral("only0")
                                                  : QStringLiteral("only1")))] = true;
    model->setSelectedRows(wanted);

    // The follower's rows in its own order; its one-side-only file is deselected.
    QStringList expected = followerSide == 1 ? QStringList{"B", "a"} : QStringList{"a", "b"};
    if (rule == CaseRule::Sensitive)
        expected = QStringList{"a"};
    QCOMPARE(w.names(followerSide, true), expected);
}

void tst_LinkedListings::selectionIsNotMirroredBack() {
    Window w({"a", "b", "c"}, {"a", "b", "c"});
    w.listings->setLinked(true);
    QSignalSpy sourceChanges(w.lists[0]->selectionModel(), &QItemSelectionModel::selectionChanged);
    w.lists[0]->setSelectedRows({false, true});
    QCOMPARE(sourceChanges.count(), 1);
    QCOMPARE(w.names(1, true), QStringList{"b"});
}

void tst_LinkedListings::focusFollowsThePosition_data() {
    QTest::addColumn<int>("focused");
    QTest::addColumn<int>("expected");
    QTest::newRow("third row") << 2 << 2;
    // The search for the focused row starts after the first row.
    QTest::newRow("first row not copied") << 0 << 3;
}

void tst_LinkedListings::focusFollowsThePosition() {
    QFETCH(int, focused);
    QFETCH(int, expected);
    Window w({"a", "b", "c", "d"}, {"a", "b", "c", "d"});
    w.lists[1]->setFocusedRow(3);
    w.listings->setLinked(true);
    w.lists[0]->setFocusedRow(focused);
    QCOMPARE(w.lists[1]->focusedRow(), expected);
}

void tst_LinkedListings::followerScrollsWithTheLeader_data() {
    QTest::addColumn<int>("focus");
    QTest::addColumn<int>("scrolled");
    QTest::newRow("source has the focus and scrolls") << 0 << 0;
    QTest::newRow("destination has the focus and scrolls") << 1 << 1;
    // The wheel scrolls the list under the mouse, whichever has the focus.
    QTest::newRow("source scrolled, destination has the focus") << 1 << 0;
}

void tst_LinkedListings::followerScrollsWithTheLeader() {
    QFETCH(int, focus);
    QFETCH(int, scrolled);
    Window w(numbered(300), numbered(300));
    w.widget.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w.widget));
    w.lists[focus]->setFocus();
    w.listings->setLinked(true);
    w.lists[scrolled]->verticalScrollBar()->setValue(150);
    // The follower ticks every ~30 ms; on a loaded machine a tick can come late, so wait for
    // the match rather than for a fixed time.
    QTRY_COMPARE(w.lists[1 - scrolled]->verticalScrollBar()->value(), 150);
    QTest::qWait(100);
    QCOMPARE(w.lists[scrolled]->verticalScrollBar()->value(), 150);
}

void tst_LinkedListings::nothingScrollsWithAnEmptyList() {
    Window w(numbered(300), {});
    w.widget.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w.widget));
    w.lists[1]->setFocus();
    w.listings->setLinked(true);
    w.lists[0]->verticalScrollBar()->setValue(120);
    QTest::qWait(100);
    QCOMPARE(w.lists[0]->verticalScrollBar()->value(), 120);
}

void tst_LinkedListings::followerStopsWhenUnlinked() {
    Window w({}, {});
    w.listings->setLinked(true);
    QVERIFY(w.listings->scrollTimer().isActive());
    w.listings->SwitchLinking(false);
    QVERIFY(w.listings->scrollTimer().isActive());
    // The follower notices at its next tick.
    QTRY_VERIFY(!w.listings->scrollTimer().isActive());
}

void tst_LinkedListings::headerClicksSortBothLists() {
    Window w({"b", "a", "c"}, {"c", "a", "b"});
    w.listings->setLinked(true);
    // Never sorted: the first click on "Name" counts as a second one, and turns it around.
    Q_EMIT w.lists[1]->columnClicked(ColumnType::Name);
    QCOMPARE(w.names(0), (QStringList{"c", "b", "a"}));
    QCOMPARE(w.names(1), (QStringList{"c", "b", "a"}));
    Q_EMIT w.lists[1]->columnClicked(ColumnType::Name);
    QCOMPARE(w.names(1), (QStringList{"a", "b", "c"}));
    Q_EMIT w.lists[0]->columnClicked(ColumnType::Difference);
    QCOMPARE(w.lists[1]->sortType(), int(ColumnType::Difference));
    QCOMPARE(w.lists[1]->sortOrder(), Qt::AscendingOrder);
    w.listings->setLinked(false);
    Q_EMIT w.lists[0]->columnClicked(ColumnType::Name);
    QCOMPARE(w.lists[1]->sortType(), int(ColumnType::Difference));
}

void tst_LinkedListings::mouseClicksOnAHeader() {
    Window w({"b", "a", "c"}, {"c", "a", "b"});
    w.widget.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w.widget));
    w.listings->setLinked(true);
    QHeaderView *header = w.lists[0]->header();
    const int section = FileListModel::columnOf(ColumnType::Difference);
    const QPoint centre(header->sectionViewportPosition(section) + header->sectionSize(section) / 2,
                        header->height() / 2);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, centre);
    QCOMPARE(w.lists[0]->sortType(), int(ColumnType::Difference));
    QCOMPARE(w.lists[0]->sortOrder(), Qt::AscendingOrder);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, centre);
    QCOMPARE(w.lists[0]->sortOrder(), Qt::DescendingOrder);
    QCOMPARE(w.lists[1]->sortOrder(), Qt::DescendingOrder);
    QVERIFY(header->isSortIndicatorShown());
}

void tst_LinkedListings::switchingOnSortsTheDestination_data() {
    QTest::addColumn<int>("sourceType");
    QTest::addColumn<int>("sourceOrder");
    QTest::addColumn<int>("destinationType");
    QTest::addColumn<int>("destinationOrder");
    QTest::addColumn<QStringList>("destinationRows");
    // "Size" is the third column in type order; the one used is the one before it.
    QTest::newRow("off by one") << int(ColumnType::Size) << int(Qt::DescendingOrder)
                                << int(ColumnType::InFolder) << int(Qt::DescendingOrder)
                                << QStringList{"c", "b", "a"};
    // Sorted on the first column: there is no column before it, so both lists are sorted as
    // by a click on the source's first column, which toggles its direction.
    QTest::newRow("fallback toggles")
        << int(ColumnType::Name) << int(Qt::AscendingOrder) << int(ColumnType::Name)
        << int(Qt::DescendingOrder) << QStringList{"c", "b", "a"};
    QTest::newRow("fallback ascends")
        << int(ColumnType::Name) << int(Qt::DescendingOrder) << int(ColumnType::Name)
        << int(Qt::AscendingOrder) << QStringList{"a", "b", "c"};
}

void tst_LinkedListings::switchingOnSortsTheDestination() {
    QFETCH(int, sourceType);
    QFETCH(int, sourceOrder);
    QFETCH(int, destinationType);
    QFETCH(int, destinationOrder);
    QFETCH(QStringList, destinationRows);
    // Every name in a folder of its own, so that "In Folder" sorts as the names do.
    Window w({"b/b", "a/a", "c/c"}, {"b/b", "a/a", "c/c"});
    w.lists[0]->header()->setSortIndicator(FileListModel::columnOf(sourceType),
                                           Qt::SortOrder(sourceOrder));
    w.lists[1]->setColumnHidden(FileListModel::columnOf(ColumnType::Size), true);
    w.listings->SwitchLinking(true);
    // The destination got the source's columns.
    QVERIFY(!w.lists[1]->isColumnHidden(FileListModel::columnOf(ColumnType::Size)));
    QCOMPARE(w.lists[1]->sortType(), destinationType);
    QCOMPARE(int(w.lists[1]->sortOrder()), destinationOrder);
    QCOMPARE(w.names(1), destinationRows);
    if (sourceType == ColumnType::Name)
        QCOMPARE(w.names(0), destinationRows);
}

void tst_LinkedListings::switchingOffLeavesEverything() {
    Window w({"b", "a"}, {"b", "a"});
    w.listings->SwitchLinking(true);
    w.lists[0]->setSelectedRows({true});
    const QStringList selected = w.names(1, true);
    const QStringList rows = w.names(1);
    QCOMPARE(selected.size(), 1);
    w.listings->SwitchLinking(false);
    w.lists[1]->setColumnHidden(FileListModel::columnOf(ColumnType::Name), true);
    w.lists[0]->clearSelection();
    QCOMPARE(w.names(1, true), selected);
    QCOMPARE(w.names(1), rows);
    QVERIFY(!w.lists[0]->isColumnHidden(FileListModel::columnOf(ColumnType::Name)));
}

QTEST_MAIN(tst_LinkedListings)
#include "tst_LinkedListings.moc"
