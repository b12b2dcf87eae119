#pragma once

#include <QtGlobal>

#include <time.h>

/**
 * Milliseconds of the coarse monotonic clock. It advances a few milliseconds at a time, which
 * is fine for throttles measured in tens of milliseconds, and reading it costs a fraction of a
 * precise clock read: the throttles ask once or twice per file of a run.
 */
inline qint64 coarseMilliseconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    return qint64(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}
