#include "AppProfile.h"

#include "app/StatusLine.h"
#include "app/frmMain.h"
#include "settings/Options.h"
#include "settings/SettingsStore.h"
#include "support/TestTree.h"
#include "views/Splitter.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QUrl>

class tst_frmMain : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void menuItems_data();
    void menuItems();
    void menuSeparators();
    void initialDisplay();

    void orientation_data();
    void orientation();
    void orientationItemStoresIndexPlusOne();

    void placement_data();
    void placement();
    void placementSavedAfterMove();

    void droppedFolders_data();
    void droppedFolders();

private:
    std::unique_ptr<AppProfile> m_profile;
};

void tst_frmMain::initTestCase() {
    m_profile = std::make_unique<AppProfile>();
    QVERIFY(m_profile->isValid());
}

void tst_frmMain::init() {
    QFile::remove(SettingsStore::fileName());
}

namespace {

QAction *item(frmMain &window, const QString &name) {
    const MainMenuBar &m = *window.menus;
    const QHash<QString, QAction *> items = {
        {"mnuFileSelectPath0", m.mnuFileSelectPath[0]},
        {"mnuFileSelectPath1", m.mnuFileSelectPath[1]},
        {"mnuFileCompare", m.mnuFileCompare},
        {"mnuFileClear", m.mnuFileClear},
        {"mnuFileIncludeSlack", m.mnuFileIncludeSlack},
        {"mnuFileSelectDiff", m.mnuFileSelectDiff},
        {"mnuFileOptions", m.mnuFileOptions},
        {"mnuFileExit", m.mnuFileExit},
        {"mnuEditSelectAll", m.mnuEditSelectAll},
        {"mnuEditClearSelections", m.mnuEditClearSelections},
        {"mnuViewLink", m.mnuViewLink},
        {"mnuViewMissing", m.mnuViewMissing},
        {"mnuViewFullPath", m.mnuViewFullPath},
        {"mnuViewAllFiles", m.mnuViewAllFiles},
        {"mnuViewBold", m.mnuViewBold},
        {"mnuViewOrientation0", m.mnuViewOrientation[0]},
        {"mnuViewOrientation1", m.mnuViewOrientation[1]},
        {"mnuViewAlwaysOnTop", m.mnuViewAlwaysOnTop},
        {"mnuToolsOpenContainingFolder", m.mnuToolsOpenContainingFolder},
        {"mnuToolsDiff", m.mnuToolsDiff},
        {"mnuToolsCopyToSource", m.mnuToolsCopyToSource},
        {"mnuToolsCopyToDest", m.mnuToolsCopyToDest},
        {"mnuHelpAbout", m.mnuHelpAbout},
    };
    return items.value(name);
}

QString menuOf(frmMain &window, QAction *action) {
    const MainMenuBar &m = *window.menus;
    for (QMenu *menu : {m.mnuFile, m.mnuEdit, m.mnuView, m.mnuTools, m.mnuHelp}) {
        if (menu->actions().contains(action))
            return menu->title();
    }
    return {};
}

} // namespace

void tst_frmMain::menuItems_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("menu");
    QTest::addColumn<QString>("caption");
    QTest::addColumn<bool>("checkable");

    const auto row = [](const char *name, const char *menu, const char *caption, bool check) {
        QTest::newRow(name) << QString::fromLatin1(name) << QString::fromLatin1(menu)
                            << QString::fromLatin1(caption) << check;
    };
    row("mnuFileSelectPath0", "&File", "Select &Source Folder...", false);
    row("mnuFileSelectPath1", "&File", "Select &Destination Folder...", false);
    row("mnuFileCompare", "&File", "&Compare\tEnter", false);
    row("mnuFileClear", "&File", "C&lear Display", false);
    row("mnuFileIncludeSlack", "&File", "Include &2-Second Slack For Dates", true);
    row("mnuFileSelectDiff", "&File", "Select Di&ff Program...", false);
    row("mnuFileOptions", "&File", "&Reset Options", false);
    row("mnuFileExit", "&File", "E&xit", false);
    row("mnuEditSelectAll", "&Edit", "Select &All", false);
    row("mnuEditClearSelections", "&Edit", "&Clear Selections", false);
    row("mnuViewLink", "&View", "&Link File Listings", true);
    row("mnuViewMissing", "&View", "Use &Missing File Placeholders", true);
    row("mnuViewFullPath", "&View", "Show &Full Path", true);
    row("mnuViewAllFiles", "&View", "Show A&ll Files", true);
    row("mnuViewBold", "&View", "Bold Different Files", true);
    row("mnuViewOrientation0", "&View", "&Horizontal Orientation", true);
    row("mnuViewOrientation1", "&View", "&Vertical Orientation", true);
    row("mnuViewAlwaysOnTop", "&View", "&Always On Top", true);
    row("mnuToolsOpenContainingFolder", "&Tools", "&Open Containing Folder", false);
    row("mnuToolsDiff", "&Tools", "Examine Di&fferences", false);
    row("mnuToolsCopyToSource", "&Tools", "Copy to &Source...", false);
    row("mnuToolsCopyToDest", "&Tools", "Copy to &Destination...", false);
    row("mnuHelpAbout", "&Help", "&About", false);
}

void tst_frmMain::menuItems() {
    QFETCH(QString, name);
    QFETCH(QString, menu);
    QFETCH(QString, caption);
    QFETCH(bool, checkable);

    frmMain window;
    QAction *action = item(window, name);
    QVERIFY(action);
    QCOMPARE(menuOf(window, action), menu);
    QCOMPARE(action->text(), caption);
    QCOMPARE(action->isCheckable(), checkable);
}

void tst_frmMain::menuSeparators() {
    // The separators divide the menus into the designed groups, and nowhere else.
    frmMain window;
    const auto shape = [](QMenu *menu) {
        QString s;
        for (QAction *a : menu->actions())
            s += a->isSeparator() ? QLatin1Char('-') : QLatin1Char('i');
        return s;
    };
    const MainMenuBar &m = *window.menus;
    QCOMPARE(shape(m.mnuFile), QStringLiteral("ii-i-i-iii-i"));
    QCOMPARE(shape(m.mnuEdit), QStringLiteral("ii"));
    QCOMPARE(shape(m.mnuView), QStringLiteral("ii-iii-ii-i"));
    QCOMPARE(shape(m.mnuTools), QStringLiteral("ii-ii"));
    QCOMPARE(shape(m.mnuHelp), QStringLiteral("i"));
    QStringList titles;
    for (QAction *a : window.menuBar()->actions())
        titles << a->text();
    QCOMPARE(titles, QStringList({"&File", "&Edit", "&View", "&Tools", "&Help"}));
}

void tst_frmMain::initialDisplay() {
    frmMain window;
    window.InitializeDisplay();
    QCOMPARE(window.lblSelectPath[0]->text(), QStringLiteral("&Source:"));
    QCOMPARE(window.lblSelectPath[1]->text(), QStringLiteral("&Destination:"));
    QCOMPARE(window.lblSelectPath[0]->buddy(), window.cboSelectPath[0]);
    QCOMPARE(window.lblSelectPath[1]->buddy(), window.cboSelectPath[1]);
    QCOMPARE(window.cmdCompare->text(), QStringLiteral("&Compare"));
    QVERIFY(window.cmdCompare->isDefault());
    QCOMPARE(window.StatusBar1->shownText(), QStringLiteral("  Ready"));
    QVERIFY(!window.StatusBar1->ProgressBar1()->isVisibleTo(window.StatusBar1));
    QCOMPARE(window.lblPath[0]->text(), QString());
    QCOMPARE(window.lblPath[1]->text(), QString());
    // A fresh profile: slack on, not on top, panes side by side.
    QVERIFY(window.menus->mnuFileIncludeSlack->isChecked());
    QVERIFY(!window.menus->mnuViewAlwaysOnTop->isChecked());
    QVERIFY(window.menus->mnuViewOrientation[1]->isChecked());
}

void tst_frmMain::orientation_data() {
    QTest::addColumn<QString>("stored");
    QTest::addColumn<int>("checkedIndex");
    QTest::addColumn<bool>("stacked");

    QTest::newRow("nothing stored") << QString() << 1 << false;
    QTest::newRow("1 horizontal: stacked") << "1" << 0 << true;
    QTest::newRow("2 vertical: side by side") << "2" << 1 << false;
    QTest::newRow("0 reads as vertical") << "0" << 1 << false;
    QTest::newRow("3 reads as vertical") << "3" << 1 << false;
    QTest::newRow("text reads as vertical") << "up" << 1 << false;
}

void tst_frmMain::orientation() {
    QFETCH(QString, stored);
    QFETCH(int, checkedIndex);
    QFETCH(bool, stacked);

    if (!stored.isNull())
        QVERIFY(
            SettingsStore::write(QStringLiteral("Options"), QStringLiteral("Orientation"), stored));
    frmMain window;
    window.InitializeDisplay();
    window.resize(800, 600);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QVERIFY(window.menus->mnuViewOrientation[checkedIndex]->isChecked());
    QVERIFY(!window.menus->mnuViewOrientation[1 - checkedIndex]->isChecked());
    const QRect first = window.picSide[0]->geometry();
    const QRect second = window.picSide[1]->geometry();
    if (stacked) {
        QVERIFY2(second.top() > first.bottom(), "the destination pane lies below the source");
        QCOMPARE(first.width(), window.picMain->width());
    } else {
        QVERIFY2(second.left() > first.right(), "the destination pane lies right of the source");
        QCOMPARE(first.height(), window.picMain->height());
    }
}

void tst_frmMain::orientationItemStoresIndexPlusOne() {
    frmMain window;
    window.InitializeDisplay();
    window.menus->mnuViewOrientation[0]->trigger();
    QCOMPARE(Options::orientation(), Options::HorizontalOrientation);
    QCOMPARE(window.oSplitter->Orientation(), int(Splitter::Horizontal));
    window.menus->mnuViewOrientation[1]->trigger();
    QCOMPARE(Options::orientation(), Options::VerticalOrientation);
    QCOMPARE(window.oSplitter->Orientation(), int(Splitter::Vertical));
    QVERIFY(!window.menus->mnuViewOrientation[0]->isChecked());
}

void tst_frmMain::placement_data() {
    QTest::addColumn<bool>("stored");
    QTest::addColumn<bool>("reset");
    QTest::addColumn<bool>("expectStored");

    QTest::newRow("nothing stored: centred default") << false << false << false;
    QTest::newRow("stored rectangle applied as it is") << true << false << true;
    QTest::newRow("reset ignores the stored rectangle") << true << true << false;
}

void tst_frmMain::placement() {
    QFETCH(bool, stored);
    QFETCH(bool, reset);
    QFETCH(bool, expectStored);

    // Partly off every screen on purpose: the stored rectangle is not corrected.
    const QRect storedRect(-150, 40, 700, 500);
    if (stored)
        QVERIFY(Options::setWindowRect({float(storedRect.x()), float(storedRect.y()),
                                        float(storedRect.width()), float(storedRect.height())}));
    frmMain window;
    window.InitializeDisplay();
    window.LoadPosition(reset);
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    const QRect expected = expectStored ? storedRect : frmMain::DefaultPlacement(screen);
    QCOMPARE(window.geometry(), expected);
    // Loading a placement is not a move by the user: nothing is written back.
    QTest::qWait(600);
    const Options::WindowRect expectedStored =
        stored ? Options::WindowRect{-150, 40, 700, 500} : Options::WindowRect{1, 2, 3, 4};
    QCOMPARE(Options::windowRect({1, 2, 3, 4}), expectedStored);
}

void tst_frmMain::placementSavedAfterMove() {
    frmMain window;
    window.InitializeDisplay();
    window.LoadPosition(false);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    window.setGeometry(33, 44, 700, 520);
    // Written once the move has come to rest, not at once.
    QTRY_COMPARE(Options::windowRect({}), (Options::WindowRect{33, 44, 700, 520}));
}

void tst_frmMain::droppedFolders_data() {
    QTest::addColumn<QStringList>("dropped");
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("destination");

    QTest::newRow("folder on the source combo") << QStringList{"a"} << "cboSelectPath0"
                                                << "a"
                                                << "";
    QTest::newRow("folder on the destination combo") << QStringList{"a"} << "cboSelectPath1"
                                                     << ""
                                                     << "a";
    QTest::newRow("folder on the destination pane") << QStringList{"b"} << "lvwFiles1"
                                                    << ""
                                                    << "b";
    QTest::newRow("two folders fill both sides") << QStringList{"a", "b"} << "lvwFiles1"
                                                 << "a"
                                                 << "b";
    QTest::newRow("a file is refused") << QStringList{"a/f.txt"} << "cboSelectPath0"
                                       << ""
                                       << "";
}

void tst_frmMain::droppedFolders() {
    QFETCH(QStringList, dropped);
    QFETCH(QString, target);
    QFETCH(QString, source);
    QFETCH(QString, destination);

    TestTree tree;
    QVERIFY(tree.write("a/f.txt", "x"));
    QVERIFY(tree.mkdir("b"));
    frmMain window;
    window.InitializeDisplay();
    window.resize(800, 600);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));

    QList<QUrl> urls;
    for (const QString &relative : dropped)
        urls << QUrl::fromLocalFile(tree.path(relative));
    QMimeData data;
    data.setUrls(urls);
    QWidget *over = window.findChild<QWidget *>(target);
    QVERIFY(over);
    const QPoint pos = over->mapTo(&window, over->rect().center());
    QDragEnterEvent enter(pos, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window, &enter);
    QCOMPARE(enter.isAccepted(), !source.isEmpty() || !destination.isEmpty());
    QDropEvent drop(QPointF(pos), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window, &drop);

    QCOMPARE(window.cboSelectPath[0]->currentText(),
             source.isEmpty() ? QString() : tree.path(source));
    QCOMPARE(window.cboSelectPath[1]->currentText(),
             destination.isEmpty() ? QString() : tree.path(destination));
}

QTEST_MAIN(tst_frmMain)
#include "tst_frmMain.moc"
