#include "ThrottledYield.h"

#include <QCoreApplication>

void ThrottledYield::operator()() {
    if (m_since.isValid() && m_since.elapsed() < intervalMs)
        return;
    now();
}

void ThrottledYield::now() {
    QCoreApplication::processEvents(QEventLoop::AllEvents);
    m_since.start();
}
