#include "views/frmSplash.h"

#include <QPointer>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>

/** The splash screen's fades. */
class tst_frmSplash : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void fades_data() {
        // A script of calls and timer ticks: 'I' FadeIn, 'O' FadeOut, 'i' a tmrIn tick, 'o' a
        // tmrOut tick. A tick of a timer that is not running is skipped, as it would never come.
        QTest::addColumn<QString>("script");
        QTest::addColumn<QList<int>>("alphas");
        // The fade-out stops at 31, not at 0, and closes from there.
        QTest::newRow("fade-out before fade-in finished")
            << "IiOioioioioioooooooo" << QList<int>{64,  128, 96,  160, 128, 192, 160, 224, 192,
                                                    255, 223, 191, 159, 127, 95,  63,  31};
        QTest::newRow("fade-out before any fade-in step closes at once") << "IOoi" << QList<int>{};
    }
    void fades() {
        QFETCH(QString, script);
        QPointer<frmSplash> splash = new frmSplash;
        splash->show();
        QList<int> seen;
        connect(splash.data(), &frmSplash::AlphaChanged, this, [&](int alpha) {
            seen << alpha;
            QCOMPARE(splash->windowOpacity(), alpha / 255.0);
        });
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
        QTEST(seen, "alphas");
        QTRY_VERIFY(splash.isNull()); // closing deletes the window
    }
};

QTEST_MAIN(tst_frmSplash)
#include "tst_frmSplash.moc"
