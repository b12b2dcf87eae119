#include "engine/RecordIndex.h"

#include <QHash>

namespace {
constexpr quint64 positionMask = 0xFFFFFFFFu;
}

quint32 RecordIndex::hashOf(QStringView relativeKey) {
    return quint32(qHash(relativeKey, 0x5eed));
}

qsizetype RecordIndex::find(QStringView key, quint32 hash,
                            const std::vector<ComparisonFilePtr> &records) const {
    if (m_slots.empty())
        return -1;
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
        const quint64 slot = m_slots[i];
        if (slot == 0)
            return -1;
        if (quint32(slot >> 32) == hash) {
            const qsizetype position = qsizetype(slot & positionMask) - 1;
            if (records[std::size_t(position)]->RelativeKey() == key)
                return position;
        }
    }
}

void RecordIndex::insert(quint32 hash, qsizetype position) {
    if ((m_used + 1) * 4 > qsizetype(m_slots.size()) * 3)
        grow();
    const std::size_t mask = m_slots.size() - 1;
    std::size_t i = hash & mask;
    while (m_slots[i] != 0)
        i = (i + 1) & mask;
    m_slots[i] = (quint64(hash) << 32) | quint64(position + 1);
    ++m_used;
}

void RecordIndex::grow() {
    std::vector<quint64> old;
    old.swap(m_slots);
    m_slots.assign(old.empty() ? 64 : old.size() * 2, 0);
    m_used = 0;
    for (const quint64 slot : old) {
        if (slot != 0)
            insert(quint32(slot >> 32), qsizetype(slot & positionMask) - 1);
    }
}

void RecordIndex::rebuild(const std::vector<quint32> &hashes) {
    clear();
    for (std::size_t i = 0; i < hashes.size(); ++i)
        insert(hashes[i], qsizetype(i));
}

void RecordIndex::clear() {
    m_slots.clear();
    m_used = 0;
}
