#include "views/FileIconCache.h"

#include "engine/FileObject.h"
#include "engine/PathHelpers.h"
#include "views/ImageList.h"

#include <QFileIconProvider>
#include <QMimeDatabase>
#include <QPixmap>

#include <functional>
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
 * The key of an existing file that is not a folder: files that carry their own icon ("exe",
 * "ico") are keyed by their lower-cased path, all others by their lower-cased type name.
 */
QString fileKey(const QString &path, const QString &name, const std::function<QString()> &type) {
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    const QStringView extension = dot < 0 ? QStringView() : QStringView(name).mid(dot + 1);
    if (extension.compare(QLatin1String("exe"), Qt::CaseInsensitive) == 0 ||
        extension.compare(QLatin1String("ico"), Qt::CaseInsensitive) == 0)
        return path.toLower();
    return type().toLower();
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
    return fileKey(path, name, [&] { return FileObject::typeName(name, stat.mode); });
}

QString RecordIconKey(const ComparisonFile &record) {
    if (!record.HasFileObject() || record.Kind() == FileKind::Missing)
        return record.TypeString();
    return fileKey(record.Path(), record.Name(), [&record] { return record.TypeString(); });
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
