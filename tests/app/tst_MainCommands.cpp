#include "ComparedWindow.h"

#include "engine/ComparisonFileCollection.h"
#include "settings/Options.h"
#include "settings/RecentLists.h"
#include "settings/SettingsStore.h"
#include "support/ModalWatcher.h"
#include "support/TestProfile.h"
#include "support/TestTree.h"
#include "tools/GeneralHelpers.h"
#include "views/AddToListview.h"
#include "views/ColumnLayout.h"
#include "views/ListColumns.h"

#include <QAction>
#include <QLineEdit>
#include <QMimeData>
#include <QSplitter>
#include <QTimer>

#include <algorithm>
#include <functional>

namespace {

/** Runs \a work once between two slices of the rebuild \a toggle starts; whether it ran. */
bool duringRebuild(ComparedWindow &w, const QString &toggle, const std::function<void()> &work) {
    bool ran = false;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        if (ran || !w.window.IsBusy() || !w.status().contains(QLatin1String("Rebuilding")))
            return;
        ran = true;
        work();
    });
    poll.start(0);
    w.item(toggle)->trigger();
    return ran;
}

} // namespace

class tst_MainCommands : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_profile.clear(); }
    void editCommandsActOnTheFocusedList_data() {
        QTest::addColumn<QString>("focus");
        QTest::addColumn<bool>("byKeyboard");
        QTest::addColumn<int>("selected0"); // after Select All; the other list has one selected
        QTest::addColumn<int>("selected1");
        QTest::newRow("menu, list 0") << "lvwFiles0" << false << 500 << 1;
        QTest::newRow("Ctrl+A, list 1") << "lvwFiles1" << true << 1 << 500;
        QTest::newRow("Ctrl+A in a combo selects its text, not rows")
            << "cboSelectPath0" << true << 0 << 1;
    }
    void editCommandsActOnTheFocusedList() {
        QFETCH(QString, focus);
        QFETCH(bool, byKeyboard);
        Options::setLinkListings(false);
        ComparedWindow w;
        TestTree trees[2];
        ComparisonFileCollection files[2];
        for (int side = 0; side < 2; ++side) {
            for (int i = 0; i < 500; ++i)
                QVERIFY(trees[side].write(QStringLiteral("f%1").arg(i), "x"));
            files[side].setRootFolder(trees[side].root());
            for (const ComparisonFilePtr &file : files[side])
                AddToListview(file, w.list(side), nullptr);
            w.list(side)->files()->flush();
        }
        QWidget *target = w.window.findChild<QWidget *>(focus);
        auto *focused = qobject_cast<ListView *>(target);
        ListView *other = w.list(focused == w.list(1) ? 0 : 1);
        other->setSelectedRows({false, true});
        QVERIFY(w.focus(target));
        QWidget *keyTarget = QApplication::focusWidget();
        QCOMPARE(w.item("Select &All")->isEnabled(), focused != nullptr);
        QVERIFY(!w.item("&Clear Selections")->isEnabled()); // not for the other list's selection

        if (byKeyboard)
            QTest::keyClick(keyTarget, Qt::Key_A, Qt::ControlModifier);
        else
            w.item("Select &All")->trigger();
        QTEST(w.list(0)->selectedCount(), "selected0");
        QTEST(w.list(1)->selectedCount(), "selected1");
        if (auto *combo = qobject_cast<QComboBox *>(target)) {
            combo->setEditText(QStringLiteral("typed"));
            QTest::keyClick(keyTarget, Qt::Key_A, Qt::ControlModifier);
            QCOMPARE(combo->lineEdit()->selectedText(), QStringLiteral("typed"));
            return;
        }
        QVERIFY(w.item("&Clear Selections")->isEnabled());
        if (byKeyboard)
            QTest::keyClick(keyTarget, Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
        else
            w.item("&Clear Selections")->trigger();
        QCOMPARE(focused->selectedCount(), 0);
        QCOMPARE(other->selectedCount(), 1);
    }
    void resetOptions() {
        TestTree tree;
        QVERIFY(tree.mkdir("a") && tree.mkdir("b"));
        RecentLists::saveFolders(RecentLists::Side::Source, {tree.path("a"), tree.path("b")}, 1);
        RecentLists::saveFolders(RecentLists::Side::Destination, {tree.path("b")}, 0);
        RecentLists::saveSelections({33, 1}, 0);
        SettingsStore::write("SourceLayout", "Position6", "6");
        SettingsStore::write("DestLayout", "Width1", "333");
        Options::setOrientation(Options::HorizontalOrientation);
        Options::setAlwaysOnTop(true);
        Options::setViewOptions({false, false, true, true, true}); // each the other way
        Options::setIncludeSlack(false);
        Options::setLetterCase(QStringLiteral("sensitive"));
        ComparedWindow w;
        QCOMPARE(w.list(0)->shownCount(), 7);
        QVERIFY(IsTopmost(&w.window));
        QCOMPARE(w.find<QSplitter>("picMain")->orientation(), Qt::Vertical);
        const QByteArray stored = m_profile.raw();

        bool yes = false; // declined with Esc first
        ModalWatcher watcher([&yes](QWidget *shown) {
            auto *box = qobject_cast<QMessageBox *>(shown);
            if (box)
                yes ? box->button(QMessageBox::Yes)->click() : QTest::keyClick(box, Qt::Key_Escape);
            return box != nullptr;
        });
        w.item("&Reset Options")->trigger();
        QCOMPARE(m_profile.raw(), stored);
        QCOMPARE(w.folder(0)->currentText(), tree.path("b"));
        yes = true;
        w.item("&Reset Options")->trigger();
        for (int side = 0; side < 2; ++side) {
            QCOMPARE(w.folder(side)->count(), 2); // only Enter Manually and Browse
            QVERIFY(RecentLists::loadFolders(RecentLists::Side(side)).folders.isEmpty());
        }
        QCOMPARE(RecentLists::loadSelections().values, QList<int>({3, 2, 0, 31}));
        QCOMPARE(w.list(0)->shownCount(), 6);
        QCOMPARE(w.list(1)->columnWidth(FileListModel::columnOf(1)),
                 ColumnLayout::DefaultWidth(w.list(1), 1));
        QCOMPARE(Options::orientation(), Options::VerticalOrientation);
        QCOMPARE(w.find<QSplitter>("picMain")->orientation(), Qt::Horizontal);
        QVERIFY(!Options::alwaysOnTop() && !IsTopmost(&w.window));
        QCOMPARE(Options::viewOptions(), Options::ViewOptions());
        QVERIFY(w.item("&Link File Listings")->isChecked() &&
                !w.item("Show &Full Path")->isChecked());
        QVERIFY(!w.list(0)->files()->boldDifferent());
        QVERIFY(Options::includeSlack() &&
                w.item("Include &2-Second Slack For Dates")->isChecked());
        QVERIFY(Options::letterCase() == "auto" &&
                w.item("&As Each File System Does")->isChecked());
        w.window.close(); // writes the layouts
        QCOMPARE(SettingsStore::value("SourceLayout", "Position6"), QStringLiteral("-1"));
        QCOMPARE(SettingsStore::value("DestLayout", "Width1"),
                 QString::number(ColumnLayout::DefaultWidth(w.list(1), 1)));
    }
    void placeholdersRebuiltWhenSwitching_data() {
        QTest::addColumn<bool>("placeholders");
        QTest::newRow("placeholders") << true;
        QTest::newRow("no placeholders") << false;
    }
    void placeholdersRebuiltWhenSwitching() {
        QFETCH(bool, placeholders);
        TestTree tree;
        for (const QString name : {"p/b", "q/a", "r/c"})
            QVERIFY(tree.write("src/" + name, "1") && tree.write("dst/" + name, "22"));
        QVERIFY(tree.write("src/p/s-only", "4") && tree.write("dst/q/d-only", "8"));
        Options::setUseMissingPlaceholders(placeholders);
        ComparedWindow w(tree.path("src"), tree.path("dst"));
        w.compare();
        const int rows = placeholders ? 5 : 4;
        QCOMPARE(w.rows(0).size(), rows);
        w.item("&Link File Listings")->trigger();
        w.item("C&lear Display")->trigger(); // switching linking on must rebuild from the results
        w.item("&Link File Listings")->trigger();
        QCOMPARE(w.rows(0).size(), placeholders ? rows : 0);
        QCOMPARE(w.rows(1).size(), placeholders ? rows : 0);
    }
    void droppedFolders_data() {
        QTest::addColumn<QStringList>("dropped");
        QTest::addColumn<QString>("target");
        QTest::addColumn<QStringList>("folders"); // the source's and the destination's afterwards
        QTest::newRow("on the destination box")
            << QStringList{"a"} << "cboSelectPath1" << QStringList{"", "a"};
        QTest::newRow("two folders fill both sides")
            << QStringList{"a", "b"} << "lvwFiles1" << QStringList{"a", "b"};
        QTest::newRow("a file is refused")
            << QStringList{"a/f.txt"} << "cboSelectPath0" << QStringList{"", ""};
    }
    void droppedFolders() {
        QFETCH(QStringList, dropped);
        QFETCH(QString, target);
        QFETCH(QStringList, folders);
        TestTree tree;
        QVERIFY(tree.write("a/f.txt", "x") && tree.mkdir("b"));
        ComparedWindow w;
        QMimeData data;
        QList<QUrl> urls;
        for (const QString &relative : dropped)
            urls << QUrl::fromLocalFile(tree.path(relative));
        data.setUrls(urls);
        QWidget *over = w.window.findChild<QWidget *>(target);
        const QPoint pos = over->mapTo(&w.window, over->rect().center());
        QDragEnterEvent enter(pos, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&w.window, &enter);
        QCOMPARE(enter.isAccepted(), folders != QStringList({"", ""}));
        QDropEvent drop(QPointF(pos), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&w.window, &drop);
        for (int side = 0; side < 2; ++side)
            QCOMPARE(w.folder(side)->currentText(),
                     folders[side].isEmpty() ? "" : tree.path(folders[side]));
    }
    void rebuildGivesWayToNewerWork_data() {
        QTest::addColumn<QString>("during");
        QTest::newRow("Show All Files toggled back") << "toggle";
        QTest::newRow("a new compare") << "compare";
        QTest::newRow("Clear Display") << "clear";
        QTest::newRow("a header click") << "sort";
    }
    void rebuildGivesWayToNewerWork() {
        QFETCH(QString, during);
        TestTree tree; // enough identical pairs to take the rebuild several slices
        for (int i = 0; i < 4000; ++i) {
            const QString name = QStringLiteral("d%1/f%2").arg(i % 10).arg(i);
            QVERIFY(tree.write("src/" + name, "1") && tree.write("dst/" + name, "1"));
        }
        for (const QString name : {"a", "b", "c"})
            QVERIFY(tree.write("src/" + name, "1") && tree.write("dst/" + name, "22"));
        ComparedWindow w(tree.path("src"), tree.path("dst"));
        w.compare();
        const QStringList differing[2] = {w.rows(0), w.rows(1)};
        QCOMPARE(differing[0].size(), 3);
        QAction *allFiles = w.item("Show A&ll Files");
        QVERIFY(duringRebuild(w, "Show A&ll Files", [&] {
            if (during == "toggle") {
                allFiles->trigger();
            } else if (during == "compare") {
                QVERIFY(tree.write("src/new", "1"));
                w.compare();
            } else if (during == "clear") {
                w.item("C&lear Display")->trigger();
            } else {
                Q_EMIT w.list(0)->columnClicked(ColumnType::Name);
            }
        }));
        QVERIFY(!w.window.IsBusy());
        QCOMPARE(w.status(), QStringLiteral("  Compare complete."));

        if (during == "toggle") {
            QVERIFY(!allFiles->isChecked());
            QCOMPARE(w.rows(0), differing[0]);
            QCOMPARE(w.rows(1), differing[1]);
        } else if (during == "compare") {
            // Only the new compare's rows and records, as a compare on its own gives.
            const QStringList compared[2] = {w.rows(0), w.rows(1)};
            QCOMPARE(compared[0].size(), 4004);
            QVERIFY(compared[0].contains("new"));
            for (int side = 0; side < 2; ++side) {
                const FileListModel *files = w.list(side)->files();
                for (int row = 0; row < files->count(); ++row)
                    QVERIFY(files->record(row) ==
                            w.window.Files(side)->Item(files->record(row)->Key()));
            }
            w.compare();
            QCOMPARE(w.rows(0), compared[0]);
            QCOMPARE(w.rows(1), compared[1]);
        } else if (during == "clear") {
            QCOMPARE(w.rows(0) + w.rows(1), QStringList());
        } else {
            // Each row once, every pair listed.
            for (int side = 0; side < 2; ++side) {
                QStringList rows = w.rows(side);
                QCOMPARE(rows.size(), 4003);
                rows.sort();
                QCOMPARE(rows.size(), int(std::unique(rows.begin(), rows.end()) - rows.begin()));
                for (const QString &name : differing[side])
                    QVERIFY(rows.contains(name));
            }
        }
    }

private:
    TestProfile m_profile;
};

QTEST_MAIN(tst_MainCommands)
#include "tst_MainCommands.moc"
