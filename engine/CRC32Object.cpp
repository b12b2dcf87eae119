#include "engine/CRC32Object.h"

#include "engine/FdGuard.h"
#include "engine/LongPath.h"
#include "engine/MappedChecksum.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <libdeflate.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

int openForReading(int dirFd, const char *name) {
    // O_NONBLOCK keeps a FIFO that replaced the file since its stat from blocking the open;
    // O_NOATIME keeps the checksum from changing what a later accessed-date compare sees, but
    // the kernel allows it only to the owner (or root).
    constexpr int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    int fd;
    do {
        fd = ::openat(dirFd, name, flags | O_NOATIME);
    } while (fd < 0 && errno == EINTR);
    if (fd < 0 && errno == EPERM) {
        do {
            fd = ::openat(dirFd, name, flags);
        } while (fd < 0 && errno == EINTR);
    }
    return fd;
}

/**
 * Puts back the accessed date of the link \a name after its text was read. No flag keeps
 * readlink from updating it (O_NOATIME is for opened files), and a checksum pass must not
 * change what a later accessed-date compare sees. The date is set only when the read moved
 * it, since setting it also updates the change time, and only where the kernel allows it
 * (the owner, or root); elsewhere the date stays as the read left it.
 */
void restoreAccessTime(int dirFd, const char *name, const FileTime &accessed) {
    if (accessed.isNull())
        return;
    struct statx now;
    if (::statx(dirFd, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, STATX_ATIME, &now) != 0)
        return;
    if (FileTime(now.stx_atime.tv_sec, qint32(now.stx_atime.tv_nsec)) == accessed)
        return;
    const struct timespec times[2] = {{time_t(accessed.seconds()), accessed.nanoseconds()},
                                      {0, UTIME_OMIT}};
    ::utimensat(dirFd, name, times, AT_SYMLINK_NOFOLLOW);
}

} // namespace

CRC32Object::CRC32Object() = default;

void CRC32Object::setChunkSize(int NewSize) {
    m_chunkSize = std::clamp(NewSize, MinimumChunkSize, MaximumChunkSize);
}

QString CRC32Object::CRC32String(qint32 CRC32) {
    return QString::asprintf("%08X", unsigned(quint32(CRC32)));
}

qint32 CRC32Object::CRC32(const QString &path) {
    return CRC32(path.toUtf8());
}

qint32 CRC32Object::CRC32(const QByteArray &nativePath) {
    const Result result = Checksum(nativePath);
    return result.status == Status::Ok ? qint32(result.crc) : 0;
}

CRC32Object::Result CRC32Object::Checksum(const QByteArray &nativePath) {
    return Checksum(AT_FDCWD, nativePath, FileStat::read(nativePath));
}

CRC32Object::Result CRC32Object::Checksum(const QByteArray &nativePath, const FileStat &known) {
    const LongPath::Parent parent(nativePath);
    if (!parent.isOpen())
        return {Status::Failed, 0, errno};
    return Checksum(parent.fd(), QByteArray::fromRawData(parent.name(), qstrlen(parent.name())),
                    known);
}

CRC32Object::Result CRC32Object::Checksum(int dirFd, const QByteArray &name,
                                          const FileStat &known) {
    m_cancel.store(false, std::memory_order_relaxed);
    switch (known.kind) {
    case FileKind::Missing:
        return {Status::Failed, 0, known.error ? known.error : ENOENT};
    case FileKind::Other:
        return {Status::Skipped, 0, 0};
    case FileKind::Symlink:
        return readLink(dirFd, name.constData(), known);
    case FileKind::Regular:
        break;
    }
    if (known.size == 0)
        return {Status::Ok, 0, 0};
    return readRegular(dirFd, name.constData(), known);
}

quint32 CRC32Object::update(quint32 crc, const void *data, std::size_t size) {
    return libdeflate_crc32(crc, data, size);
}

bool CRC32Object::yieldAndTest() {
    if (m_yield)
        m_yield();
    return !m_cancel.load(std::memory_order_relaxed);
}

CRC32Object::Result CRC32Object::readRegular(int dirFd, const char *name, const FileStat &known) {
    const qint64 knownSize = known.size;
    const FdGuard fd(openForReading(dirFd, name));
    if (fd.get() < 0)
        return {Status::Failed, 0, errno};
    quint32 crc = 0;
    qint64 total = 0;
    if (knownSize >= MappedMinimum && !sumMapped(fd.get(), knownSize, crc, total))
        return {Status::Cancelled, 0, 0};
    // What the mapping did not read (all of a small file) is read into the buffer: a file cut
    // short then comes up short, and a disk error reports its errno.
    if (total < knownSize) {
        if (const std::optional<Result> stopped = sumRead(fd.get(), knownSize, crc, total))
            return *stopped;
    }
    // The pair was judged on the size and date taken before the read; bytes read from a file
    // that was written meanwhile belong to neither state. The descriptor's own properties
    // tell, whatever name the file has by now.
    struct stat after;
    if (::fstat(fd.get(), &after) != 0)
        return {Status::Failed, 0, errno};
    if (total != knownSize || qint64(after.st_size) != knownSize ||
        FileTime(after.st_mtim.tv_sec, qint32(after.st_mtim.tv_nsec)) != known.modified)
        return {Status::Changed, 0, 0};
    return {Status::Ok, crc, 0};
}

bool CRC32Object::sumMapped(int fd, qint64 knownSize, quint32 &crc, qint64 &total) {
    while (total < knownSize) {
        const qint64 length = std::min(MappedWindow, knownSize - total);
        if (!MappedChecksum::update(fd, total, length, crc))
            return true;
        total += length;
        if (!yieldAndTest())
            return false;
    }
    return true;
}

std::optional<CRC32Object::Result> CRC32Object::sumRead(int fd, qint64 knownSize, quint32 &crc,
                                                        qint64 &total) {
    const std::size_t chunk = std::size_t(m_chunkSize);
    if (total > 0 && ::lseek(fd, off_t(total), SEEK_SET) < 0)
        return Result{Status::Failed, 0, errno};
    // A file read in one chunk gains nothing from a larger read-ahead window; a system call
    // per small file does cost.
    if (knownSize - total > qint64(chunk))
        ::posix_fadvise(fd, off_t(total), 0, POSIX_FADV_SEQUENTIAL);

    if (m_buffer.size() != chunk) {
        m_buffer.clear();
        m_buffer.shrink_to_fit();
        m_buffer.resize(chunk);
    }
    for (;;) {
        // A chunk is exactly ChunkSize bytes except the last: short reads are topped up. A
        // short read that ends at the size the file had when it was looked at is taken as the
        // end without asking again, as that read would only return nothing.
        std::size_t filled = 0;
        while (filled < chunk) {
            const ssize_t n = ::read(fd, m_buffer.data() + filled, chunk - filled);
            if (n < 0) {
                if (errno == EINTR)
                    continue;
                return Result{Status::Failed, 0, errno};
            }
            if (n == 0)
                break;
            filled += std::size_t(n);
            if (filled < chunk && total + qint64(filled) == knownSize)
                break;
        }
        total += qint64(filled);
        crc = update(crc, m_buffer.data(), filled);
        if (!yieldAndTest())
            return Result{Status::Cancelled, 0, 0};
        if (filled < chunk)
            return std::nullopt;
    }
}

std::optional<QByteArray> CRC32Object::linkText(int dirFd, const char *name,
                                                const FileStat &known) {
    // The link's own text is its content; the target is never read.
    QByteArray text(std::max<qint64>(known.size, 255) + 1, Qt::Uninitialized);
    ssize_t n;
    for (;;) {
        n = ::readlinkat(dirFd, name, text.data(), std::size_t(text.size()));
        if (n < 0)
            return std::nullopt;
        if (n < text.size())
            break;
        text.resize(text.size() * 2);
    }
    restoreAccessTime(dirFd, name, known.accessed);
    text.truncate(n);
    return text;
}

CRC32Object::Result CRC32Object::readLink(int dirFd, const char *name, const FileStat &known) {
    const std::optional<QByteArray> text = linkText(dirFd, name, known);
    if (!text)
        return {Status::Failed, 0, errno};
    // A link's size is the length of its text: another length is another link.
    if (text->size() != known.size)
        return {Status::Changed, 0, 0};
    return {Status::Ok, update(0, text->constData(), std::size_t(text->size())), 0};
}
