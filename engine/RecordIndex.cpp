#include "engine/RecordIndex.h"

quint32 RecordIndex::hashOf(const ComparisonFile &record) {
    const FolderRef &folder = record.Folder();
    if (!folder)
        return RecordKey::finish(RecordKey::Seed);
    return hashOf(*folder, record.NativeName());
}

quint32 RecordIndex::hashOf(const FolderNode &folder, const QByteArray &name) {
    return RecordKey::finish(RecordKey::feedName(folder.relativeKeyHash(), name));
}

bool RecordIndex::sameKey(const ComparisonFile &a, const ComparisonFile &b) {
    const FolderRef &folderA = a.Folder();
    const FolderRef &folderB = b.Folder();
    // A record without a folder has the empty key, whatever its name.
    if (!folderA || !folderB)
        return a.RelativeKey() == b.RelativeKey();
    return a.NativeName() == b.NativeName() && folderA->sameRelativeKey(*folderB);
}

bool RecordIndex::sameKeyIgnoringCase(const ComparisonFile &a, const ComparisonFile &b) {
    const FolderRef &folderA = a.Folder();
    const FolderRef &folderB = b.Folder();
    if (!folderA || !folderB)
        return RecordKey::fold(a.RelativeKey()) == RecordKey::fold(b.RelativeKey());
    return RecordKey::namesEqualIgnoringCase(a.NativeName(), b.NativeName()) &&
           folderA->sameRelativeKeyIgnoringCase(*folderB);
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
