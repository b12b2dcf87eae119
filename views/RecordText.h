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
} // namespace RecordText
