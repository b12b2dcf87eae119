#include "app/StatusLine.h"
#include "app/StatusText.h"

#include <QAccessible>
#include <QElapsedTimer>
#include <QProgressBar>
#include <QTest>

#include <vector>

/**
 * The status line paints progress texts at most every StatusLine::paintIntervalMs however
 * fast they come, and always shows the last one in the end.
 */
class tst_StatusLine : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void progressTextsThrottled_data();
    void progressTextsThrottled();
    void finalTextShownAtOnce();
    void textIsSpoken();
};

namespace {

/** Every change of the shown text, with the time it was seen. */
struct ShownTexts {
    explicit ShownTexts(const StatusLine &line)
        : text(line.findChild<StatusText *>()) {
        clock.start();
    }
    void look() {
        if (text->text() != last) {
            last = text->text();
            changesMs.push_back(clock.elapsed());
        }
    }
    /** The shortest time between two changes after the first; -1 with fewer than three. */
    qint64 shortestGapMs() const {
        qint64 shortest = -1;
        for (size_t i = 2; i < changesMs.size(); ++i) {
            const qint64 gap = changesMs[i] - changesMs[i - 1];
            if (shortest < 0 || gap < shortest)
                shortest = gap;
        }
        return shortest;
    }

    const StatusText *text;
    QString last;
    std::vector<qint64> changesMs;
    QElapsedTimer clock;
};

} // namespace

void tst_StatusLine::progressTextsThrottled_data() {
    // How long the caller works between two turns of the event loop: a turn every text, and
    // turns rarer than the paint interval, where a text arrives after the timer was due but
    // before the timer could run.
    // With lazy texts, a text is made only for a paint.
    QTest::addColumn<int>("workMs");
    QTest::addColumn<bool>("lazy");
    QTest::newRow("event loop after every text") << 0 << false;
    QTest::newRow("event loop every 10 ms") << 10 << false;
    QTest::newRow("event loop later than the interval") << StatusLine::paintIntervalMs + 5 << false;
    QTest::newRow("lazy texts, event loop after every text") << 0 << true;
    QTest::newRow("lazy texts, event loop later than the interval")
        << StatusLine::paintIntervalMs + 5 << true;
}

void tst_StatusLine::progressTextsThrottled() {
    QFETCH(int, workMs);
    QFETCH(bool, lazy);
    StatusLine line;
    line.show();
    ShownTexts shown(line);
    QElapsedTimer running;
    running.start();
    QElapsedTimer sinceTurn;
    sinceTurn.start();
    int n = 0;
    int made = 0;
    while (running.elapsed() < 12 * StatusLine::paintIntervalMs) {
        ++n;
        if (lazy) {
            line.UpdateProgress(
                [n, &made] {
                    ++made;
                    return QStringLiteral("Building source file list (%1)").arg(n);
                },
                -1);
        } else {
            line.UpdateStatus(QStringLiteral("Building source file list (%1)").arg(n), true, -1);
        }
        shown.look();
        if (sinceTurn.elapsed() >= workMs) {
            QCoreApplication::processEvents();
            shown.look();
            sinceTurn.start();
        }
    }
    QVERIFY2(shown.changesMs.size() >= 3, "too few texts painted to judge");
    // Timers may fire a little early; a second paint right after the first is the fault.
    QVERIFY2(shown.shortestGapMs() >= StatusLine::paintIntervalMs * 4 / 5,
             qPrintable(QStringLiteral("two texts %1 ms apart").arg(shown.shortestGapMs())));

    QTest::qWait(StatusLine::paintIntervalMs * 2);
    shown.look();
    QCOMPARE(shown.last, QStringLiteral("  Building source file list (%1)").arg(n));
    if (lazy) {
        QVERIFY2(made <= int(shown.changesMs.size()) + 1,
                 qPrintable(QStringLiteral("%1 texts made for %2 paints of %3 updates")
                                .arg(made)
                                .arg(shown.changesMs.size())
                                .arg(n)));
    }
}

void tst_StatusLine::finalTextShownAtOnce() {
    StatusLine line;
    line.show();
    line.UpdateStatus(QStringLiteral("Comparing files - pass 1  (1 of 2)"), true, 50);
    line.UpdateStatus(QStringLiteral("Comparing files - pass 1  (2 of 2)"), true, 100);
    line.UpdateStatus(QStringLiteral("Compare complete."), false, -1);
    QCOMPARE(line.findChild<StatusText *>()->text(), QStringLiteral("  Compare complete."));
    QVERIFY(!line.ProgressBar1()->isVisibleTo(&line));
    // The progress text still pending must not overwrite the final one later.
    QTest::qWait(StatusLine::paintIntervalMs * 2);
    QCOMPARE(line.findChild<StatusText *>()->text(), QStringLiteral("  Compare complete."));

    // A progress text held back for the interval holds its bar back too: what the bar shows
    // always belongs to the text beside it.
    const auto agree = [&line] {
        const bool first =
            line.findChild<StatusText *>()->text().endsWith(QLatin1String("(1 of 4)"));
        return line.ProgressBar1()->value() == (first ? 25 : 50);
    };
    line.UpdateStatus(QStringLiteral("Comparing files - pass 2  (1 of 4)"), true, 25);
    line.UpdateStatus(QStringLiteral("Comparing files - pass 2  (2 of 4)"), true, 50);
    QVERIFY(agree());
    QTRY_COMPARE(line.ProgressBar1()->value(), 50);
    QVERIFY(agree());
}

void tst_StatusLine::textIsSpoken() {
    // A screen reader reads the status bar's accessible text, progress texts included.
    StatusLine line;
    line.show();
    QAccessibleInterface *bar = QAccessible::queryAccessibleInterface(&line);
    QVERIFY(bar);
    line.UpdateStatus(QStringLiteral("Building source file list (3)"), true, -1);
    QTRY_COMPARE(bar->text(QAccessible::Name), QStringLiteral("Building source file list (3)"));
    line.UpdateStatus(QStringLiteral("Compare complete."), false, -1);
    QCOMPARE(bar->text(QAccessible::Name), QStringLiteral("Compare complete."));
}

QTEST_MAIN(tst_StatusLine)
#include "tst_StatusLine.moc"
