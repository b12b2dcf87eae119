#include "engine/ComparisonSet.h"
#include "settings/Options.h"
#include "settings/RecentLists.h"
#include "support/ModalWatcher.h"
#include "support/TestProfile.h"
#include "tools/ComparisonsCombo.h"
#include "tools/FolderCombo.h"
#include "tools/frmComparisons.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>
#include <QSignalSpy>
#include <QTest>

namespace {

QList<int> entries(const QComboBox &combo) {
    QList<int> values;
    for (int i = 0; i < combo.count(); ++i)
        values.append(combo.itemData(i).toInt());
    return values;
}

QList<int> rowBits(const QListWidget *list) {
    QList<int> bits;
    for (int row = 0; row < list->count(); ++row)
        bits.append(list->item(row)->data(Qt::UserRole).toInt());
    return bits;
}

} // namespace

/** The combo of recent comparison sets and the dialog that picks a new set. */
class tst_ComparisonsCombo : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QVERIFY(m_profile.isValid()); }
    void init() { m_profile.clear(); }
    void fillFromStore_data();
    void fillFromStore();
    void recentRules();
    void cancelledDialogReturnsToPrevious();
    void confirmedDialogSelectsTheSet();
    void movingTheChecksumKeepsTheSelection();
    void enterInTheDropDownOnlyPicks_data();
    void enterInTheDropDownOnlyPicks();

private:
    TestProfile m_profile;
};

void tst_ComparisonsCombo::fillFromStore_data() {
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

void tst_ComparisonsCombo::fillFromStore() {
    QFETCH(QByteArray, section);
    QFETCH(QList<int>, listed);
    QFETCH(int, selected);
    QVERIFY(m_profile.edit("[SelectionsMRU]\n" + section));
    QComboBox combo;
    ComparisonsCombo logic(&combo);
    QSignalSpy chosen(&logic, &ComparisonsCombo::ComparisonsChosen);
    logic.Fill(false);
    QCOMPARE(entries(combo), listed);
    QCOMPARE(combo.currentIndex(), selected);
    QCOMPARE(chosen.count(), 0);
}

void tst_ComparisonsCombo::recentRules() {
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

    // A set already listed keeps its place; new sets go to the top; the seventh pushes the
    // oldest out.
    logic.Select(0);
    QCOMPARE(combo.currentIndex(), 2);
    logic.Select(63);
    logic.Select(33);
    logic.Select(17);
    QCOMPARE(entries(combo), (QList<int>{17, 33, 63, 3, 2, 0, -1}));
    QCOMPARE(logic.Comparisons(), 17);
    const RecentLists::Selections stored = RecentLists::loadSelections();
    QCOMPARE(stored.values, (QList<int>{17, 33, 63, 3, 2, 0}));
    QCOMPARE(stored.last, 0);
    // Not a comparison set: nothing changes.
    logic.Select(-1);
    logic.Select(64);
    QCOMPARE(entries(combo), (QList<int>{17, 33, 63, 3, 2, 0, -1}));
}

void tst_ComparisonsCombo::cancelledDialogReturnsToPrevious() {
    QComboBox combo;
    ComparisonsCombo logic(&combo);
    logic.Fill(false);
    combo.setCurrentIndex(1);
    QSignalSpy chosen(&logic, &ComparisonsCombo::ComparisonsChosen);
    int shownWith = -1;
    bool comboIgnored = false;
    ModalWatcher watcher([&](QWidget *shown) {
        auto *dialog = qobject_cast<frmComparisons *>(shown);
        if (!dialog)
            return false;
        shownWith = dialog->Comparisons();
        // A change made to the combo while its handler runs must not start it again.
        combo.setCurrentIndex(3);
        comboIgnored = RecentLists::loadSelections().last == 1;
        dialog->lstComparisons->item(4)->setSelected(true);
        dialog->cmdCancel->click();
        return true;
    });
    combo.setCurrentIndex(4);
    QCOMPARE(shownWith, 2);
    QVERIFY(comboIgnored);
    QCOMPARE(combo.currentIndex(), 1);
    QCOMPARE(logic.Comparisons(), 2);
    QCOMPARE(entries(combo), (QList<int>{3, 2, 0, 31, -1}));
    QCOMPARE(chosen.count(), 0);
}

void tst_ComparisonsCombo::confirmedDialogSelectsTheSet() {
    QVERIFY(Options::setDoCRCLast(true));
    QComboBox combo;
    ComparisonsCombo logic(&combo);
    logic.Fill(false);
    logic.Select(63);
    QSignalSpy chosen(&logic, &ComparisonsCombo::ComparisonsChosen);
    ModalWatcher watcher([](QWidget *shown) {
        auto *dialog = qobject_cast<frmComparisons *>(shown);
        if (!dialog)
            return false;
        dialog->lstComparisons->clearSelection();
        dialog->chkDoCRCLast->setChecked(false);
        dialog->lstComparisons->item(0)->setSelected(true);
        dialog->lstComparisons->item(1)->setSelected(true);
        dialog->cmdOK->click();
        return true;
    });
    combo.setCurrentIndex(combo.count() - 1);
    QCOMPARE(logic.Comparisons(), 33);
    QCOMPARE(entries(combo), (QList<int>{33, 63, 3, 2, 0, 31, -1}));
    QCOMPARE(chosen.count(), 1);
    QCOMPARE(chosen.first().first().toInt(), 33);
    QVERIFY(!Options::doCRCLast());
    // Every listed description follows the new place of the checksum.
    QCOMPARE(combo.itemText(1), ComparisonDescription(63, false));
}

void tst_ComparisonsCombo::movingTheChecksumKeepsTheSelection() {
    QVERIFY(Options::setDoCRCLast(true));
    frmComparisons dialog(1 | 8 | 32);
    QCOMPARE(rowBits(dialog.lstComparisons), (QList<int>{1, 2, 4, 8, 16, 32}));
    dialog.chkDoCRCLast->setChecked(false);
    // The setting follows the box at once, and the checksum row moves up.
    QVERIFY(!Options::doCRCLast());
    QCOMPARE(rowBits(dialog.lstComparisons), (QList<int>{1, 32, 2, 4, 8, 16}));
    QCOMPARE(dialog.Comparisons(), 1 | 8 | 32);
    dialog.lstComparisons->item(5)->setSelected(true);
    dialog.chkDoCRCLast->setChecked(true);
    QCOMPARE(dialog.Comparisons(), 1 | 8 | 16 | 32);
}

QTEST_MAIN(tst_ComparisonsCombo)
#include "tst_ComparisonsCombo.moc"

void tst_ComparisonsCombo::enterInTheDropDownOnlyPicks_data() {
    QTest::addColumn<bool>("folders");
    QTest::newRow("comparisons") << false;
    QTest::newRow("folders") << true;
}

void tst_ComparisonsCombo::enterInTheDropDownOnlyPicks() {
    QFETCH(bool, folders);
    // The window's Enter starts a compare; the press that picks an entry must not.
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
    // Once it is closed, Enter is the window's again.
    QTest::keyClick(combo, Qt::Key_Return);
    QCOMPARE(compares, 1);
}
