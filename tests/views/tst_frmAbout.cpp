#include "views/VersionText.h"
#include "views/frmAbout.h"

#include <QGuiApplication>
#include <QLabel>
#include <QPointer>
#include <QScreen>
#include <QStandardPaths>
#include <QTest>

class tst_frmAbout : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void versionText_data();
    void versionText();
    void showAbout_data();
    void showAbout();
};

void tst_frmAbout::initTestCase() {
    QStandardPaths::setTestModeEnabled(true);
}

void tst_frmAbout::versionText_data() {
    QTest::addColumn<int>("major");
    QTest::addColumn<int>("minor");
    QTest::addColumn<int>("revision");
    QTest::addColumn<QString>("text");

    QTest::newRow("padded") << 1 << 3 << 27 << "version 1.3  build 0027";
    QTest::newRow("four digits") << 2 << 10 << 9999 << "version 2.10  build 9999";
    QTest::newRow("five digits in full") << 1 << 3 << 12345 << "version 1.3  build 12345";
}

void tst_frmAbout::versionText() {
    QFETCH(int, major);
    QFETCH(int, minor);
    QFETCH(int, revision);
    QFETCH(QString, text);
    QCOMPARE(VersionText(major, minor, revision), text);
}

void tst_frmAbout::showAbout_data() {
    QTest::addColumn<bool>("topmost");
    QTest::addColumn<QPoint>("mainOffset");
    QTest::addColumn<bool>("centred");

    QTest::newRow("over the main window, topmost") << true << QPoint(100, 80) << true;
    QTest::newRow("main window half off screen") << false << QPoint(-500, -400) << false;
}

void tst_frmAbout::showAbout() {
    QFETCH(bool, topmost);
    QFETCH(QPoint, mainOffset);
    QFETCH(bool, centred);

    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    QWidget main;
    main.setGeometry(QRect(screen.topLeft() + mainOffset, QSize(640, 480)));
    main.show();
    QPointer<frmAbout> about = frmAbout::ShowAbout(&main, topmost);
    QVERIFY(about->isVisible());
    // Nothing may squeeze the two blanks before "build" into one.
    QCOMPARE(about->lblVersion->text(), VersionText());
    QCOMPARE(about->lblVersion->textFormat(), Qt::PlainText);
    QCOMPARE(about->windowModality(), Qt::WindowModal);
    QCOMPARE(bool(about->windowFlags() & Qt::WindowStaysOnTopHint), topmost);
    const QRect placed = about->frameGeometry();
    QVERIFY(screen.contains(placed));
    if (centred) {
        // The window frame is not known before the first show; allow for its width.
        const QPoint off = placed.center() - main.frameGeometry().center();
        QVERIFY2(off.manhattanLength() <= 8,
                 qPrintable(QStringLiteral("off by %1, %2").arg(off.x()).arg(off.y())));
    } else {
        QCOMPARE(placed.topLeft(), screen.topLeft());
    }

    // Released when closed.
    about->close();
    QTRY_VERIFY(about.isNull());
}

QTEST_MAIN(tst_frmAbout)
#include "tst_frmAbout.moc"
