#pragma once

#include "engine/ComparisonFile.h"

#include <QString>

/**
 * The texts a listing shows for a file record, and the texts its rows are sorted by, per
 * column type (see ColumnType).
 */
namespace RecordText {

/** The text rows are sorted by on a column of type \a SortKey; "" outside 1..9. */
QString SortString(const ComparisonFile &file, int SortKey);
/**
 * The display text of a column of type \a columnType; "" outside 1..9. "In Folder" shows the
 * folder below the root unless \a ShowFullPath is set.
 */
QString ColumnString(const ComparisonFile &file, int columnType, bool ShowFullPath);

/** "" for no date, else the locale's short date, a blank and its long time. */
QString DateString(const FileTime &date);
/**
 * The file type and permissions of \a mode as a listing writes them ("-rw-r--r--",
 * "lrwxrwxrwx", "prw-------"); "" for 0, a mode never read.
 */
QString PermissionString(quint32 mode);
/**
 * The Attributes column: the letters (ComparisonFile::AttributeString), a blank, then
 * PermissionString() of \a mode ("R -r--r--r--"); either part alone when the other is empty.
 */
QString AttributesText(int attributes, quint32 mode);

} // namespace RecordText
