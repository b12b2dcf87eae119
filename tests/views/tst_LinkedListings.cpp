#include "engine/ComparisonFileCollection.h"
#include "support/TestTree.h"
#include "views/ColumnLayout.h"
#include "views/LinkedListings.h"
#include "views/ListColumns.h"
#include "views/ListModel.h"
#include "views/ListView.h"

#include <QHBoxLayout>
#include <QSignalSpy>
#include <QTest>

namespace {

/** Two listings side by side in a window, over two (empty) roots of their own. */
struct Window {
    Window() {
        lists[0] = new ListView(&widget);
        lists[1] = new ListView(&widget);
        auto *layout = new QHBoxLayout(&widget);
        layout->addWidget(lists[0]);
        layout->addWidget(lists[1]);
        widget.resize(800, 300);
        files[0].setRootFolder(trees[0].root());
        files[1].setRootFolder(trees[1].root());
        listings = std::make_unique<LinkedListings>(lists[0], lists[1],
                                                    [this](int side) { return &files[side]; });
        for (ListView *list : lists)
            ColumnLayout::LoadLayout(list, list == lists[1], true);
    }

    /** Adds a row for \a relative below side \a side's root; its texts are its name. */
    void add(int side, const QString &relative) {
        const QString key = trees[side].path(relative);
        ListItem item = lists[side]->AddItem(key, relative);
        for (int i = 1; i < lists[side]->ColumnCount(); ++i)
            item.setSubItems(i, relative);
    }

    QStringList selected(int side) const {
        QStringList names;
        for (int i = 1; i <= lists[side]->ItemCount(); ++i) {
            if (lists[side]->Item(i).Selected())
                names.append(lists[side]->Item(i).Text());
        }
        return names;
    }

    QStringList texts(int side) const {
        QStringList names;
        for (int i = 1; i <= lists[side]->ItemCount(); ++i)
            names.append(lists[side]->Item(i).Text());
        return names;
    }

    QWidget widget;
    std::array<ListView *, 2> lists{};
    std::array<TestTree, 2> trees;
    std::array<ComparisonFileCollection, 2> files;
    std::unique_ptr<LinkedListings> listings;
};

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
    void switchingOnCopiesColumnsNarrow();
    void switchingOnSortsTheDestination_data();
    void switchingOnSortsTheDestination();
    void switchingOffLeavesEverything();
};

void tst_LinkedListings::selectionFollowsTheFile_data() {
    QTest::addColumn<int>("modelSide");
    QTest::newRow("source selects") << 0;
    QTest::newRow("destination selects") << 1;
}

void tst_LinkedListings::selectionFollowsTheFile() {
    QFETCH(int, modelSide);
    Window w;
    w.listings->setLinked(true);
    // Differently ordered lists, each with a file the other side lacks.
    for (const char *name : {"a", "sub/b", "c", "only0"})
        w.add(0, QString::fromLatin1(name));
    for (const char *name : {"c", "only1", "SUB/B", "a"})
        w.add(1, QString::fromLatin1(name));
    const int followerSide = 1 - modelSide;
    w.lists[followerSide]->SelectAll();

    ListView *model = w.lists[modelSide];
    model->ClearSelections();
    model->ItemByKey(w.trees[modelSide].path(QStringLiteral("a"))).setSelected(true);
    // A pair matched despite letter case has no row of the same key on the other side.
    model
        ->ItemByKey(w.trees[modelSide].path(modelSide == 0 ? QStringLiteral("sub/b")
                                                           : QStringLiteral("SUB/B")))
        .setSelected(true);
    const QString onlyHere = modelSide == 0 ? QStringLiteral("only0") : QStringLiteral("only1");
    model->ItemByKey(w.trees[modelSide].path(onlyHere)).setSelected(true);

    // The follower's rows in its own order; its one-side-only file is deselected.
    const QStringList expected =
        followerSide == 1 ? QStringList{"SUB/B", "a"} : QStringList{"a", "sub/b"};
    QCOMPARE(w.selected(followerSide), expected);
}

void tst_LinkedListings::selectionIsNotMirroredBack() {
    Window w;
    w.listings->setLinked(true);
    for (const char *name : {"a", "b", "c"}) {
        w.add(0, QString::fromLatin1(name));
        w.add(1, QString::fromLatin1(name));
    }
    w.lists[0]->flushRows();
    w.lists[1]->flushRows();
    QSignalSpy sourceChanges(w.lists[0]->selectionModel(), &QItemSelectionModel::selectionChanged);
    w.lists[0]->Item(2).setSelected(true);
    QCOMPARE(sourceChanges.count(), 1);
    QCOMPARE(w.selected(1), QStringList{"b"});
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
    Window w;
    for (const char *name : {"a", "b", "c", "d"}) {
        w.add(0, QString::fromLatin1(name));
        w.add(1, QString::fromLatin1(name));
    }
    w.lists[1]->SetFocusedRow(3);
    w.listings->setLinked(true);
    w.lists[0]->SetFocusedRow(focused);
    QCOMPARE(w.lists[1]->FocusedRow(), expected);
}

void tst_LinkedListings::followerScrollsWithTheLeader_data() {
    QTest::addColumn<int>("leader");
    QTest::newRow("source has the focus") << 0;
    QTest::newRow("destination has the focus") << 1;
}

void tst_LinkedListings::followerScrollsWithTheLeader() {
    QFETCH(int, leader);
    Window w;
    for (int i = 0; i < 300; ++i) {
        w.add(0, QStringLiteral("f%1").arg(i, 3, 10, QLatin1Char('0')));
        w.add(1, QStringLiteral("f%1").arg(i, 3, 10, QLatin1Char('0')));
    }
    w.widget.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w.widget));
    w.lists[leader]->setFocus();
    w.listings->setLinked(true);
    w.lists[leader]->scrollTo(w.lists[leader]->listModel()->index(150, 0),
                              QAbstractItemView::PositionAtTop);
    const int top = w.lists[leader]->TopRow();
    QVERIFY(top > 100);
    // The follower ticks every ~30 ms; on a loaded machine a tick can come late, so wait for
    // the match rather than for a fixed time.
    QTRY_COMPARE(w.lists[1 - leader]->TopRow(), top);
    QCOMPARE(w.lists[1 - leader]->ItemTop(0), w.lists[leader]->ItemTop(0));
}

void tst_LinkedListings::nothingScrollsWithAnEmptyList() {
    Window w;
    for (int i = 0; i < 300; ++i)
        w.add(0, QStringLiteral("f%1").arg(i));
    w.widget.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w.widget));
    w.lists[1]->setFocus();
    w.listings->setLinked(true);
    w.lists[0]->scrollTo(w.lists[0]->listModel()->index(120, 0), QAbstractItemView::PositionAtTop);
    const int top = w.lists[0]->TopRow();
    QTest::qWait(100);
    QCOMPARE(w.lists[0]->TopRow(), top);
}

void tst_LinkedListings::followerStopsWhenUnlinked() {
    Window w;
    w.listings->setLinked(true);
    QVERIFY(w.listings->scrollTimer().isActive());
    w.listings->SwitchLinking(false);
    QVERIFY(w.listings->scrollTimer().isActive());
    // The follower notices at its next tick.
    QTRY_VERIFY(!w.listings->scrollTimer().isActive());
}

void tst_LinkedListings::switchingOnCopiesColumnsNarrow() {
    Window w;
    QSignalSpy updates(w.listings.get(), &LinkedListings::UpdateListView);
    w.lists[1]->RemoveColumnAt(w.lists[1]->ColumnByKey(ColumnKey(4))->Index());
    w.lists[1]->RemoveColumnAt(w.lists[1]->ColumnByKey(ColumnKey(9))->Index());
    w.lists[1]->AddColumn(ColumnKey(8), ColumnCaption(8), 60);
    w.listings->SwitchLinking(true);
    QCOMPARE(w.lists[1]->ColumnByKey(ColumnKey(4))->Width(), 4.0f);
    QCOMPARE(w.lists[1]->ColumnByKey(ColumnKey(9))->Width(), 0.0f);
    QCOMPARE(w.lists[1]->ColumnByKey(ColumnKey(1))->Width(), 200.0f);
    QVERIFY(!w.lists[1]->ColumnByKey(ColumnKey(8)));
    QCOMPARE(updates.count(), 1);
    QCOMPARE(updates.at(0).at(0).toInt(), 1);

    // Off and on again: a column the destination lost is copied again, narrow.
    w.listings->SwitchLinking(false);
    w.lists[1]->RemoveColumnAt(w.lists[1]->ColumnByKey(ColumnKey(1))->Index());
    w.listings->SwitchLinking(true);
    QCOMPARE(w.lists[1]->ColumnByKey(ColumnKey(1))->Width(), 1.0f);
}

void tst_LinkedListings::switchingOnSortsTheDestination_data() {
    QTest::addColumn<int>("sourceSortKey");
    QTest::addColumn<int>("sourceOrder");
    QTest::addColumn<int>("destinationSortKey");
    QTest::addColumn<int>("destinationOrder");
    QTest::addColumn<QStringList>("destinationRows");
    // Sub-item 2 is "Size"; the header used is the one created before it, "In Folder".
    QTest::newRow("off by one") << 2 << int(Qt::DescendingOrder) << 1 << int(Qt::DescendingOrder)
                                << QStringList{"c", "b", "a"};
    // Sorted on the first column created: no header 0, so both lists are sorted as by a
    // click on the source's first header, which toggles its direction.
    QTest::newRow("fallback toggles") << 0 << int(Qt::AscendingOrder) << 0
                                      << int(Qt::DescendingOrder) << QStringList{"c", "b", "a"};
    QTest::newRow("fallback ascends") << 0 << int(Qt::DescendingOrder) << 0
                                      << int(Qt::AscendingOrder) << QStringList{"a", "b", "c"};
}

void tst_LinkedListings::switchingOnSortsTheDestination() {
    QFETCH(int, sourceSortKey);
    QFETCH(int, sourceOrder);
    QFETCH(int, destinationSortKey);
    QFETCH(int, destinationOrder);
    QFETCH(QStringList, destinationRows);
    Window w;
    for (const char *name : {"b", "a", "c"}) {
        w.add(0, QString::fromLatin1(name));
        w.add(1, QString::fromLatin1(name));
    }
    w.lists[0]->setSortKey(sourceSortKey);
    w.lists[0]->setSortOrder(Qt::SortOrder(sourceOrder));
    w.listings->SwitchLinking(true);
    QCOMPARE(w.lists[1]->SortKey(), destinationSortKey);
    QCOMPARE(int(w.lists[1]->SortOrder()), destinationOrder);
    QCOMPARE(w.texts(1), destinationRows);
    if (sourceSortKey == 0)
        QCOMPARE(w.texts(0), destinationRows);
}

void tst_LinkedListings::switchingOffLeavesEverything() {
    Window w;
    for (const char *name : {"b", "a"}) {
        w.add(0, QString::fromLatin1(name));
        w.add(1, QString::fromLatin1(name));
    }
    w.listings->SwitchLinking(true);
    w.lists[0]->Item(1).setSelected(true);
    const QStringList selected = w.selected(1);
    const QStringList rows = w.texts(1);
    const int columns = w.lists[1]->ColumnCount();
    w.listings->SwitchLinking(false);
    QCOMPARE(w.selected(1), selected);
    QCOMPARE(w.texts(1), rows);
    QCOMPARE(w.lists[1]->ColumnCount(), columns);
    w.lists[0]->ClearSelections();
    QCOMPARE(w.selected(1), selected);
}

QTEST_MAIN(tst_LinkedListings)
#include "tst_LinkedListings.moc"
