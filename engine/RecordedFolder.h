#pragma once

#include "engine/CRC32Object.h"
#include "engine/FileStat.h"

#include <QByteArray>

#include <vector>

/**
 * One folder of a tree as a manifest recorded it: the properties and checksums of its files,
 * with no disk behind them. A FolderNode that has one answers from it instead of the disk.
 */
class RecordedFolder {
public:
    struct File {
        QByteArray name;
        FileStat stat;
        /** Whether the manifest holds a checksum (or "could not be read") for the file. */
        bool checksummed = false;
        CRC32Object::Result checksum;
        /** The manifest's line, to name it when the file is refused. */
        qint64 line = 0;
    };

    /** The path below the root ("" for the root). */
    QByteArray path;
    /** Position of the folder holding this one in its RecordedTree; -1 for the root. */
    int parent = -1;
    bool ignoresCase = false;
    /** The folder could not be listed when the manifest was written. */
    bool unreadable = false;
    /** In name-byte order, as a walk yields them. */
    std::vector<File> files;

    /** The file called \a name, or null. */
    const File *find(const QByteArray &name) const;
    /** Its properties, as a statx would give them; kind Missing when there is no such file. */
    FileStat stat(const QByteArray &name) const;
    /**
     * Its checksum as CRC32Object would give it: Skipped for what is not a regular file or
     * link, Failed when it could not be read then, or when none was recorded.
     */
    CRC32Object::Result checksum(const QByteArray &name) const;
};
