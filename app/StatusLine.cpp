#include "StatusLine.h"

#include "CoarseClock.h"
#include "StatusText.h"

#include <QLabel>
#include <QProgressBar>

StatusLine::StatusLine(QWidget *parent)
    : QStatusBar(parent)
    , m_text(new StatusText(this))
    , m_progress(new QProgressBar(this))
    , m_filtered(new QLabel(QStringLiteral("Filtered"), this)) {
    setObjectName(QStringLiteral("StatusBar1"));
    m_text->setObjectName(QStringLiteral("StatusText"));
    m_progress->setObjectName(QStringLiteral("ProgressBar1"));
    addWidget(m_text, 1);
    // Room for a five-digit count and a one-digit pass, so the bar does not jump as counts grow.
    m_progress->setFixedWidth(fontMetrics().horizontalAdvance(
        QStringLiteral("  Comparing files - pass 8 (88888 of 88888)  ")));
    m_progress->setRange(0, 100);
    m_progress->setTextVisible(false);
    addPermanentWidget(m_progress);
    m_progress->hide();
    addPermanentWidget(m_filtered);
    m_filtered->hide();
    connect(m_text, &StatusText::clicked, this, &StatusLine::textClicked);

    m_flush.setSingleShot(true);
    connect(&m_flush, &QTimer::timeout, this, &StatusLine::paintPending);
}

void StatusLine::UpdateStatus(const QString &statusText, bool isProgressMessage,
                              int completionPercentage) {
    const QString shown = QStringLiteral("  ") + statusText;
    if (!isProgressMessage) {
        m_flush.stop();
        m_hasPending = false;
        m_makePending = nullptr;
        showProgressPanel(false);
        m_text->setText(shown);
        return;
    }
    m_pendingPercentage = completionPercentage;
    m_pending = shown;
    m_makePending = nullptr;
    schedulePending();
}

void StatusLine::UpdateProgress(const std::function<QString()> &makeText,
                                int completionPercentage) {
    m_pendingPercentage = completionPercentage;
    m_makePending = makeText;
    schedulePending();
}

void StatusLine::showPercentage(int completionPercentage) {
    if (completionPercentage == -1) {
        showProgressPanel(false);
    } else {
        showProgressPanel(true);
        if (m_progress->value() != completionPercentage)
            m_progress->setValue(completionPercentage);
    }
}

void StatusLine::schedulePending() {
    m_hasPending = true;
    const qint64 sincePaint =
        m_lastPaintMs < 0 ? paintIntervalMs : coarseMilliseconds() - m_lastPaintMs;
    if (sincePaint >= paintIntervalMs)
        paintPending();
    else if (!m_flush.isActive())
        m_flush.start(int(paintIntervalMs - sincePaint));
}

QString StatusLine::pendingText() const {
    return m_makePending ? QStringLiteral("  ") + m_makePending() : m_pending;
}

QString StatusLine::shownText() const {
    return m_hasPending ? pendingText() : m_text->text();
}

void StatusLine::setTextClickable(bool clickable) {
    m_text->setClickable(clickable);
}

bool StatusLine::textClickable() const {
    return m_text->isClickable();
}

void StatusLine::paintPending() {
    // Whichever paints first, a late text or the timer, the other must wait a whole interval
    // again: a timer left running would paint a second text a moment later.
    m_flush.stop();
    if (!m_hasPending)
        return;
    m_hasPending = false;
    // The bar moves with the text it belongs to, so the two never tell different stories.
    showPercentage(m_pendingPercentage);
    m_text->setText(pendingText());
    m_lastPaintMs = coarseMilliseconds();
}

void StatusLine::showProgressPanel(bool show) {
    if (m_progress->isVisibleTo(this) != show)
        m_progress->setVisible(show);
}

void StatusLine::setFiltered(bool filtered) {
    m_filtered->setVisible(filtered);
}

bool StatusLine::filtered() const {
    return !m_filtered->isHidden();
}
