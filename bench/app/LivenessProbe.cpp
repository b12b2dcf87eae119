#include "LivenessProbe.h"

#include "app/StatusText.h"

#include <QEvent>

#include <algorithm>

namespace {

double percentile(std::vector<double> values, double fraction) {
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    const auto at = size_t(fraction * double(values.size() - 1) + 0.5);
    return values[std::min(at, values.size() - 1)];
}

} // namespace

LivenessProbe::LivenessProbe(StatusText *statusText, QObject *parent)
    : QObject(parent)
    , m_text(statusText) {
    m_clock.start();
    // A zero timer runs once per turn of the event loop, however the loop is entered: the
    // application's own loop or a yield from inside the work.
    m_timer.setInterval(0);
    connect(&m_timer, &QTimer::timeout, this, &LivenessProbe::tick);
    if (m_text)
        m_text->installEventFilter(this);
}

void LivenessProbe::start() {
    m_gapsMs.clear();
    m_paintIntervalsMs.clear();
    m_phases.clear();
    m_maxGapMs = 0;
    m_maxGapPhase.clear();
    m_watchedPaints = 0;
    m_painted = false;
    m_lastPaintNs = -1;
    m_startNs = m_clock.nsecsElapsed();
    m_lastTickNs = m_startNs;
    m_running = true;
    m_timer.start();
}

void LivenessProbe::stop() {
    tick();
    m_running = false;
    m_timer.stop();
}

void LivenessProbe::tick() {
    if (!m_running)
        return;
    const qint64 now = m_clock.nsecsElapsed();
    const double gap = double(now - m_lastTickNs) / 1e6;
    m_gapsMs.push_back(gap);
    m_lastTickNs = now;
    notePhase(now);
    if (gap > m_maxGapMs) {
        m_maxGapMs = gap;
        m_maxGapPhase = m_phases.empty() ? QString() : m_phases.back().name;
    }
}

void LivenessProbe::notePhase(qint64 now) {
    if (!m_text)
        return;
    // The stage is the text before its counts: "Comparing files - pass 2  (5 of 9)" is
    // "Comparing files - pass 2".
    QString name = m_text->text().trimmed();
    const qsizetype count = name.indexOf(QLatin1Char('('));
    if (count >= 0)
        name = name.left(count).trimmed();
    if (name.isEmpty() || (!m_phases.empty() && m_phases.back().name == name))
        return;
    m_phases.push_back({name, double(now - m_startNs) / 1e6});
}

void LivenessProbe::watchPaints(QWidget *widget) {
    m_watched.emplace_back(widget);
    widget->installEventFilter(this);
}

bool LivenessProbe::eventFilter(QObject *watched, QEvent *event) {
    if (m_running && event->type() == QEvent::Paint && watched != m_text)
        ++m_watchedPaints;
    if (m_running && watched == m_text && event->type() == QEvent::Paint &&
        m_text->text() != m_lastPaintedText) {
        const qint64 now = m_clock.nsecsElapsed();
        if (m_lastPaintNs >= 0)
            m_paintIntervalsMs.push_back(double(now - m_lastPaintNs) / 1e6);
        m_lastPaintNs = now;
        m_lastPaintedText = m_text->text();
        m_painted = true;
        notePhase(now);
    }
    return QObject::eventFilter(watched, event);
}

double LivenessProbe::maxGapMs() const {
    return m_gapsMs.empty() ? 0 : *std::max_element(m_gapsMs.begin(), m_gapsMs.end());
}

double LivenessProbe::gapPercentileMs(double fraction) const {
    return percentile(m_gapsMs, fraction);
}

double LivenessProbe::minPaintIntervalMs() const {
    return m_paintIntervalsMs.empty()
               ? 0
               : *std::min_element(m_paintIntervalsMs.begin(), m_paintIntervalsMs.end());
}

double LivenessProbe::medianPaintIntervalMs() const {
    return percentile(m_paintIntervalsMs, 0.5);
}
