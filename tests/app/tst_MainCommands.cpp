#include "app/StatusLine.h"
#include "app/frmMain.h"
#include "engine/ComparisonFileCollection.h"
#include "settings/Options.h"
#include "settings/RecentLists.h"
#include "settings/SettingsStore.h"
#include "support/ComparedWindow.h"
#include "support/ModalWatcher.h"
#include "support/TestProfile.h"
#include "support/TestTree.h"
#include "tools/GeneralHelpers.h"
#include "views/AddToListview.h"
#include "views/ColumnLayout.h"
#include "views/FileListModel.h"
#include "views/ListColumns.h"
#include "views/ListView.h"

#include <QAction>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QSplitter>
#include <QTest>
#include <QTimer>

class tst_MainCommands : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void editMenuEnabling_data();
    void editMenuEnabling();
    void editCommandsActOnTheFocusedList_data();
    void editCommandsActOnTheFocusedList();

    void resetOptionsDeclined_data();
    void resetOptionsDeclined();
    void resetOptionsAccepted();

    void accessKeys_data();
    void accessKeys();

    void linkItemRecopiesColumns();
    void placeholdersRebuiltWhenSwitching_data();
    void placeholdersRebuiltWhenSwitching();

private:
    TestProfile m_profile;
};

namespace {

/**
 * A shown main window whose lists hold \a rows rows each. Their keys have no counterparts,
 * so the listings start unlinked unless the store says otherwise: a selection stays where
 * it was made.
 */
struct Window : ComparedWindow {
    explicit Window(int rows = 3)
        : ComparedWindow(unlinked()) {
        window.activateWindow();
        for (int side = 0; side < 2; ++side) {
            for (int i = 0; i < rows; ++i)
                QVERIFY(trees[side].write(QStringLiteral("f%1").arg(i), "x"));
            files[side].setRootFolder(trees[side].root());
            for (const ComparisonFilePtr &file : files[side])
                AddToListview(file, list(side), nullptr);
            list(side)->files()->flush();
        }
    }
    TestTree trees[2];
    ComparisonFileCollection files[2];
    static QString unlinked() {
        if (!SettingsStore::value(QStringLiteral("Options"), QStringLiteral("LinkListings")))
            Options::setLinkListings(false);
        return {};
    }
    QWidget *named(const QString &name) { return window.findChild<QWidget *>(name); }
};

/** What a question box showed and how it was answered. */
struct Question {
    QString text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButton defaultButton = QMessageBox::NoButton;
    bool shown = false;
};

/**
 * While it lives, answers the first message box that opens: \a key pressed on it, or a click
 * on \a button when \a key is 0.
 */
struct BoxAnswer {
    explicit BoxAnswer(QMessageBox::StandardButton button, int key = 0)
        : watcher([this, button, key](QWidget *shown) {
            auto *box = qobject_cast<QMessageBox *>(shown);
            if (!box || seen.shown)
                return false;
            seen = {box->text(), box->icon(), box->standardButton(box->defaultButton()), true};
            if (key)
                QTest::keyClick(box, Qt::Key(key));
            else
                box->button(button)->click();
            return true;
        }) {}

    Question seen;
    ModalWatcher watcher;
};

/**
 * Three pairs that differ in size, in three folders, and one file on each side alone:
 * "p/b", "q/a", "r/c" on both sides, "p/s-only" in the source, "q/d-only" in the destination.
 */
struct LinkedTrees {
    bool write() {
        return tree.write("src/p/b", "1") && tree.write("src/q/a", "22") &&
               tree.write("src/r/c", "333") && tree.write("src/p/s-only", "4444") &&
               tree.write("dst/p/b", "55555") && tree.write("dst/q/a", "6") &&
               tree.write("dst/r/c", "77") && tree.write("dst/q/d-only", "8");
    }
    TestTree tree;
};

void setLinked(ComparedWindow &w, bool linked) {
    if (w.window.menus->mnuViewLink->isChecked() != linked)
        w.window.menus->mnuViewLink->trigger();
}

/** The shown columns of \a list in display order, as "key width". */
QStringList shownColumns(const ListView *list) {
    QStringList columns;
    const QHeaderView *header = list->header();
    for (int visual = 0; visual < header->count(); ++visual) {
        const int logical = header->logicalIndex(visual);
        if (!header->isSectionHidden(logical))
            columns << QStringLiteral("#%1 %2")
                           .arg(FileListModel::typeOf(logical))
                           .arg(header->sectionSize(logical));
    }
    return columns;
}

QStringList defaultColumns(const ListView *list) {
    QStringList columns;
    for (int type : {9, 1, 2, 3, 4, 5})
        columns << QStringLiteral("#%1 %2").arg(type).arg(ColumnLayout::DefaultWidth(list, type));
    return columns;
}

/** Stores a value other than the default for every option that Reset Options puts back. */
void storeNonDefaults(const TestTree &tree) {
    RecentLists::saveFolders(RecentLists::Side::Source, {tree.path("a"), tree.path("b")}, 1);
    RecentLists::saveFolders(RecentLists::Side::Destination, {tree.path("b")}, 0);
    RecentLists::saveSelections({33, 1}, 0);
    // Date Created shown in the source list, a wide Name in the destination list.
    SettingsStore::write(QStringLiteral("SourceLayout"), QStringLiteral("Position6"),
                         QStringLiteral("6"));
    SettingsStore::write(QStringLiteral("DestLayout"), QStringLiteral("Width1"),
                         QStringLiteral("333"));
    Options::setOrientation(Options::HorizontalOrientation);
    Options::setAlwaysOnTop(true);
    Options::ViewOptions view;
    view.linkListings = false;
    view.useMissingPlaceholders = false;
    view.fullPath = true;
    view.allFiles = true;
    view.boldDifferences = true;
    Options::setViewOptions(view);
    Options::setIncludeSlack(false);
    Options::setLetterCase(QStringLiteral("sensitive"));
}

} // namespace

void tst_MainCommands::initTestCase() {
    QVERIFY(m_profile.isValid());
}

void tst_MainCommands::init() {
    m_profile.clear();
}

void tst_MainCommands::editMenuEnabling_data() {
    QTest::addColumn<QString>("focus");
    QTest::addColumn<int>("selectedRows");
    QTest::addColumn<bool>("selectAll");
    QTest::addColumn<bool>("clearSelections");

    QTest::newRow("folder combo") << "cboSelectPath0" << 0 << false << false;
    QTest::newRow("list 1, nothing selected") << "lvwFiles1" << 0 << true << false;
    QTest::newRow("list 0, one row selected") << "lvwFiles0" << 1 << true << true;
}

void tst_MainCommands::editMenuEnabling() {
    QFETCH(QString, focus);
    QFETCH(int, selectedRows);
    QFETCH(bool, selectAll);
    QFETCH(bool, clearSelections);

    Window w;
    QVERIFY(QTest::qWaitForWindowActive(&w.window));
    QWidget *target = w.named(focus);
    QVERIFY(target);
    // A selection in a list that does not have the focus must not count.
    auto *focused = qobject_cast<ListView *>(target);
    for (ListView *list : w.window.lvwFiles) {
        if (list != focused)
            list->selectAll();
    }
    if (focused)
        focused->setSelectedRows(std::vector<bool>(size_t(selectedRows), true));
    QVERIFY(w.focus(target));

    QMenu *menu = w.window.menus->mnuEdit;
    menu->popup(w.window.mapToGlobal(QPoint(10, 10)));
    QTRY_VERIFY(menu->isVisible());
    QCOMPARE(w.window.menus->mnuEditSelectAll->isEnabled(), selectAll);
    QCOMPARE(w.window.menus->mnuEditClearSelections->isEnabled(), clearSelections);
    menu->close();
}

void tst_MainCommands::editCommandsActOnTheFocusedList_data() {
    QTest::addColumn<QString>("focus");
    QTest::addColumn<bool>("byKeyboard");
    QTest::addColumn<int>("selected0"); // selected rows of each list after Select All
    QTest::addColumn<int>("selected1");

    QTest::newRow("menu, list 0") << "lvwFiles0" << false << 500 << 0;
    QTest::newRow("Ctrl+A, list 1") << "lvwFiles1" << true << 0 << 500;
    QTest::newRow("Ctrl+A in a combo selects its text, not rows")
        << "cboSelectPath0" << true << 0 << 0;
}

void tst_MainCommands::editCommandsActOnTheFocusedList() {
    QFETCH(QString, focus);
    QFETCH(bool, byKeyboard);
    QFETCH(int, selected0);
    QFETCH(int, selected1);

    Window w(500);
    QVERIFY(QTest::qWaitForWindowActive(&w.window));
    QWidget *target = w.named(focus);
    QVERIFY(w.focus(target));
    QWidget *keyTarget = QApplication::focusWidget();
    const MainMenuBar &m = *w.window.menus;

    if (byKeyboard)
        QTest::keyClick(keyTarget, Qt::Key_A, Qt::ControlModifier);
    else
        m.mnuEditSelectAll->trigger();
    QCOMPARE(w.window.lvwFiles[0]->selectedCount(), selected0);
    QCOMPARE(w.window.lvwFiles[1]->selectedCount(), selected1);
    if (auto *combo = qobject_cast<QComboBox *>(target)) {
        combo->setEditText(QStringLiteral("typed"));
        QTest::keyClick(keyTarget, Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(combo->lineEdit()->selectedText(), QStringLiteral("typed"));
        return;
    }

    // Clear Selections takes away exactly the selection of the focused list.
    ListView *focused = qobject_cast<ListView *>(target);
    ListView *other = w.window.lvwFiles[focused == w.window.lvwFiles[0] ? 1 : 0];
    other->setSelectedRows({false, false, false, false, false, false, false, true});
    QVERIFY(w.focus(target));
    if (byKeyboard)
        QTest::keyClick(keyTarget, Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
    else
        m.mnuEditClearSelections->trigger();
    QCOMPARE(focused->selectedCount(), 0);
    QCOMPARE(other->selectedCount(), 1);
}

void tst_MainCommands::resetOptionsDeclined_data() {
    QTest::addColumn<int>("button");
    QTest::addColumn<int>("key");

    QTest::newRow("No") << int(QMessageBox::No) << 0;
    QTest::newRow("Escape") << 0 << int(Qt::Key_Escape);
}

void tst_MainCommands::resetOptionsDeclined() {
    QFETCH(int, button);
    QFETCH(int, key);

    TestTree tree;
    QVERIFY(tree.mkdir("a") && tree.mkdir("b"));
    storeNonDefaults(tree);
    Window w;
    QFile file(SettingsStore::fileName());
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray before = file.readAll();
    file.close();
    const QStringList columnsBefore[2] = {shownColumns(w.window.lvwFiles[0]),
                                          shownColumns(w.window.lvwFiles[1])};

    BoxAnswer answer(QMessageBox::StandardButton(button), key);
    w.window.menus->mnuFileOptions->trigger();
    const Question &seen = answer.seen;
    QVERIFY(seen.shown);
    QCOMPARE(seen.text, QStringLiteral("Set default visuals and clear recent selections?"));
    QCOMPARE(seen.icon, QMessageBox::Question);
    QCOMPARE(seen.defaultButton, QMessageBox::No);

    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), before);
    QCOMPARE(shownColumns(w.window.lvwFiles[0]), columnsBefore[0]);
    QCOMPARE(shownColumns(w.window.lvwFiles[1]), columnsBefore[1]);
    QCOMPARE(w.window.cboSelectPath[0]->currentText(), tree.path("b"));
    QVERIFY(w.window.menus->mnuViewOrientation[0]->isChecked());
    QVERIFY(w.window.menus->mnuViewAlwaysOnTop->isChecked());
    QVERIFY(w.window.menus->mnuViewFullPath->isChecked());
    QVERIFY(!w.window.menus->mnuFileIncludeSlack->isChecked());
    QVERIFY(w.window.menus->mnuViewCase[1]->isChecked());
}

void tst_MainCommands::resetOptionsAccepted() {
    TestTree tree;
    QVERIFY(tree.mkdir("a") && tree.mkdir("b"));
    storeNonDefaults(tree);
    Window w;
    const MainMenuBar &m = *w.window.menus;
    // The stored values were in force before the reset.
    QCOMPARE(w.window.lvwFiles[0]->shownCount(), 7);
    QVERIFY(IsTopmost(&w.window));
    QCOMPARE(w.window.picMain->orientation(), Qt::Vertical);

    BoxAnswer answer(QMessageBox::Yes);
    m.mnuFileOptions->trigger();
    QVERIFY(answer.seen.shown);

    // 1, 2: both folder lists emptied, on screen and in the store.
    for (int side = 0; side < 2; ++side) {
        QComboBox *combo = w.window.cboSelectPath[side];
        QCOMPARE(combo->count(), 2); // only "  Enter Manually..." and "  Browse..."
        QVERIFY(RecentLists::loadFolders(RecentLists::Side(side)).folders.isEmpty());
    }
    // 3: the recent comparison sets are the starting ones.
    QCOMPARE(RecentLists::loadSelections().values, QList<int>({3, 2, 0, 31}));
    QCOMPARE(w.window.cboComparisons->count(), 5);
    // 4: both column layouts.
    QCOMPARE(shownColumns(w.window.lvwFiles[0]), defaultColumns(w.window.lvwFiles[0]));
    QCOMPARE(shownColumns(w.window.lvwFiles[1]), defaultColumns(w.window.lvwFiles[1]));
    // 5: panes side by side.
    QCOMPARE(Options::orientation(), Options::VerticalOrientation);
    QVERIFY(m.mnuViewOrientation[1]->isChecked());
    QCOMPARE(w.window.picMain->orientation(), Qt::Horizontal);
    // 6: not on top.
    QVERIFY(!Options::alwaysOnTop());
    QVERIFY(!m.mnuViewAlwaysOnTop->isChecked());
    QVERIFY(!IsTopmost(&w.window));
    // 7: the View options.
    QCOMPARE(Options::viewOptions(), Options::ViewOptions());
    QVERIFY(m.mnuViewLink->isChecked());
    QVERIFY(m.mnuViewMissing->isChecked());
    QVERIFY(!m.mnuViewFullPath->isChecked());
    QVERIFY(!m.mnuViewAllFiles->isChecked());
    QVERIFY(!m.mnuViewBold->isChecked());
    QVERIFY(!w.window.lvwFiles[0]->files()->boldDifferent());
    // 8: the date slack.
    QVERIFY(Options::includeSlack());
    QVERIFY(m.mnuFileIncludeSlack->isChecked());
    // 9: letter case as each file system counts it; a choice in the menu is remembered.
    QCOMPARE(Options::letterCase(), QStringLiteral("auto"));
    QVERIFY(m.mnuViewCase[0]->isChecked());
    m.mnuViewCase[2]->trigger();
    QCOMPARE(Options::letterCase(), QStringLiteral("insensitive"));

    // The layouts are written when the window closes, as the defaults.
    w.window.close();
    QCOMPARE(SettingsStore::value(QStringLiteral("SourceLayout"), QStringLiteral("Position6")),
             QStringLiteral("-1"));
    QCOMPARE(SettingsStore::value(QStringLiteral("DestLayout"), QStringLiteral("Width1")),
             QString::number(ColumnLayout::DefaultWidth(w.window.lvwFiles[1], 1)));
}

void tst_MainCommands::accessKeys_data() {
    QTest::addColumn<int>("menuKey");
    QTest::addColumn<QString>("keys"); // pressed in the open menu; '\n' is Enter
    QTest::addColumn<QString>("item");

    QTest::newRow("File, Reset Options") << int(Qt::Key_F) << "r"
                                         << "&Reset Options";
    QTest::newRow("Edit, Select All") << int(Qt::Key_E) << "a"
                                      << "Select &All";
    // Link and Show All share their key: a menu opened from the keyboard marks its first item
    // (Link), and each press of the key moves the mark on to the next item with that key.
    QTest::newRow("View, Show All (shared key)") << int(Qt::Key_V) << "l\n"
                                                 << "Show A&ll Files";
    QTest::newRow("View, Link (shared key)") << int(Qt::Key_V) << "ll\n"
                                             << "&Link File Listings";
}

void tst_MainCommands::accessKeys() {
    QFETCH(int, menuKey);
    QFETCH(QString, keys);
    QFETCH(QString, item);

    Window w;
    QVERIFY(QTest::qWaitForWindowActive(&w.window));
    QVERIFY(w.focus(w.window.lvwFiles[0]));
    const MainMenuBar &m = *w.window.menus;
    QStringList triggered;
    for (QMenu *menu : {m.mnuFile, m.mnuEdit, m.mnuView}) {
        connect(menu, &QMenu::triggered, this,
                [&triggered](QAction *chosen) { triggered << chosen->text(); });
    }
    // Reset Options asks first; the answer No keeps the test's profile as it is.
    BoxAnswer answer(QMessageBox::No);

    QTest::keyClick(&w.window, Qt::Key(menuKey), Qt::AltModifier);
    QTRY_VERIFY(QApplication::activePopupWidget());
    for (const QChar c : keys) {
        QWidget *popup = QApplication::activePopupWidget();
        QVERIFY(popup);
        if (c == QLatin1Char('\n'))
            QTest::keyClick(popup, Qt::Key_Return);
        else
            QTest::keyClick(popup, c.toLatin1());
    }
    QTRY_COMPARE(triggered, QStringList{item});
    QTRY_VERIFY(!QApplication::activePopupWidget());
}

void tst_MainCommands::linkItemRecopiesColumns() {
    LinkedTrees trees;
    QVERIFY(trees.write());
    ComparedWindow w(trees.tree.path("src"), trees.tree.path("dst"));
    w.compare();
    ListView *destination = w.list(1);
    const auto sizeColumn = FileListModel::columnOf(ColumnType::Size);
    const auto differenceColumn = FileListModel::columnOf(ColumnType::Difference);
    QCOMPARE(w.text(1, w.row(1, QStringLiteral("p/b")), ColumnType::Size),
             QStringLiteral("5 bytes"));

    setLinked(w, false);
    QCOMPARE(SettingsStore::value(QStringLiteral("Options"), QStringLiteral("LinkListings")),
             QStringLiteral("False"));
    // Unlinked, the destination list loses two columns and keeps them lost.
    for (int column : {differenceColumn, sizeColumn})
        destination->setColumnHidden(column, true);
    QCOMPARE(destination->shownCount(), 4);
    QCOMPARE(w.list(0)->shownCount(), 6);

    setLinked(w, true);
    QCOMPARE(SettingsStore::value(QStringLiteral("Options"), QStringLiteral("LinkListings")),
             QStringLiteral("True"));
    QCOMPARE(destination->shownCount(), 6);
    // Copied columns arrive narrow, but wide enough to be grabbed and widened.
    const int narrowest = destination->header()->minimumSectionSize();
    QCOMPARE(destination->columnWidth(differenceColumn), narrowest);
    QCOMPARE(destination->columnWidth(sizeColumn), narrowest);
}

void tst_MainCommands::placeholdersRebuiltWhenSwitching_data() {
    QTest::addColumn<bool>("placeholders");
    QTest::addColumn<bool>("switchOn"); // the direction of the switch

    QTest::newRow("placeholders, switched on") << true << true;
    QTest::newRow("placeholders, switched off") << true << false;
    QTest::newRow("no placeholders, switched on") << false << true;
}

void tst_MainCommands::placeholdersRebuiltWhenSwitching() {
    QFETCH(bool, placeholders);
    QFETCH(bool, switchOn);

    LinkedTrees trees;
    QVERIFY(trees.write());
    Options::setUseMissingPlaceholders(placeholders);
    ComparedWindow w(trees.tree.path("src"), trees.tree.path("dst"));
    w.compare();
    const int rows = placeholders ? 5 : 4;
    QCOMPARE(w.rows(0).size(), rows);
    if (switchOn)
        setLinked(w, false);
    // Cleared, the lists show whether the switch rebuilt them from the collections.
    w.window.menus->mnuFileClear->trigger();
    setLinked(w, switchOn);
    QCOMPARE(w.rows(0).size(), placeholders ? rows : 0);
    QCOMPARE(w.rows(1).size(), placeholders ? rows : 0);
}

QTEST_MAIN(tst_MainCommands)
#include "tst_MainCommands.moc"
