#pragma once

#include "engine/CRC32Object.h"
#include "engine/ComparisonFile.h"
#include "engine/FolderNode.h"
#include "engine/PairTest.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

/**
 * Worker threads that read ahead of the compare passes: the statx of both files of the pairs
 * the caller will judge next and, for pairs that will need them, their checksums. The caller
 * submits jobs in the order it will consume them and takes each result in that order, so
 * every decision, event and its order stays on the caller's thread.
 */
class ReadAhead {
public:
    /** One pair (or one file) to read. Fields marked "caller" are never touched by workers. */
    struct Job {
        // Set by the caller before the job is queued.
        FolderRef sourceFolder;
        QByteArray sourceName;
        FolderRef destinationFolder;
        QByteArray destinationName;
        /** caller: the records the job was made for, to check them again when consumed. */
        ComparisonFilePtr sourceRecord;
        ComparisonFilePtr destinationRecord;
        // Written by a worker.
        FileStat sourceStat;
        FileStat destinationStat;
        CRC32Object::Result sourceChecksum;
        CRC32Object::Result destinationChecksum;
        bool checksummed = false;
        std::atomic<bool> done{false};
    };

    ReadAhead(int workers, const PairTestOptions &options, int chunkSize, int window);
    ~ReadAhead();
    ReadAhead(const ReadAhead &) = delete;
    ReadAhead &operator=(const ReadAhead &) = delete;

    /** True when no more jobs may be queued until the oldest is released. */
    bool full() const { return m_produced - m_consumed >= qint64(m_ring.size()); }
    /** The slot for the next job; fill it, then call submit(). */
    Job &next();
    /** Queues the job filled in next(); returns its sequence number. */
    qint64 submit();
    /** Sequence number the next submit() will get. */
    qint64 produced() const { return m_produced; }
    /**
     * Waits for job \a sequence, calling \a idle every few milliseconds; returns null when
     * \a idle reports that the wait should end (a cancel).
     */
    Job *wait(qint64 sequence, const std::function<bool()> &idle);
    /** Frees the oldest job's slot (it must be \a sequence). */
    void release(qint64 sequence);
    /** Stops the workers promptly, abandoning running checksums. Caller's thread or not. */
    void stop();

private:
    void work();
    void process(Job &job, CRC32Object &crc, FolderRef (&folders)[2], int (&fds)[2]);

    std::vector<Job> m_ring;
    std::vector<std::thread> m_threads;
    PairTestOptions m_options;
    int m_chunkSize;
    std::mutex m_mutex;
    std::condition_variable m_workAvailable;
    std::condition_variable m_jobDone;
    qint64 m_produced = 0;
    qint64 m_claimed = 0;
    qint64 m_consumed = 0;
    /** Workers asleep for want of jobs; a submit wakes one only then. */
    int m_idleWorkers = 0;
    /** The caller sleeps on a job; a finished job wakes it only then. */
    std::atomic<bool> m_callerWaiting{false};
    std::atomic<bool> m_stop{false};
};
