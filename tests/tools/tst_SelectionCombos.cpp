#include "engine/ComparisonSet.h"
#include "settings/Options.h"
#include "settings/RecentLists.h"
#include "support/DragDrop.h"
#include "support/ModalWatcher.h"
#include "support/TestProfile.h"
#include "support/TestTree.h"
#include "tools/BrowseForFolder.h"
#include "tools/ComparisonsCombo.h"
#include "tools/FolderCombo.h"
#include "tools/GeneralHelpers.h"
#include "tools/frmComparisons.h"
#include "tools/frmEnterFolder.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>
#include <QSignalSpy>
#include <QTest>

using RecentLists::Side;

namespace {

QList<int> values(const QAbstractItemModel *model) {
    QList<int> values;
    for (int row = 0; row < model->rowCount(); ++row)
        values.append(model->index(row, 0).data(Qt::UserRole).toInt());
    return values;
}

} // namespace

/** The combos of recent comparison sets and folders, and the dialogs they open. */
class tst_SelectionCombos : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() {
        QVERIFY(m_profile.isValid());
        QVERIFY(m_tree.mkdir(QStringLiteral("a/inner")));
        QVERIFY(m_tree.mkdir(QStringLiteral("b")));
        QVERIFY(m_tree.write(QStringLiteral("file.txt"), "x"));
    }
    void init() { m_profile.clear(); }
    void fillFromStore_data() {
        QTest::addColumn<QByteArray>("section");
        QTest::addColumn<QList<int>>("listed");
        QTest::addColumn<int>("selected");
        QTest::newRow("last below range")
            << QByteArray("Item1=5\nItem2=6\nLast=-3\n") << QList<int>{5, 6, -1} << 0;
        QTest::newRow("last beyond range")
            << QByteArray("Item1=5\nItem2=6\nLast=99\n") << QList<int>{5, 6, -1} << 1;
        QTest::newRow("duplicates listed once")
            << QByteArray("Item1=5\nItem2=5\nItem3=6\nLast=2\n") << QList<int>{5, 6, -1} << 1;
        QTest::newRow("nothing usable")
            << QByteArray("Item1=-1\nItem2=640\nLast=4\n") << QList<int>{3, 2, 0, 31, -1} << 0;
    }
    void fillFromStore() {
        QFETCH(QByteArray, section);
        QFETCH(QList<int>, listed);
        QFETCH(int, selected);
        QVERIFY(m_profile.edit("[SelectionsMRU]\n" + section));
        QComboBox combo;
        ComparisonsCombo logic(&combo);
        QSignalSpy chosen(&logic, &ComparisonsCombo::ComparisonsChosen);
        logic.Fill(false);
        QCOMPARE(values(combo.model()), listed);
        QCOMPARE(combo.currentIndex(), selected);
        QCOMPARE(chosen.count(), 0);
    }
    void recentComparisons() {
        QComboBox combo;
        ComparisonsCombo logic(&combo);
        logic.Fill(false);
        QCOMPARE(logic.Comparisons(), 3);
        QVERIFY(!QFile::exists(SettingsStore::fileName())); // filling alone stores nothing
        QSignalSpy chosen(&logic, &ComparisonsCombo::ComparisonsChosen);
        combo.setCurrentIndex(3);
        QCOMPARE(chosen.count(), 1);
        QCOMPARE(chosen.first().first().toInt(), 31);
        QCOMPARE(RecentLists::loadSelections().last, 3);

        logic.Select(0);
        QCOMPARE(combo.currentIndex(), 2);
        for (int set : {63, 33, 17})
            logic.Select(set);
        QCOMPARE(values(combo.model()), (QList<int>{17, 33, 63, 3, 2, 0, -1}));
        QCOMPARE(logic.Comparisons(), 17);
        QCOMPARE(RecentLists::loadSelections().values + QList<int>{-1}, values(combo.model()));
        QCOMPARE(RecentLists::loadSelections().last, 0);
        for (int set : {-1, 64})
            logic.Select(set);
        QCOMPARE(values(combo.model()), (QList<int>{17, 33, 63, 3, 2, 0, -1}));
    }
    void dialogCancelledThenConfirmed() {
        QVERIFY(Options::setDoCRCLast(true));
        QComboBox combo;
        ComparisonsCombo logic(&combo);
        logic.Fill(false);
        logic.Select(63);
        combo.setCurrentIndex(1);
        QSignalSpy chosen(&logic, &ComparisonsCombo::ComparisonsChosen);
        bool confirm = false;
        QList<int> shownWith;
        bool comboIgnored = true;
        ModalWatcher watcher([&](QWidget *shown) {
            auto *dialog = qobject_cast<frmComparisons *>(shown);
            if (!dialog)
                return false;
            shownWith << dialog->Comparisons();
            combo.setCurrentIndex(3);
            comboIgnored = comboIgnored && RecentLists::loadSelections().last == 1;
            dialog->lstComparisons->clearSelection();
            dialog->chkDoCRCLast->setChecked(!confirm);
            dialog->lstComparisons->item(0)->setSelected(true);
            dialog->lstComparisons->item(1)->setSelected(true);
            (confirm ? dialog->cmdOK : dialog->cmdCancel)->click();
            return true;
        });
        combo.setCurrentIndex(combo.count() - 1);
        QCOMPARE(combo.currentIndex(), 1);
        QCOMPARE(values(combo.model()), (QList<int>{63, 3, 2, 0, 31, -1}));
        QCOMPARE(chosen.count(), 0);

        confirm = true;
        combo.setCurrentIndex(combo.count() - 1);
        QCOMPARE(shownWith, (QList<int>{3, 3}));
        QVERIFY(comboIgnored);
        QCOMPARE(logic.Comparisons(), 33);
        QCOMPARE(values(combo.model()), (QList<int>{33, 63, 3, 2, 0, 31, -1}));
        QCOMPARE(chosen.count(), 1);
        QCOMPARE(chosen.first().first().toInt(), 33);
        QVERIFY(!Options::doCRCLast());
        QCOMPARE(combo.itemText(1), ComparisonDescription(63, false));
    }
    void movingTheChecksumKeepsTheSelection() {
        QVERIFY(Options::setDoCRCLast(true));
        frmComparisons dialog(1 | 8 | 32);
        QCOMPARE(values(dialog.lstComparisons->model()), (QList<int>{1, 2, 4, 8, 16, 32}));
        dialog.chkDoCRCLast->setChecked(false);
        QVERIFY(!Options::doCRCLast());
        QCOMPARE(values(dialog.lstComparisons->model()), (QList<int>{1, 32, 2, 4, 8, 16}));
        QCOMPARE(dialog.Comparisons(), 1 | 8 | 32);
        dialog.lstComparisons->item(5)->setSelected(true);
        dialog.chkDoCRCLast->setChecked(true);
        QCOMPARE(dialog.Comparisons(), 1 | 8 | 16 | 32);
    }
    void recentFolders() {
        QComboBox combo;
        FolderCombo logic(&combo, Side::Destination);
        logic.Fill(false);
        QSignalSpy changed(&logic, &FolderCombo::PathChanged);
        for (int i = 1; i <= 6; ++i)
            QVERIFY(logic.SetPath(QStringLiteral("/f%1").arg(i)));
        combo.setCurrentIndex(3);
        QCOMPARE(logic.Path(), QStringLiteral("/f3"));
        QCOMPARE(logic.Folders(), (QStringList{"/f6", "/f5", "/f4", "/f3", "/f2", "/f1"}));
        QCOMPARE(RecentLists::loadFolders(Side::Destination).last, 3);
        QVERIFY(logic.SetPath(QStringLiteral("/F3")));
        QCOMPARE(logic.Folders(), (QStringList{"/F3", "/f6", "/f5", "/f4", "/f3", "/f2"}));
        QCOMPARE(combo.currentIndex(), 0);
        QCOMPARE(RecentLists::loadFolders(Side::Destination).folders, logic.Folders());
        QCOMPARE(RecentLists::loadFolders(Side::Destination).last, 0);
        QVERIFY(!logic.SetPath(QStringLiteral("   ")));
        QCOMPARE(changed.count(), 8);
        logic.Fill(true); // reset
        QCOMPARE(logic.Folders(), QStringList());
        QCOMPARE(RecentLists::loadFolders(Side::Destination).folders, QStringList());
    }
    void browseCancelledThenEnteredByHand() {
        QComboBox combo;
        FolderCombo logic(&combo, Side::Source);
        logic.Fill(false);
        const QString a = m_tree.path(QStringLiteral("a")), b = m_tree.path(QStringLiteral("b"));
        QVERIFY(logic.SetPath(b));
        QVERIFY(logic.SetPath(a));
        const QString typed = QStringLiteral("/typed/by hand");
        combo.lineEdit()->selectAll();
        QTest::keyClicks(combo.lineEdit(), typed);
        const QString entered = m_tree.path(QStringLiteral("a/inner"));
        QStringList shownWith;
        ModalWatcher watcher([&](QWidget *shown) {
            if (auto *dialog = qobject_cast<frmEnterFolder *>(shown)) {
                shownWith << dialog->Folder();
                dialog->cboFolder->setEditText(QStringLiteral("  ") + entered +
                                               QStringLiteral(" "));
                dialog->cmdOK->click();
                return true;
            }
            shownWith << combo.currentText();
            if (auto *browser = qobject_cast<QDialog *>(shown))
                browser->reject();
            return true;
        });
        combo.setCurrentIndex(FindComboItemData(&combo, FolderCombo::BrowseItemData));
        QCOMPARE(logic.Path(), typed);
        QCOMPARE(logic.Folders(), (QStringList{a, b}));
        combo.setCurrentIndex(FindComboItemData(&combo, FolderCombo::EnterManuallyItemData));
        QCOMPARE(shownWith, (QStringList{typed, typed}));
        QCOMPARE(logic.Path(), entered);
        QCOMPARE(logic.Folders(), (QStringList{entered, a, b}));
    }
    void drops() {
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
        for (QWidget *target : std::initializer_list<QWidget *>{
                 &dialog, dialog.cboFolder->lineEdit(), dialog.cmdBrowse, dialog.cmdCancel}) {
            QVERIFY(!dragAndDrop(target, m_tree.path(QStringLiteral("file.txt"))));
            QCOMPARE(dialog.Folder(), QStringLiteral("/start"));
            QVERIFY(dragAndDrop(target, m_tree.path(QStringLiteral("a"))));
            QCOMPARE(dialog.Folder(), m_tree.path(QStringLiteral("a")));
            dialog.SetFolder(QStringLiteral("/start"));
        }
    }
    void enterInTheDropDownOnlyPicks_data() {
        QTest::addColumn<bool>("folders");
        QTest::newRow("comparisons") << false;
        QTest::newRow("folders") << true;
    }
    void enterInTheDropDownOnlyPicks() {
        QFETCH(bool, folders);
        QWidget window;
        auto *combo = new QComboBox(&window);
        if (folders) {
            RecentLists::saveFolders(RecentLists::Side::Source, {"/a", "/b"}, 0);
            (new FolderCombo(combo, RecentLists::Side::Source))->Fill(false);
        } else {
            (new ComparisonsCombo(combo))->Fill(false);
        }
        int compares = 0;
        connect(new QShortcut(QKeySequence(Qt::Key_Return), &window), &QShortcut::activated,
                [&compares] { ++compares; });
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        combo->setFocus();
        combo->showPopup();
        QTRY_VERIFY(combo->view()->isVisible());
        QTest::keyClick(combo->view(), Qt::Key_Down);
        QTest::keyClick(combo->view(), Qt::Key_Return);
        QTRY_VERIFY(!combo->view()->isVisible());
        QCOMPARE(combo->currentIndex(), 1);
        QCOMPARE(compares, 0);
        QTest::keyClick(combo, Qt::Key_Return);
        QCOMPARE(compares, 1);
    }
    void browserCannotChooseTheComputer() {
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
                const ModalWatcher boxes;
                QMetaObject::invokeMethod(dialog, "accept");
                complaints = boxes.texts();
            }
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

private:
    TestProfile m_profile;
    TestTree m_tree;
};

QTEST_MAIN(tst_SelectionCombos)
#include "tst_SelectionCombos.moc"
