#include "tools/DesktopTrash.h"

#include "tools/TrashFolder.h"

#include <QDateTime>
#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <gio/gio.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/** The folder's path as the kernel knows it (no links, no "..") for the trash info. */
QByteArray canonicalPath(int folderFd) {
    char buffer[4096];
    const QByteArray link = "/proc/self/fd/" + QByteArray::number(folderFd);
    const ssize_t length = ::readlink(link.constData(), buffer, sizeof buffer);
    return length > 0 ? QByteArray(buffer, length) : QByteArray();
}

/**
 * A name for the trash's files/ whose info file name ("NAME.trashinfo") still fits in 255
 * bytes: a long name is cut, at a character boundary. The info file keeps the full name.
 */
QByteArray trashName(const QByteArray &name, int attempt) {
    const QByteArray suffix = attempt > 1 ? "." + QByteArray::number(attempt) : QByteArray();
    const qsizetype room = 255 - qsizetype(qstrlen(".trashinfo")) - suffix.size();
    qsizetype cut = qMin(name.size(), room);
    while (cut > 0 && cut < name.size() && (uchar(name[cut]) & 0xC0) == 0x80)
        --cut;
    return name.left(cut) + suffix;
}

/** Creates info/NAME.trashinfo for a free NAME; returns NAME, or empty on failure. */
QByteArray writeInfo(int infoFd, const QByteArray &name, const QByteArray &path, QString *error) {
    const QByteArray text =
        "[Trash Info]\nPath=" + path + "\nDeletionDate=" +
        QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss")).toLatin1() +
        "\n";
    for (int attempt = 1; attempt < 1000; ++attempt) {
        const QByteArray candidate = trashName(name, attempt);
        const QByteArray info = candidate + ".trashinfo";
        const int fd =
            ::openat(infoFd, info.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (fd < 0 && errno == EEXIST)
            continue;
        const bool written =
            fd >= 0 && ::write(fd, text.constData(), size_t(text.size())) == ssize_t(text.size());
        const int writeError = errno;
        if (fd >= 0 && ::close(fd) == 0 && written)
            return candidate;
        if (fd >= 0)
            ::unlinkat(infoFd, info.constData(), 0);
        *error = QStringLiteral("the trash could not record the file: %1")
                     .arg(qt_error_string(fd < 0 ? errno : writeError));
        return {};
    }
    *error = QStringLiteral("the trash has no free name for the file");
    return {};
}

} // namespace

namespace DesktopTrash {

bool moveToTrash(const QByteArray &nativePath, QString *error) {
    // GIO rather than QFile::moveToTrash: Qt 6.4's own version can drop the file into the
    // working folder when the data folder is missing and can loop when the trash is not
    // writable; GIO reports both as errors.
    GFile *file = g_file_new_for_path(nativePath.constData());
    GError *gerror = nullptr;
    const bool ok = g_file_trash(file, nullptr, &gerror);
    if (!ok && error)
        *error = gerror ? QString::fromUtf8(gerror->message)
                        : QStringLiteral("The trash refused the file.");
    if (gerror)
        g_error_free(gerror);
    g_object_unref(file);
    return ok;
}

bool moveToTrashAs(int folderFd, const QByteArray &name, const QByteArray &originalName,
                   QString *error) {
    QString reason;
    struct stat folder {};
    const QByteArray canonical = canonicalPath(folderFd);
    if (canonical.isEmpty() || ::fstat(folderFd, &folder) != 0) {
        *error = QStringLiteral("the folder's place could not be found");
        return false;
    }
    const TrashFolder trash = TrashFolder::find(canonical, folder.st_dev);
    if (!trash.isValid() || !trash.create(&reason)) {
        *error = trash.isValid() ? reason : trash.reason();
        return false;
    }
    const int infoFd = ::open((trash.path() + "/info").constData(),
                              O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    const int filesFd = ::open((trash.path() + "/files").constData(),
                               O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    bool ok = false;
    if (infoFd >= 0 && filesFd >= 0) {
        // The info first, as the freedesktop.org trash rules ask: a crash between the two steps
        // leaves an info without a file, which the desktop ignores, never a file without its
        // origin.
        const QByteArray original =
            canonical == "/" ? "/" + originalName : canonical + '/' + originalName;
        const QByteArray stored =
            writeInfo(infoFd, originalName, trash.infoPath(original), &reason);
        if (!stored.isEmpty()) {
            ok = ::renameat(folderFd, name.constData(), filesFd, stored.constData()) == 0;
            if (!ok) {
                reason = QStringLiteral("the file could not be moved into the trash: %1")
                             .arg(qt_error_string(errno));
                ::unlinkat(infoFd, (stored + ".trashinfo").constData(), 0);
            }
        }
    } else {
        reason = QStringLiteral("the trash folder “%1” cannot be opened: %2")
                     .arg(QFile::decodeName(trash.path()), qt_error_string(errno));
    }
    if (infoFd >= 0)
        ::close(infoFd);
    if (filesFd >= 0)
        ::close(filesFd);
    if (!ok)
        *error = reason;
    return ok;
}

bool canTrash(const QByteArray &folderPath, QString *reason) {
    struct stat folder {};
    char *resolved = ::realpath(folderPath.constData(), nullptr);
    const QByteArray canonical = resolved ? QByteArray(resolved) : QByteArray();
    ::free(resolved);
    if (canonical.isEmpty() || ::stat(canonical.constData(), &folder) != 0) {
        *reason = QStringLiteral("the folder could not be found");
        return false;
    }
    const TrashFolder trash = TrashFolder::find(canonical, folder.st_dev);
    if (!trash.isValid()) {
        *reason = trash.reason();
        return false;
    }
    // The trash folder, or the nearest folder that would hold it, must take new entries.
    QByteArray existing = trash.path();
    struct stat st {};
    while (!existing.isEmpty() && ::lstat(existing.constData(), &st) != 0)
        existing.truncate(qMax<qsizetype>(existing.lastIndexOf('/'), 0));
    if (existing.isEmpty() || !S_ISDIR(st.st_mode) || ::access(existing.constData(), W_OK) != 0) {
        *reason = QStringLiteral("the trash folder “%1” cannot be written")
                      .arg(QFile::decodeName(trash.path()));
        return false;
    }
    return true;
}

} // namespace DesktopTrash
