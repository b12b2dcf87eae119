#include "tools/ShowInFolder.h"

#include "tools/FileManagerBus.h"
#include "views/ListView.h"

#include <QDesktopServices>

#include <sys/stat.h>

namespace ShowInFolder {

namespace {

// Bytes the URI may carry as they are; everything else, including bytes that are not UTF-8,
// is percent-encoded, so the file manager gets back exactly the bytes of the name.
constexpr char keptInPath[] = "/-._~!$&'()*+,;=:@";

QUrl folderOf(const QString &fileUri) {
    const QUrl file(fileUri);
    return file.adjusted(QUrl::RemoveFilename | QUrl::StripTrailingSlash);
}

void openWith(const FolderOpener &fallback, const QUrl &folder) {
    if (fallback)
        fallback(folder);
    else
        QDesktopServices::openUrl(folder);
}

} // namespace

QString FileUri(const QByteArray &nativePath) {
    return QStringLiteral("file://") +
           QString::fromLatin1(nativePath.toPercentEncoding(keptInPath));
}

QString Command(const QByteArray &nativePath) {
    struct stat st {};
    if (nativePath.isEmpty() || ::lstat(nativePath.constData(), &st) != 0)
        return QString();
    return FileUri(nativePath);
}

QString CommandForSelection(const ListView *listing) {
    if (!listing)
        return QString();
    const ComparisonFilePtr file = listing->selectedRecord();
    return file ? Command(file->NativePath()) : QString();
}

void OpenContainingFolder(const QString &command, FolderOpener fallback) {
    if (command.isEmpty())
        return;
    const QUrl folder = folderOf(command);
    CallFileManager(QStringLiteral("ShowItems"), {command},
                    [folder, fallback = std::move(fallback)] { openWith(fallback, folder); });
}

} // namespace ShowInFolder
