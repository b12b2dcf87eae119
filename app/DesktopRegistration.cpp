#include "DesktopRegistration.h"

#include "DesktopIdentity.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

namespace {

/** Marks an entry as written by start-up rather than installed. */
const QLatin1String startupMark("X-Pairscope-Written-At-Start-Up=true\n");

QString entryName() {
    return QLatin1String(DesktopIdentity::AppId) + QStringLiteral(".desktop");
}

QString entryPath(const QString &dataFolder) {
    return dataFolder + QStringLiteral("/applications/") + entryName();
}

QByteArray contents(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writtenAtStartUp(const QString &path) {
    return contents(path).contains(QByteArray(startupMark.data(), startupMark.size()));
}

/** Quotes a path for the Exec key of a desktop entry. */
QString desktopExecQuoted(const QString &path) {
    QString quoted = path;
    for (const QChar c : {QLatin1Char('\\'), QLatin1Char('"'), QLatin1Char('`'), QLatin1Char('$')})
        quoted.replace(c, QStringLiteral("\\") + c);
    // The Exec key is itself unescaped once as a string, so every backslash doubles again.
    quoted.replace(QStringLiteral("\\"), QStringLiteral("\\\\"));
    // A percent sign would be read as a field code.
    quoted.replace(QStringLiteral("%"), QStringLiteral("%%"));
    return QLatin1Char('"') + quoted + QLatin1Char('"');
}

/** Writes \a data to \a path unless it holds exactly that already. */
bool writeIfChanged(const QString &path, const QByteArray &data) {
    if (contents(path) == data)
        return true;
    if (!QDir().mkpath(QFileInfo(path).path()))
        return false;
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(data) == data.size() && file.commit();
}

/** The installed entry, run from \a executable and marked as start-up's own. */
QByteArray userEntry(const QString &executable) {
    QString entry = QString::fromUtf8(DesktopIdentity::ProgramEntry());
    entry.replace(QStringLiteral("\nExec=pairscope "),
                  QStringLiteral("\nExec=%1 ").arg(desktopExecQuoted(executable)));
    return (entry + startupMark).toUtf8();
}

} // namespace

DataFolders DataFolders::standard() {
    DataFolders folders;
    folders.user = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    folders.system = QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation);
    folders.system.removeAll(folders.user);
    return folders;
}

bool InBuildFolder(const QString &executable) {
    for (QString dir = QFileInfo(executable).absolutePath(); !dir.isEmpty();
         dir.truncate(dir.lastIndexOf(QLatin1Char('/')))) {
        if (QFileInfo::exists(dir + QStringLiteral("/CMakeCache.txt")))
            return true;
    }
    return false;
}

Registration RegisterDesktopEntry(const QString &executable, const DataFolders &folders) {
    const QString own = entryPath(folders.user);
    bool installed = QFileInfo::exists(own) && !writtenAtStartUp(own);
    for (const QString &folder : folders.system)
        installed = installed || QFileInfo::exists(entryPath(folder));
    if (installed) {
        if (writtenAtStartUp(own))
            QFile::remove(own);
        return Registration::Installed;
    }
    if (InBuildFolder(executable))
        return Registration::BuildFolder;
    if (folders.user.isEmpty())
        return Registration::Failed;
    const QString icon = folders.user + QStringLiteral("/icons/hicolor/scalable/apps/") +
                         QLatin1String(DesktopIdentity::AppId) + QStringLiteral(".svg");
    const bool written = writeIfChanged(icon, DesktopIdentity::ProgramIconSvg()) &&
                         writeIfChanged(own, userEntry(executable));
    return written ? Registration::Written : Registration::Failed;
}
