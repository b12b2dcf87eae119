#pragma once

#include "engine/YieldHook.h"

class ComparisonFileCollection;
class ListView;

/**
 * Sorts \a list once on column type \a type, ascending or descending, and shows the sort
 * indicator there; rows added later are appended.
 *
 * Text columns (name, folder, type, attributes, difference) are ordered by their displayed
 * text. Sizes and dates do not sort by their displayed text ("10 bytes" before "9 bytes"), so
 * each row whose key \a collection knows is ordered by that record's sort key instead; a row
 * the collection does not know is ordered by the text it shows.
 *
 * With \a yield the event loop runs while the rows are sorted: the sort keys are read in
 * slices and ordered on another thread. Should the rows change meanwhile (a new compare, a
 * rebuild, another sort), the sort gives way and leaves them as that work left them.
 *
 * Returns false, having changed nothing, when \a type names no column (0): the caller asked
 * for a header that does not exist.
 */
bool SortListView(ListView *list, const ComparisonFileCollection *collection, int type,
                  bool ascending, const YieldHook &yield = {});
