#pragma once

#include <QByteArray>
#include <QString>

/**
 * The desktop's trash (freedesktop.org trash: the user's own, or a file system's
 * `.Trash-$uid` where the file lives elsewhere), so that a replaced or deleted file can be
 * restored with the file manager.
 */
namespace DesktopTrash {

/**
 * Moves the file or link at \a nativePath to the trash. Returns false and sets \a error when
 * the trash cannot take it (no trash on that file system, no permission, ...); the file is
 * then left where it was.
 */
bool moveToTrash(const QByteArray &nativePath, QString *error);

} // namespace DesktopTrash
