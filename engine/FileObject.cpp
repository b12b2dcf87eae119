#include "engine/FileObject.h"

#include "engine/FolderEntry.h"
#include "engine/PathHelpers.h"
#include "engine/TypeNameCache.h"

#include <QMimeDatabase>

#include <sys/stat.h>

FileObject::FileObject(FolderRef folder, QByteArray name)
    : m_folder(std::move(folder))
    , m_name(std::move(name)) {}

FileObject FileObject::fromNativePath(const QByteArray &nativePath) {
    const qsizetype slash = nativePath.lastIndexOf('/');
    QByteArray folder;
    if (slash < 0)
        folder = QByteArrayLiteral(".");
    else if (slash == 0)
        folder = QByteArrayLiteral("/");
    else
        folder = nativePath.left(slash);
    const qsizetype rootLength = folder.size();
    QString display = DisplayFromNative(folder);
    return FileObject(FolderRef::make(std::move(folder), rootLength, std::move(display)),
                      nativePath.mid(slash + 1));
}

FileObject FileObject::fromPath(const QString &path) {
    return fromNativePath(NativeFromPath(path));
}

QByteArray FileObject::nativePath() const {
    return m_folder ? m_folder->childNativePath(m_name) : QByteArray();
}

QString FileObject::Name() const {
    return DisplayFromNative(m_name);
}

QString FileObject::Path() const {
    return m_folder ? DisplayFromNative(nativePath()) : QString();
}

QString FileObject::ParentFolder() const {
    return m_folder ? m_folder->displayPath() : QString();
}

FileStat FileObject::Stat() const {
    return m_folder ? FolderEntry::stat(*m_folder, m_name) : FileStat();
}

qint64 FileObject::Size() const {
    return Stat().size;
}

int FileObject::Attributes() const {
    return Stat().attributes;
}

FileTime FileObject::DateCreated() const {
    return Stat().created;
}

FileTime FileObject::DateLastModified() const {
    return Stat().modified;
}

FileTime FileObject::DateLastAccessed() const {
    return Stat().accessed;
}

QString FileObject::Type() const {
    const FileStat stat = Stat();
    return stat.isValid() ? typeName(Name(), stat.mode) : QString();
}

QString FileObject::typeName(const QString &fileName, quint32 mode) {
    // The database is thread-safe and costly to set up: one for the process.
    static const QMimeDatabase database;
    const char *inodeType = nullptr;
    switch (mode & S_IFMT) {
    case S_IFREG:
        return TypeNameCache::typeOf(fileName);
    case S_IFLNK:
        inodeType = "inode/symlink";
        break;
    case S_IFIFO:
        inodeType = "inode/fifo";
        break;
    case S_IFSOCK:
        inodeType = "inode/socket";
        break;
    case S_IFCHR:
        inodeType = "inode/chardevice";
        break;
    case S_IFBLK:
        inodeType = "inode/blockdevice";
        break;
    case S_IFDIR:
        inodeType = "inode/directory";
        break;
    default:
        return TypeNameCache::typeOf(fileName);
    }
    return database.mimeTypeForName(QLatin1String(inodeType)).comment();
}
