#include "engine/FileStat.h"

#include "engine/LongPath.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

FileTime toFileTime(const struct statx_timestamp &t) {
    return FileTime(t.tv_sec, qint32(t.tv_nsec));
}

const char *lastComponent(const char *path) {
    const char *slash = std::strrchr(path, '/');
    return slash ? slash + 1 : path;
}

} // namespace

FileStat FileStat::read(int dirFd, const char *name) {
    FileStat result;
    struct statx stx;
    constexpr unsigned mask =
        STATX_TYPE | STATX_MODE | STATX_SIZE | STATX_ATIME | STATX_MTIME | STATX_BTIME;
    if (::statx(dirFd, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, mask, &stx) != 0) {
        result.error = errno;
        return result;
    }
    result.size = qint64(stx.stx_size);
    result.setMode(stx.stx_mode, name,
                   (stx.stx_attributes_mask & STATX_ATTR_COMPRESSED) &&
                       (stx.stx_attributes & STATX_ATTR_COMPRESSED));
    result.modified = toFileTime(stx.stx_mtime);
    result.accessed = toFileTime(stx.stx_atime);
    if (stx.stx_mask & STATX_BTIME)
        result.created = toFileTime(stx.stx_btime);
    return result;
}

void FileStat::setMode(quint32 stMode, const char *name, bool compressed) {
    const unsigned type = stMode & S_IFMT;
    mode = stMode;
    attributes = 0;
    if (type == S_IFREG) {
        kind = FileKind::Regular;
    } else if (type == S_IFLNK) {
        kind = FileKind::Symlink;
        attributes |= FileAttributes::Alias;
    } else {
        kind = FileKind::Other;
        attributes |= FileAttributes::System;
    }
    if (!(stMode & S_IWUSR) && type != S_IFLNK)
        attributes |= FileAttributes::ReadOnly;
    if (lastComponent(name)[0] == '.')
        attributes |= FileAttributes::Hidden;
    if (compressed)
        attributes |= FileAttributes::Compressed;
}

FileStat FileStat::read(const QByteArray &nativePath) {
    const LongPath::Parent parent(nativePath);
    if (!parent.isOpen()) {
        FileStat result;
        result.error = errno;
        return result;
    }
    return read(parent.fd(), parent.name());
}
