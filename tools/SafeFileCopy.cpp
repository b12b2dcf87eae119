#include "tools/SafeFileCopy.h"

#include <QFile>
#include <QRandomGenerator>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace {

// Large enough that the per-call cost vanishes, small enough that Cancel and the progress
// display stay live on a slow disk.
constexpr qint64 ChunkSize = 8 * 1024 * 1024;
constexpr qint64 PlainBufferSize = 1024 * 1024;

/** Closes a descriptor when it goes out of scope. */
class ScopedFd {
public:
    explicit ScopedFd(int fd = -1)
        : m_fd(fd) {}
    ~ScopedFd() {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    ScopedFd(const ScopedFd &) = delete;
    ScopedFd &operator=(const ScopedFd &) = delete;
    int get() const { return m_fd; }
    /** Closes now and reports the result: a late write error can surface here. */
    int close() {
        const int result = ::close(m_fd);
        m_fd = -1;
        return result;
    }

private:
    int m_fd;
};

QString shown(const QByteArray &path) {
    return QFile::decodeName(path);
}

bool sameTime(const timespec &a, const timespec &b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

QByteArray randomTemporaryName() {
    static constexpr char letters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
    QByteArray name(".pairscope-");
    for (int i = 0; i < 6; ++i)
        name += letters[QRandomGenerator::global()->bounded(int(sizeof letters - 1))];
    return name;
}

const QString sourceGone = QStringLiteral("The source file no longer exists.");
const QString sourceChanged =
    QStringLiteral("The source changed while it was being copied; the copy was discarded.");

} // namespace

SafeFileCopy::SafeFileCopy(QByteArray source, QByteArray target)
    : m_source(std::move(source))
    , m_target(std::move(target)) {}

SafeFileCopy::~SafeFileCopy() {
    discard();
    if (m_folder >= 0)
        ::close(m_folder);
}

bool SafeFileCopy::fail(const QString &message) {
    m_error = message;
    return false;
}

bool SafeFileCopy::failErrno(const QString &what, int error) {
    return fail(what + QStringLiteral(": ") + qt_error_string(error) + QLatin1Char('.'));
}

bool SafeFileCopy::prepare() {
    if (::lstat(m_source.constData(), &m_sourceStat) != 0) {
        if (errno == ENOENT || errno == ENOTDIR)
            return fail(sourceGone);
        return failErrno(QStringLiteral("Could not read the source"), errno);
    }
    if (S_ISDIR(m_sourceStat.st_mode))
        return fail(QStringLiteral("The source is a folder; only files are copied."));
    if (!S_ISREG(m_sourceStat.st_mode) && !S_ISLNK(m_sourceStat.st_mode))
        return fail(QStringLiteral("The source is a special file (FIFO, socket or device); only "
                                   "files and symbolic links are copied."));
    m_sourceSize = m_sourceStat.st_size;

    const qsizetype slash = m_target.lastIndexOf('/');
    m_name = m_target.mid(slash + 1);
    if (m_name.isEmpty())
        return fail(QStringLiteral("The target is a folder."));
    if (m_name.size() > NameMax)
        return fail(QStringLiteral("The target name is longer than %1 bytes, the most a name can "
                                   "have on this system.")
                        .arg(NameMax));
    const QByteArray folder =
        slash < 0 ? QByteArray(".") : (slash == 0 ? QByteArray("/") : m_target.left(slash));
    if (!makeFolders(folder))
        return false;
    m_folder = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (m_folder < 0)
        return failErrno(QStringLiteral("Could not open the target folder"), errno);

    struct stat target {};
    if (::fstatat(m_folder, m_name.constData(), &target, AT_SYMLINK_NOFOLLOW) == 0) {
        if (S_ISDIR(target.st_mode))
            return fail(QStringLiteral("The target is a folder."));
        if (target.st_dev == m_sourceStat.st_dev && target.st_ino == m_sourceStat.st_ino)
            return fail(QStringLiteral("The source and the target are the same file."));
        m_targetExists = true;
    } else if (errno != ENOENT) {
        return failErrno(QStringLiteral("Could not look at the target"), errno);
    }
    return true;
}

bool SafeFileCopy::makeFolders(const QByteArray &folder) {
    struct stat st {};
    if (::stat(folder.constData(), &st) == 0) {
        if (S_ISDIR(st.st_mode))
            return true;
        return fail(
            QStringLiteral("“%1” is in the way: it is a file, not a folder.").arg(shown(folder)));
    }
    if (errno != ENOENT)
        return failErrno(QStringLiteral("Could not open the folder “%1”").arg(shown(folder)),
                         errno);
    const qsizetype slash = folder.lastIndexOf('/');
    if (slash > 0 && !makeFolders(folder.left(slash)))
        return false;
    if (::mkdir(folder.constData(), 0777) != 0 && errno != EEXIST)
        return failErrno(QStringLiteral("Could not create the folder “%1”").arg(shown(folder)),
                         errno);
    return true;
}

bool SafeFileCopy::createTemporaryFile(int *fd) {
    // A name of our own that cannot be too long, made unique by O_EXCL.
    for (int attempt = 0; attempt < 100; ++attempt) {
        const QByteArray name = randomTemporaryName();
        *fd = ::openat(m_folder, name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (*fd >= 0) {
            m_temporaryName = name;
            return true;
        }
        if (errno != EEXIST)
            return failErrno(QStringLiteral("Could not create a file in the target folder"), errno);
    }
    return fail(QStringLiteral("Could not find a free temporary name in the target folder."));
}

bool SafeFileCopy::writeTemporary(const Progress &progress) {
    m_cancelled = false;
    const bool ok = S_ISLNK(m_sourceStat.st_mode) ? writeLink() : writeFileData(progress);
    if (!ok)
        discard();
    return ok;
}

bool SafeFileCopy::writeFileData(const Progress &progress) {
    // O_NOATIME keeps a copy from changing the source's accessed date; only the owner (or
    // root) may ask for it. O_NOFOLLOW and O_NONBLOCK: a source swapped for a link or a FIFO
    // since prepare() must neither be followed nor block.
    const int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    int fd = ::open(m_source.constData(), flags | O_NOATIME);
    if (fd < 0 && errno == EPERM)
        fd = ::open(m_source.constData(), flags);
    if (fd < 0) {
        if (errno == ENOENT)
            return fail(sourceGone);
        if (errno == ELOOP)
            return fail(sourceChanged);
        return failErrno(QStringLiteral("Could not open the source"), errno);
    }
    ScopedFd from(fd);
    struct stat before {};
    if (::fstat(from.get(), &before) != 0)
        return failErrno(QStringLiteral("Could not read the source"), errno);
    if (!S_ISREG(before.st_mode))
        return fail(sourceChanged);

    int toFd = -1;
    if (!createTemporaryFile(&toFd))
        return false;
    ScopedFd to(toFd);
    if (!copyData(from.get(), to.get(), before.st_size, progress))
        return false;
    if (!checkSourceUnchanged(from.get(), before))
        return false;

    // The copy belongs to whoever copies it, so set-user and set-group bits are not carried.
    if (::fchmod(to.get(), before.st_mode & 07777 & ~(S_ISUID | S_ISGID)) != 0)
        return failErrno(QStringLiteral("Could not set the copy's permissions"), errno);
    // After the last write, or the write would move the modified time again.
    const timespec times[2] = {before.st_atim, before.st_mtim};
    if (::futimens(to.get(), times) != 0)
        return failErrno(QStringLiteral("Could not set the copy's dates"), errno);
    if (::fsync(to.get()) != 0)
        return failErrno(QStringLiteral("Could not write the copy"), errno);
    if (to.close() != 0)
        return failErrno(QStringLiteral("Could not write the copy"), errno);
    return true;
}

bool SafeFileCopy::copyData(int from, int to, qint64 size, const Progress &progress) {
    // Only the data segments are copied: a hole stays a hole in the copy, so a sparse file
    // neither grows on disk nor costs the time of reading zeros.
    qint64 position = 0;
    while (position < size) {
        off_t dataStart = ::lseek(from, position, SEEK_DATA);
        if (dataStart < 0) {
            if (errno == ENXIO)
                break; // only a hole remains
            if (errno != EINVAL && errno != EOPNOTSUPP)
                return failErrno(QStringLiteral("Could not read the source"), errno);
            dataStart = position; // no hole support: all data
        }
        off_t dataEnd = ::lseek(from, dataStart, SEEK_HOLE);
        if (dataEnd < 0)
            dataEnd = size;
        dataEnd = std::min<off_t>(dataEnd, size);
        if (dataStart >= size)
            break;
        if (!copyRange(from, to, dataStart, dataEnd, progress))
            return false;
        position = dataEnd;
        if (progress && !progress(position)) {
            m_cancelled = true;
            return fail(QStringLiteral("Cancelled."));
        }
    }
    // Gives a trailing hole its length; the same size otherwise.
    if (::ftruncate(to, size) != 0)
        return failErrno(QStringLiteral("Could not write the copy"), errno);
    return true;
}

bool SafeFileCopy::copyRange(int from, int to, qint64 begin, qint64 end, const Progress &progress) {
    std::vector<char> buffer;
    qint64 position = begin;
    while (position < end) {
        const qint64 want = std::min(end - position, m_plainCopy ? PlainBufferSize : ChunkSize);
        ssize_t done = 0;
        if (!m_plainCopy) {
            // In the kernel, and a reflink where the file system can share blocks.
            loff_t in = position;
            loff_t out = position;
            done = ::copy_file_range(from, &in, to, &out, size_t(want), 0);
            if (done < 0 && (errno == EXDEV || errno == ENOSYS || errno == EOPNOTSUPP ||
                             errno == EINVAL || errno == ETXTBSY)) {
                m_plainCopy = true;
                continue;
            }
        } else {
            buffer.resize(size_t(PlainBufferSize));
            done = ::pread(from, buffer.data(), size_t(want), position);
            if (done < 0 && errno != EINTR)
                return failErrno(QStringLiteral("Could not read the source"), errno);
            for (ssize_t written = 0; done > 0 && written < done;) {
                const ssize_t n = ::pwrite(to, buffer.data() + written, size_t(done - written),
                                           position + written);
                if (n < 0 && errno == EINTR)
                    continue;
                if (n <= 0)
                    return failErrno(QStringLiteral("Could not write the copy"),
                                     n < 0 ? errno : EIO);
                written += n;
            }
        }
        if (done < 0) {
            if (errno == EINTR)
                continue;
            return failErrno(QStringLiteral("Could not copy the data"), errno);
        }
        if (done == 0) {
            if (!m_plainCopy) {
                // Some file systems answer 0 instead of an error: read to be sure.
                m_plainCopy = true;
                continue;
            }
            return fail(sourceChanged); // the file became shorter under us
        }
        position += done;
        if (progress && !progress(position)) {
            m_cancelled = true;
            return fail(QStringLiteral("Cancelled."));
        }
    }
    return true;
}

bool SafeFileCopy::checkSourceUnchanged(int from, const struct stat &before) {
    struct stat after {};
    if (::fstat(from, &after) != 0)
        return failErrno(QStringLiteral("Could not read the source"), errno);
    struct stat named {};
    const bool namedExists = ::lstat(m_source.constData(), &named) == 0;
    if (!namedExists || after.st_nlink == 0) {
        if (namedExists)
            return fail(QStringLiteral(
                "The source was replaced while it was being copied; the copy was discarded."));
        return fail(QStringLiteral(
            "The source was removed while it was being copied; the copy was discarded."));
    }
    if (named.st_ino != before.st_ino || named.st_dev != before.st_dev)
        return fail(QStringLiteral(
            "The source was replaced while it was being copied; the copy was discarded."));
    if (after.st_size != before.st_size || !sameTime(after.st_mtim, before.st_mtim))
        return fail(sourceChanged);
    return true;
}

bool SafeFileCopy::writeLink() {
    std::vector<char> text(size_t(std::max<qint64>(m_sourceSize, 255)) + 1);
    ssize_t length = 0;
    while ((length = ::readlink(m_source.constData(), text.data(), text.size())) ==
           ssize_t(text.size()))
        text.resize(text.size() * 2);
    if (length < 0)
        return errno == ENOENT ? fail(sourceGone)
                               : failErrno(QStringLiteral("Could not read the link"), errno);
    const QByteArray target(text.data(), length);

    bool made = false;
    for (int attempt = 0; attempt < 100 && !made; ++attempt) {
        const QByteArray name = randomTemporaryName();
        if (::symlinkat(target.constData(), m_folder, name.constData()) == 0) {
            m_temporaryName = name;
            made = true;
        } else if (errno != EEXIST) {
            return failErrno(QStringLiteral("Could not create a link in the target folder"), errno);
        }
    }
    if (!made)
        return fail(QStringLiteral("Could not find a free temporary name in the target folder."));
    const timespec times[2] = {m_sourceStat.st_atim, m_sourceStat.st_mtim};
    if (::utimensat(m_folder, m_temporaryName.constData(), times, AT_SYMLINK_NOFOLLOW) != 0)
        return failErrno(QStringLiteral("Could not set the link's dates"), errno);

    struct stat after {};
    if (::lstat(m_source.constData(), &after) != 0)
        return fail(sourceGone);
    if (after.st_ino != m_sourceStat.st_ino || !sameTime(after.st_mtim, m_sourceStat.st_mtim))
        return fail(sourceChanged);
    return true;
}

bool SafeFileCopy::commit(Commit mode) {
    if (m_temporaryName.isEmpty())
        return fail(QStringLiteral("There is no copy to put in place."));
    const char *temporary = m_temporaryName.constData();
    const char *name = m_name.constData();
    const QString appeared =
        QStringLiteral("Something appeared at the target while copying; it was left as it is.");

    int result = 0;
    if (mode == Commit::Replace) {
        result = ::renameat(m_folder, temporary, m_folder, name);
    } else {
        result = ::renameat2(m_folder, temporary, m_folder, name, RENAME_NOREPLACE);
        if (result != 0 && (errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP)) {
            // A file system without the flag: a hard link refuses an existing name too.
            result = ::linkat(m_folder, temporary, m_folder, name, 0);
            if (result == 0) {
                ::unlinkat(m_folder, temporary, 0);
            } else if (errno != EEXIST) {
                struct stat st {};
                if (::fstatat(m_folder, name, &st, AT_SYMLINK_NOFOLLOW) == 0)
                    errno = EEXIST;
                else
                    result = ::renameat(m_folder, temporary, m_folder, name);
            }
        }
    }
    if (result != 0) {
        const int error = errno;
        discard();
        if (error == EEXIST)
            return fail(appeared);
        if (error == EISDIR || error == ENOTEMPTY)
            return fail(QStringLiteral("The target is a folder."));
        return failErrno(QStringLiteral("Could not put the copy in place"), error);
    }
    m_temporaryName.clear();
    // The new name must survive a crash as well as the data.
    ::fsync(m_folder);
    return true;
}

void SafeFileCopy::discard() {
    if (!m_temporaryName.isEmpty() && m_folder >= 0)
        ::unlinkat(m_folder, m_temporaryName.constData(), 0);
    m_temporaryName.clear();
}
