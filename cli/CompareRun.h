#pragma once

#include "reports/CompareReport.h"

#include "cli/CliOptions.h"

#include <QList>

#include <array>
#include <functional>
#include <memory>
#include <vector>

class CompareSession;
class RecordedTree;
class ProgressLine;

/**
 * One comparison of two roots as the command line asks for it, run through a CompareSession
 * (restarting when a tree changed, up to MaxRestarts times), with the pairs and counts the
 * reports need. Runs on the caller's thread without an event loop.
 */
class CompareRun {
public:
    /** A tree that keeps changing is given up after this many restarts. */
    static constexpr int MaxRestarts = 10;

    explicit CompareRun(const CliOptions &options);
    ~CompareRun();

    /** Reads a side from a manifest instead of the disk (0 source, 1 destination). */
    void setRecordedTree(int side, std::shared_ptr<const RecordedTree> tree) {
        m_recorded[std::size_t(side)] = std::move(tree);
    }

    /** Shows progress on \a progress while running (none when null). */
    void setProgressLine(ProgressLine *progress) { m_progress = progress; }

    /** Walks and compares; returns false when the trees kept changing and the run gave up. */
    bool run();

    /** The finished run as the reports describe it: the roots and options as given. */
    const CompareReport &report() const { return m_report; }
    /** The listed pairs (differences, or every pair with --all), sorted by the bytes of path. */
    const std::vector<ReportPair> &pairs() const { return m_report.pairs; }
    /** How many decided pairs carry each difference code (index = code, 0..14). */
    const std::array<qint64, 15> &counts() const { return m_report.counts; }
    /** Every decided pair, listed or not. */
    qint64 pairCount() const { return m_report.pairCount(); }
    /**
     * Everything that could not be compared: roots and folders that could not be read, files
     * dropped as case duplicates, files whose checksum could not be read, and trees that kept
     * changing.
     */
    const QList<RunProblem> &problems() const { return m_report.problems; }
    /** How many restarts the trees' changes forced. */
    int restarts() const { return m_restarts; }

private:
    /** Listens to a new attempt of \a session: its pairs replace those of the last one. */
    void connectAttempt(CompareSession &session);

    const CliOptions &m_options;
    ProgressLine *m_progress = nullptr;
    CompareReport m_report;
    int m_restarts = 0;
    /** Kept with its records until the run is destroyed: see PairscopeCli::Ending. */
    std::unique_ptr<CompareSession> m_session;
    std::array<std::shared_ptr<const RecordedTree>, 2> m_recorded;
};
