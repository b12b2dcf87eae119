#pragma once

#include <QByteArray>

/**
 * The names a copy in progress uses for its temporary file where the file system has no
 * unnamed temporary files. A copy killed half-way can leave such a file behind; the walk
 * recognises the names and never lists them, so a partial file is never compared or copied
 * as if it were real.
 */
namespace TemporaryCopyName {

/** The start of every such name. */
inline constexpr char Prefix[] = ".pairscope-copy-";
/** The random letters and digits after the prefix. */
inline constexpr int RandomLength = 10;

/** A new name: the prefix and RandomLength random lower-case letters and digits. */
QByteArray make();

/** True when \a name (one path component) has exactly the form make() gives. */
bool isTemporaryCopyName(const char *name);

} // namespace TemporaryCopyName
