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
    void setTopmostKeepsPlace();
    void centerOverWindow_data();
    void centerOverWindow();
    void applyMessageFont();
};

void tst_GeneralHelpers::findComboText_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("skipped");
    QTest::addColumn<int>("expected");
    QTest::newRow("exact") << "/home/b" << -1 << 1;
    QTest::newRow("other case") << "/HOME/B" << -1 << 1;
    QTest::newRow("skipped finds the next") << "/home/a" << 0 << 2;
    QTest::newRow("skipped, none left") << "/home/b" << 1 << -1;
    QTest::newRow("absent") << "/home/c" << -1 << -1;
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

void tst_GeneralHelpers::setTopmostKeepsPlace() {
    QWidget window;
    window.setGeometry(120, 90, 300, 200);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const QRect before = window.geometry();

    SetTopmost(&window, true);
    QVERIFY(IsTopmost(&window));
    QVERIFY(window.windowHandle()->flags().testFlag(Qt::WindowStaysOnTopHint));
    QVERIFY(window.isVisible());
    QCOMPARE(window.geometry(), before);

    SetTopmost(&window, false);
    QVERIFY(!IsTopmost(&window));
    QVERIFY(window.isVisible());
    QCOMPARE(window.geometry(), before);

    // Before the window exists on screen the flag is simply remembered.
    QWidget hidden;
    SetTopmost(&hidden, true);
    QVERIFY(IsTopmost(&hidden));
    QVERIFY(!hidden.isVisible());
}

void tst_GeneralHelpers::centerOverWindow_data() {
    QTest::addColumn<QPoint>("windowOffset");
    QTest::addColumn<bool>("showWindow");
    QTest::addColumn<bool>("centred");
    QTest::newRow("middle of the screen") << QPoint(200, 150) << true << true;
    QTest::newRow("window off the left") << QPoint(-250, 150) << true << false;
    QTest::newRow("window off the bottom right") << QPoint(5000, 5000) << true << false;
    QTest::newRow("hidden window: the screen") << QPoint(0, 0) << false << false;
}

void tst_GeneralHelpers::centerOverWindow() {
    QFETCH(QPoint, windowOffset);
    QFETCH(bool, showWindow);
    QFETCH(bool, centred);
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();

    QWidget window;
    window.setGeometry(QRect(screen.topLeft() + windowOffset, QSize(400, 300)));
    if (showWindow) {
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
    }
    QDialog form;
    form.resize(200, 100);
    CenterOverWindow(&form, &window);
    const QRect placed(form.pos(), form.size());

    QVERIFY2(screen.contains(placed),
             qPrintable(QStringLiteral("%1,%2").arg(placed.x()).arg(placed.y())));
    if (centred)
        QCOMPARE(placed.center(), window.frameGeometry().center());
    if (!showWindow)
        QCOMPARE(placed.center(), screen.center());
}

void tst_GeneralHelpers::applyMessageFont() {
    const QFont saved = QApplication::font();
    QFont font = saved;
    font.setFamily(QStringLiteral("DejaVu Serif"));
    QApplication::setFont(font);

    QDialog form;
    auto *label = new QLabel(QStringLiteral("x"));
    QFont bold = label->font();
    bold.setFamily(QStringLiteral("Some Other Face"));
    bold.setBold(true);
    label->setFont(bold);
    auto *layout = new QVBoxLayout(&form);
    layout->addWidget(label);
    layout->addWidget(new QComboBox);
    ApplyMessageFont(&form);
    const QString family = GetMessageFontName();
    QApplication::setFont(saved);

    QCOMPARE(family, font.family());
    for (QWidget *control : form.findChildren<QWidget *>())
        QCOMPARE(control->font().family(), family);
    // Only the face changes: a bold label stays bold.
    QVERIFY(label->font().bold());
}

QTEST_MAIN(tst_GeneralHelpers)
#include "tst_GeneralHelpers.moc"
