#include "settings/Options.h"
#include "support/TestProfile.h"
#include "tools/frmComparisons.h"

#include <QCheckBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

namespace {

QList<int> rowBits(const QListWidget *list) {
    QList<int> bits;
    for (int row = 0; row < list->count(); ++row)
        bits.append(list->item(row)->data(Qt::UserRole).toInt());
    return bits;
}

} // namespace

class tst_frmComparisons : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void init();
    void rows_data();
    void rows();
    void movingTheChecksumKeepsTheSelection();
    void ending_data();
    void ending();

private:
    TestProfile m_profile;
};

void tst_frmComparisons::initTestCase() {
    QVERIFY(m_profile.isValid());
}

void tst_frmComparisons::init() {
    m_profile.clear();
}

void tst_frmComparisons::rows_data() {
    QTest::addColumn<bool>("crcLast");
    QTest::addColumn<int>("comparisons");
    QTest::addColumn<QList<int>>("order");
    QTest::newRow("checksums last") << true << 33 << QList<int>{1, 2, 4, 8, 16, 32};
    QTest::newRow("checksums first") << false << 33 << QList<int>{1, 32, 2, 4, 8, 16};
}

void tst_frmComparisons::rows() {
    QFETCH(bool, crcLast);
    QFETCH(int, comparisons);
    QFETCH(QList<int>, order);
    QVERIFY(Options::setDoCRCLast(crcLast));

    frmComparisons dialog(comparisons);
    QCOMPARE(dialog.chkDoCRCLast->isChecked(), crcLast);
    QCOMPARE(rowBits(dialog.lstComparisons), order);
    QCOMPARE(dialog.Comparisons(), comparisons);
}

void tst_frmComparisons::movingTheChecksumKeepsTheSelection() {
    QVERIFY(Options::setDoCRCLast(true));
    frmComparisons dialog(1 | 8 | 32);
    dialog.chkDoCRCLast->setChecked(false);
    // The setting follows the box at once, and the checksum row moves up.
    QVERIFY(!Options::doCRCLast());
    QCOMPARE(rowBits(dialog.lstComparisons), (QList<int>{1, 32, 2, 4, 8, 16}));
    QCOMPARE(dialog.Comparisons(), 1 | 8 | 32);
    QVERIFY(dialog.lstComparisons->item(1)->isSelected());

    dialog.lstComparisons->item(5)->setSelected(true);
    dialog.chkDoCRCLast->setChecked(true);
    QVERIFY(Options::doCRCLast());
    QCOMPARE(rowBits(dialog.lstComparisons), (QList<int>{1, 2, 4, 8, 16, 32}));
    QCOMPARE(dialog.Comparisons(), 1 | 8 | 16 | 32);
}

void tst_frmComparisons::ending_data() {
    QTest::addColumn<QString>("how");
    QTest::addColumn<bool>("cancelled");
    QTest::newRow("OK") << "ok" << false;
    QTest::newRow("Cancel") << "cancel" << true;
    QTest::newRow("Escape") << "escape" << true;
    QTest::newRow("close box") << "close" << true;
}

void tst_frmComparisons::ending() {
    QFETCH(QString, how);
    QFETCH(bool, cancelled);
    QVERIFY(Options::setDoCRCLast(true));
    frmComparisons dialog(3);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    dialog.chkDoCRCLast->setChecked(false);

    if (how == QLatin1String("ok"))
        dialog.cmdOK->click();
    else if (how == QLatin1String("cancel"))
        dialog.cmdCancel->click();
    else if (how == QLatin1String("escape"))
        QTest::keyClick(&dialog, Qt::Key_Escape);
    else
        dialog.close();

    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.Cancelled(), cancelled);
    // OK keeps the change of the check box; every other way out takes it back.
    QCOMPARE(Options::doCRCLast(), cancelled);
    QCOMPARE(dialog.chkDoCRCLast->isChecked(), cancelled);
    QCOMPARE(dialog.lstComparisons->item(5)->data(Qt::UserRole).toInt() == 32, cancelled);
    QCOMPARE(dialog.Comparisons(), 3);
}

QTEST_MAIN(tst_frmComparisons)
#include "tst_frmComparisons.moc"
