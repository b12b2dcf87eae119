#include "ThrottledYield.h"

#include "CoarseClock.h"

#include <QCoreApplication>

void ThrottledYield::operator()() {
    if (m_lastRunMs >= 0 && coarseMilliseconds() - m_lastRunMs < intervalMs)
        return;
    now();
}

void ThrottledYield::now() {
    QCoreApplication::processEvents(QEventLoop::AllEvents);
    m_lastRunMs = coarseMilliseconds();
}
