#pragma once

#include "engine/ComparisonFile.h"

#include <QByteArray>
#include <QIcon>
#include <QString>

class ImageList;

/**
 * Small file icons, kept once per kind of file in an ImageList under the key IconKey gives
 * (the lower-cased type name, so that all files of one type share one image; a full path for
 * the "exe" and "ico" files that carry their own; ":" for a folder).
 */
namespace FileIconCache {

/**
 * The key under which a file's icon is cached: ":" for an existing folder; for an existing
 * file the lower-cased type name, so that all files of one type share one icon, except "exe"
 * and "ico" files, which are keyed by their full lower-cased path; \a fallback when the path
 * does not exist. Symbolic links are judged as themselves, not by their target.
 */
QString IconKey(const QByteArray &nativePath, const QString &fallback);

/**
 * The icon key of \a record's file (see IconKey()): taken from the record's details where
 * they answer it, so that listing a row costs no look-up on disk; a placeholder (its file does
 * not exist on this side) gets its type name as it stands.
 */
QString RecordIconKey(const ComparisonFile &record);

/**
 * Makes sure \a images holds the icon of the file at \a nativePath: computes its key and,
 * when no image has that key yet, adds the file's icon under it. A file with no icon (one
 * that does not exist) adds nothing. Returns the key.
 */
QString AddFileIcon(ImageList *images, const QByteArray &nativePath);

/** Same with the key already known. */
void AddFileIcon(ImageList *images, const QByteArray &nativePath, const QString &key);

/**
 * The icon the desktop shows for the file at \a nativePath: the folder icon, an icon file's
 * own picture, or the icon of its MIME type (from the icon theme, else the style's generic
 * file icon). A null icon when the path does not exist.
 */
QIcon GetFileIconPicture(const QByteArray &nativePath);

/** The one-based index of the image with \a key in \a images; -1 when absent or no list. */
int ImageIndexOfKey(const ImageList *images, const QString &key);

} // namespace FileIconCache
