#include "engine/FolderEntry.h"

#include "engine/RecordedFolder.h"

FileStat FolderEntry::stat(const FolderNode &folder, const QByteArray &name, int dirFd) {
    if (const RecordedFolder *recorded = folder.recorded())
        return recorded->stat(name);
    return dirFd >= 0 ? FileStat::read(dirFd, name.constData())
                      : FileStat::read(folder.childNativePath(name));
}

CRC32Object::Result FolderEntry::checksum(CRC32Object &crc, const FolderNode &folder,
                                          const QByteArray &name, const FileStat &known,
                                          int dirFd) {
    if (const RecordedFolder *recorded = folder.recorded())
        return recorded->checksum(name);
    return dirFd >= 0 ? crc.Checksum(dirFd, name, known)
                      : crc.Checksum(folder.childNativePath(name), known);
}
