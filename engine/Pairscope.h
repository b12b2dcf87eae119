#pragma once

#include "engine/ComparisonFile.h"
#include "engine/ComparisonFileCollection.h"
#include "engine/PathHelpers.h"
#include "engine/YieldHook.h"

#include <QList>
#include <QObject>

#include <atomic>
#include <memory>

class CRC32Object;

/**
 * The compare engine: pairs every source record with the destination record at the same path
 * below the other root, adds placeholders for files found on one side only, decides each
 * pair's difference code with a fixed order of tests, and reports progress and every decided
 * pair through its signals.
 *
 * Signals are emitted on the caller's thread, in the order of a sequential run. Work that only
 * reads the disk (statx of the records ahead, checksums of pairs that will need one) runs ahead
 * on worker threads; Cancel() stops them promptly.
 */
class Pairscope : public QObject {
    Q_OBJECT
public:
    /** What Compare() returns. */
    enum Status {
        /** Cancel() was called. */
        StatusCancelled = 0,
        /** A file vanished since the walk: its collection is marked NeedsRescan. */
        StatusRescanNeeded = 1,
        /** Every pair was decided. */
        StatusComplete = 2,
    };

    explicit Pairscope(QObject *parent = nullptr);
    ~Pairscope() override;

    /** True while Compare() runs. */
    bool InProgress() const { return m_inProgress; }
    /** True after Cancel(), until the next Compare(). */
    bool Cancelled() const { return m_cancelled.load(std::memory_order_relaxed); }
    /** Cancels the running checksum and the comparison. */
    void Cancel();

    /**
     * Compares the two collections by \a Comparisons (ComparisonBits), with the two-second
     * date slack when \a IncludeSlack is set and checksums after every cheaper test when
     * \a DoCRCLast is set, reading checksummed files in chunks of \a CRCChunkSize bytes.
     * Writes both records' difference codes and returns a Status. The collections must
     * outlive the call.
     */
    int Compare(ComparisonFileCollection &SourceFiles, ComparisonFileCollection &DestFiles,
                int Comparisons, bool IncludeSlack, bool DoCRCLast, int CRCChunkSize);

    /**
     * Whether two dates differ: exactly, or with \a IncludeSlack by more than two whole-second
     * boundaries. "No date" equals only "no date".
     */
    static bool DatesDiffer(const FileTime &a, const FileTime &b, bool IncludeSlack);

    /** See the free function TranslatePath. */
    static QString TranslatePath(const QString &path, const QString &fromRoot,
                                 const QString &toRoot, bool lowerCase) {
        return ::TranslatePath(path, fromRoot, toRoot, lowerCase);
    }

    /** Called after every record of a pass and while waiting for a checksum. */
    void setYieldHook(YieldHook hook) { m_yield = std::move(hook); }
    /**
     * How many worker threads read ahead (0: everything on the caller's thread). Defaults to
     * the number of processors, at most 4.
     */
    void setWorkerCount(int count) { m_workerCount = count < 0 ? 0 : count; }
    int workerCount() const { return m_workerCount; }
    /**
     * When set, every record of a decided pair has its details loaded (DetailsLoaded()) from
     * the very statx the pair was judged on before FilesCompared is emitted, so that a
     * listing needs no second look at the disk. Off by default: a run that only reports
     * difference codes is spared the memory.
     */
    void setLoadDetails(bool load) { m_loadDetails = load; }
    bool loadDetails() const { return m_loadDetails; }
    /**
     * Date differences of exactly these many minutes (either direction, within the slack when
     * it is on) count as equal: a tree kept on FAT, or copied across a daylight-saving change,
     * is off by an hour in every date.
     */
    void setTimeShifts(const QList<int> &minutes) { m_timeShifts = minutes; }

Q_SIGNALS:
    /**
     * Progress of pass \a Pass (1 or 2): twice at the start of each cycle with \a CurrentFile
     * -1 (the first time also \a TotalFiles -1), then after every record of a pass.
     */
    void CompareProgress(int Pass, int CurrentFile, int TotalFiles);
    /** One decided pair; one side may be a placeholder. */
    void FilesCompared(const ComparisonFilePtr &SourceFile, const ComparisonFilePtr &DestFile,
                       int ComparisonResult);

private:
    class Run;
    friend class Run;

    std::unique_ptr<CRC32Object> m_crc;
    YieldHook m_yield;
    Run *m_run = nullptr;
    std::atomic<bool> m_cancelled{false};
    bool m_inProgress = false;
    int m_workerCount;
    bool m_loadDetails = false;
    QList<int> m_timeShifts;
};
