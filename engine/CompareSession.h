#pragma once

#include "engine/CaseRule.h"
#include "engine/CollectionProblem.h"
#include "engine/ComparisonFileCollection.h"
#include "engine/Pairscope.h"
#include "engine/YieldHook.h"

#include <QList>
#include <QObject>

#include <array>
#include <memory>

/**
 * One compare of two roots as the user asked for it: walks the source tree, then the
 * destination tree, compares them, and starts again from fresh walks whenever a tree changed
 * under the comparison. The window and pairscope-cli both run their compares through it; they
 * differ only in its settings (walks side by side, a limit on restarts, reading ahead).
 *
 * Every attempt gets fresh collections and a fresh engine, so that nothing of a walk that went
 * stale survives into the next; attemptStarted() is the moment to connect to their signals.
 */
class CompareSession : public QObject {
    Q_OBJECT
public:
    enum class State {
        Idle,
        WalkingSource,
        WalkingDestination,
        Comparing,
        Cancelled,
        Complete,
        /** The trees kept changing: the restarts allowed were used up. */
        GaveUp,
    };

    /** What to compare, and how. */
    struct Request {
        /** The roots as given; see ComparisonFileCollection::setRootFolderNative. */
        QByteArray source;
        QByteArray destination;
        int comparisons = 0;
        bool includeSlack = true;
        bool doCRCLast = true;
        int chunkSize = 65536;
        CaseRule caseRule = CaseRule::Automatic;
        /** See ComparisonFileCollection::setNormalizesNames. */
        bool normalizeNames = true;
        /** See Pairscope::setTimeShifts. */
        QList<int> timeShifts;
        /** What both walks leave out, relative to each root; none when null. */
        std::shared_ptr<const TreeFilter> filter;
        /**
         * A side read from a manifest instead of the disk (then its root names the manifest);
         * see ComparisonFileCollection::setRecordedTree.
         */
        std::shared_ptr<const RecordedTree> sourceRecorded;
        std::shared_ptr<const RecordedTree> destinationRecorded;
    };

    explicit CompareSession(QObject *parent = nullptr);
    ~CompareSession() override;

    /** Restarts allowed before giving up; negative: no limit. Default: no limit. */
    void setMaxRestarts(int restarts) { m_maxRestarts = restarts; }
    /**
     * Walks the destination on a thread of its own while the source is walked, for a caller
     * that needs no order of walk events. Off by default: the destination's events follow the
     * source's, each tree read from the disk ahead on a thread of its own.
     */
    void setParallelWalks(bool on) { m_parallelWalks = on; }
    /** See Pairscope::setLoadDetails. */
    void setLoadDetails(bool on) { m_loadDetails = on; }
    /** Called during walks and compares, so that an event loop can cancel. */
    void setYieldHook(YieldHook hook) { m_yield = std::move(hook); }

    /** Runs the compare to its end and returns the final state: Complete, Cancelled or GaveUp. */
    State run(const Request &request);
    /** Stops a running compare at its next file; run() then returns Cancelled. */
    void cancel();

    State state() const { return m_state; }
    bool isRunning() const;
    /** How many times the trees' changes forced a new start. */
    int restarts() const { return m_restarts; }

    /** The latest attempt's collections and engine (null before the first run). */
    const std::shared_ptr<ComparisonFileCollection> &sourceFiles() const { return m_source; }
    const std::shared_ptr<ComparisonFileCollection> &destinationFiles() const {
        return m_destination;
    }
    const std::shared_ptr<Pairscope> &engine() const { return m_engine; }

    /**
     * Everything the latest attempt could not compare: both trees' problems, then the files
     * whose contents could not be read, then a tree that kept changing (its path empty).
     */
    QList<CollectionProblem> problems() const;
    /**
     * The problems of one side (0 source, 1 destination) at the end of the last run: its
     * tree's, then its unreadable files.
     */
    const QList<CollectionProblem> &problemsOf(int side) const {
        return m_problems[std::size_t(side)];
    }

Q_SIGNALS:
    void stateChanged(CompareSession::State state);
    /** A new attempt's collections and engine exist, nothing walked yet. */
    void attemptStarted();

private:
    void setState(State state);
    /** One attempt: returns a Pairscope::Status. */
    int attempt(const Request &request);
    void walkSideBySide(const Request &request);
    bool cancelled() const;
    void collectProblems(State end);

    std::shared_ptr<ComparisonFileCollection> m_source;
    std::shared_ptr<ComparisonFileCollection> m_destination;
    std::shared_ptr<Pairscope> m_engine;
    YieldHook m_yield;
    State m_state = State::Idle;
    int m_maxRestarts = -1;
    int m_restarts = 0;
    bool m_parallelWalks = false;
    bool m_loadDetails = false;
    bool m_cancelRequested = false;
    std::array<QList<CollectionProblem>, 2> m_problems;
    QList<CollectionProblem> m_keptChanging;
};
