#include "tools/SafeFileCopy.h"

#include "engine/FdGuard.h"
#include "engine/TemporaryCopyName.h"
#include "tools/CopySystemCalls.h"
#include "tools/DesktopTrash.h"

#include <QFile>

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

bool sameTime(const timespec &a, const timespec &b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

/** \a path below \a root, split into its folder and its name; false when it is not below. */
bool splitBelow(const QByteArray &path, const QByteArray &root, QByteArray *folder,
                QByteArray *name) {
    const QByteArray prefix = root.endsWith('/') ? root : root + '/';
    if (root.isEmpty() || !path.startsWith(prefix) || path.size() == prefix.size())
        return false;
    const QByteArray relative = path.mid(prefix.size());
    const qsizetype slash = relative.lastIndexOf('/');
    *folder = slash < 0 ? QByteArray() : relative.left(slash);
    *name = relative.mid(slash + 1);
    return true;
}

/** Permissions that a file system cannot hold are its limit, not a failed copy. */
bool isUnsupported(int error) {
    return error == EPERM || error == EOPNOTSUPP || error == ENOTSUP || error == ENOSYS;
}

/** Errors of renameat2 or linkat that mean "this file system cannot", not "this file". */
bool flagUnsupported(int error) {
    return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP || error == EPERM;
}

const QString sourceGone = QStringLiteral("The source file no longer exists.");
const QString sourceChanged =
    QStringLiteral("The source changed while it was being copied; the copy was discarded.");
const QString targetIsFolder = QStringLiteral("A folder of the same name is in the way.");
const QString appeared =
    QStringLiteral("Something appeared at the target while copying; it was left as it is.");

} // namespace

SafeFileCopy::SafeFileCopy(const CopyItem &item)
    : m_item(item) {}

SafeFileCopy::~SafeFileCopy() {
    discard();
    if (m_sourceFd >= 0)
        ::close(m_sourceFd);
}

bool SafeFileCopy::fail(const QString &message) {
    m_error = message;
    return false;
}

bool SafeFileCopy::failErrno(const QString &what, int error) {
    return fail(what + QStringLiteral(": ") + qt_error_string(error) + QLatin1Char('.'));
}

bool SafeFileCopy::prepare() {
    return prepareSource() && prepareTarget(FolderBeneathRoot::Mode::Create);
}

bool SafeFileCopy::look() {
    return prepareSource() && prepareTarget(FolderBeneathRoot::Mode::Look);
}

QByteArray SafeFileCopy::lookedTarget() const {
    const QByteArray folder = m_targetFolder.spelledRelative();
    QByteArray root = m_item.targetRoot;
    if (!root.endsWith('/'))
        root += '/';
    return root + folder + (folder.isEmpty() ? "" : "/") + m_name;
}

bool SafeFileCopy::prepareSource() {
    QByteArray folder;
    if (!splitBelow(m_item.source, m_item.sourceRoot, &folder, &m_sourceName))
        return fail(QStringLiteral("The source is not inside the compared folder."));
    if (!m_sourceFolder.open(m_item.sourceRoot, folder, FolderBeneathRoot::Mode::Open))
        return fail(m_sourceFolder.refusal() == FolderBeneathRoot::Refusal::Missing
                        ? sourceGone
                        : m_sourceFolder.errorString());
    const int at = m_sourceFolder.fd();
    if (::fstatat(at, m_sourceName.constData(), &m_sourceStat, AT_SYMLINK_NOFOLLOW) != 0) {
        if (errno == ENOENT)
            return fail(sourceGone);
        return failErrno(QStringLiteral("Could not read the source"), errno);
    }
    if (S_ISDIR(m_sourceStat.st_mode))
        return fail(QStringLiteral("The source is a folder; only files are copied."));
    if (!S_ISREG(m_sourceStat.st_mode) && !S_ISLNK(m_sourceStat.st_mode))
        return fail(QStringLiteral("The source is a special file (FIFO, socket or device); only "
                                   "files and symbolic links are copied."));
    m_sourceSize = m_sourceStat.st_size;
    if (S_ISLNK(m_sourceStat.st_mode))
        return true;
    // Opened now, so that what is read is the file that was looked at. O_NOATIME keeps a copy
    // from changing the source's accessed date; only the owner (or root) may ask for it.
    // O_NOFOLLOW and O_NONBLOCK: a source swapped for a link or a FIFO must neither be
    // followed nor block.
    const int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    m_sourceFd = ::openat(at, m_sourceName.constData(), flags | O_NOATIME);
    if (m_sourceFd < 0 && errno == EPERM)
        m_sourceFd = ::openat(at, m_sourceName.constData(), flags);
    if (m_sourceFd < 0) {
        if (errno == ENOENT)
            return fail(sourceGone);
        if (errno == ELOOP)
            return fail(sourceChanged);
        return failErrno(QStringLiteral("Could not open the source"), errno);
    }
    struct stat opened {};
    if (::fstat(m_sourceFd, &opened) != 0 || !S_ISREG(opened.st_mode) ||
        opened.st_ino != m_sourceStat.st_ino || opened.st_dev != m_sourceStat.st_dev)
        return fail(sourceChanged);
    return true;
}

bool SafeFileCopy::prepareTarget(FolderBeneathRoot::Mode mode) {
    QByteArray folder;
    if (!splitBelow(m_item.target, m_item.targetRoot, &folder, &m_name))
        return fail(QStringLiteral("The target is not inside the chosen folder."));
    if (m_name.size() > NameMax)
        return fail(QStringLiteral("The target name is longer than %1 bytes, the most a name can "
                                   "have on this system.")
                        .arg(NameMax));
    if (!m_targetFolder.open(m_item.targetRoot, folder, mode))
        return fail(m_targetFolder.errorString());
    if (m_targetFolder.fd() < 0)
        return true; // looked only: the folder would be created

    struct stat target {};
    if (::fstatat(m_targetFolder.fd(), m_name.constData(), &target, AT_SYMLINK_NOFOLLOW) == 0) {
        if (S_ISDIR(target.st_mode))
            return fail(targetIsFolder);
        if (target.st_dev == m_sourceStat.st_dev && target.st_ino == m_sourceStat.st_ino)
            return fail(QStringLiteral("The source and the target are the same file."));
        m_targetExists = true;
    } else if (errno != ENOENT) {
        return failErrno(QStringLiteral("Could not look at the target"), errno);
    }
    return true;
}

bool SafeFileCopy::createTemporaryFile(int *fd) {
    // Unnamed: a copy killed at any point leaves nothing a compare would list.
    *fd = CopySystemCalls::current().openUnnamed(m_targetFolder.fd());
    if (*fd >= 0) {
        m_unnamedFd = ::fcntl(*fd, F_DUPFD_CLOEXEC, 0);
        return true;
    }
    if (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL && errno != ENOENT)
        return failErrno(QStringLiteral("Could not create a file in the target folder"), errno);
    // Else a name the walk never lists; short, so that it fits wherever the target's name fits.
    for (int attempt = 0; attempt < 100; ++attempt) {
        const QByteArray name = TemporaryCopyName::make();
        *fd = ::openat(m_targetFolder.fd(), name.constData(),
                       O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
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
    struct stat before {};
    if (::fstat(m_sourceFd, &before) != 0)
        return failErrno(QStringLiteral("Could not read the source"), errno);
    int toFd = -1;
    if (!createTemporaryFile(&toFd))
        return false;
    FdGuard to(toFd);
    return copyData(m_sourceFd, to.get(), before.st_size, progress) &&
           checkSourceUnchanged(m_sourceFd, before) && finishFile(to.get(), before);
}

bool SafeFileCopy::finishFile(int to, const struct stat &before) {
    // The copy belongs to whoever copies it, so set-user and set-group bits are not carried.
    if (CopySystemCalls::current().fchmod(to, before.st_mode & 07777 & ~(S_ISUID | S_ISGID)) != 0) {
        if (!isUnsupported(errno))
            return failErrno(QStringLiteral("Could not set the copy's permissions"), errno);
        m_note = QStringLiteral("Copied; this file system cannot hold the permissions (%1).")
                     .arg(qt_error_string(errno));
    }
    // After the last write, or the write would move the modified time again.
    const timespec times[2] = {before.st_atim, before.st_mtim};
    if (::futimens(to, times) != 0)
        return failErrno(QStringLiteral("Could not set the copy's dates"), errno);
    // The data reaches the disk before the name does, so a crash never leaves a target
    // whose name is new and whose content is not.
    if (CopySystemCalls::current().fsync(to) != 0)
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
    if (position >= size)
        return true;
    // A trailing hole: the file gets its length. Some file systems (FAT over FUSE) refuse to
    // truncate; the last byte of a hole is a zero, so writing it gives the same file.
    if (CopySystemCalls::current().ftruncate(to, size) == 0 || ::pwrite(to, "", 1, size - 1) == 1)
        return true;
    return failErrno(QStringLiteral("Could not write the copy"), errno);
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
    const bool namedExists =
        ::fstatat(m_sourceFolder.fd(), m_sourceName.constData(), &named, AT_SYMLINK_NOFOLLOW) == 0;
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
    const int at = m_sourceFolder.fd();
    while ((length = ::readlinkat(at, m_sourceName.constData(), text.data(), text.size())) ==
           ssize_t(text.size()))
        text.resize(text.size() * 2);
    if (length < 0)
        return errno == ENOENT ? fail(sourceGone)
                               : failErrno(QStringLiteral("Could not read the link"), errno);
    const QByteArray target(text.data(), length);

    bool made = false;
    for (int attempt = 0; attempt < 100 && !made; ++attempt) {
        const QByteArray name = TemporaryCopyName::make();
        if (::symlinkat(target.constData(), m_targetFolder.fd(), name.constData()) == 0) {
            m_temporaryName = name;
            made = true;
        } else if (errno != EEXIST) {
            return failErrno(QStringLiteral("Could not create a link in the target folder"), errno);
        }
    }
    if (!made)
        return fail(QStringLiteral("Could not find a free temporary name in the target folder."));
    const timespec times[2] = {m_sourceStat.st_atim, m_sourceStat.st_mtim};
    if (::utimensat(m_targetFolder.fd(), m_temporaryName.constData(), times, AT_SYMLINK_NOFOLLOW) !=
        0)
        return failErrno(QStringLiteral("Could not set the link's dates"), errno);

    struct stat after {};
    if (::fstatat(at, m_sourceName.constData(), &after, AT_SYMLINK_NOFOLLOW) != 0)
        return fail(sourceGone);
    if (after.st_ino != m_sourceStat.st_ino || !sameTime(after.st_mtim, m_sourceStat.st_mtim))
        return fail(sourceChanged);
    return true;
}

bool SafeFileCopy::nameTemporary() {
    if (!m_temporaryName.isEmpty())
        return true;
    const QByteArray unnamed = "/proc/self/fd/" + QByteArray::number(m_unnamedFd);
    for (int attempt = 0; attempt < 100; ++attempt) {
        const QByteArray name = TemporaryCopyName::make();
        if (CopySystemCalls::current().linkat(AT_FDCWD, unnamed.constData(), m_targetFolder.fd(),
                                              name.constData(), AT_SYMLINK_FOLLOW) == 0) {
            m_temporaryName = name;
            return true;
        }
        if (errno != EEXIST)
            return failErrno(QStringLiteral("Could not put the copy in place"), errno);
    }
    return fail(QStringLiteral("Could not find a free temporary name in the target folder."));
}

bool SafeFileCopy::placeNew() {
    const CopySystemCalls &calls = CopySystemCalls::current();
    const int folder = m_targetFolder.fd();
    const char *name = m_name.constData();
    if (m_temporaryName.isEmpty()) {
        // The unnamed file gets the target's name in one step that refuses an existing name.
        const QByteArray unnamed = "/proc/self/fd/" + QByteArray::number(m_unnamedFd);
        if (calls.linkat(AT_FDCWD, unnamed.constData(), folder, name, AT_SYMLINK_FOLLOW) == 0)
            return true;
        if (errno == EEXIST)
            return fail(appeared);
        if (!flagUnsupported(errno))
            return failErrno(QStringLiteral("Could not put the copy in place"), errno);
        if (!nameTemporary())
            return false;
    }
    const char *temporary = m_temporaryName.constData();
    if (calls.renameat2(folder, temporary, folder, name, RENAME_NOREPLACE) == 0)
        return true;
    if (errno == EEXIST)
        return fail(appeared);
    if (!flagUnsupported(errno))
        return failErrno(QStringLiteral("Could not put the copy in place"), errno);
    // A file system without the flag: a hard link refuses an existing name too.
    if (calls.linkat(folder, temporary, folder, name, 0) == 0) {
        ::unlinkat(folder, temporary, 0);
        return true;
    }
    if (errno == EEXIST)
        return fail(appeared);
    struct stat st {};
    if (::fstatat(folder, name, &st, AT_SYMLINK_NOFOLLOW) == 0)
        return fail(appeared);
    if (::renameat(folder, temporary, folder, name) != 0)
        return failErrno(QStringLiteral("Could not put the copy in place"), errno);
    return true;
}

bool SafeFileCopy::exchange() {
    const CopySystemCalls &calls = CopySystemCalls::current();
    const int folder = m_targetFolder.fd();
    if (!nameTemporary())
        return false;
    const char *temporary = m_temporaryName.constData();
    const char *name = m_name.constData();
    // The copy and the old file swap names in one step: the target is never missing.
    if (calls.renameat2(folder, temporary, folder, name, RENAME_EXCHANGE) == 0) {
        m_asideName = m_temporaryName;
        m_temporaryName.clear();
        struct stat old {};
        if (::fstatat(folder, m_asideName.constData(), &old, AT_SYMLINK_NOFOLLOW) == 0 &&
            S_ISDIR(old.st_mode)) {
            restoreReplaced(); // a folder took the name meanwhile: it stays
            return fail(targetIsFolder);
        }
        return true;
    }
    if (errno == ENOENT) // the old file went away meanwhile
        return placeNew();
    if (!flagUnsupported(errno))
        return failErrno(QStringLiteral("Could not put the copy in place"), errno);
    // No exchange here: the old file keeps a second name while the copy is renamed over it.
    // Where even hard links are missing (FAT), it is moved aside first: the last resort.
    const QByteArray aside = TemporaryCopyName::make();
    if (calls.linkat(folder, name, folder, aside.constData(), 0) != 0 &&
        ::renameat(folder, name, folder, aside.constData()) != 0)
        return failErrno(QStringLiteral("Could not put the copy in place"), errno);
    m_asideName = aside;
    if (::renameat(folder, temporary, folder, name) != 0) {
        const int error = errno;
        ::renameat(folder, aside.constData(), folder, name);
        m_asideName.clear();
        return failErrno(QStringLiteral("Could not put the copy in place"), error);
    }
    m_temporaryName.clear();
    return true;
}

bool SafeFileCopy::commit(Commit mode) {
    if (m_temporaryName.isEmpty() && m_unnamedFd < 0)
        return fail(QStringLiteral("There is no copy to put in place."));
    const bool placed = mode == Commit::Replace ? exchange() : placeNew();
    if (!placed) {
        discard();
        return false;
    }
    if (!m_temporaryName.isEmpty()) { // placed by a link: the temporary name goes
        ::unlinkat(m_targetFolder.fd(), m_temporaryName.constData(), 0);
        m_temporaryName.clear();
    }
    if (m_unnamedFd >= 0)
        ::close(m_unnamedFd);
    m_unnamedFd = -1;
    m_committed = true;
    // The new name must survive a crash as well as the data.
    ::fsync(m_targetFolder.fd());
    return true;
}

bool SafeFileCopy::trashReplaced(QString *reason) {
    if (!DesktopTrash::moveToTrashAs(m_targetFolder.fd(), m_asideName, m_name, reason))
        return false;
    m_asideName.clear();
    return true;
}

void SafeFileCopy::dropReplaced() {
    ::unlinkat(m_targetFolder.fd(), m_asideName.constData(), 0);
    m_asideName.clear();
}

bool SafeFileCopy::restoreReplaced() {
    const int folder = m_targetFolder.fd();
    if (CopySystemCalls::current().renameat2(folder, m_asideName.constData(), folder,
                                             m_name.constData(), RENAME_EXCHANGE) == 0) {
        ::unlinkat(folder, m_asideName.constData(), 0); // the copy, now aside
    } else if (::renameat(folder, m_asideName.constData(), folder, m_name.constData()) != 0) {
        return failErrno(QStringLiteral("Could not put the old file back"), errno);
    }
    m_asideName.clear();
    return true;
}

void SafeFileCopy::discard() {
    if (!m_temporaryName.isEmpty() && m_targetFolder.fd() >= 0)
        ::unlinkat(m_targetFolder.fd(), m_temporaryName.constData(), 0);
    m_temporaryName.clear();
    if (m_unnamedFd >= 0)
        ::close(m_unnamedFd);
    m_unnamedFd = -1;
    if (!m_committed)
        m_targetFolder.removeCreated();
}
