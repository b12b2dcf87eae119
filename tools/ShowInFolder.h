#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <functional>

class ListView;

/**
 * Open Containing Folder: the desktop's file manager opens the folder of a file with the file
 * selected (org.freedesktop.FileManager1.ShowItems on the session bus); where no file manager
 * answers, the folder is opened with the desktop's default handler.
 */
namespace ShowInFolder {

/** Opens a folder; the default hands it to QDesktopServices. */
using FolderOpener = std::function<void(const QUrl &folder)>;

/** The file URI of a native path, every byte kept (percent-encoded where needed). */
QString FileUri(const QByteArray &nativePath);

/**
 * The command Open Containing Folder carries out: the file URI of \a nativePath when something
 * exists there (a file, link or folder), else "" (the command then does nothing).
 */
QString Command(const QByteArray &nativePath);

/**
 * Command() for the selected row of \a listing: ""
 * without a selected row or when its file is missing on that side.
 */
QString CommandForSelection(const ListView *listing);

/**
 * Carries out \a command (as Command() made it): asks the file manager to show the item and,
 * when the bus has none or the call fails, opens the item's folder with \a fallback (the
 * default handler when empty). Returns at once; the answer is handled by the event loop.
 */
void OpenContainingFolder(const QString &command, FolderOpener fallback = {});

} // namespace ShowInFolder
