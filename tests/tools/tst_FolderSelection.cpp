#include "settings/RecentLists.h"
#include "support/DragDrop.h"
#include "support/ModalWatcher.h"
#include "support/TestProfile.h"
#include "support/TestTree.h"
#include "tools/BrowseForFolder.h"
#include "tools/FolderCombo.h"
#include "tools/GeneralHelpers.h"
#include "tools/frmEnterFolder.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

using RecentLists::Side;

class tst_FolderSelection : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void init() { m_profile.clear(); }
    void recentRules();
    void cancelledBrowseShowsTypedPath();
    void browserCannotChooseTheComputer();
    void enterManually();
    void drops();

private:
    TestProfile m_profile;
    TestTree m_tree;
};

void tst_FolderSelection::initTestCase() {
    QVERIFY(m_profile.isValid());
    QVERIFY(m_tree.mkdir(QStringLiteral("a/inner")));
    QVERIFY(m_tree.mkdir(QStringLiteral("b")));
    QVERIFY(m_tree.write(QStringLiteral("file.txt"), "x"));
}

void tst_FolderSelection::recentRules() {
    QComboBox combo;
    FolderCombo logic(&combo, Side::Destination);
    logic.Fill(false);
    QSignalSpy changed(&logic, &FolderCombo::PathChanged);
    for (int i = 1; i <= 6; ++i)
        QVERIFY(logic.SetPath(QStringLiteral("/f%1").arg(i)));
    // Choosing a listed folder keeps the order and stores its index.
    combo.setCurrentIndex(3);
    QCOMPARE(logic.Path(), QStringLiteral("/f3"));
    QCOMPARE(logic.Folders(), (QStringList{"/f6", "/f5", "/f4", "/f3", "/f2", "/f1"}));
    QCOMPARE(RecentLists::loadFolders(Side::Destination).last, 3);
    // A seventh folder pushes out the oldest; letter case makes another folder.
    QVERIFY(logic.SetPath(QStringLiteral("/F3")));
    QCOMPARE(logic.Folders(), (QStringList{"/F3", "/f6", "/f5", "/f4", "/f3", "/f2"}));
    QCOMPARE(combo.currentIndex(), 0);
    const RecentLists::Folders stored = RecentLists::loadFolders(Side::Destination);
    QCOMPARE(stored.folders, logic.Folders());
    QCOMPARE(stored.last, 0);
    QVERIFY(!logic.SetPath(QStringLiteral("   ")));
    QCOMPARE(changed.count(), 8);
    logic.Fill(true); // reset
    QCOMPARE(logic.Folders(), QStringList());
    QCOMPARE(RecentLists::loadFolders(Side::Destination).folders, QStringList());
}

void tst_FolderSelection::cancelledBrowseShowsTypedPath() {
    QComboBox combo;
    FolderCombo logic(&combo, Side::Source);
    logic.Fill(false);
    QVERIFY(logic.SetPath(m_tree.path(QStringLiteral("b"))));
    QVERIFY(logic.SetPath(m_tree.path(QStringLiteral("a"))));
    const QString typed = QStringLiteral("/typed/by hand");
    combo.lineEdit()->selectAll();
    QTest::keyClicks(combo.lineEdit(), typed);

    QString textWhileOpen;
    ModalWatcher watcher([&](QWidget *dialog) {
        textWhileOpen = combo.currentText();
        if (auto *browser = qobject_cast<QDialog *>(dialog))
            browser->reject();
        return true;
    });
    combo.setCurrentIndex(FindComboItemData(&combo, FolderCombo::BrowseItemData));
    QCOMPARE(textWhileOpen, typed);
    QCOMPARE(logic.Path(), typed);
    QCOMPARE(logic.Folders(),
             (QStringList{m_tree.path(QStringLiteral("a")), m_tree.path(QStringLiteral("b"))}));
}

void tst_FolderSelection::browserCannotChooseTheComputer() {
    // "Computer" lists the file systems; choosing it would choose no folder at all.
    QList<bool> chooseEnabled;
    QStringList complaints;
    ModalWatcher watcher([&](QWidget *shown) {
        auto *dialog = qobject_cast<QFileDialog *>(shown);
        if (!dialog)
            return false;
        auto *sidebar = dialog->findChild<QListView *>(QStringLiteral("sidebar"));
        sidebar->setCurrentIndex(
            sidebar->model()
                ->match(sidebar->model()->index(0, 0), Qt::DisplayRole, "Computer")
                .value(0));
        QPushButton *choose =
            dialog->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Open);
        chooseEnabled << choose->isEnabled();
        {
            // Enter there must not be taken as a choice: it would complain of a missing folder.
            const ModalWatcher boxes;
            QMetaObject::invokeMethod(dialog, "accept");
            complaints = boxes.texts();
        }
        // One of the file systems it lists can be chosen.
        QTest::keyClicks(dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit")), "/");
        chooseEnabled << choose->isEnabled();
        choose->click();
        return true;
    });
    BrowseForFolder browser;
    browser.SelectedFolder = m_tree.path(QStringLiteral("b"));
    QVERIFY(browser.Browse());
    QCOMPARE(chooseEnabled, (QList<bool>{false, true}));
    QCOMPARE(complaints, QStringList());
    QCOMPARE(browser.SelectedFolder, QStringLiteral("/"));
}

void tst_FolderSelection::enterManually() {
    QComboBox combo;
    FolderCombo logic(&combo, Side::Destination);
    logic.Fill(false);
    QVERIFY(logic.SetPath(QStringLiteral("/first")));
    const QString typed = m_tree.path(QStringLiteral("a/inner"));
    QString initial;
    ModalWatcher watcher([&](QWidget *shown) {
        auto *dialog = qobject_cast<frmEnterFolder *>(shown);
        if (!dialog)
            return false;
        initial = dialog->Folder();
        dialog->cboFolder->setEditText(QStringLiteral("  ") + typed + QStringLiteral(" "));
        dialog->cmdOK->click();
        return true;
    });
    combo.setCurrentIndex(FindComboItemData(&combo, FolderCombo::EnterManuallyItemData));
    QCOMPARE(initial, QStringLiteral("/first"));
    QCOMPARE(logic.Path(), typed);
    QCOMPARE(logic.Folders(), (QStringList{typed, "/first"}));
}

void tst_FolderSelection::drops() {
    // A folder is taken; a file or a missing path is refused.
    QComboBox combo;
    FolderCombo logic(&combo, Side::Source);
    logic.Fill(false);
    QVERIFY(logic.SetPath(QStringLiteral("/before")));
    QVERIFY(!dragAndDrop(combo.lineEdit(), m_tree.path(QStringLiteral("file.txt"))));
    QVERIFY(!dragAndDrop(&combo, m_tree.path(QStringLiteral("missing"))));
    QCOMPARE(logic.Path(), QStringLiteral("/before"));
    const QString folder = m_tree.path(QStringLiteral("b"));
    QVERIFY(dragAndDrop(combo.lineEdit(), folder));
    QCOMPARE(RecentLists::loadFolders(Side::Source).folders, (QStringList{folder, "/before"}));

    frmEnterFolder dialog;
    dialog.SetFolder(QStringLiteral("/start"));
    for (QWidget *target : std::initializer_list<QWidget *>{&dialog, dialog.cboFolder->lineEdit(),
                                                            dialog.cmdBrowse, dialog.cmdCancel}) {
        QVERIFY(!dragAndDrop(target, m_tree.path(QStringLiteral("file.txt"))));
        QCOMPARE(dialog.Folder(), QStringLiteral("/start"));
        QVERIFY(dragAndDrop(target, m_tree.path(QStringLiteral("a"))));
        QCOMPARE(dialog.Folder(), m_tree.path(QStringLiteral("a")));
        dialog.SetFolder(QStringLiteral("/start"));
    }
}

QTEST_MAIN(tst_FolderSelection)
#include "tst_FolderSelection.moc"
