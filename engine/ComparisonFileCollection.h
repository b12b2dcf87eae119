#pragma once

#include "engine/CaseRule.h"
#include "engine/CollectionProblem.h"
#include "engine/ComparisonFile.h"
#include "engine/FolderFiles.h"
#include "engine/RecordIndex.h"
#include "engine/TreeFilter.h"
#include "engine/TreeWalker.h"
#include "engine/YieldHook.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QSet>

#include <memory>
#include <vector>

/**
 * The records of one side of a comparison. Setting the root folder walks the tree below it
 * (each folder's files in name-byte order, then its subfolders in the same order, depth first)
 * and makes one record per file; symbolic links are records too and are never followed.
 * Records are kept in insertion order and keyed by their exact path (ComparisonFile::Key).
 * A record's counterpart on the other side is the record of the same path; where a folder of
 * either tree resolves names without regard to case (see CaseRule), a path that differs only
 * in letter case will do when no exact namesake exists and the pairing is unambiguous; so will
 * a name that is the same once Unicode composed (see setNormalizesNames()).
 *
 * Everything runs on the caller's thread; the yield hook is called after each file so that
 * Cancel() can arrive from an event handler.
 */
class RecordedTree;
class TreeListing;

class ComparisonFileCollection : public QObject {
    Q_OBJECT
public:
    using const_iterator = std::vector<ComparisonFilePtr>::const_iterator;

    explicit ComparisonFileCollection(QObject *parent = nullptr);
    ~ComparisonFileCollection() override;

    /** The records no longer match the disk; setting it during a walk restarts the walk. */
    bool NeedsRescan() const { return m_needsRescan; }
    void setNeedsRescan(bool on) { m_needsRescan = on; }
    /** Asks a running comparison to start over; cleared by Clear(). */
    bool NeedsRecompare() const { return m_needsRecompare; }
    void setNeedsRecompare(bool on) { m_needsRecompare = on; }

    /** True while a walk runs. */
    bool InProgress() const { return m_inProgress; }
    /** True after Cancel(), until the next walk or Clear(). */
    bool Cancelled() const { return m_cancelled; }
    /** Stops the running walk at its next file; the records found so far stay. */
    void Cancel() { m_cancelled = true; }

    /** How letter case counts, for the next walk and for every look-up of a counterpart. */
    void setCaseRule(CaseRule rule) { m_caseRule = rule; }
    /** What the walk leaves out (none when null); set before the root. */
    void setFilter(std::shared_ptr<const TreeFilter> filter) { m_filter = std::move(filter); }

    /**
     * Takes the tree from \a tree, a manifest read earlier, instead of the disk: the next
     * root set names the manifest, and records, properties and checksums come from it. Null
     * (the default) reads the disk.
     */
    void setRecordedTree(std::shared_ptr<const RecordedTree> tree) { m_recorded = std::move(tree); }

    /**
     * Whether names that are the same once Unicode composed (NFC) pair when no exact namesake
     * exists: a tree copied from a system that writes accents decomposed. Default true; both
     * sides must allow it.
     */
    void setNormalizesNames(bool on) { m_normalizeNames = on; }

    /** The folder last walked, as given ("" after Clear()). */
    QString RootFolder() const { return m_rootFolder; }
    /**
     * Walks \a folder into a new, empty collection and returns when the walk has finished or
     * was cancelled. A folder that cannot be read, and a root that is not a folder (or no
     * longer exists), is listed in Problems().
     */
    void setRootFolder(const QString &folder);
    /** Same for a folder given as bytes (a path that is not valid UTF-8). */
    void setRootFolderNative(const QByteArray &folder);
    /**
     * Starts reading the tree below \a folder on a thread of its own; the next
     * setRootFolder() of the same folder takes what it has read instead of reading the disk
     * itself. Events and results are those of a walk started then. Nothing is read when the
     * folder does not exist.
     */
    void prepareRootFolder(const QString &folder);
    /** The root's native path, without a trailing separator (except for "/"). */
    QByteArray RootFolderNative() const;

    /**
     * Adds a placeholder on this side for \a file, found below \a otherRoot on the other side:
     * the file's details (loaded now, or from \a stat when given) with this side's path, and
     * difference code \a code. Returns the new record, or null when a record with that key
     * already exists. Raises no event.
     */
    ComparisonFilePtr AddMissingFile(const ::FileObject &file, const QString &otherRoot, int code);
    ComparisonFilePtr AddMissingFile(const ::FileObject &file, const QString &otherRoot, int code,
                                     const FileStat &stat);
    /** Removes every placeholder. */
    void RemoveMissingFiles();
    /** Empties the collection: no records, no problems, root "", flags cleared. */
    void Clear();

    /** The record at 1-based \a position, or null outside 1..Count(). */
    ComparisonFilePtr Item(int position) const;
    /** The record whose key is \a key (a full path in key form, see ComparisonFile::Key). */
    ComparisonFilePtr Item(const QString &key) const;
    /**
     * The record paired with \a other, a record of \a otherSide: the one at the same path below
     * this root, else, where a folder of either side ignores letter case, the one real record
     * spelt differently but for case that has no exact namesake in \a otherSide and no rival
     * there; or null.
     */
    ComparisonFilePtr Counterpart(const ComparisonFile &other,
                                  const ComparisonFileCollection &otherSide) const;
    /** Same, given the hash of \a other's key (RecordIndex::hashOf(), or KeyHash()). */
    ComparisonFilePtr Counterpart(const ComparisonFile &other, quint32 keyHash,
                                  const ComparisonFileCollection &otherSide) const;
    /**
     * A real record that differs from \a other (of \a otherSide) only in letter case where a
     * folder ignores it, though Counterpart() did not pair them; or null.
     */
    ComparisonFilePtr CaseTwin(const ComparisonFile &other,
                               const ComparisonFileCollection &otherSide) const;
    /**
     * True when \a other, a record of the other side, lies at a path below a folder of this
     * tree that could not be read: whether a counterpart exists cannot be known.
     */
    bool IsBehindUnreadableFolder(const ComparisonFile &other) const;
    /** Lists \a record as left unpaired because of its case twin \a twin on the other side. */
    void AddCaseTwinProblem(const ComparisonFile &record, const ComparisonFile &twin);
    /** RecordIndex::hashOf() of the record at 1-based \a position, kept from its insertion. */
    quint32 KeyHash(int position) const { return m_hashes[std::size_t(position - 1)]; }
    /** Starts fetching the index slot of a key hash into the cache, for a look-up soon. */
    void prefetchKey(quint32 keyHash) const { m_index.prefetch(keyHash); }
    int Count() const { return int(m_records.size()); }

    /** Insertion order. Do not add or remove records while iterating. */
    const_iterator begin() const { return m_records.begin(); }
    const_iterator end() const { return m_records.end(); }

    /** Folders that could not be read, then files left unpaired beside a case twin. */
    const QList<CollectionProblem> &Problems() const { return m_problems; }

    /**
     * Counts changes that can alter what a key finds (walks, additions, removals, Clear), so
     * that work prepared ahead can tell whether its look-ups still hold.
     */
    quint64 generation() const { return m_generation; }

    /** Called after every file of a walk. */
    void setYieldHook(YieldHook hook) { m_yield = std::move(hook); }

Q_SIGNALS:
    /** A walk added a record; \a FileCount is Count() after the addition. */
    void FileAdded(int FileCount);

private:
    void walk(const QByteArray &rootNative, const QString &asGiven);
    /** What a walk of the disk or of a manifest reports to. */
    TreeWalker::Callbacks walkCallbacks();
    /** Takes the walk from \a listing; false when a cancel or rescan stopped it. */
    bool takeListing(TreeListing &listing);
    /** Adds the files of one folder; false when a cancel or rescan stopped it. */
    bool addFileRecords(const FolderFiles &files);
    void addProblem(CollectionProblem problem);
    void addUnreadableFolder(const FolderRef &folder, int error);
    /** True when some folder of the tree (or the rule) ignores letter case. */
    bool mayIgnoreCase() const { return m_anyIgnoresCase; }
    bool composesNames(const ComparisonFileCollection &otherSide) const {
        return m_normalizeNames && otherSide.m_normalizeNames;
    }
    ComparisonFilePtr caseBlindCounterpart(const ComparisonFile &other, quint32 keyHash,
                                           const ComparisonFileCollection &otherSide) const;
    /**
     * Adds \a record under its key, whose hash is \a hash; false (and nothing added) when the
     * key is taken, with its holder's position in \a existing.
     */
    bool insert(const ComparisonFilePtr &record, quint32 hash, qsizetype *existing = nullptr);
    /** Position of the record with the same key as \a other (whose key hash is \a hash), or -1. */
    qsizetype find(const ComparisonFile &other, quint32 hash) const;
    void resetRecords();
    FolderRef placeholderFolder(const QByteArray &relativeNative);

    std::vector<ComparisonFilePtr> m_records;
    std::vector<quint32> m_hashes;
    /** The folder being added by a walk of this thread. */
    FolderFiles m_pending;
    RecordIndex m_index;
    QHash<QByteArray, FolderRef> m_placeholderFolders;
    QList<CollectionProblem> m_problems;
    /** Each problem's path and kind, so that none is listed twice. */
    QSet<QByteArray> m_problemKeys;
    /** relativeKey() of every folder that could not be read ("" for the root). */
    QSet<QString> m_unreadableKeys;
    QString m_rootFolder;
    QByteArray m_rootNative;
    FolderRef m_rootNode;
    /** A listing started by prepareRootFolder(), not yet taken. */
    std::unique_ptr<TreeListing> m_prepared;
    YieldHook m_yield;
    quint64 m_generation = 0;
    CaseRule m_caseRule = CaseRule::Automatic;
    std::shared_ptr<const TreeFilter> m_filter;
    std::shared_ptr<const RecordedTree> m_recorded;
    bool m_anyIgnoresCase = false;
    bool m_normalizeNames = true;
    bool m_needsRescan = false;
    bool m_needsRecompare = false;
    bool m_inProgress = false;
    bool m_cancelled = false;
};
