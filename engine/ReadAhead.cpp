#include "engine/ReadAhead.h"

#include "engine/FolderEntry.h"
#include "engine/LongPath.h"

#include <algorithm>
#include <chrono>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

/**
 * Most jobs a worker claims at once. Claiming costs a lock, so a worker takes several; but the
 * caller consumes in order and waits for a job inside a claimed run, so runs stay short enough
 * for the workers to interleave.
 */
constexpr qint64 maximumClaim = 8;

} // namespace

ReadAhead::FolderFd *ReadAhead::acquireFolder(int side, const FolderRef &folder) {
    // A recorded folder has no disk behind it to open.
    if (!folder || folder->recorded())
        return nullptr;
    if (m_lastFolder[side] != folder) {
        releaseFolder(m_lastFolderFd[side]);
        m_lastFolder[side] = folder;
        m_lastFolderFd[side] =
            new FolderFd{LongPath::open(folder->nativePath(), O_PATH | O_DIRECTORY | O_CLOEXEC), 1};
    }
    ++m_lastFolderFd[side]->users;
    return m_lastFolderFd[side];
}

void ReadAhead::releaseFolder(FolderFd *&folderFd) {
    if (folderFd && --folderFd->users == 0) {
        if (folderFd->fd >= 0)
            ::close(folderFd->fd);
        delete folderFd;
    }
    folderFd = nullptr;
}

int ReadAhead::defaultWorkerCount() {
    return int(std::clamp(std::thread::hardware_concurrency(), 1u, 4u));
}

ReadAhead::ReadAhead(int workers, const PairTestOptions &options, int chunkSize, int window,
                     CRC32Object &callerCrc)
    : m_ring(std::size_t(std::max(window, 1)))
    , m_options(options)
    , m_chunkSize(chunkSize)
    , m_callerCrc(callerCrc)
    , m_workerCount(std::clamp(workers, 0, maximumWorkers)) {
    for (int i = 0; i < workerCount(); ++i)
        m_threads.emplace_back([this] { work(); });
}

ReadAhead::~ReadAhead() {
    stop();
    for (std::thread &thread : m_threads)
        thread.join();
    for (Job &job : m_ring) {
        releaseFolder(job.sourceFd);
        releaseFolder(job.destinationFd);
    }
    for (FolderFd *&folderFd : m_lastFolderFd)
        releaseFolder(folderFd);
}

ReadAhead::Job &ReadAhead::next() {
    Job &job = slot(m_filled);
    job.sourceFolder = FolderRef();
    job.sourceName.clear();
    job.destinationFolder = FolderRef();
    job.destinationName.clear();
    job.sourceRecord.reset();
    job.destinationRecord.reset();
    job.position = 0;
    releaseFolder(job.sourceFd);
    releaseFolder(job.destinationFd);
    job.sourceStat = FileStat();
    job.destinationStat = FileStat();
    job.sourceChecksum = {};
    job.destinationChecksum = {};
    job.checksummed = false;
    job.done.store(false, std::memory_order_relaxed);
    return job;
}

void ReadAhead::add() {
    Job &job = slot(m_filled);
    job.sourceFd = acquireFolder(0, job.sourceFolder);
    job.destinationFd = acquireFolder(1, job.destinationFolder);
    ++m_filled;
}

void ReadAhead::publish() {
    // Without workers the caller reads alone, as it was asked to. Doubling reaches a full
    // disk queue within a few batches.
    if (m_diskBound.exchange(false, std::memory_order_relaxed) && workerCount() > 0) {
        const int more = std::min(workerCount(), maximumWorkers - workerCount());
        for (int i = 0; i < more; ++i)
            m_threads.emplace_back([this] { work(); });
        m_workerCount.fetch_add(more, std::memory_order_relaxed);
    }
    qint64 added;
    bool wake;
    {
        const std::lock_guard lock(m_mutex);
        added = m_filled - m_published;
        m_published = m_filled;
        wake = added > 0 && m_idleWorkers > 0;
    }
    // Waking a thread is a system call: only for workers that sleep, and all of them only when
    // there is enough for all.
    if (!wake)
        return;
    if (added > maximumClaim)
        m_workAvailable.notify_all();
    else
        m_workAvailable.notify_one();
}

ReadAhead::Job *ReadAhead::front() {
    return m_consumed < m_filled ? &slot(m_consumed) : nullptr;
}

ReadAhead::Job *ReadAhead::waitFront(const std::function<bool()> &idle) {
    Job &job = slot(m_consumed);
    while (!job.done.load(std::memory_order_acquire)) {
        // Rather than sleep while a worker finishes the front, the caller takes on the oldest
        // job nobody has claimed (the front itself when no worker has reached it).
        Job *unclaimed = nullptr;
        {
            std::unique_lock lock(m_mutex);
            m_published = m_filled;
            if (m_claimed < m_published) {
                unclaimed = &slot(m_claimed);
                ++m_claimed;
            } else {
                m_callerWaiting.store(true);
                m_jobDone.wait_for(lock, std::chrono::milliseconds(5),
                                   [&job] { return job.done.load(std::memory_order_seq_cst); });
                m_callerWaiting.store(false);
            }
        }
        if (unclaimed) {
            process(*unclaimed, m_callerCrc);
            unclaimed->done.store(true, std::memory_order_release);
            if (unclaimed == &job)
                break;
        } else if (job.done.load(std::memory_order_acquire)) {
            break;
        }
        if (!idle())
            return nullptr;
    }
    return &job;
}

void ReadAhead::release() {
    Q_ASSERT(m_consumed < m_filled);
    ++m_consumed;
}

void ReadAhead::stop() {
    {
        const std::lock_guard lock(m_mutex);
        m_stop.store(true, std::memory_order_relaxed);
    }
    m_workAvailable.notify_all();
    m_jobDone.notify_all();
}

void ReadAhead::work() {
    CRC32Object crc;
    crc.setChunkSize(m_chunkSize);
    // The worker's checksum has no event loop to yield to; its hook only passes the stop on.
    crc.setYieldHook([this, &crc] {
        if (m_stop.load(std::memory_order_relaxed))
            crc.Cancel();
    });
    std::unique_lock lock(m_mutex);
    for (;;) {
        if (m_stop.load(std::memory_order_relaxed))
            break;
        if (m_claimed >= m_published) {
            ++m_idleWorkers;
            m_workAvailable.wait(lock, [this] {
                return m_stop.load(std::memory_order_relaxed) || m_claimed < m_published;
            });
            --m_idleWorkers;
            continue;
        }
        // A share of what is waiting, so that the other workers get some too.
        const qint64 begin = m_claimed;
        const qint64 count =
            std::clamp<qint64>((m_published - begin) / workerCount(), 1, maximumClaim);
        m_claimed = begin + count;
        lock.unlock();
        if (runClaimed(begin, count, crc))
            m_diskBound.store(true, std::memory_order_relaxed);
        lock.lock();
    }
}

bool ReadAhead::runClaimed(qint64 begin, qint64 count, CRC32Object &crc) {
    // The thread's block input counts what the page cache could not serve, in 512-byte units:
    // none on a warm cache, whatever else the machine is doing. A page here and there that the
    // cache let go does not make a cold tree; a page a job on average does.
    rusage before{};
    ::getrusage(RUSAGE_THREAD, &before);
    for (qint64 sequence = begin; sequence < begin + count; ++sequence) {
        Job &job = slot(sequence);
        process(job, crc);
        finish(job);
    }
    rusage after{};
    ::getrusage(RUSAGE_THREAD, &after);
    return after.ru_inblock - before.ru_inblock > 8 * count;
}

void ReadAhead::finish(Job &job) {
    // Both sides use sequentially consistent order: either the caller sees the job done
    // before it sleeps, or the worker sees the caller waiting and wakes it.
    job.done.store(true, std::memory_order_seq_cst);
    if (m_callerWaiting.load(std::memory_order_seq_cst)) {
        { const std::lock_guard lock(m_mutex); }
        m_jobDone.notify_all();
    }
}

namespace {

int descriptor(const ReadAhead::FolderFd *fd) {
    return fd ? fd->fd : -1;
}

FileStat statOf(const FolderRef &folder, const QByteArray &name, const ReadAhead::FolderFd *fd) {
    return FolderEntry::stat(*folder, name, descriptor(fd));
}

CRC32Object::Result checksumOf(CRC32Object &crc, const FolderRef &folder, const QByteArray &name,
                               const ReadAhead::FolderFd *fd, const FileStat &stat) {
    return FolderEntry::checksum(crc, *folder, name, stat, descriptor(fd));
}

} // namespace

void ReadAhead::process(Job &job, CRC32Object &crc) {
    if (!job.sourceFolder)
        return;
    job.sourceStat = statOf(job.sourceFolder, job.sourceName, job.sourceFd);
    if (!job.destinationFolder) {
        if (m_checksumsAlone && job.sourceStat.isValid() &&
            job.sourceStat.kind != FileKind::Other && !m_stop.load(std::memory_order_relaxed)) {
            job.sourceChecksum =
                checksumOf(crc, job.sourceFolder, job.sourceName, job.sourceFd, job.sourceStat);
            job.checksummed = true;
        }
        return;
    }
    job.destinationStat = statOf(job.destinationFolder, job.destinationName, job.destinationFd);
    if (!needsChecksum(job.sourceStat, job.destinationStat, m_options) ||
        m_stop.load(std::memory_order_relaxed))
        return;
    job.sourceChecksum =
        checksumOf(crc, job.sourceFolder, job.sourceName, job.sourceFd, job.sourceStat);
    if (job.sourceChecksum.status == CRC32Object::Status::Ok ||
        job.sourceChecksum.status == CRC32Object::Status::Skipped) {
        job.destinationChecksum = checksumOf(crc, job.destinationFolder, job.destinationName,
                                             job.destinationFd, job.destinationStat);
    }
    job.checksummed = true;
}
