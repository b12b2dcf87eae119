#include "views/VersionText.h"
#include "views/frmSplash.h"

#include <QGuiApplication>
#include <QLabel>
#include <QPointer>
#include <QScreen>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>

class tst_frmSplash : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void fades_data();
    void fades();
    void earlyFadeOutWithRealTimers();
};

void tst_frmSplash::initTestCase() {
    QStandardPaths::setTestModeEnabled(true);
}

void tst_frmSplash::fades_data() {
    // A script of calls and timer ticks: 'I' FadeIn, 'O' FadeOut, 'i' a tmrIn tick, 'o' a
    // tmrOut tick. A tick of a timer that is not running is skipped, as it would never come.
    QTest::addColumn<QString>("script");
    QTest::addColumn<QList<int>>("alphas");
    QTest::addColumn<bool>("closed");

    QTest::newRow("fade in") << "Iiiiiii" << QList<int>{64, 128, 192, 255} << false;
    QTest::newRow("full fade in and out")
        << "IiiiiOoooooooooo" << QList<int>{64, 128, 192, 255, 223, 191, 159, 127, 95, 63, 31}
        << true;
    QTest::newRow("fade-out stops at 31, not at 0")
        << "IiiiiOooooooo" << QList<int>{64, 128, 192, 255, 223, 191, 159, 127, 95, 63, 31}
        << false;
    QTest::newRow("fade-out before fade-in finished")
        << "IiOioioioioioooooooo" << QList<int>{64,  128, 96,  160, 128, 192, 160, 224, 192,
                                                255, 223, 191, 159, 127, 95,  63,  31}
        << true;
    QTest::newRow("fade-out before any fade-in step closes at once")
        << "IOoi" << QList<int>{} << true;
}

void tst_frmSplash::fades() {
    QFETCH(QString, script);
    QFETCH(QList<int>, alphas);
    QFETCH(bool, closed);

    QPointer<frmSplash> splash = new frmSplash;
    splash->show();
    QSignalSpy spy(splash.data(), &frmSplash::AlphaChanged);
    for (QChar step : script) {
        if (!splash)
            break;
        if (step == QLatin1Char('I'))
            splash->FadeIn();
        else if (step == QLatin1Char('O'))
            splash->FadeOut();
        else if (step == QLatin1Char('i') && splash->tmrIn->isActive())
            splash->tmrIn_Timer();
        else if (step == QLatin1Char('o') && splash->tmrOut->isActive())
            splash->tmrOut_Timer();
    }
    QList<int> seen;
    for (const QList<QVariant> &emitted : spy)
        seen << emitted.at(0).toInt();
    QCOMPARE(seen, alphas);

    // Closing deletes the window.
    QTRY_COMPARE(splash.isNull(), closed);
    if (splash) {
        QCOMPARE(splash->Alpha(), alphas.isEmpty() ? 0 : alphas.last());
        QCOMPARE(splash->windowOpacity(), splash->Alpha() / 255.0);
        delete splash;
    }
}

void tst_frmSplash::earlyFadeOutWithRealTimers() {
    QPointer<frmSplash> splash = new frmSplash;
    QList<int> seen;
    connect(splash.data(), &frmSplash::AlphaChanged, this, [&seen](int alpha) { seen << alpha; });
    splash->show();
    splash->FadeIn();
    QTRY_VERIFY(splash->Alpha() >= 64);
    splash->FadeOut();
    QTRY_VERIFY_WITH_TIMEOUT(splash.isNull(), 5000);
    // Both timers ran side by side: the opacity never went below the final 31.
    QVERIFY(!seen.isEmpty());
    QCOMPARE(seen.last(), 31);
    QCOMPARE(*std::min_element(seen.begin(), seen.end()), 31);
    QVERIFY(seen.contains(255));
}

QTEST_MAIN(tst_frmSplash)
#include "tst_frmSplash.moc"
