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
 * queues jobs in the order it will consume them and takes each result in that order, so every
 * decision, event and its order stays on the caller's thread.
 *
 * Jobs are handed over in batches: the caller fills many slots and publishes them with one
 * lock, and a worker claims several at a time, so that neither side takes a lock or wakes a
 * thread per file. While the caller waits for a job, it runs jobs that no worker has claimed
 * yet (the one it waits for, if no worker has reached it) instead of sleeping.
 *
 * A disk that has to fetch what is read serves many requests at once far faster than one at a
 * time, so when the workers' jobs have to read the disk, more workers join them (up to
 * maximumWorkers): on a cold cache, a thread a request in flight. On a warm cache they stay as
 * many as the processors.
 */
class ReadAhead {
public:
    /** The most workers there will be: enough requests in flight to keep a disk's queue full. */
    static constexpr int maximumWorkers = 16;

    /**
     * A descriptor of a folder, opened once for all the jobs in it, so that a stat or open
     * resolves one name instead of a whole path. Only the caller counts its users.
     */
    struct FolderFd {
        int fd = -1;
        int users = 0;
    };

    /** One pair (or one file) to read. Fields marked "caller" are never touched by workers. */
    struct Job {
        // Set by the caller before the job is published.
        FolderRef sourceFolder;
        QByteArray sourceName;
        FolderRef destinationFolder;
        QByteArray destinationName;
        /** caller: the records the job was made for, to check them again when consumed. */
        ComparisonFilePtr sourceRecord;
        ComparisonFilePtr destinationRecord;
        /** caller: the 1-based position in the pass of the record the job was made for. */
        int position = 0;
        /** Set by add(): the folders' descriptors (null when there is no folder). */
        FolderFd *sourceFd = nullptr;
        FolderFd *destinationFd = nullptr;
        // Written by whoever runs the job.
        FileStat sourceStat;
        FileStat destinationStat;
        CRC32Object::Result sourceChecksum;
        CRC32Object::Result destinationChecksum;
        bool checksummed = false;
        std::atomic<bool> done{false};
    };

    /**
     * \a workers threads, at most \a window jobs queued; checksums read in chunks of
     * \a chunkSize bytes. \a callerCrc takes the checksums of jobs the caller runs itself, so
     * that they yield and cancel as the caller's own.
     */
    ReadAhead(int workers, const PairTestOptions &options, int chunkSize, int window,
              CRC32Object &callerCrc);
    ~ReadAhead();
    ReadAhead(const ReadAhead &) = delete;
    ReadAhead &operator=(const ReadAhead &) = delete;

    /** The workers a reader uses unless told otherwise: the processors, at most 4. */
    static int defaultWorkerCount();

    /**
     * Whether a job of one file (no destination) has its checksum taken too, where it has one:
     * a tree's manifest needs every file's. Off by default; set it before the first job.
     */
    void setChecksumsAlone(bool on) { m_checksumsAlone = on; }

    /** Sequence number of the next job next() hands out (jobs are counted from 0). */
    qint64 filled() const { return m_filled; }
    /** Sequence number of front(). */
    qint64 frontSequence() const { return m_consumed; }
    /** Jobs queued (published or not) and not yet released. */
    qint64 queued() const { return m_filled - m_consumed; }
    /** Free slots for jobs. */
    qint64 space() const { return qint64(m_ring.size()) - queued(); }
    /** The slot for the next job, emptied; fill it, then call add(). Needs space(). */
    Job &next();
    /** Counts the job filled in next(); it waits for publish(). */
    void add();
    /**
     * Hands every added job to the workers at once, waking those asleep; adds a worker when
     * the workers have been waiting on the disk.
     */
    void publish();
    /** The workers running now. */
    int workerCount() const { return m_workerCount.load(std::memory_order_relaxed); }

    /** The oldest job not yet released, or null when none is queued. */
    Job *front();
    /**
     * Waits for front() to be done, running unclaimed jobs meanwhile and calling \a idle after
     * each and every few milliseconds; returns null when \a idle reports that the wait should
     * end (a cancel).
     */
    Job *waitFront(const std::function<bool()> &idle);
    /** Frees the slot of front(). */
    void release();
    /** Stops the workers promptly, abandoning running checksums. Caller's thread or not. */
    void stop();

private:
    Job &slot(qint64 sequence) { return m_ring[std::size_t(sequence % qint64(m_ring.size()))]; }
    void work();
    /** Runs the claimed jobs from \a begin on; true when some of them had to read the disk. */
    bool runClaimed(qint64 begin, qint64 count, CRC32Object &crc);
    void process(Job &job, CRC32Object &crc);
    /** A use of the descriptor of \a folder, opened when it differs from the last one. */
    FolderFd *acquireFolder(int side, const FolderRef &folder);
    static void releaseFolder(FolderFd *&folderFd);
    void finish(Job &job);

    std::vector<Job> m_ring;
    std::vector<std::thread> m_threads;
    PairTestOptions m_options;
    int m_chunkSize;
    CRC32Object &m_callerCrc;
    std::atomic<int> m_workerCount;
    /** Set by a worker whose last jobs read the disk; cleared by the caller. */
    std::atomic<bool> m_diskBound{false};
    bool m_checksumsAlone = false;
    /** The descriptor of the last folder of each side, kept for the jobs that follow. */
    FolderFd *m_lastFolderFd[2] = {nullptr, nullptr};
    FolderRef m_lastFolder[2];
    std::mutex m_mutex;
    std::condition_variable m_workAvailable;
    std::condition_variable m_jobDone;
    // Caller only.
    qint64 m_filled = 0;
    qint64 m_consumed = 0;
    // Under m_mutex.
    qint64 m_published = 0;
    qint64 m_claimed = 0;
    /** Workers asleep for want of jobs; a publish wakes them only then. */
    int m_idleWorkers = 0;
    /** The caller sleeps on a job; a finished job wakes it only then. */
    std::atomic<bool> m_callerWaiting{false};
    std::atomic<bool> m_stop{false};
};
