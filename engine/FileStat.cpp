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
    const unsigned type = stx.stx_mode & S_IFMT;
    result.mode = stx.stx_mode;
    result.size = qint64(stx.stx_size);
    if (type == S_IFREG) {
        result.kind = FileKind::Regular;
    } else if (type == S_IFLNK) {
        result.kind = FileKind::Symlink;
        result.attributes |= FileAttributes::Alias;
    } else {
        result.kind = FileKind::Other;
        result.attributes |= FileAttributes::System;
    }
    if (!(stx.stx_mode & S_IWUSR) && type != S_IFLNK)
        result.attributes |= FileAttributes::ReadOnly;
    if (lastComponent(name)[0] == '.')
        result.attributes |= FileAttributes::Hidden;
    if ((stx.stx_attributes_mask & STATX_ATTR_COMPRESSED) &&
        (stx.stx_attributes & STATX_ATTR_COMPRESSED))
        result.attributes |= FileAttributes::Compressed;
    result.modified = toFileTime(stx.stx_mtime);
    result.accessed = toFileTime(stx.stx_atime);
    if (stx.stx_mask & STATX_BTIME)
        result.created = toFileTime(stx.stx_btime);
    return result;
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
