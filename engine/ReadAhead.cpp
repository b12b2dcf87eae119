#include "engine/ReadAhead.h"

#include <chrono>
#include <fcntl.h>
#include <unistd.h>

namespace {

/** Jobs that gather before an idle worker is woken for them. */
constexpr qint64 wakeBatch = 32;

/**
 * A descriptor for the folder of a file, kept while consecutive files share it, so that a stat
 * or open resolves one name instead of a whole path.
 */
int folderFd(const FolderRef &folder, FolderRef &cached, int &fd) {
    if (cached == folder)
        return fd;
    if (fd >= 0)
        ::close(fd);
    cached = folder;
    fd = ::open(folder->nativePath().constData(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    return fd;
}

} // namespace

ReadAhead::ReadAhead(int workers, const PairTestOptions &options, int chunkSize, int window)
    : m_ring(std::size_t(window))
    , m_options(options)
    , m_chunkSize(chunkSize) {
    for (int i = 0; i < workers; ++i)
        m_threads.emplace_back([this] { work(); });
}

ReadAhead::~ReadAhead() {
    stop();
    for (std::thread &thread : m_threads)
        thread.join();
}

ReadAhead::Job &ReadAhead::next() {
    Job &job = m_ring[std::size_t(m_produced % qint64(m_ring.size()))];
    job.sourceFolder = FolderRef();
    job.sourceName.clear();
    job.destinationFolder = FolderRef();
    job.destinationName.clear();
    job.sourceRecord.reset();
    job.destinationRecord.reset();
    job.sourceStat = FileStat();
    job.destinationStat = FileStat();
    job.sourceChecksum = {};
    job.destinationChecksum = {};
    job.checksummed = false;
    job.done.store(false, std::memory_order_relaxed);
    return job;
}

qint64 ReadAhead::submit() {
    bool wake;
    {
        const std::lock_guard lock(m_mutex);
        ++m_produced;
        // Waking a thread is a system call: skip it when every worker is busy anyway, and
        // let a few jobs gather first, so that a caller slower than the workers (one that
        // lists every pair it compares) does not pay for a wake-up per job. A caller that
        // waits for a job wakes the workers itself.
        wake = m_idleWorkers > 0 && m_produced - m_claimed >= wakeBatch;
    }
    if (wake)
        m_workAvailable.notify_one();
    return m_produced - 1;
}

ReadAhead::Job *ReadAhead::wait(qint64 sequence, const std::function<bool()> &idle) {
    Job &job = m_ring[std::size_t(sequence % qint64(m_ring.size()))];
    while (!job.done.load(std::memory_order_acquire)) {
        {
            std::unique_lock lock(m_mutex);
            // Jobs held back to make up a batch are wanted now.
            if (m_idleWorkers > 0 && m_claimed < m_produced)
                m_workAvailable.notify_all();
            m_callerWaiting.store(true);
            m_jobDone.wait_for(lock, std::chrono::milliseconds(5),
                               [&job] { return job.done.load(std::memory_order_seq_cst); });
            m_callerWaiting.store(false);
        }
        if (job.done.load(std::memory_order_acquire))
            break;
        if (!idle())
            return nullptr;
    }
    return &job;
}

void ReadAhead::release(qint64 sequence) {
    Q_ASSERT(sequence == m_consumed);
    const std::lock_guard lock(m_mutex);
    m_consumed = sequence + 1;
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
    FolderRef folders[2];
    int fds[2] = {-1, -1};
    for (;;) {
        Job *job;
        {
            std::unique_lock lock(m_mutex);
            ++m_idleWorkers;
            m_workAvailable.wait(lock, [this] {
                return m_stop.load(std::memory_order_relaxed) || m_claimed < m_produced;
            });
            --m_idleWorkers;
            if (m_stop.load(std::memory_order_relaxed))
                break;
            job = &m_ring[std::size_t(m_claimed % qint64(m_ring.size()))];
            ++m_claimed;
        }
        process(*job, crc, folders, fds);
        // Both sides use sequentially consistent order: either the caller sees the job done
        // before it sleeps, or the worker sees the caller waiting and wakes it.
        job->done.store(true, std::memory_order_seq_cst);
        if (m_callerWaiting.load(std::memory_order_seq_cst)) {
            { const std::lock_guard lock(m_mutex); }
            m_jobDone.notify_all();
        }
    }
    for (const int fd : fds) {
        if (fd >= 0)
            ::close(fd);
    }
}

void ReadAhead::process(Job &job, CRC32Object &crc, FolderRef (&folders)[2], int (&fds)[2]) {
    if (!job.sourceFolder)
        return;
    const int sourceFd = folderFd(job.sourceFolder, folders[0], fds[0]);
    job.sourceStat = sourceFd >= 0
                         ? FileStat::read(sourceFd, job.sourceName.constData())
                         : FileStat::read(job.sourceFolder->childNativePath(job.sourceName));
    if (!job.destinationFolder)
        return;
    const int destinationFd = folderFd(job.destinationFolder, folders[1], fds[1]);
    job.destinationStat =
        destinationFd >= 0
            ? FileStat::read(destinationFd, job.destinationName.constData())
            : FileStat::read(job.destinationFolder->childNativePath(job.destinationName));
    if (!needsChecksum(job.sourceStat, job.destinationStat, m_options) ||
        m_stop.load(std::memory_order_relaxed))
        return;
    job.sourceChecksum =
        sourceFd >= 0
            ? crc.Checksum(sourceFd, job.sourceName, job.sourceStat)
            : crc.Checksum(job.sourceFolder->childNativePath(job.sourceName), job.sourceStat);
    if (job.sourceChecksum.status == CRC32Object::Status::Ok ||
        job.sourceChecksum.status == CRC32Object::Status::Skipped) {
        job.destinationChecksum =
            destinationFd >= 0
                ? crc.Checksum(destinationFd, job.destinationName, job.destinationStat)
                : crc.Checksum(job.destinationFolder->childNativePath(job.destinationName),
                               job.destinationStat);
    }
    job.checksummed = true;
}
