#include "tools/TrashFolder.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <cerrno>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace {

/** Mount points in /proc/self/mountinfo escape blanks and the like as \ooo. */
QByteArray unescaped(const QByteArray &field) {
    QByteArray out;
    for (qsizetype i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size()) {
            out += char(field.mid(i + 1, 3).toInt(nullptr, 8));
            i += 3;
        } else {
            out += field[i];
        }
    }
    return out;
}

/** The deepest mount of \a device that holds \a folder, with its file-system type. */
bool mountOf(const QByteArray &folder, dev_t device, QByteArray *top, QByteArray *type) {
    QFile mounts(QStringLiteral("/proc/self/mountinfo"));
    if (!mounts.open(QIODevice::ReadOnly))
        return false;
    const QByteArray id =
        QByteArray::number(major(device)) + ':' + QByteArray::number(minor(device));
    top->clear();
    for (const QByteArray &line : mounts.readAll().split('\n')) {
        const QList<QByteArray> fields = line.split(' ');
        const qsizetype dash = fields.indexOf("-");
        if (fields.size() < 5 || dash < 0 || dash + 1 >= fields.size() || fields[2] != id)
            continue;
        const QByteArray point = unescaped(fields[4]);
        const bool holds = point == "/" || folder == point || folder.startsWith(point + '/');
        if (holds && point.size() >= top->size()) {
            *top = point;
            *type = fields[dash + 1];
        }
    }
    return !top->isEmpty();
}

/** File systems that live in memory or belong to the system: the desktop keeps no trash there. */
bool isSystemType(const QByteArray &type) {
    static const QList<QByteArray> types = {"tmpfs",   "ramfs",   "devtmpfs", "proc",
                                            "sysfs",   "overlay", "squashfs", "autofs",
                                            "debugfs", "cgroup2"};
    return types.contains(type);
}

bool isPrivateFolder(const QByteArray &path) {
    struct stat st {};
    return ::lstat(path.constData(), &st) == 0 && S_ISDIR(st.st_mode) && st.st_uid == ::getuid();
}

bool makeFolder(const QByteArray &path, QString *error) {
    if (::mkdir(path.constData(), 0700) == 0 || (errno == EEXIST && isPrivateFolder(path)))
        return true;
    *error = QStringLiteral("the trash folder “%1” cannot be used: %2")
                 .arg(QFile::decodeName(path), qt_error_string(errno == EEXIST ? ENOTDIR : errno));
    return false;
}

} // namespace

TrashFolder TrashFolder::find(const QByteArray &canonicalFolder, dev_t device) {
    TrashFolder trash;
    const QByteArray home =
        QFile::encodeName(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
    // The user's own trash serves the file system that holds it (or would hold it).
    QByteArray existing = home;
    struct stat st {};
    while (!existing.isEmpty() && ::stat(existing.constData(), &st) != 0)
        existing.truncate(qMax<qsizetype>(existing.lastIndexOf('/'), 0));
    if (!existing.isEmpty() && st.st_dev == device) {
        trash.m_path = home + "/Trash";
        return trash;
    }
    QByteArray type;
    if (!mountOf(canonicalFolder, device, &trash.m_top, &type)) {
        trash.m_reason = QStringLiteral("the file system of this folder was not found");
        return trash;
    }
    if (isSystemType(type)) {
        trash.m_reason =
            QStringLiteral("a %1 file system keeps no trash").arg(QString::fromLatin1(type));
        return trash;
    }
    const QByteArray uid = QByteArray::number(::getuid());
    const QByteArray top = trash.m_top == "/" ? QByteArray() : trash.m_top;
    struct stat shared {};
    if (::lstat((top + "/.Trash").constData(), &shared) == 0 && S_ISDIR(shared.st_mode) &&
        (shared.st_mode & S_ISVTX))
        trash.m_path = top + "/.Trash/" + uid;
    else
        trash.m_path = top + "/.Trash-" + uid;
    return trash;
}

QByteArray TrashFolder::infoPath(const QByteArray &originalPath) const {
    const QByteArray path =
        m_top.isEmpty() || m_top == "/" ? originalPath : originalPath.mid(m_top.size() + 1);
    return path.toPercentEncoding("/");
}

bool TrashFolder::create(QString *error) const {
    if (m_top.isEmpty())
        QDir().mkpath(QFile::decodeName(m_path.left(m_path.lastIndexOf('/'))));
    return makeFolder(m_path, error) && makeFolder(m_path + "/files", error) &&
           makeFolder(m_path + "/info", error);
}
