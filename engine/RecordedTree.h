#pragma once

#include "engine/CaseRule.h"
#include "engine/ManifestFormat.h"
#include "engine/RecordedFolder.h"
#include "engine/TreeFilter.h"
#include "engine/TreeWalker.h"

#include <QHash>
#include <QString>

#include <cstdio>
#include <memory>
#include <vector>

/**
 * A tree read from a manifest instead of the disk: its folders and their files, walked like a
 * TreeWalker walks a disk, so that a collection builds the same records from either. Each
 * folder node made by walk() carries its RecordedFolder, so that the properties and checksums
 * of the records come from the manifest too.
 */
class RecordedTree : public std::enable_shared_from_this<RecordedTree> {
public:
    /**
     * Reads a whole manifest from \a in. On failure returns null and sets \a error to the
     * reason, led by the line number ("line 7: bad size"), and \a foreign (when given) to
     * whether the text is not a manifest at all: its first line names no manifest format.
     */
    static std::shared_ptr<RecordedTree> read(std::FILE *in, QString *error,
                                              bool *foreign = nullptr);

    const ManifestFormat::Header &header() const { return m_header; }
    /** True when some file or link has no created date. */
    bool lacksCreatedDates() const { return m_lacksCreated; }
    /** In the order of the manifest: a folder comes after the folder that holds it. */
    const std::vector<RecordedFolder> &folders() const { return m_folders; }

    /**
     * Reports the tree below \a root as TreeWalker would, in the manifest's order, leaving
     * out what \a filter's own rules leave out (a manifest written with --gitignore has had
     * its .gitignore files applied). Letter case follows the manifest under
     * CaseRule::Automatic, else \a rule.
     */
    void walk(const FolderRef &root, CaseRule rule, const TreeFilter *filter,
              const TreeWalker::Callbacks &callbacks) const;

private:
    /** Adds the entry of line \a line; false and the reason in \a error. */
    bool add(ManifestEntry &&entry, qint64 line, QString *error);
    /** Puts each folder's files in name order; false (and why) for a name given twice. */
    bool sortFiles(QString *error);

    ManifestFormat::Header m_header;
    std::vector<RecordedFolder> m_folders;
    /** Folder path to its position in m_folders, while reading. */
    QHash<QByteArray, int> m_folderIndex;
    bool m_lacksCreated = false;
};
