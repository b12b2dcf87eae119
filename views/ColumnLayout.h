#pragma once

class ColumnHeader;
class ListView;

/**
 * The columns of a listing and their saved layout: which of the nine column types are shown,
 * their widths and their display order, stored per list ("SourceLayout" for list 0,
 * "DestLayout" for list 1).
 */
namespace ColumnLayout {

/**
 * Rebuilds the headers of \a list: from the defaults when \a useDefaults is set, otherwise
 * from the stored layout (each missing value taken from the defaults, a column whose stored
 * position is not a number left out). Columns are created in type order and then arranged
 * by their positions; a position outside the shown columns is skipped, and the column it
 * belonged to goes to the right end.
 */
void LoadLayout(ListView *list, bool isDestination, bool useDefaults);

/**
 * Stores the layout of \a list: width and display position of each shown column type, and
 * position -1 (width left as it was) for each type that is not shown. Returns false when
 * the settings could not be written.
 */
bool SaveLayout(ListView *list, bool isDestination);

/** The zero-based display position of \a column in \a list; -1 when it is not one of its. */
int GetColumnPosition(const ListView *list, const ColumnHeader *column);

/**
 * Gives \a other exactly the column set of \a model. A column \a other lacks is appended
 * with the model header's key and caption and its type's alignment, and, as the program has
 * always done, with its type's default position as its width: a copied "Name" arrives
 * 1 pixel wide, "Difference" 0, until the user widens it. Columns the model lacks are
 * removed, from the last to the first.
 */
void MatchColumns(const ListView *model, ListView *other);

} // namespace ColumnLayout
