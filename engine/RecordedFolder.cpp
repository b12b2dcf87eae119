#include "engine/RecordedFolder.h"

#include <algorithm>
#include <cerrno>

const RecordedFolder::File *RecordedFolder::find(const QByteArray &name) const {
    const auto found = std::lower_bound(
        files.begin(), files.end(), name,
        [](const File &file, const QByteArray &value) { return file.name < value; });
    return found != files.end() && found->name == name ? &*found : nullptr;
}

FileStat RecordedFolder::stat(const QByteArray &name) const {
    if (const File *file = find(name))
        return file->stat;
    FileStat missing;
    missing.error = ENOENT;
    return missing;
}

CRC32Object::Result RecordedFolder::checksum(const QByteArray &name) const {
    const File *file = find(name);
    if (file && file->stat.kind == FileKind::Other)
        return {CRC32Object::Status::Skipped, 0, 0};
    if (!file || !file->checksummed)
        return {CRC32Object::Status::Failed, 0, file ? ENODATA : ENOENT};
    return file->checksum;
}
