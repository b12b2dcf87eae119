#pragma once

#include "engine/CRC32Object.h"
#include "engine/FileStat.h"
#include "engine/FolderNode.h"

#include <QByteArray>

/**
 * The file \a name of a folder, looked at where the folder is: on the disk, or in the
 * manifest that recorded it. A folder already open as \a dirFd (-1 when not) resolves one
 * name instead of a whole path.
 */
namespace FolderEntry {

FileStat stat(const FolderNode &folder, const QByteArray &name, int dirFd = -1);
CRC32Object::Result checksum(CRC32Object &crc, const FolderNode &folder, const QByteArray &name,
                             const FileStat &known, int dirFd = -1);

} // namespace FolderEntry
