#include "StatusLine.h"

#include "StatusText.h"

#include <QProgressBar>

StatusLine::StatusLine(QWidget *parent)
    : QStatusBar(parent)
    , m_text(new StatusText(this))
    , m_progress(new QProgressBar(this)) {
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
        showProgressPanel(false);
        m_text->setText(shown);
        return;
    }
    if (completionPercentage == -1) {
        showProgressPanel(false);
    } else {
        showProgressPanel(true);
        if (m_progress->value() != completionPercentage)
            m_progress->setValue(completionPercentage);
    }
    m_pending = shown;
    m_hasPending = true;
    if (!m_sincePaint.isValid() || m_sincePaint.elapsed() >= paintIntervalMs)
        paintPending();
    else if (!m_flush.isActive())
        m_flush.start(int(paintIntervalMs - m_sincePaint.elapsed()));
}

QString StatusLine::shownText() const {
    return m_hasPending ? m_pending : m_text->text();
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
    m_text->setText(m_pending);
    m_sincePaint.start();
}

void StatusLine::showProgressPanel(bool show) {
    if (m_progress->isVisibleTo(this) != show)
        m_progress->setVisible(show);
}
