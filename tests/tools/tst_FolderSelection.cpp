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
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

#include <memory>

using RecentLists::Side;

namespace {

QStringList texts(const QComboBox &combo) {
    QStringList all;
    for (int i = 0; i < combo.count(); ++i)
        all.append(combo.itemText(i));
    return all;
}

} // namespace

class tst_FolderSelection : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void init();
    void recentRules();
    void resetClearsTheList();
    void cancelledBrowseShowsTypedPath();
    void enterManually();
    void dropOnCombo();
    void enterFolderDrops_data();
    void enterFolderDrops();
    void enterFolderFocusOnActivation();
    void browseProperties();

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

void tst_FolderSelection::init() {
    m_profile.clear();
}

void tst_FolderSelection::recentRules() {
    QComboBox combo;
    FolderCombo logic(&combo, Side::Destination);
    logic.Fill(false);
    QSignalSpy changed(&logic, &FolderCombo::PathChanged);
    for (int i = 1; i <= 6; ++i)
        QVERIFY(logic.SetPath(QStringLiteral("/f%1").arg(i)));
    QCOMPARE(logic.Folders(), (QStringList{"/f6", "/f5", "/f4", "/f3", "/f2", "/f1"}));

    // Choosing a listed folder keeps the order and stores its index.
    combo.setCurrentIndex(3);
    QCOMPARE(logic.Path(), QStringLiteral("/f3"));
    QCOMPARE(logic.Folders(), (QStringList{"/f6", "/f5", "/f4", "/f3", "/f2", "/f1"}));
    QCOMPARE(RecentLists::loadFolders(Side::Destination).last, 3);

    // A seventh folder pushes out the oldest; letter case makes another folder.
    QVERIFY(logic.SetPath(QStringLiteral("/F3")));
    QCOMPARE(logic.Folders(), (QStringList{"/F3", "/f6", "/f5", "/f4", "/f3", "/f2"}));
    QCOMPARE(texts(combo).mid(6), (QStringList{"  Enter Manually...", "  Browse..."}));
    QCOMPARE(combo.currentIndex(), 0);
    const RecentLists::Folders stored = RecentLists::loadFolders(Side::Destination);
    QCOMPARE(stored.folders, logic.Folders());
    QCOMPARE(stored.last, 0);
    QCOMPARE(changed.count(), 8);

    QVERIFY(!logic.SetPath(QStringLiteral("   ")));
    QCOMPARE(changed.count(), 8);
}

void tst_FolderSelection::resetClearsTheList() {
    QVERIFY(RecentLists::saveFolders(Side::Source, {"/a", "/b"}, 1));
    QComboBox combo;
    FolderCombo logic(&combo, Side::Source);
    logic.Fill(true);
    QCOMPARE(logic.Folders(), QStringList());
    QCOMPARE(RecentLists::loadFolders(Side::Source).folders, QStringList());
    QVERIFY(m_profile.raw().contains("[SourceMRU]\nItem1=\nItem2=\n"));
}

void tst_FolderSelection::cancelledBrowseShowsTypedPath() {
    QComboBox combo;
    FolderCombo logic(&combo, Side::Source);
    logic.Fill(false);
    QVERIFY(logic.SetPath(m_tree.path(QStringLiteral("b"))));
    QVERIFY(logic.SetPath(m_tree.path(QStringLiteral("a"))));
    const QString previous = QStringLiteral("/typed/by hand");
    combo.lineEdit()->selectAll();
    QTest::keyClicks(combo.lineEdit(), previous);

    QString shownTitle;
    QString textWhileOpen;
    ModalWatcher watcher([&](QWidget *dialog) {
        shownTitle = dialog->windowTitle();
        textWhileOpen = combo.currentText();
        QTest::keyClick(dialog, Qt::Key_Escape);
        if (dialog->isVisible())
            qobject_cast<QDialog *>(dialog)->reject();
        return true;
    });
    combo.setCurrentIndex(FindComboItemData(&combo, FolderCombo::BrowseItemData));

    QCOMPARE(shownTitle, QStringLiteral("select source folder"));
    QCOMPARE(textWhileOpen, previous);
    QCOMPARE(combo.currentText(), previous);
    QCOMPARE(logic.Path(), previous);
    QCOMPARE(logic.Folders(),
             (QStringList{m_tree.path(QStringLiteral("a")), m_tree.path(QStringLiteral("b"))}));
}

void tst_FolderSelection::enterManually() {
    QComboBox combo;
    FolderCombo logic(&combo, Side::Destination);
    logic.Fill(false);
    QVERIFY(logic.SetPath(QStringLiteral("/first")));
    const QString typed = m_tree.path(QStringLiteral("a/inner"));

    QString title, initial, browseTitle;
    QStringList listed;
    ModalWatcher watcher([&](QWidget *shown) {
        auto *dialog = qobject_cast<frmEnterFolder *>(shown);
        if (!dialog)
            return false;
        title = dialog->windowTitle();
        initial = dialog->Folder();
        listed = texts(*dialog->cboFolder);
        browseTitle = dialog->BrowseTitle;
        dialog->cboFolder->setEditText(QStringLiteral("  ") + typed + QStringLiteral(" "));
        dialog->cmdOK->click();
        return true;
    });
    combo.setCurrentIndex(FindComboItemData(&combo, FolderCombo::EnterManuallyItemData));

    QCOMPARE(title, QStringLiteral("select destination folder"));
    QCOMPARE(browseTitle, title);
    QCOMPARE(initial, QStringLiteral("/first"));
    QCOMPARE(listed, QStringList{"/first"});
    QCOMPARE(logic.Path(), typed);
    QCOMPARE(logic.Folders(), (QStringList{typed, "/first"}));
}

void tst_FolderSelection::dropOnCombo() {
    QComboBox combo;
    FolderCombo logic(&combo, Side::Source);
    logic.Fill(false);
    QVERIFY(logic.SetPath(QStringLiteral("/before")));

    QVERIFY(!dragAndDrop(combo.lineEdit(), m_tree.path(QStringLiteral("file.txt"))));
    QVERIFY(!dragAndDrop(&combo, m_tree.path(QStringLiteral("missing"))));
    QCOMPARE(logic.Path(), QStringLiteral("/before"));

    const QString folder = m_tree.path(QStringLiteral("b"));
    QVERIFY(dragAndDrop(combo.lineEdit(), folder));
    QCOMPARE(logic.Path(), folder);
    QCOMPARE(RecentLists::loadFolders(Side::Source).folders, (QStringList{folder, "/before"}));
}

void tst_FolderSelection::enterFolderDrops_data() {
    QTest::addColumn<QString>("control");
    for (const char *name :
         {"dialog", "lblFolder", "cboFolder", "edit", "cmdBrowse", "cmdOK", "cmdCancel"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void tst_FolderSelection::enterFolderDrops() {
    QFETCH(QString, control);
    frmEnterFolder dialog;
    dialog.SetFolder(QStringLiteral("/start"));
    const std::map<QString, QWidget *> controls{{"dialog", &dialog},
                                                {"lblFolder", dialog.lblFolder},
                                                {"cboFolder", dialog.cboFolder},
                                                {"edit", dialog.cboFolder->lineEdit()},
                                                {"cmdBrowse", dialog.cmdBrowse},
                                                {"cmdOK", dialog.cmdOK},
                                                {"cmdCancel", dialog.cmdCancel}};
    QWidget *target = controls.at(control);

    QVERIFY(!dragAndDrop(target, m_tree.path(QStringLiteral("file.txt"))));
    QCOMPARE(dialog.Folder(), QStringLiteral("/start"));
    QVERIFY(dragAndDrop(target, m_tree.path(QStringLiteral("a"))));
    QCOMPARE(dialog.Folder(), m_tree.path(QStringLiteral("a")));
}

void tst_FolderSelection::enterFolderFocusOnActivation() {
    frmEnterFolder dialog;
    dialog.SetFolder(QStringLiteral("/start"));
    // Whatever had the focus before, the first activation gives it to the combo.
    dialog.cmdCancel->setFocus();
    dialog.show();
    dialog.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    QTRY_VERIFY(dialog.cboFolder->hasFocus());
    QCOMPARE(dialog.cboFolder->lineEdit()->selectedText(), QStringLiteral("/start"));
}

void tst_FolderSelection::browseProperties() {
    BrowseForFolder browser;
    browser.DialogTitle = QStringLiteral("select source folder");
    browser.Prompt = QStringLiteral("Select a folder for comparison.");
    browser.OKText = QStringLiteral("&Use Folder");
    QVERIFY(QDir::setCurrent(m_tree.root()));
    browser.SelectedFolder = QStringLiteral("a/../a");

    QString title, prompt, okText, directory;
    auto accepting = std::make_unique<ModalWatcher>([&](QWidget *shown) {
        auto *dialog = qobject_cast<QFileDialog *>(shown);
        if (!dialog)
            return false;
        title = dialog->windowTitle();
        okText = dialog->labelText(QFileDialog::Accept);
        if (auto *label = dialog->findChild<QLabel *>(QStringLiteral("lblPrompt")))
            prompt = label->text();
        directory = dialog->directory().absolutePath();
        static_cast<QDialog *>(dialog)->accept();
        return true;
    });
    QVERIFY(browser.Browse());
    accepting.reset();
    QVERIFY(!browser.Cancelled());
    QCOMPARE(title, browser.DialogTitle);
    QCOMPARE(prompt, browser.Prompt);
    QCOMPARE(okText, browser.OKText);
    QCOMPARE(directory, m_tree.path(QStringLiteral("a")));
    QCOMPARE(browser.SelectedFolder, m_tree.path(QStringLiteral("a")));

    ModalWatcher rejecting([](QWidget *shown) {
        if (auto *dialog = qobject_cast<QDialog *>(shown))
            dialog->reject();
        return true;
    });
    QVERIFY(!browser.Browse());
    QVERIFY(browser.Cancelled());
    QCOMPARE(browser.SelectedFolder, m_tree.path(QStringLiteral("a")));
}

QTEST_MAIN(tst_FolderSelection)
#include "tst_FolderSelection.moc"
