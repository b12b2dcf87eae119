#include "tools/GeneralHelpers.h"

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QScreen>
#include <QTest>
#include <QVBoxLayout>

class tst_GeneralHelpers : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void findComboText_data();
    void findComboText();
    void findComboItemData();
};

void tst_GeneralHelpers::findComboText_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("skipped");
    QTest::addColumn<int>("expected");
    QTest::newRow("other case") << "/HOME/B" << -1 << 1;
    QTest::newRow("skipped finds the next") << "/home/a" << 0 << 2;
    QTest::newRow("skipped, none left") << "/home/b" << 1 << -1;
    QTest::newRow("blanks count") << "home/a" << -1 << -1;
}

void tst_GeneralHelpers::findComboText() {
    QFETCH(QString, text);
    QFETCH(int, skipped);
    QFETCH(int, expected);
    QComboBox combo;
    QCOMPARE(AddComboItem(&combo, QStringLiteral("/home/a"), 7), 0);
    QCOMPARE(AddComboItem(&combo, QStringLiteral("/home/b"), 8), 1);
    QCOMPARE(AddComboItem(&combo, QStringLiteral("/Home/A"), 9), 2);
    QCOMPARE(FindComboText(&combo, text, skipped), expected);
}

void tst_GeneralHelpers::findComboItemData() {
    QComboBox combo;
    combo.addItem(QStringLiteral("no data"));
    AddComboItem(&combo, QStringLiteral("zero"), 0);
    AddComboItem(&combo, QStringLiteral("select"), -1);
    // An entry without item data is not the entry carrying 0.
    QCOMPARE(FindComboItemData(&combo, 0), 1);
    QCOMPARE(FindComboItemData(&combo, -1), 2);
    QCOMPARE(FindComboItemData(&combo, 5), -1);
    QCOMPARE(FindComboItemData(nullptr, 0), -1);
}

QTEST_MAIN(tst_GeneralHelpers)
#include "tst_GeneralHelpers.moc"
