#pragma once

#include <QElapsedTimer>
#include <QString>

#include <cstdio>

/**
 * The one-line progress display on standard error: the walk's counts, then the passes of the
 * comparison with a percentage. The line is redrawn in place at most every 100 ms, because the
 * engine reports every file and a terminal cannot keep up with that.
 */
class ProgressLine {
public:
    explicit ProgressLine(std::FILE *stream = stderr);

    /** The source walk added a record; \a count is its count so far. */
    void fileAdded(int count);
    /** The engine's CompareProgress. */
    void compareProgress(int pass, int current, int total);
    /** Erases the line, so that what follows starts on a clean line. */
    void clear();

private:
    bool due();
    void show(const QString &text);

    std::FILE *m_stream;
    QElapsedTimer m_sinceShown;
    qsizetype m_shownLength = 0;
};
