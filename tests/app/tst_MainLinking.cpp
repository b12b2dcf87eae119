#include "AppProfile.h"
#include "ComparedWindow.h"

#include "app/frmMain.h"
#include "engine/ComparisonFileCollection.h"
#include "settings/Options.h"
#include "settings/SettingsStore.h"
#include "support/TestTree.h"
#include "views/ListColumns.h"
#include "views/ListSorting.h"
#include "views/ListView.h"

#include <QAction>
#include <QScrollBar>
#include <QTest>

/**
 * View > Link File Listings in the main window, after a real compare: the menu item switches
 * the coupling with its procedure, and the coupled lists translate keys between the two
 * roots of the run.
 */
class tst_MainLinking : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void selectionFollowsTheFile_data();
    void selectionFollowsTheFile();
    void switchingOffAndOnRecopiesColumns();
    void switchingOnSortsTheDestination_data();
    void switchingOnSortsTheDestination();
    void followerScrollsWithTheLeader_data();
    void followerScrollsWithTheLeader();
    void placeholdersRebuiltWhenSwitching_data();
    void placeholdersRebuiltWhenSwitching();

private:
    std::unique_ptr<AppProfile> m_profile;
};

namespace {

/**
 * Three pairs that differ in size, in three folders, and one file on each side alone:
 * "p/b", "q/a", "r/c" on both sides, "p/s-only" in the source, "q/d-only" in the destination.
 */
struct Trees {
    Trees() {
        ok = tree.write("src/p/b", "1") && tree.write("src/q/a", "22") &&
             tree.write("src/r/c", "333") && tree.write("src/p/s-only", "4444") &&
             tree.write("dst/p/b", "55555") && tree.write("dst/q/a", "6") &&
             tree.write("dst/r/c", "77") && tree.write("dst/q/d-only", "8");
    }
    QString root(int side) const { return tree.path(side ? "dst" : "src").toLower(); }

    TestTree tree;
    bool ok = false;
};

/** A compared window over \a trees, with placeholder rows as \a placeholders says. */
struct LinkedWindow : ComparedWindow {
    explicit LinkedWindow(const Trees &trees, bool placeholders = false)
        : ComparedWindow(storeOptions(trees, placeholders), trees.tree.path("dst")) {
        compare();
    }

    static QString storeOptions(const Trees &trees, bool placeholders) {
        Options::setUseMissingPlaceholders(placeholders);
        return trees.tree.path("src");
    }

    QStringList rows(int side) const { return ComparedWindow::rows(side, roots[side]); }
    QStringList selected(int side) const { return selectedRows(side, roots[side]); }
    ListItem item(int side, const QString &relative) const {
        return window.lvwFiles[size_t(side)]->ItemByKey(roots[side] + QLatin1Char('/') + relative);
    }
    void clickHeader(int side, int type) {
        ListView *list = window.lvwFiles[size_t(side)];
        Q_EMIT list->ColumnClick(list->ColumnByKey(ColumnKey(type)));
    }
    void setLinked(bool linked) {
        if (window.menus->mnuViewLink->isChecked() != linked)
            window.menus->mnuViewLink->trigger();
    }

    QString roots[2] = {window.cboSelectPath[0]->currentText().toLower(),
                        window.cboSelectPath[1]->currentText().toLower()};
};

} // namespace

void tst_MainLinking::initTestCase() {
    m_profile = std::make_unique<AppProfile>();
    QVERIFY(m_profile->isValid());
}

void tst_MainLinking::init() {
    QFile::remove(SettingsStore::fileName());
}

void tst_MainLinking::selectionFollowsTheFile_data() {
    QTest::addColumn<int>("model");
    QTest::newRow("selected in the source list") << 0;
    QTest::newRow("selected in the destination list") << 1;
}

void tst_MainLinking::selectionFollowsTheFile() {
    QFETCH(int, model);
    const int follower = 1 - model;
    const QString ownFile[2] = {QStringLiteral("p/s-only"), QStringLiteral("q/d-only")};

    Trees trees;
    QVERIFY(trees.ok);
    LinkedWindow w(trees);
    QVERIFY(w.window.menus->mnuViewLink->isChecked());
    // The follower is ordered differently, so a row's counterpart sits at another position.
    ListView *followerList = w.window.lvwFiles[size_t(follower)];
    SortListView(followerList, nullptr, followerList->ColumnByKey(ColumnKey(1)), false);
    QVERIFY(w.rows(0) != w.rows(1));

    // The follower's own file, selected first, has no counterpart: it loses its selection
    // as soon as a selection in the model is mirrored.
    w.item(follower, ownFile[follower]).setSelected(true);
    QCOMPARE(w.selected(follower), QStringList{ownFile[follower]});
    w.item(model, QStringLiteral("p/b")).setSelected(true);
    w.item(model, ownFile[model]).setSelected(true);
    QCOMPARE(w.selected(follower), QStringList{"p/b"});
    QCOMPARE(w.selected(model).size(), 2);

    // Switched off, selections stay apart.
    w.setLinked(false);
    w.item(model, QStringLiteral("r/c")).setSelected(true);
    QCOMPARE(w.selected(follower), QStringList{"p/b"});
}

void tst_MainLinking::switchingOffAndOnRecopiesColumns() {
    Trees trees;
    QVERIFY(trees.ok);
    LinkedWindow w(trees);
    ListView *destination = w.window.lvwFiles[1];
    const int sizeSub = destination->ColumnByKey(ColumnKey(3))->SubItemIndex();
    const QString sizeText = w.item(1, QStringLiteral("p/b")).SubItems(sizeSub);
    QCOMPARE(sizeText, QStringLiteral("5 bytes"));

    w.setLinked(false);
    QCOMPARE(SettingsStore::value(QStringLiteral("Options"), QStringLiteral("LinkListings")),
             QStringLiteral("False"));
    // Unlinked, the destination list loses two columns and keeps them lost.
    for (int type : {9, 3})
        destination->RemoveColumnAt(destination->ColumnByKey(ColumnKey(type))->Index());
    QCOMPARE(destination->ColumnCount(), 4);
    QCOMPARE(w.window.lvwFiles[0]->ColumnCount(), 6);

    w.setLinked(true);
    QCOMPARE(SettingsStore::value(QStringLiteral("Options"), QStringLiteral("LinkListings")),
             QStringLiteral("True"));
    QCOMPARE(destination->ColumnCount(), 6);
    // Copied columns arrive as narrow as their default positions: "Difference" 0, "Size" 3.
    QCOMPARE(destination->ColumnByKey(ColumnKey(9))->Width(), 0.0f);
    QCOMPARE(destination->ColumnByKey(ColumnKey(3))->Width(), 3.0f);
    // And their texts are filled in at once.
    const ColumnHeader *size = destination->ColumnByKey(ColumnKey(3));
    QCOMPARE(w.item(1, QStringLiteral("p/b")).SubItems(size->SubItemIndex()), sizeText);
}

void tst_MainLinking::switchingOnSortsTheDestination_data() {
    QTest::addColumn<int>("sourceColumn"); // clicked once in the unlinked source list
    QTest::addColumn<QStringList>("source");
    QTest::addColumn<QStringList>("destination");

    // Sorted on "Size", the source's sort key is 2; the header at index 2, "In Folder", sorts
    // the destination (stably, from its order by name descending).
    QTest::newRow("off by one") << 3 << QStringList{"p/b", "q/a", "r/c", "p/s-only"}
                                << QStringList{"p/b", "q/d-only", "q/a", "r/c"};
    // Sorted on "Name", the first header created (descending: it was the sort key already),
    // there is no header at index 0: both lists are sorted as by a click on the source's
    // "Name" header, which toggles to ascending.
    QTest::newRow("fallback") << 1 << QStringList{"q/a", "p/b", "r/c", "p/s-only"}
                              << QStringList{"q/a", "p/b", "r/c", "q/d-only"};
}

void tst_MainLinking::switchingOnSortsTheDestination() {
    QFETCH(int, sourceColumn);
    QFETCH(QStringList, source);
    QFETCH(QStringList, destination);

    Trees trees;
    QVERIFY(trees.ok);
    LinkedWindow w(trees);
    w.setLinked(false);
    // "Name" is the sort key from the start, so a click on it sorts descending.
    w.clickHeader(1, 1);
    QCOMPARE(w.rows(1), QStringList({"q/d-only", "r/c", "p/b", "q/a"}));
    w.clickHeader(0, sourceColumn);

    w.setLinked(true);
    QCOMPARE(w.rows(0), source);
    QCOMPARE(w.rows(1), destination);
}

void tst_MainLinking::followerScrollsWithTheLeader_data() {
    QTest::addColumn<int>("leader");
    QTest::addColumn<bool>("switchOffAndOn");
    QTest::addColumn<bool>("linked");

    QTest::newRow("source leads") << 0 << false << true;
    QTest::newRow("destination leads") << 1 << false << true;
    QTest::newRow("switched off and on again") << 0 << true << true;
    QTest::newRow("switched off") << 1 << false << false;
}

void tst_MainLinking::followerScrollsWithTheLeader() {
    QFETCH(int, leader);
    QFETCH(bool, switchOffAndOn);
    QFETCH(bool, linked);

    TestTree tree;
    for (int i = 0; i < 200; ++i) {
        const QString name = QStringLiteral("f%1").arg(i, 3, 10, QLatin1Char('0'));
        QVERIFY(tree.write("src/" + name, "1"));
        QVERIFY(tree.write("dst/" + name, "22"));
    }
    ComparedWindow w(tree.path("src"), tree.path("dst"));
    QVERIFY(w.activate());
    w.compare();
    const MainMenuBar &m = *w.window.menus;
    if (switchOffAndOn || !linked)
        m.mnuViewLink->trigger();
    if (switchOffAndOn)
        m.mnuViewLink->trigger();
    QCOMPARE(m.mnuViewLink->isChecked(), linked);

    ListView *lead = w.window.lvwFiles[size_t(leader)];
    ListView *follow = w.window.lvwFiles[size_t(1 - leader)];
    lead->setFocus();
    QTRY_VERIFY(lead->hasFocus());
    // Rows reach the view in timed batches: wait until all of them are laid out.
    QScrollBar *bar = lead->verticalScrollBar();
    QTRY_VERIFY(bar->maximum() > 20);
    QTRY_COMPARE(follow->verticalScrollBar()->maximum(), bar->maximum());
    for (const int top : {bar->maximum(), bar->maximum() / 2, 7}) {
        bar->setValue(top);
        QCOMPARE(lead->TopRow(), top);
        QTest::qWait(100);
        QCOMPARE(follow->TopRow(), linked ? top : 0);
    }
}

void tst_MainLinking::placeholdersRebuiltWhenSwitching_data() {
    QTest::addColumn<bool>("placeholders");
    QTest::addColumn<bool>("switchOn"); // the direction of the switch

    QTest::newRow("placeholders, switched off") << true << false;
    QTest::newRow("placeholders, switched on") << true << true;
    QTest::newRow("no placeholders, switched off") << false << false;
    QTest::newRow("no placeholders, switched on") << false << true;
}

void tst_MainLinking::placeholdersRebuiltWhenSwitching() {
    QFETCH(bool, placeholders);
    QFETCH(bool, switchOn);

    Trees trees;
    QVERIFY(trees.ok);
    LinkedWindow w(trees, placeholders);
    const int rows = placeholders ? 5 : 4;
    QCOMPARE(w.rows(0).size(), rows);
    if (switchOn)
        w.setLinked(false);
    // Cleared, the lists show whether the switch rebuilt them from the collections.
    w.window.menus->mnuFileClear->trigger();
    w.setLinked(switchOn);
    QCOMPARE(w.rows(0).size(), placeholders ? rows : 0);
    QCOMPARE(w.rows(1).size(), placeholders ? rows : 0);
}

QTEST_MAIN(tst_MainLinking)
#include "tst_MainLinking.moc"
