#pragma once

#include "engine/ComparisonFile.h"
#include "engine/FolderNode.h"

#include <QByteArray>

#include <vector>

/**
 * The files of one listed folder made into records, each with the hash of its key. Made where
 * the folder was listed, which may be a thread of its own, so that the collection taking them
 * in only has to index them.
 */
struct FolderFiles {
    FolderRef folder;
    std::vector<ComparisonFilePtr> records;
    /** RecordIndex::hashOf() of each record. */
    std::vector<quint32> hashes;

    /** Makes the records of the files \a names (moved from) of \a listed. */
    void make(const FolderRef &listed, std::vector<QByteArray> &names);
};
