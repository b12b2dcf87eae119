#include "views/FileIconCache.h"

#include "engine/FileObject.h"
#include "engine/PathHelpers.h"
#include "views/ImageList.h"

#include <QFileIconProvider>
#include <QMimeDatabase>
#include <QPixmap>

#include <sys/stat.h>

namespace FileIconCache {

namespace {

QIcon typeIcon(const QString &fileName, mode_t mode) {
    static const QMimeDatabase database;
    static const QFileIconProvider provider;
    QMimeType type;
    switch (mode & S_IFMT) {
    case S_IFDIR:
        return provider.icon(QAbstractFileIconProvider::Folder);
    case S_IFLNK:
        type = database.mimeTypeForName(QStringLiteral("inode/symlink"));
        break;
    case S_IFREG:
        type = database.mimeTypeForFile(fileName, QMimeDatabase::MatchExtension);
        break;
    default:
        // FIFOs, sockets and devices are never opened, so their icon is chosen by name.
        type = database.mimeTypeForName(QStringLiteral("inode/chardevice"));
        if (S_ISFIFO(mode))
            type = database.mimeTypeForName(QStringLiteral("inode/fifo"));
        else if (S_ISSOCK(mode))
            type = database.mimeTypeForName(QStringLiteral("inode/socket"));
        else if (S_ISBLK(mode))
            type = database.mimeTypeForName(QStringLiteral("inode/blockdevice"));
        break;
    }
    QIcon icon = QIcon::fromTheme(type.iconName());
    if (icon.isNull())
        icon = QIcon::fromTheme(type.genericIconName());
    if (icon.isNull())
        icon = provider.icon(QAbstractFileIconProvider::File);
    return icon;
}

/**
 * True for a file that carries its own icon ("exe", "ico"): keyed by its lower-cased path,
 * where every other file that is not a folder is keyed by its lower-cased type name.
 */
bool ownIcon(QByteArrayView name) {
    const qsizetype dot = name.lastIndexOf('.');
    const QByteArrayView extension = dot < 0 ? QByteArrayView() : name.sliced(dot + 1);
    return extension.compare("exe", Qt::CaseInsensitive) == 0 ||
           extension.compare("ico", Qt::CaseInsensitive) == 0;
}

} // namespace

QString IconKey(const QByteArray &nativePath, const QString &fallback) {
    // A link to a folder is a link here, never a folder: the walk lists it as a file.
    const FileStat stat = FileStat::read(nativePath);
    if (!stat.isValid())
        return fallback;
    if ((stat.mode & S_IFMT) == S_IFDIR)
        return QStringLiteral(":");
    const QString path = DisplayFromNative(nativePath);
    const QString name = path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
    return (ownIcon(nativePath) ? path : FileObject::typeName(name, stat.mode)).toLower();
}

QString RecordIconKey(const ComparisonFile &record) {
    if (!record.HasFileObject() || record.Kind() == FileKind::Missing)
        return record.TypeString();
    // The path is built only for the few files keyed by it: this runs for every listed row.
    return (ownIcon(record.NativeName()) ? record.Path() : record.TypeString()).toLower();
}

QIcon GetFileIconPicture(const QByteArray &nativePath) {
    struct stat info {};
    if (::lstat(nativePath.constData(), &info) != 0)
        return QIcon();
    const QString path = DisplayFromNative(nativePath);
    const QString name = path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
    if (S_ISREG(info.st_mode) && name.endsWith(QLatin1String(".ico"), Qt::CaseInsensitive)) {
        QPixmap picture;
        if (picture.load(QFile::decodeName(nativePath)))
            return QIcon(picture);
    }
    return typeIcon(name, info.st_mode);
}

void AddFileIcon(ImageList *images, const QByteArray &nativePath, const QString &key) {
    if (!images || images->IndexOfKey(key) > 0)
        return;
    const QIcon icon = GetFileIconPicture(nativePath);
    if (!icon.isNull())
        images->Add(key, icon);
}

QString AddFileIcon(ImageList *images, const QByteArray &nativePath) {
    const QString key = IconKey(nativePath, QString());
    AddFileIcon(images, nativePath, key);
    return key;
}

int ImageIndexOfKey(const ImageList *images, const QString &key) {
    return images ? images->IndexOfKey(key) : -1;
}

} // namespace FileIconCache
