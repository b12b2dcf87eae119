#pragma once

#include <QtGlobal>

/**
 * Lets the event loop run from inside long work, at most once every intervalMs: the engine
 * calls its hook after every file and record, and processing events each time would cost more
 * than the work itself. Cancel clicks, painting and scrolling still arrive within a few
 * milliseconds.
 */
class ThrottledYield {
public:
    /** The least time between two runs of the event loop. */
    static constexpr int intervalMs = 10;

    /** Runs the event loop when intervalMs have passed since it last ran. */
    void operator()();
    /** Runs the event loop now, whatever the time. */
    void now();

private:
    /** When the event loop last ran (coarseMilliseconds()); -1 before the first time. */
    qint64 m_lastRunMs = -1;
};
