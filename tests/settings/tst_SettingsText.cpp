#include "settings/SettingsText.h"

#include <QTest>

#include <limits>

using namespace SettingsText;

class tst_SettingsText : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void numbers_data() {
        // What each reader makes of a text; the fallbacks are 7, -1 and 99, so a row expecting one
        // of them proves the fallback was taken.
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("lenient");
        QTest::addColumn<int>("lenientInteger");
        QTest::addColumn<int>("strict");
        QTest::newRow("trailing text") << "4096kb" << 4096.0 << 4096 << 99;
        QTest::newRow("blanks around") << " 4096 " << 4096.0 << 4096 << 4096;
        QTest::newRow("decimal") << "4096.0" << 4096.0 << 4096 << 99;
        QTest::newRow("exponent") << "1.5e3" << 1500.0 << 1500 << 99;
        QTest::newRow("exponent without digits") << "2e" << 2.0 << 2 << 99;
        QTest::newRow("decimal comma stops") << "1,5" << 1.0 << 1 << 99;
        QTest::newRow("half rounds to even, down") << "2.5" << 2.5 << 2 << 99;
        QTest::newRow("half rounds to even, up") << "3.5" << 3.5 << 4 << 99;
        QTest::newRow("32-bit edge") << "2147483647" << 2147483647.0 << 2147483647 << 2147483647;
        QTest::newRow("32-bit edge, negative")
            << "-2147483648" << -2147483648.0 << int(-2147483648LL) << int(-2147483648LL);
        QTest::newRow("just past the edge") << "2147483647.6" << 7.0 << -1 << 99;
        QTest::newRow("beyond 32 bits") << "2147483648" << 7.0 << -1 << 99;
        QTest::newRow("overflowing exponent") << "1e999" << 7.0 << -1 << 99;
    }
    void numbers() {
        QFETCH(QString, text);
        QTEST(lenientNumber(text, 7), "lenient");
        QTEST(lenientInteger(text, -1), "lenientInteger");
        QTEST(strictInteger(text, 99), "strict");
    }
    void toBoolean_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("fallback");
        QTest::addColumn<bool>("expected");
        QTest::newRow("upper case") << "FALSE" << true << false;
        QTest::newRow("blanks") << " False " << true << false;
        QTest::newRow("minus one") << "-1" << false << true;
        QTest::newRow("nonsense keeps fallback false") << "Truth" << false << false;
        QTest::newRow("number then text") << "1x" << false << false;
    }
    void toBoolean() {
        QFETCH(QString, text);
        QFETCH(bool, fallback);
        QTEST(SettingsText::toBoolean(text, fallback), "expected");
    }
    void floatText_data() {
        QTest::addColumn<float>("value");
        QTest::addColumn<QString>("text");
        QTest::newRow("half") << 87.5f << "87.5";
        QTest::newRow("tenth, not its double") << 0.1f << "0.1";
        QTest::newRow("not finite") << std::numeric_limits<float>::infinity() << "0";
    }
    void floatText() {
        QFETCH(float, value);
        QFETCH(QString, text);
        QCOMPARE(SettingsText::floatText(value), text);
        if (std::isfinite(value))
            QCOMPARE(lenientFloat(text, -1), value);
    }
    void canBePath() {
        QVERIFY(SettingsText::canBePath(QStringLiteral("/home/me/a b")));
        QVERIFY(!SettingsText::canBePath(QString(1 << 20, QLatin1Char('a'))));
        QVERIFY(
            !SettingsText::canBePath(QStringLiteral("/tmp/a") + QChar(0) + QStringLiteral("b")));
    }
};

QTEST_GUILESS_MAIN(tst_SettingsText)
#include "tst_SettingsText.moc"
