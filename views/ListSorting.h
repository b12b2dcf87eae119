#pragma once

class ColumnHeader;
class ComparisonFileCollection;
class ListView;

/**
 * Sorts \a list once on the sub-item that \a column shows, ascending or descending, and
 * leaves it unsorted (rows added later are appended). SortKey and SortOrder are set first.
 *
 * Text columns (name, folder, type, attributes, difference) are ordered by their displayed
 * text. Sizes and dates do not sort by their displayed text ("10 bytes" before "9 bytes"),
 * so each row whose key \a collection knows is ordered by its record's sort key instead and
 * then shows its display text again; a row the collection does not know is ordered by the
 * text it shows. For a column of no known type only SortKey and SortOrder change.
 *
 * Returns false, having changed nothing, when \a column is null: the caller asked for a
 * header that does not exist.
 */
bool SortListView(ListView *list, const ComparisonFileCollection *collection,
                  const ColumnHeader *column, bool ascending);
