#include "engine/Pairscope.h"

#include "engine/CRC32Object.h"
#include "engine/PairTest.h"
#include "engine/PairscopeRun.h"
#include "engine/ReadAhead.h"

#include <algorithm>
#include <thread>

Pairscope::Pairscope(QObject *parent)
    : QObject(parent)
    , m_workerCount(ReadAhead::defaultWorkerCount()) {
    qRegisterMetaType<ComparisonFilePtr>();
}

Pairscope::~Pairscope() = default;

void Pairscope::Cancel() {
    if (m_crc)
        m_crc->Cancel();
    m_cancelled.store(true, std::memory_order_relaxed);
    if (m_run)
        m_run->stop();
}

int Pairscope::Compare(ComparisonFileCollection &SourceFiles, ComparisonFileCollection &DestFiles,
                       int Comparisons, bool IncludeSlack, bool DoCRCLast, int CRCChunkSize) {
    m_cancelled.store(false, std::memory_order_relaxed);
    m_inProgress = true;
    if (!m_crc)
        m_crc = std::make_unique<CRC32Object>();
    m_crc->setChunkSize(CRCChunkSize);
    m_crc->setYieldHook(m_yield);

    PairTestOptions options{Comparisons, IncludeSlack, DoCRCLast, {}};
    for (const int minutes : m_timeShifts)
        options.timeShifts.push_back(qint64(minutes) * 60);
    Run run(*this, SourceFiles, DestFiles, options, m_crc->ChunkSize());
    Run *const outer = std::exchange(m_run, &run);
    const int status = run.execute();
    m_run = outer;
    m_inProgress = false;
    return status;
}

bool Pairscope::DatesDiffer(const FileTime &a, const FileTime &b, bool IncludeSlack) {
    return datesDiffer(a, b, IncludeSlack);
}
