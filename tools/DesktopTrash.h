#pragma once

#include <QByteArray>
#include <QString>

/**
 * The desktop's trash (freedesktop.org trash: the user's own, or a file system's
 * `.Trash/$uid` or `.Trash-$uid` where the file lives elsewhere), so that a replaced or deleted
 * file can be restored with the file manager.
 */
namespace DesktopTrash {

/**
 * Moves the file or link at \a nativePath to the trash. Returns false and sets \a error when
 * the trash cannot take it (no trash on that file system, no permission, ...); the file is
 * then left where it was.
 */
bool moveToTrash(const QByteArray &nativePath, QString *error);

/**
 * Moves the entry \a name of the open folder \a folderFd to the trash as the file that was
 * called \a originalName in that folder: restoring it puts it back under that name. This lets
 * a replaced file be trashed after its successor took its name. Returns false and sets \a error
 * when the trash cannot take it; the entry is then left where it was.
 */
bool moveToTrashAs(int folderFd, const QByteArray &name, const QByteArray &originalName,
                   QString *error);

/**
 * True when a file in the folder \a folderPath can go to the trash; otherwise false with the
 * reason in \a reason. Creates nothing.
 */
bool canTrash(const QByteArray &folderPath, QString *reason);

} // namespace DesktopTrash
