#include "engine/IconKey.h"

#include "engine/FileObject.h"
#include "engine/PathHelpers.h"

#include <sys/stat.h>

QString IconKey(const QByteArray &nativePath, const QString &fallback) {
    // A link to a folder is a link here, never a folder: the walk lists it as a file.
    const FileStat stat = FileStat::read(nativePath);
    if (!stat.isValid())
        return fallback;
    if ((stat.mode & S_IFMT) == S_IFDIR)
        return QStringLiteral(":");
    const QString path = DisplayFromNative(nativePath);
    const QString name = path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    const QString extension = dot < 0 ? QString() : name.mid(dot + 1).toLower();
    if (extension == QLatin1String("exe") || extension == QLatin1String("ico"))
        return path.toLower();
    return FileObject::typeName(name, stat.mode).toLower();
}

QString IconKey(const QString &path, const QString &fallback) {
    return IconKey(NativeFromPath(path), fallback);
}
