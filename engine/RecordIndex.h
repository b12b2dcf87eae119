#pragma once

#include "engine/ComparisonFile.h"

#include <QStringView>

#include <vector>

/**
 * The look-up from a record's key below its root to its position in the collection: an
 * open-addressing table of (hash, position) pairs, 8 bytes a slot, so that a key costs no
 * string of its own. Keys are compared by asking the record for its key again, which happens
 * only when the 32-bit hashes agree.
 */
class RecordIndex {
public:
    static quint32 hashOf(QStringView relativeKey);

    /** Position of the record whose relative key is \a key, or -1. */
    qsizetype find(QStringView key, quint32 hash,
                   const std::vector<ComparisonFilePtr> &records) const;
    /** Adds a position; the caller has made sure the key is not present. */
    void insert(quint32 hash, qsizetype position);
    /** Rebuilds the table from the hashes of the records in their new positions. */
    void rebuild(const std::vector<quint32> &hashes);
    void clear();

private:
    void grow();

    // High half: the hash; low half: position + 1 (0 marks an empty slot).
    std::vector<quint64> m_slots;
    qsizetype m_used = 0;
};
