#pragma once

#include <QByteArray>
#include <QString>

/**
 * The key under which a file's icon is cached: ":" for an existing folder; for an existing
 * file the lower-cased type name, so that all files of one type share one icon, except "exe"
 * and "ico" files, which are keyed by their full lower-cased path; \a fallback when the path
 * does not exist. Symbolic links are judged as themselves, not by their target.
 */
QString IconKey(const QString &path, const QString &fallback);
/** Same for a native path (a name that is not valid UTF-8). */
QString IconKey(const QByteArray &nativePath, const QString &fallback);
