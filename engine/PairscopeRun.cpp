#include "engine/PairscopeRun.h"

#include <cerrno>

namespace {
/** How many records the workers may read ahead of the pass. */
constexpr int readAheadWindow = 512;
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
        m_stale = m_readAhead->produced();
}

void Pairscope::Run::startReadAhead() {
    m_readAhead.reset();
    m_stale = 0;
    m_nextSubmit = 1;
    if (m_engine.m_workerCount > 0 && !m_engine.Cancelled())
        m_readAhead = std::make_unique<ReadAhead>(m_engine.m_workerCount, m_options, m_chunkSize,
                                                  readAheadWindow);
}

const ReadAhead::Job *Pairscope::Run::awaitJob(int position, bool &cancelled) {
    // Jobs are submitted one per record of the pass, so record i has sequence i - 1.
    const qint64 sequence = position - 1;
    if (!m_readAhead || sequence >= m_readAhead->produced())
        return nullptr;
    const ReadAhead::Job *job = m_readAhead->wait(sequence, [this] { return idle(); });
    cancelled = !job;
    return job;
}

void Pairscope::Run::releaseJob(int position) {
    if (m_readAhead && position - 1 < m_readAhead->produced())
        m_readAhead->release(position - 1);
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

void Pairscope::Run::submitSource(int upTo) {
    const int last = std::min(upTo, m_source.Count());
    while (m_nextSubmit <= last && !m_readAhead->full()) {
        ReadAhead::Job &job = m_readAhead->next();
        job.sourceRecord = m_source.Item(m_nextSubmit);
        if (job.sourceRecord->HasFileObject()) {
            job.sourceFolder = job.sourceRecord->Folder();
            job.sourceName = job.sourceRecord->NativeName();
        }
        job.destinationRecord =
            m_destination.Counterpart(*job.sourceRecord, m_source.KeyHash(m_nextSubmit));
        if (job.destinationRecord && job.destinationRecord->HasFileObject() && job.sourceFolder) {
            job.destinationFolder = job.destinationRecord->Folder();
            job.destinationName = job.destinationRecord->NativeName();
        }
        m_readAhead->submit();
        ++m_nextSubmit;
    }
}

int Pairscope::Run::sourcePass() {
    startReadAhead();
    for (int i = 1; i <= m_source.Count(); ++i) {
        if (const int s = status(); s != StatusComplete)
            return s;
        if (recompareRequested())
            return StatusComplete;
        const ComparisonFilePtr record = m_source.Item(i);
        ComparisonFilePtr counterpart = m_destination.Counterpart(*record, m_source.KeyHash(i));

        if (m_readAhead)
            submitSource(i + readAheadWindow);
        bool cancelled = false;
        const ReadAhead::Job *job = awaitJob(i, cancelled);
        if (cancelled)
            return StatusCancelled;
        // Prepared for other records: judged from fresh reads instead.
        if (job && i - 1 < m_stale &&
            (job->sourceRecord != record || job->destinationRecord != counterpart))
            job = nullptr;

        int code;
        const FileStat stat = job ? job->sourceStat : record->FileObject().Stat();
        if (!counterpart) {
            if (!stat.isValid()) {
                m_source.setNeedsRescan(true);
                return StatusRescanNeeded;
            }
            counterpart = m_destination.AddMissingFile(record->FileObject(), m_source.RootFolder(),
                                                       DifferenceCode::DestinationMissing, stat);
            code = DifferenceCode::DestinationMissing;
        } else if (!stat.isValid()) {
            code = DifferenceCode::SourceMissing;
        } else {
            code = judge(record, counterpart, job);
        }
        record->setDifferenceCode(code);
        if (counterpart)
            counterpart->setDifferenceCode(code);
        releaseJob(i);
        notify([&] {
            Q_EMIT m_engine.FilesCompared(record, counterpart, code);
            Q_EMIT m_engine.CompareProgress(1, i, m_source.Count());
        });
    }
    return StatusComplete;
}

int Pairscope::Run::judge(const ComparisonFilePtr &record, const ComparisonFilePtr &counterpart,
                          const ReadAhead::Job *job) {
    const FileStat stat = job ? job->sourceStat : record->FileObject().Stat();
    const FileStat counterpartStat = job ? job->destinationStat : counterpart->FileObject().Stat();
    return comparePair(stat, counterpartStat, m_options, [&] {
        return checksumTest(record, stat, counterpart, counterpartStat, job);
    });
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
        CRC32Object &crc = *m_engine.m_crc;
        source = crc.Checksum(record->NativePath(), stat);
        if (source.status == Status::Ok || source.status == Status::Skipped)
            destination = crc.Checksum(counterpart->NativePath(), counterpartStat);
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
    if (source.status == Status::Skipped || destination.status == Status::Skipped)
        return 0;
    return source.crc != destination.crc ? DifferenceCode::Checksum : 0;
}

void Pairscope::Run::submitDestination(int upTo) {
    const int last = std::min(upTo, m_destination.Count());
    while (m_nextSubmit <= last && !m_readAhead->full()) {
        ReadAhead::Job &job = m_readAhead->next();
        job.sourceRecord = m_destination.Item(m_nextSubmit);
        // Only unpaired records are read; the others are skipped by the pass.
        if (job.sourceRecord->DifferenceCode() == DifferenceCode::NotPaired &&
            job.sourceRecord->HasFileObject()) {
            job.sourceFolder = job.sourceRecord->Folder();
            job.sourceName = job.sourceRecord->NativeName();
        }
        m_readAhead->submit();
        ++m_nextSubmit;
    }
}

int Pairscope::Run::destinationPass() {
    startReadAhead();
    for (int i = 1; i <= m_destination.Count(); ++i) {
        if (const int s = status(); s != StatusComplete)
            return s;
        const ComparisonFilePtr record = m_destination.Item(i);
        if (m_readAhead)
            submitDestination(i + readAheadWindow);
        bool cancelled = false;
        const ReadAhead::Job *job = awaitJob(i, cancelled);
        if (cancelled)
            return StatusCancelled;
        if (job && (job->sourceRecord != record || !job->sourceFolder))
            job = nullptr;
        if (record->DifferenceCode() == DifferenceCode::NotPaired) {
            const FileStat stat = job ? job->sourceStat : record->FileObject().Stat();
            if (!stat.isValid()) {
                m_destination.setNeedsRescan(true);
                return StatusRescanNeeded;
            }
            const ComparisonFilePtr placeholder =
                m_source.AddMissingFile(record->FileObject(), m_destination.RootFolder(),
                                        DifferenceCode::SourceMissing, stat);
            record->setDifferenceCode(DifferenceCode::SourceMissing);
            releaseJob(i);
            notify([&] {
                Q_EMIT m_engine.FilesCompared(placeholder, record, DifferenceCode::SourceMissing);
                Q_EMIT m_engine.CompareProgress(2, i, m_destination.Count());
            });
            continue;
        }
        releaseJob(i);
        notify([&] { Q_EMIT m_engine.CompareProgress(2, i, m_destination.Count()); });
    }
    return StatusComplete;
}
