#include "views/frmSplash.h"

#include "views/IdentityPanel.h"

#include <QBoxLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QPainter>
#include <QScreen>
#include <QTimer>

frmSplash::frmSplash(QWidget *parent)
    : QWidget(parent, Qt::SplashScreen | Qt::FramelessWindowHint) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Pairscope"));
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);

    auto *panel = new IdentityPanel(QStringLiteral("Hold SHIFT to reset window location."), this);
    lblVersion = panel->versionLabel();
    lblHint = panel->hintLabel();
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(28, 24, 36, 22);
    layout->addWidget(panel);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    tmrIn = new QTimer(this);
    tmrOut = new QTimer(this);
    for (QTimer *timer : {tmrIn, tmrOut})
        timer->setInterval(TickInterval);
    connect(tmrIn, &QTimer::timeout, this, &frmSplash::tmrIn_Timer);
    connect(tmrOut, &QTimer::timeout, this, &frmSplash::tmrOut_Timer);

    adjustSize();
    if (const QScreen *screen = QGuiApplication::primaryScreen()) {
        const QRect area = screen->availableGeometry();
        move(area.left() + (area.width() - width()) / 2,
             area.top() + (area.height() - height()) / 2);
    }
    ApplyAlpha();
}

void frmSplash::FadeIn() {
    tmrIn->start();
}

void frmSplash::FadeOut() {
    tmrOut->start();
}

void frmSplash::tmrIn_Timer() {
    if (m_alpha + 64 < 256) {
        m_alpha += 64;
    } else {
        m_alpha = 255;
        tmrIn->stop();
    }
    ApplyAlpha();
}

void frmSplash::tmrOut_Timer() {
    // A step below zero ends the fade where it is: 31 after a full fade-in, because 255 is
    // not a multiple of 32. The window is closed from there rather than faded to nothing.
    if (m_alpha < 32) {
        tmrOut->stop();
        tmrIn->stop();
        close();
        return;
    }
    m_alpha -= 32;
    ApplyAlpha();
}

void frmSplash::paintEvent(QPaintEvent *) {
    // A frameless window needs its own outline to stand off the desktop.
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void frmSplash::ApplyAlpha() {
    setWindowOpacity(m_alpha / 255.0);
    Q_EMIT AlphaChanged(m_alpha);
}
