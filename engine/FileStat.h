#pragma once

#include "engine/FileTime.h"

#include <QByteArray>

#include <sys/stat.h>

/** Attribute bits of a file, as the listings and the attribute comparison know them. */
namespace FileAttributes {
/** The owner may not write the file. */
inline constexpr int ReadOnly = 1;
/** The name starts with ".". */
inline constexpr int Hidden = 2;
/** Not a regular file or symbolic link: a FIFO, socket or device. */
inline constexpr int System = 4;
/** Never set on this platform; kept so that the attribute string rules stay whole. */
inline constexpr int Archive = 32;
/** A symbolic link. */
inline constexpr int Alias = 1024;
/** The file system compresses the file (STATX_ATTR_COMPRESSED). */
inline constexpr int Compressed = 2048;
} // namespace FileAttributes

/** What kind of directory entry a file is; it decides how its checksum is taken. */
enum class FileKind : quint8 {
    /** The file could not be found or its properties could not be read. */
    Missing,
    /** A regular file: checksummed by reading it. */
    Regular,
    /** A symbolic link: never followed; its size and checksum are those of the link text. */
    Symlink,
    /** A FIFO, socket or device: compared on metadata only, never opened. */
    Other,
};

/**
 * Every property of one file that a comparison reads, taken with one statx call so that a
 * pair is judged on one consistent snapshot per side.
 */
struct FileStat {
    FileKind kind = FileKind::Missing;
    /** The errno of the failed call when kind is Missing, else 0. */
    int error = 0;
    /** Bytes; for a symbolic link the length of its text. */
    qint64 size = 0;
    /** FileAttributes bits. */
    int attributes = 0;
    /** The st_mode bits (file type and permissions). */
    quint32 mode = 0;
    FileTime created;
    FileTime modified;
    FileTime accessed;

    /** The file type bits of the mode: regular file, link, FIFO, socket, device or folder. */
    quint32 type() const { return mode & S_IFMT; }
    /** The permission bits of the mode, with set-user-ID, set-group-ID and sticky. */
    quint32 permissions() const { return mode & 07777; }

    /** True when the file exists (its properties could be read). */
    bool isValid() const { return kind != FileKind::Missing; }

    /**
     * Sets the mode, and the kind and attribute bits that follow from it, for the file called
     * \a name (a path will do: its last part counts); \a compressed adds that attribute.
     */
    void setMode(quint32 stMode, const char *name, bool compressed);

    /**
     * Reads the properties of \a name inside the folder open as \a dirFd (or relative to the
     * working folder for AT_FDCWD) with a single statx, never following a symbolic link.
     */
    static FileStat read(int dirFd, const char *name);
    /** Same for a full native path. */
    static FileStat read(const QByteArray &nativePath);
};
