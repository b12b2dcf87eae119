#include "app/frmMain.h"
#include "settings/Options.h"
#include "settings/SettingsStore.h"
#include "support/TestProfile.h"
#include "support/TestTree.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QSplitter>
#include <QTest>
#include <QUrl>

class tst_frmMain : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void orientation_data();
    void orientation();

    void placement_data();
    void placement();
    void placementSavedAfterMove();

    void droppedFolders_data();
    void droppedFolders();

private:
    TestProfile m_profile;
};

void tst_frmMain::initTestCase() {
    QVERIFY(m_profile.isValid());
}

void tst_frmMain::init() {
    m_profile.clear();
}

void tst_frmMain::orientation_data() {
    QTest::addColumn<QString>("stored");
    QTest::addColumn<int>("checkedIndex");
    QTest::addColumn<bool>("stacked");

    QTest::newRow("1 horizontal: stacked") << "1" << 0 << true;
    QTest::newRow("2 vertical: side by side") << "2" << 1 << false;
}

void tst_frmMain::orientation() {
    QFETCH(QString, stored);
    QFETCH(int, checkedIndex);
    QFETCH(bool, stacked);

    QVERIFY(SettingsStore::write(QStringLiteral("Options"), QStringLiteral("Orientation"), stored));
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
    // The other View item stores its index plus one and turns the panes.
    window.menus->mnuViewOrientation[1 - checkedIndex]->trigger();
    QCOMPARE(Options::orientation(), 2 - checkedIndex);
    QCOMPARE(window.picMain->orientation(), stacked ? Qt::Horizontal : Qt::Vertical);
    QVERIFY(!window.menus->mnuViewOrientation[checkedIndex]->isChecked());
}

void tst_frmMain::placement_data() {
    QTest::addColumn<bool>("stored");
    QTest::addColumn<bool>("reset");
    QTest::addColumn<bool>("expectStored");

    QTest::newRow("nothing stored: centred default") << false << false << false;
    QTest::newRow("stored rectangle applied as it is") << true << false << true;
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

    QTest::newRow("folder on the destination combo") << QStringList{"a"} << "cboSelectPath1"
                                                     << ""
                                                     << "a";
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
