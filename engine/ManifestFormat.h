#pragma once

#include "engine/CRC32Object.h"
#include "engine/FileStat.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <optional>

/** One entry of a tree as one line of a manifest records it. */
struct ManifestEntry {
    /** Below the root, "/" between names; empty for the root itself. */
    QByteArray path;
    /** Kind Missing (with an error) for an entry whose properties could not be read. */
    FileStat stat;
    /** A folder whose file system resolves names in it without regard to letter case. */
    bool ignoresCase = false;
    /** A folder that could not be listed: what it holds is not known. */
    bool unreadable = false;
    /** A link's text. */
    QByteArray target;
    /** Whether a checksum was asked for; checksum then says how it ended (Ok or Failed). */
    bool checksummed = false;
    CRC32Object::Result checksum;

    bool isFolder() const { return stat.type() == S_IFDIR; }
};

/**
 * The text of a manifest: a header line, then one line per entry of ten tab-separated fields
 * (path, kind, size, modified, created, accessed, permissions, flags, CRC-32, link target).
 * Paths and link targets are escaped by ByteEscaping, so no field holds a tab or a newline.
 */
namespace ManifestFormat {

/** The version this program writes and reads. */
inline constexpr int Version = 1;
/** The first word of a manifest. */
inline constexpr char Magic[] = "pairscope-manifest";

/** What the header line says of the whole manifest. */
struct Header {
    int version = Version;
    /** Written with checksums: every file and link has its CRC-32 (or "?" for unreadable). */
    bool checksums = false;
    /** Written with each folder's .gitignore applied. */
    bool gitignore = false;
};

/** "pairscope-manifest 1", then "crc" and "gitignore" where they apply; no newline. */
QByteArray headerLine(const Header &header);
/** The header of a manifest's first line, or nothing and the reason in \a error. */
std::optional<Header> parseHeader(QByteArrayView line, QString *error);

/** The line of \a entry, without its newline. */
QByteArray entryLine(const ManifestEntry &entry);
/** Reads \a line (without its newline) into \a entry; false and the reason in \a error. */
bool parseEntry(QByteArrayView line, ManifestEntry &entry, QString *error);

} // namespace ManifestFormat
