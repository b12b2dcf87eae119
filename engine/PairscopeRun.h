#pragma once

#include "engine/CRC32Object.h"
#include "engine/PairTest.h"
#include "engine/Pairscope.h"
#include "engine/ReadAhead.h"

#include <memory>

/**
 * One call of Pairscope::Compare: its cycles, its two passes, the status check and the pair
 * tests, with the reading done ahead by a ReadAhead when workers are allowed.
 */
class Pairscope::Run {
public:
    Run(Pairscope &engine, ComparisonFileCollection &source, ComparisonFileCollection &destination,
        const PairTestOptions &options, int chunkSize);
    ~Run();

    /** The cycles until one ends without a recompare request; returns a Status. */
    int execute();
    /** Stops the read-ahead workers (Cancel). */
    void stop();

private:
    int status() const;
    bool recompareRequested() const;
    /** Pass 1: returns a Status, StatusComplete also when abandoned for a recompare. */
    int sourcePass();
    int destinationPass();
    /**
     * The code of \a record of \a side, found with no counterpart in \a other: missing there,
     * or not known because it could not be read on either side.
     */
    int unpairedCode(const ComparisonFile &record, const FileStat &stat,
                     ComparisonFileCollection &side, ComparisonFileCollection &other);
    DifferenceList judge(const ComparisonFilePtr &record, const FileStat &stat,
                         const ComparisonFilePtr &counterpart, const FileStat &counterpartStat,
                         const ReadAhead::Job *job);
    int checksumTest(const ComparisonFilePtr &record, const FileStat &stat,
                     const ComparisonFilePtr &counterpart, const FileStat &counterpartStat,
                     const ReadAhead::Job *job);
    /** The checksum of \a record's file, read from the disk or from its manifest. */
    CRC32Object::Result checksumOf(const ComparisonFile &record, const FileStat &stat);
    /** Emits through \a emitter and notices when a handler changed a collection. */
    template <typename Emitter> void notify(Emitter &&emitter);
    /** Queues jobs for the pass while there is room, a batch at a time; \a fill adds one. */
    template <typename Fill> void topUp(Fill &&fill);
    bool fillSource();
    bool fillDestination();
    void startReadAhead();
    /**
     * The prepared job of the record at \a position, waited for; null when there is none.
     * \a cancelled tells a cancel during the wait apart; \a stale is set when the job was
     * prepared before a change of the collections.
     */
    const ReadAhead::Job *awaitJob(int position, bool &cancelled, bool &stale);
    /** Frees the job awaitJob() returned, if any. */
    void releaseJob(const ReadAhead::Job *job);
    bool idle();

    Pairscope &m_engine;
    ComparisonFileCollection &m_source;
    ComparisonFileCollection &m_destination;
    PairTestOptions m_options;
    int m_chunkSize;
    std::unique_ptr<ReadAhead> m_readAhead;
    /** Jobs queued up to here were prepared before a handler changed a collection. */
    qint64 m_stale = 0;
    /** Position of the next record to queue a job for. */
    int m_nextSubmit = 1;
};
