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
QString AddBackslash(const QString &path);
/** \a path without one final "/". */
QString RemoveBackslash(const QString &path);

/** True when \a file is not null and names an existing file (checked with one statx). */
bool IsValidFileObject(const ::FileObject &file);

/** A native name or path for display: bytes that are not valid UTF-8 become U+FFFD. */
QString DisplayFromNative(const QByteArray &native);
/**
 * A native name or path in key form: bytes that are not valid UTF-8 are written as "\xFF" and
 * a backslash as "\\", so that different names never share a key.
 */
QString KeyFromNative(const QByteArray &native);
/** The native bytes for a path given as text (the inverse of DisplayFromNative for UTF-8). */
QByteArray NativeFromPath(const QString &path);
