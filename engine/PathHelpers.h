#pragma once

#include "engine/FileObject.h"

#include <QByteArray>
#include <QString>

/**
 * Replaces the first occurrence of \a fromRoot (with a separator appended where missing) in
 * \a path by \a toRoot (likewise), comparing without regard to case, at most once; lower-cases
 * the result when \a lowerCase is set.
 */
QString TranslatePath(const QString &path, const QString &fromRoot, const QString &toRoot,
                      bool lowerCase);

/** \a path with a "/" appended when it does not already end in one. */
QString AddTrailingSlash(const QString &path);
/** \a path without one final "/". */
QString RemoveTrailingSlash(const QString &path);

/** True when \a file is not null and names an existing file (checked with one statx). */
bool IsValidFileObject(const ::FileObject &file);

/**
 * The length of the valid UTF-8 sequence that starts at byte \a at of \a text, or 0 when the
 * bytes there are not one (stray continuation bytes, overlong forms, surrogates, values above
 * U+10FFFF, a sequence cut short by the end).
 */
qsizetype Utf8SequenceLength(const QByteArray &text, qsizetype at);
/** True when \a text is valid UTF-8 throughout. */
bool IsValidUtf8(const QByteArray &text);

/** A native name or path for display: bytes that are not valid UTF-8 become U+FFFD. */
QString DisplayFromNative(const QByteArray &native);
/**
 * A native name or path in key form: bytes that are not valid UTF-8 are written as "\xFF" and
 * a backslash as "\\", so that different names never share a key.
 */
QString KeyFromNative(const QByteArray &native);
/**
 * The native bytes for a path given as text: its UTF-8, or the bytes remembered for that text
 * by PathTextFromNative().
 */
QByteArray NativeFromPath(const QString &path);
/**
 * The text of a native path for a path box. A path that is not valid UTF-8 has no text that
 * gives its bytes back, so its display form is remembered with them for the rest of the run:
 * NativeFromPath() of that text then names the same folder.
 */
QString PathTextFromNative(const QByteArray &native);
