#include "engine/PairscopeRun.h"

#include "engine/FolderEntry.h"

#include <cerrno>

namespace {
/**
 * True when a failed stat means the file is no longer there: the tree changed. Any other
 * failure (a permission, an I/O error) would fail again on a new walk.
 */
bool vanished(const FileStat &stat) {
    return stat.error == ENOENT || stat.error == ENOTDIR || stat.error == 0;
}

/** How many records the workers may read ahead of the pass. */
constexpr int readAheadWindow = 512;
/** Jobs queued at once: publishing takes a lock and may wake a thread, so not one by one. */
constexpr qint64 publishBatch = 64;
} // namespace

Pairscope::Run::Run(Pairscope &engine, ComparisonFileCollection &source,
                    ComparisonFileCollection &destination, const PairTestOptions &options,
                    int chunkSize)
    : m_engine(engine)
    , m_source(source)
    , m_destination(destination)
    , m_options(options)
    , m_chunkSize(chunkSize) {}

Pairscope::Run::~Run() = default;

void Pairscope::Run::stop() {
    if (m_readAhead)
        m_readAhead->stop();
}

int Pairscope::Run::status() const {
    if (m_engine.Cancelled())
        return StatusCancelled;
    if (m_destination.NeedsRescan() || m_source.NeedsRescan())
        return StatusRescanNeeded;
    return StatusComplete;
}

bool Pairscope::Run::recompareRequested() const {
    return m_source.NeedsRecompare() || m_destination.NeedsRecompare();
}

bool Pairscope::Run::idle() {
    if (m_engine.m_yield)
        m_engine.m_yield();
    return !m_engine.Cancelled();
}

template <typename Emitter> void Pairscope::Run::notify(Emitter &&emitter) {
    const quint64 sourceGeneration = m_source.generation();
    const quint64 destinationGeneration = m_destination.generation();
    emitter();
    if (m_engine.m_yield)
        m_engine.m_yield();
    // A handler that changed a collection may have changed what the prepared look-ups found.
    if (m_readAhead && (m_source.generation() != sourceGeneration ||
                        m_destination.generation() != destinationGeneration))
        m_stale = m_readAhead->filled();
}

template <typename Fill> void Pairscope::Run::topUp(Fill &&fill) {
    if (!m_readAhead)
        return;
    if (m_readAhead->space() < publishBatch && m_readAhead->queued() > 0)
        return;
    while (m_readAhead->space() > 0 && fill()) {
    }
    m_readAhead->publish();
}

void Pairscope::Run::startReadAhead() {
    m_readAhead.reset();
    m_stale = 0;
    m_nextSubmit = 1;
    if (m_engine.m_workerCount > 0 && !m_engine.Cancelled())
        m_readAhead = std::make_unique<ReadAhead>(m_engine.m_workerCount, m_options, m_chunkSize,
                                                  readAheadWindow, *m_engine.m_crc);
}

const ReadAhead::Job *Pairscope::Run::awaitJob(int position, bool &cancelled, bool &stale) {
    cancelled = false;
    stale = false;
    if (!m_readAhead)
        return nullptr;
    // Jobs of records the pass has moved past (their record changed its mind) are dropped.
    const ReadAhead::Job *front = m_readAhead->front();
    while (front && front->position < position) {
        m_readAhead->release();
        front = m_readAhead->front();
    }
    if (!front || front->position != position)
        return nullptr;
    const quint64 sourceGeneration = m_source.generation();
    const quint64 destinationGeneration = m_destination.generation();
    const ReadAhead::Job *job = m_readAhead->waitFront([this] { return idle(); });
    // Events handled while waiting may have changed the collections too.
    if (m_source.generation() != sourceGeneration ||
        m_destination.generation() != destinationGeneration)
        m_stale = m_readAhead->filled();
    if (!job || m_engine.Cancelled()) {
        cancelled = true;
        return nullptr;
    }
    stale = m_readAhead->frontSequence() < m_stale;
    return job;
}

void Pairscope::Run::releaseJob(const ReadAhead::Job *job) {
    if (job)
        m_readAhead->release();
}

int Pairscope::Run::execute() {
    for (;;) {
        notify([this] { Q_EMIT m_engine.CompareProgress(1, -1, -1); });
        for (ComparisonFileCollection *side : {&m_source, &m_destination}) {
            side->RemoveMissingFiles();
            for (const ComparisonFilePtr &record : *side)
                record->setDifferenceCode(DifferenceCode::NotPaired);
            if (const int s = status(); s != StatusComplete)
                return s;
        }
        notify([this] { Q_EMIT m_engine.CompareProgress(1, -1, m_source.Count()); });
        m_source.setNeedsRecompare(false);
        m_destination.setNeedsRecompare(false);

        if (const int s = sourcePass(); s != StatusComplete)
            return s;
        if (!recompareRequested()) {
            if (const int s = destinationPass(); s != StatusComplete)
                return s;
        }
        if (!recompareRequested())
            return StatusComplete;
    }
}

bool Pairscope::Run::fillSource() {
    if (m_nextSubmit > m_source.Count())
        return false;
    ReadAhead::Job &job = m_readAhead->next();
    job.position = m_nextSubmit;
    job.sourceRecord = m_source.Item(m_nextSubmit);
    if (job.sourceRecord->HasFileObject()) {
        job.sourceFolder = job.sourceRecord->Folder();
        job.sourceName = job.sourceRecord->NativeName();
    }
    // The index slot of a look-up a few records on is fetched into the cache meanwhile.
    constexpr int lookAhead = 8;
    if (m_nextSubmit + lookAhead <= m_source.Count())
        m_destination.prefetchKey(m_source.KeyHash(m_nextSubmit + lookAhead));
    job.destinationRecord =
        m_destination.Counterpart(*job.sourceRecord, m_source.KeyHash(m_nextSubmit), m_source);
    if (job.destinationRecord && job.destinationRecord->HasFileObject() && job.sourceFolder) {
        job.destinationFolder = job.destinationRecord->Folder();
        job.destinationName = job.destinationRecord->NativeName();
    }
    m_readAhead->add();
    ++m_nextSubmit;
    return true;
}

int Pairscope::Run::sourcePass() {
    startReadAhead();
    for (int i = 1; i <= m_source.Count(); ++i) {
        if (const int s = status(); s != StatusComplete)
            return s;
        if (recompareRequested())
            return StatusComplete;
        const ComparisonFilePtr record = m_source.Item(i);

        topUp([this] { return fillSource(); });
        bool cancelled = false;
        bool stale = false;
        const ReadAhead::Job *job = awaitJob(i, cancelled, stale);
        if (cancelled)
            return StatusCancelled;
        ComparisonFilePtr counterpart;
        if (job && !stale && job->sourceRecord == record) {
            // Nothing has changed since the job was queued: its look-up holds.
            counterpart = job->destinationRecord;
        } else {
            counterpart = m_destination.Counterpart(*record, m_source.KeyHash(i), m_source);
            // Prepared for other records: judged from fresh reads instead.
            if (job && (job->sourceRecord != record || job->destinationRecord != counterpart)) {
                releaseJob(job);
                job = nullptr;
            }
        }

        int code;
        DifferenceList differences;
        const FileStat stat = job ? job->sourceStat : record->FileObject().Stat();
        FileStat counterpartStat;
        if (!counterpart) {
            if (!stat.isValid() && vanished(stat)) {
                m_source.setNeedsRescan(true);
                return StatusRescanNeeded;
            }
            code = unpairedCode(*record, stat, m_source, m_destination);
            counterpart = m_destination.AddMissingFile(record->FileObject(), m_source.RootFolder(),
                                                       code, stat);
        } else if (!stat.isValid()) {
            code =
                vanished(stat) ? DifferenceCode::SourceMissing : DifferenceCode::SourceUnreadable;
            // The details listed for the destination are still those of a fresh look.
            if (m_engine.m_loadDetails)
                counterpartStat = job ? job->destinationStat : counterpart->FileObject().Stat();
        } else {
            counterpartStat = job ? job->destinationStat : counterpart->FileObject().Stat();
            if (counterpartStat.isValid() || vanished(counterpartStat))
                differences = judge(record, stat, counterpart, counterpartStat, job);
            else
                differences = DifferenceList::of(DifferenceCode::DestinationUnreadable);
            code = differences.first();
            if (m_source.NeedsRescan() || m_destination.NeedsRescan()) {
                releaseJob(job);
                return StatusRescanNeeded;
            }
        }
        record->setDifferenceCode(code);
        record->setDifferences(differences);
        if (counterpart) {
            counterpart->setDifferenceCode(code);
            counterpart->setDifferences(differences);
        }
        if (m_engine.m_loadDetails) {
            record->UpdateDetails(stat);
            if (counterpart && counterpartStat.isValid())
                counterpart->UpdateDetails(counterpartStat);
        }
        releaseJob(job);
        notify([&] {
            Q_EMIT m_engine.FilesCompared(record, counterpart, code);
            Q_EMIT m_engine.CompareProgress(1, i, m_source.Count());
        });
    }
    return StatusComplete;
}

int Pairscope::Run::unpairedCode(const ComparisonFile &record, const FileStat &stat,
                                 ComparisonFileCollection &side, ComparisonFileCollection &other) {
    const bool isSource = &side == &m_source;
    if (!stat.isValid())
        return isSource ? DifferenceCode::SourceUnreadable : DifferenceCode::DestinationUnreadable;
    if (other.IsBehindUnreadableFolder(record))
        return isSource ? DifferenceCode::DestinationUnreadable : DifferenceCode::SourceUnreadable;
    if (const ComparisonFilePtr twin = other.CaseTwin(record, side))
        side.AddCaseTwinProblem(record, *twin);
    return isSource ? DifferenceCode::DestinationMissing : DifferenceCode::SourceMissing;
}

DifferenceList Pairscope::Run::judge(const ComparisonFilePtr &record, const FileStat &stat,
                                     const ComparisonFilePtr &counterpart,
                                     const FileStat &counterpartStat, const ReadAhead::Job *job) {
    return pairDifferences(stat, counterpartStat, m_options, [&] {
        return checksumTest(record, stat, counterpart, counterpartStat, job);
    });
}

CRC32Object::Result Pairscope::Run::checksumOf(const ComparisonFile &record, const FileStat &stat) {
    return FolderEntry::checksum(*m_engine.m_crc, *record.Folder(), record.NativeName(), stat);
}

int Pairscope::Run::checksumTest(const ComparisonFilePtr &record, const FileStat &stat,
                                 const ComparisonFilePtr &counterpart,
                                 const FileStat &counterpartStat, const ReadAhead::Job *job) {
    using Status = CRC32Object::Status;
    CRC32Object::Result source;
    CRC32Object::Result destination;
    if (job && job->checksummed) {
        source = job->sourceChecksum;
        destination = job->destinationChecksum;
    } else {
        source = checksumOf(*record, stat);
        if (source.status == Status::Ok || source.status == Status::Skipped)
            destination = checksumOf(*counterpart, counterpartStat);
    }
    // A cancel while either file was read leaves the result as it stood.
    if (m_engine.Cancelled() || source.status == Status::Cancelled)
        return DifferenceCode::Equal;
    if (source.status == Status::Failed)
        return DifferenceCode::SourceUnreadable;
    if (destination.status == Status::Cancelled)
        return DifferenceCode::Equal;
    if (destination.status == Status::Failed)
        return DifferenceCode::DestinationUnreadable;
    // A file written while it was read no longer matches its record: the tree has changed,
    // as when a file vanished, and the pass ends before this pair is reported.
    if (source.status == Status::Changed || destination.status == Status::Changed) {
        (source.status == Status::Changed ? m_source : m_destination).setNeedsRescan(true);
        return DifferenceCode::Equal;
    }
    if (source.status == Status::Skipped || destination.status == Status::Skipped)
        return 0;
    return source.crc != destination.crc ? DifferenceCode::Checksum : 0;
}

bool Pairscope::Run::fillDestination() {
    // Only unpaired records are read; the others are skipped by the pass.
    for (; m_nextSubmit <= m_destination.Count(); ++m_nextSubmit) {
        const ComparisonFilePtr &record = *(m_destination.begin() + (m_nextSubmit - 1));
        if (record->DifferenceCode() != DifferenceCode::NotPaired || !record->HasFileObject())
            continue;
        ReadAhead::Job &job = m_readAhead->next();
        job.position = m_nextSubmit;
        job.sourceRecord = record;
        job.sourceFolder = record->Folder();
        job.sourceName = record->NativeName();
        m_readAhead->add();
        ++m_nextSubmit;
        return true;
    }
    return false;
}

int Pairscope::Run::destinationPass() {
    startReadAhead();
    for (int i = 1; i <= m_destination.Count(); ++i) {
        if (const int s = status(); s != StatusComplete)
            return s;
        const ComparisonFilePtr record = m_destination.Item(i);
        if (record->DifferenceCode() == DifferenceCode::NotPaired) {
            topUp([this] { return fillDestination(); });
            bool cancelled = false;
            bool stale = false;
            const ReadAhead::Job *job = awaitJob(i, cancelled, stale);
            if (cancelled)
                return StatusCancelled;
            if (job && job->sourceRecord != record) {
                releaseJob(job);
                job = nullptr;
            }
            const FileStat stat = job ? job->sourceStat : record->FileObject().Stat();
            releaseJob(job);
            if (!stat.isValid() && vanished(stat)) {
                m_destination.setNeedsRescan(true);
                return StatusRescanNeeded;
            }
            if (m_engine.m_loadDetails)
                record->UpdateDetails(stat);
            const int code = unpairedCode(*record, stat, m_destination, m_source);
            const ComparisonFilePtr placeholder = m_source.AddMissingFile(
                record->FileObject(), m_destination.RootFolder(), code, stat);
            record->setDifferenceCode(code);
            notify([&] {
                Q_EMIT m_engine.FilesCompared(placeholder, record, code);
                Q_EMIT m_engine.CompareProgress(2, i, m_destination.Count());
            });
            continue;
        }
        notify([&] { Q_EMIT m_engine.CompareProgress(2, i, m_destination.Count()); });
    }
    return StatusComplete;
}
