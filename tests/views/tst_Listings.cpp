#include "engine/ComparisonFileCollection.h"
#include "settings/SettingsStore.h"
#include "support/TestProfile.h"
#include "support/TestTree.h"
#include "views/AddToListview.h"
#include "views/ColumnLayout.h"
#include "views/ColumnPopup.h"
#include "views/FileListModel.h"
#include "views/LinkedListings.h"
#include "views/ListColumns.h"
#include "views/ListSorting.h"
#include "views/ListView.h"

#include <QAction>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QMenu>
#include <QScrollBar>
#include <QTest>

// The two listings: their column layouts, the header menu, and how linking couples them.
namespace {

/** "#9 200, #1 200, ..." : the shown columns in display order with their widths. */
QString layout(const ListView &list) {
    QStringList parts;
    const QHeaderView *header = list.header();
    for (int visual = 0; visual < header->count(); ++visual) {
        const int logical = header->logicalIndex(visual);
        if (!header->isSectionHidden(logical))
            parts << QStringLiteral("#%1 %2")
                         .arg(FileListModel::typeOf(logical))
                         .arg(header->sectionSize(logical));
    }
    return parts.join(QLatin1String(", "));
}

/**
 * \a text with every "<n>" replaced by the default width of a column that is n pixels wide in
 * a font whose characters average 5 pixels, scaled to the list's font so that its texts fit.
 */
QString scaled(QString text) {
    const ListView list;
    for (int type = 1; type <= ColumnTypeCount; ++type) {
        text.replace(
            QStringLiteral("#%1 <%2>").arg(type).arg(DefaultColumnWidth(type)),
            QStringLiteral("#%1 %2").arg(type).arg(ColumnLayout::DefaultWidth(&list, type)));
    }
    return text;
}

const QString DefaultLayout =
    QStringLiteral("#9 <200>, #1 <200>, #2 <150>, #3 <75>, #4 <150>, #5 <125>");

/** Two listings side by side in a window, each listing the files of a tree of its own. */
struct Window {
    Window(const QStringList &sourceNames, const QStringList &destinationNames,
           CaseRule rule = CaseRule::Insensitive) {
        auto *layout = new QHBoxLayout(&widget);
        widget.resize(800, 300);
        const QStringList names[2] = {sourceNames, destinationNames};
        for (int side = 0; side < 2; ++side) {
            layout->addWidget(lists[side] = new ListView(&widget));
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
        popup = std::make_unique<ColumnPopup>(listings.get(), nullptr);
    }

    QStringList names(int side, bool selectedOnly = false) const {
        QStringList result;
        const std::vector<bool> selected = lists[side]->selectedRows();
        for (int row = 0; row < lists[side]->files()->count(); ++row)
            if (!selectedOnly || selected[size_t(row)])
                result << lists[side]->files()->text(row, ColumnType::Name);
        return result;
    }

    bool show() {
        widget.show();
        return QTest::qWaitForWindowExposed(&widget);
    }

    QWidget widget;
    std::array<ListView *, 2> lists{};
    std::array<TestTree, 2> trees;
    std::array<ComparisonFileCollection, 2> files;
    std::unique_ptr<LinkedListings> listings;
    std::unique_ptr<ColumnPopup> popup;
};

} // namespace

class tst_Listings : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_profile.clear(); }
    void layoutRoundTrip() {
        ListView list;
        ColumnLayout::LoadLayout(&list, true, false);
        QHeaderView *header = list.header();
        header->resizeSection(FileListModel::columnOf(3), 87);
        header->moveSection(header->visualIndex(FileListModel::columnOf(3)), 0);
        header->resizeSection(FileListModel::columnOf(4), 99);
        ColumnLayout::ShowColumn(&list, 8, 61);
        QVERIFY(ColumnLayout::SaveLayout(&list, true));
        // A column hidden later keeps the width it was stored with.
        list.setColumnHidden(FileListModel::columnOf(4), true);
        QVERIFY(ColumnLayout::SaveLayout(&list, true));

        ListView again;
        ColumnLayout::LoadLayout(&again, true, false);
        QCOMPARE(layout(again),
                 scaled(QStringLiteral("#3 87, #9 <200>, #1 <200>, #2 <150>, #5 <125>, #8 61")));
        again.header()->showSection(FileListModel::columnOf(4));
        QCOMPARE(again.header()->sectionSize(FileListModel::columnOf(4)), 99);
        ColumnLayout::LoadLayout(&again, false, false); // the source's layout is untouched
        QCOMPARE(layout(again), scaled(DefaultLayout));
    }
    void storedLayouts_data() {
        QTest::addColumn<QStringList>("entries");
        QTest::addColumn<QString>("expected");
        QTest::newRow("hidden by default, shown by the store")
            << QStringList{"Position7", "6", "Width7", "33"} << DefaultLayout + ", #7 33";
        QTest::newRow("position that is not a number hides")
            << QStringList{"Position4", "left"}
            << QStringLiteral("#9 <200>, #1 <200>, #2 <150>, #3 <75>, #5 <125>");
        // Six columns shown: position 9 is out of range, so "In Folder" follows the placed ones.
        QTest::newRow("out-of-range position skipped")
            << QStringList{"Position2", "9"}
            << QStringLiteral("#9 <200>, #1 <200>, #3 <75>, #4 <150>, #5 <125>, #2 <150>");
    }
    void storedLayouts() {
        QFETCH(QStringList, entries);
        QFETCH(QString, expected);
        for (qsizetype i = 0; i + 1 < entries.size(); i += 2)
            QVERIFY(
                SettingsStore::write(QStringLiteral("SourceLayout"), entries[i], entries[i + 1]));
        ListView list;
        ColumnLayout::LoadLayout(&list, false, false);
        QCOMPARE(layout(list), scaled(expected));
        ColumnLayout::LoadLayout(&list, false, true); // defaults ignore the store
        QCOMPARE(layout(list), scaled(DefaultLayout));
    }
    void popupCommands() {
        Window w({}, {});
        w.popup->Open(w.lists[0], QPoint());
        w.popup->hideAllAction()->trigger();
        QCOMPARE(layout(*w.lists[0]), scaled(QStringLiteral("#1 <200>")));
        // A column shown again goes to the right end with its default width, not its last one.
        w.lists[1]->header()->resizeSection(FileListModel::columnOf(3), 40);
        w.popup->Open(w.lists[1], QPoint());
        w.popup->ColumnAction(3)->trigger();
        w.popup->Open(w.lists[1], QPoint());
        w.popup->ColumnAction(3)->trigger();
        QCOMPARE(
            layout(*w.lists[1]),
            scaled(QStringLiteral("#9 <200>, #1 <200>, #2 <150>, #4 <150>, #5 <125>, #3 <75>")));
        // Reset Layout on the destination's header, unlinked: only that list gets the defaults.
        w.popup->Open(w.lists[1], QPoint());
        w.popup->resetLayoutAction()->trigger();
        QCOMPARE(layout(*w.lists[1]), scaled(DefaultLayout));
        QCOMPARE(layout(*w.lists[0]), scaled(QStringLiteral("#1 <200>")));
        // Linked, a column shown from either header is shown in both.
        w.listings->SetLinked(true);
        w.popup->Open(w.lists[1], QPoint());
        w.popup->ColumnAction(6)->trigger();
        QVERIFY(!w.lists[0]->isColumnHidden(FileListModel::columnOf(6)));
        w.popup->menu()->hide();
    }
    void defaultWidthsFitTheirTexts() {
        ListView list;
        QFont font = list.font();
        font.setPointSize(11);
        list.setFont(font);
        ColumnLayout::LoadLayout(&list, false, true);
        for (const auto &[type, text] :
             {std::pair{3, "2,000 bytes"}, {5, "24 Nov 2026 03:37:12"}}) {
            QVERIFY(list.fontMetrics().horizontalAdvance(QLatin1String(text)) <
                    list.header()->sectionSize(FileListModel::columnOf(type)));
        }
    }
    void selectionFollowsTheFile_data() {
        QTest::addColumn<int>("modelSide");
        QTest::addColumn<CaseRule>("rule");
        // Where case is ignored, as on a FAT stick, "sub/b" and "SUB/B" are one pair; where it
        // counts they are two files, and selecting one must not select the other.
        QTest::newRow("source selects") << 0 << CaseRule::Insensitive;
        QTest::newRow("destination selects") << 1 << CaseRule::Insensitive;
        QTest::newRow("case counts") << 0 << CaseRule::Sensitive;
    }
    void selectionFollowsTheFile() {
        QFETCH(int, modelSide);
        QFETCH(CaseRule, rule);
        // Differently ordered lists, each with a file the other side lacks.
        Window w({"a", "sub/b", "c", "only0"}, {"c", "only1", "SUB/B", "a"}, rule);
        w.listings->SetLinked(true);
        const int followerSide = 1 - modelSide;
        w.lists[followerSide]->selectAll();

        std::vector<bool> wanted(4, false);
        for (const QString &name : modelSide == 0 ? QStringList{"a", "sub/b", "only0"}
                                                  : QStringList{"a", "SUB/B", "only1"})
            wanted[size_t(w.lists[modelSide]->files()->rowOfKey(
                w.files[modelSide].Item(w.trees[modelSide].path(name))->Key()))] = true;
        w.lists[modelSide]->setSelectedRows(wanted);
        // The follower's change is not mirrored back, which would drop the one-sided file.
        QCOMPARE(w.names(modelSide, true).size(), 3);
        // The follower's rows in its own order; its one-side-only file is deselected.
        QStringList expected = followerSide == 1 ? QStringList{"B", "a"} : QStringList{"a", "b"};
        if (rule == CaseRule::Sensitive)
            expected = QStringList{"a"};
        QCOMPARE(w.names(followerSide, true), expected);
        // The focus goes to the same position; the search for it starts after the first row.
        w.lists[modelSide]->setFocusedRow(2);
        QCOMPARE(w.lists[followerSide]->focusedRow(), 2);
        w.lists[modelSide]->setFocusedRow(0);
        QCOMPARE(w.lists[followerSide]->focusedRow(), 2);

        // The pairings found hold while the follower's rows move, go and come back.
        ListView *follower = w.lists[followerSide];
        const ComparisonFilePtr first = follower->files()->record(0);
        QVERIFY(SortListView(follower, nullptr, ColumnType::Name, false));
        follower->files()->removeRowsIf(
            [&](int row) { return follower->files()->record(row) == first; });
        AddToListview(first, follower, nullptr);
        w.listings->MirrorSelection(modelSide);
        QStringList mirrored = w.names(followerSide, true);
        mirrored.sort();
        QCOMPARE(mirrored, expected);
        // A counterpart listed only after the pairings were looked up is found once listed.
        const auto item = [&](const char *name) {
            return w.files[modelSide].Item(w.trees[modelSide].path(QLatin1String(name)));
        };
        w.lists[modelSide]->files()->clear();
        AddToListview(item("c"), w.lists[modelSide], nullptr);
        w.lists[modelSide]->selectAll();
        QCOMPARE(w.names(followerSide, true), QStringList{"c"});
        AddToListview(item("a"), w.lists[modelSide], nullptr);
        w.lists[modelSide]->selectAll();
        mirrored = w.names(followerSide, true);
        mirrored.sort();
        QCOMPARE(mirrored, (QStringList{"a", "c"}));
    }
    void followerScrollsWithTheLeader_data() {
        QTest::addColumn<int>("destinationRows");
        QTest::addColumn<int>("scrolled"); // the destination has the focus
        QTest::newRow("destination scrolled") << 300 << 1;
        // The wheel scrolls the list under the mouse, whichever has the focus.
        QTest::newRow("source scrolled") << 300 << 0;
        QTest::newRow("source scrolled, destination empty") << 0 << 0;
    }
    void followerScrollsWithTheLeader() {
        QFETCH(int, destinationRows);
        QFETCH(int, scrolled);
        QStringList names;
        for (int i = 0; i < 300; ++i)
            names << QStringLiteral("f%1").arg(i, 3, 10, QLatin1Char('0'));
        Window w(names, names.mid(0, destinationRows));
        QVERIFY(w.show());
        w.lists[1]->setFocus();
        w.listings->SetLinked(true);
        w.lists[scrolled]->verticalScrollBar()->setValue(150);
        // The follower ticks every ~30 ms, later on a loaded machine.
        QTRY_COMPARE(w.lists[1 - scrolled]->verticalScrollBar()->value(),
                     destinationRows ? 150 : 0);
        QTest::qWait(100);
        QCOMPARE(w.lists[scrolled]->verticalScrollBar()->value(), 150);
        // Unlinked, the follower stops at its next tick.
        w.listings->SwitchLinking(false);
        QTRY_VERIFY(!w.listings->scrollTimer().isActive());
    }
    void headerClicksSortBothLists() {
        Window w({"b", "a", "c"}, {"c", "a", "b"});
        QVERIFY(w.show());
        w.listings->SetLinked(true);
        // Never sorted: the first click on "Name" counts as a second one, and turns it around.
        QHeaderView *header = w.lists[1]->header();
        const int section = FileListModel::columnOf(ColumnType::Name);
        const QPoint centre(header->sectionViewportPosition(section) +
                                header->sectionSize(section) / 2,
                            header->height() / 2);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, centre);
        QCOMPARE(w.names(0), (QStringList{"c", "b", "a"}));
        QCOMPARE(w.names(1), (QStringList{"c", "b", "a"}));
        for (const ListView *list : w.lists) // the arrow on both, from the first sort on
            QVERIFY(list->header()->isSortIndicatorShown() &&
                    list->header()->sortIndicatorSection() == section);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, centre);
        QCOMPARE(w.names(0), (QStringList{"a", "b", "c"}));
        // Unlinked, the other list keeps its order.
        w.listings->SetLinked(false);
        Q_EMIT w.lists[0]->columnClicked(ColumnType::Name);
        QCOMPARE(w.names(0), (QStringList{"c", "b", "a"}));
        QCOMPARE(w.names(1), (QStringList{"a", "b", "c"}));
    }
    void switchingOnSortsTheDestination_data() {
        QTest::addColumn<int>("sourceType");
        QTest::addColumn<int>("sourceOrder");
        QTest::addColumn<int>("destinationType"); // both sorted descending: c, b, a
        // "Size" is the third column in type order; the one used is the one before it.
        QTest::newRow("off by one")
            << int(ColumnType::Size) << int(Qt::DescendingOrder) << int(ColumnType::InFolder);
        // Sorted on the first column: there is no column before it, so both lists are sorted as
        // by a click on the source's first column, which toggles its direction.
        QTest::newRow("fallback toggles")
            << int(ColumnType::Name) << int(Qt::AscendingOrder) << int(ColumnType::Name);
    }
    void switchingOnSortsTheDestination() {
        QFETCH(int, sourceType);
        QFETCH(int, sourceOrder);
        // Every name in a folder of its own, so that "In Folder" sorts as the names do.
        Window w({"b/b", "a/a", "c/c"}, {"b/b", "a/a", "c/c"});
        w.lists[0]->header()->setSortIndicator(FileListModel::columnOf(sourceType),
                                               Qt::SortOrder(sourceOrder));
        w.lists[0]->setColumnHidden(FileListModel::columnOf(ColumnType::Type), true);
        w.lists[1]->setColumnHidden(FileListModel::columnOf(ColumnType::Size), true);
        w.listings->SwitchLinking(true);
        // The destination got the source's columns, a copied one at the right end as narrow as its
        // default position says, but never too narrow to grab.
        QCOMPARE(layout(*w.lists[1]),
                 scaled(QStringLiteral("#9 <200>, #1 <200>, #2 <150>, #5 <125>, #3 %1"))
                     .arg(w.lists[1]->header()->minimumSectionSize()));
        QTEST(w.lists[1]->sortType(), "destinationType");
        QCOMPARE(w.lists[1]->sortOrder(), Qt::DescendingOrder);
        QCOMPARE(w.names(1), (QStringList{"c", "b", "a"}));
        if (sourceType == ColumnType::Name)
            QCOMPARE(w.names(0), (QStringList{"c", "b", "a"}));
    }

private:
    TestProfile m_profile;
};

QTEST_MAIN(tst_Listings)
#include "tst_Listings.moc"
