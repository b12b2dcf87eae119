#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QWidget>

#include <vector>

class StatusText;

/**
 * Watches how alive a window stays while long work runs on its thread: how long posted input
 * would wait (the largest gap between two turns of the event loop) and how often the status
 * text is painted with a new text.
 */
class LivenessProbe : public QObject {
    Q_OBJECT

public:
    /** Watches \a statusText's paints; the loop probe starts with start(). */
    explicit LivenessProbe(StatusText *statusText, QObject *parent = nullptr);

    void start();
    void stop();

    /** Counts the paints of \a widget from start() to stop() as well. */
    void watchPaints(QWidget *widget);
    /** Paints of the widgets given to watchPaints(). */
    int watchedPaints() const { return m_watchedPaints; }

    /** Event-loop turns seen between start() and stop(). */
    int turns() const { return int(m_gapsMs.size()); }
    /** The largest gap between two turns, in ms: how long a click or a scroll could wait. */
    double maxGapMs() const;
    /** The stage (see phases()) shown when the largest gap ended. */
    QString maxGapPhase() const { return m_maxGapPhase; }
    /** The gap that \a fraction of the turns came within (0.99: the 99th percentile), in ms. */
    double gapPercentileMs(double fraction) const;
    /** Paints of the status text that showed a text other than the paint before. */
    int textPaints() const { return int(m_paintIntervalsMs.size()) + (m_painted ? 1 : 0); }
    /** The shortest and the median time between two such paints, in ms. */
    double minPaintIntervalMs() const;
    double medianPaintIntervalMs() const;

    /** A stage of the work as the status text names it, and when it was first seen. */
    struct Phase {
        QString name;
        double startMs;
    };
    /** The stages in the order they were seen, timed from start(). */
    const std::vector<Phase> &phases() const { return m_phases; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void tick();
    void notePhase(qint64 now);

    QPointer<StatusText> m_text;
    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_startNs = 0;
    qint64 m_lastTickNs = -1;
    qint64 m_lastPaintNs = -1;
    QString m_lastPaintedText;
    bool m_painted = false;
    bool m_running = false;
    int m_watchedPaints = 0;
    std::vector<QPointer<QWidget>> m_watched;
    std::vector<double> m_gapsMs;
    std::vector<double> m_paintIntervalsMs;
    std::vector<Phase> m_phases;
    double m_maxGapMs = 0;
    QString m_maxGapPhase;
};
