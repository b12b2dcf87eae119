#pragma once

#include <QString>
#include <Qt>

/**
 * The nine columns a listing offers, by column type (1 "Name" ... 9 "Difference", the
 * numbering of ColumnType). Display positions count from 0; -1 means hidden by default. A
 * type outside 1..9 has no caption, width 0 and position 0.
 */

/** The header caption ("Date Modified"). */
QString ColumnCaption(int type);
/** Width in pixels of a column shown by default or shown again from the column menu. */
int DefaultColumnWidth(int type);
/** Display position in the default layout: "Difference" first, then "Name", ...; -1 hidden. */
int DefaultColumnPosition(int type);
/** Sizes are right-aligned, everything else left-aligned. */
Qt::Alignment ColumnAlignment(int type);

/** The column types of the listings; a list column's key is "#" followed by the type. */
namespace ColumnType {
inline constexpr int Name = 1;
inline constexpr int InFolder = 2;
inline constexpr int Size = 3;
inline constexpr int Type = 4;
inline constexpr int DateModified = 5;
inline constexpr int DateCreated = 6;
inline constexpr int DateAccessed = 7;
inline constexpr int Attributes = 8;
inline constexpr int Difference = 9;
} // namespace ColumnType

/** The number of column types. */
inline constexpr int ColumnTypeCount = 9;
