#pragma once

#include <QList>
#include <QStringList>

/**
 * The three recent lists: the source folders, the destination folders and the comparison
 * sets. Each keeps at most six entries, most recent first, with the index of the entry that
 * was selected last. The lists' rules (what moves where) belong to the combo boxes that show
 * them; this is their storage.
 */
namespace RecentLists {

/** How many entries each recent list keeps. */
inline constexpr int Capacity = 6;

/** Which folder list: the control-array index of its side. */
enum class Side { Source = 0, Destination = 1 };

/** Recent folders and the index of the one selected last (-1 when none is). */
struct Folders {
    QStringList folders;
    int last = -1;
};

/**
 * The stored folders of \a side in order, skipping empty slots and values that cannot be a
 * path, at most Capacity of them; "Last" as stored (default -1), not yet checked against
 * the list.
 */
Folders loadFolders(Side side);

/**
 * Stores the first Capacity folders as "Item1", "Item2", ... and writes "" to the unused
 * slots so that older entries do not come back; \a last is the selected index.
 */
bool saveFolders(Side side, const QStringList &folders, int last);

/** Recent comparison sets (comparison-bit values) and the index selected last. */
struct Selections {
    QList<int> values;
    int last = -1;
};

/**
 * The stored comparison sets in order, skipping empty slots (-1) and values that are no
 * comparison set (outside 0...63); duplicates are kept, as stored. "Last" as stored
 * (default -1).
 */
Selections loadSelections();

/**
 * Stores the first Capacity sets as "Item1", "Item2", ... and "-1" (an empty slot) in the
 * unused ones; \a last is the selected index.
 */
bool saveSelections(const QList<int> &values, int last);

} // namespace RecentLists
