#pragma once

#include "engine/ComparisonFile.h"

#include <QtGlobal>

#include <vector>

/**
 * The look-up from a record's key below its root to its position in the collection: an
 * open-addressing table of (hash, position) pairs, 8 bytes a slot, so that a key costs no
 * string of its own. Keys are compared by the caller's test, which runs only when the 32-bit
 * hashes agree.
 */
class RecordIndex {
public:
    /**
     * RecordKey::hash() of \a record's RelativeKey(), found without building the key: equal
     * for keys that differ only in letter case.
     */
    static quint32 hashOf(const ComparisonFile &record);
    /** The same for a file \a name in \a folder, without a record. */
    static quint32 hashOf(const FolderNode &folder, const QByteArray &name);
    /** True when both records have the same RelativeKey(), found without building them. */
    static bool sameKey(const ComparisonFile &a, const ComparisonFile &b);
    /** True when the two records' RelativeKey()s are equal but for letter case. */
    static bool sameKeyIgnoringCase(const ComparisonFile &a, const ComparisonFile &b);

    /**
     * Position of the record with hash \a hash for which \a matches(position) is true, or -1.
     */
    template <typename Matches> qsizetype find(quint32 hash, Matches &&matches) const {
        if (m_slots.empty())
            return -1;
        const std::size_t mask = m_slots.size() - 1;
        for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
            const quint64 slot = m_slots[i];
            if (slot == 0)
                return -1;
            if (quint32(slot >> 32) == hash) {
                const qsizetype position = qsizetype(slot & positionMask) - 1;
                if (matches(position))
                    return position;
            }
        }
    }
    /** Starts fetching the first slot of \a hash into the cache. */
    void prefetch(quint32 hash) const {
        if (!m_slots.empty())
            __builtin_prefetch(&m_slots[hash & (m_slots.size() - 1)]);
    }
    /** Adds a position; the caller has made sure the key is not present. */
    void insert(quint32 hash, qsizetype position);
    /** Rebuilds the table from the hashes of the records in their new positions. */
    void rebuild(const std::vector<quint32> &hashes);
    void clear();

private:
    static constexpr quint64 positionMask = 0xFFFFFFFFu;

    void grow();

    // High half: the hash; low half: position + 1 (0 marks an empty slot).
    std::vector<quint64> m_slots;
    qsizetype m_used = 0;
};
