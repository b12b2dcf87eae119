#pragma once

#include "engine/ComparisonFile.h"

#include <QByteArray>
#include <QString>

class ComparisonFileCollection;
class ListView;
class QWidget;

/** Which way a synchronization copies. */
enum class SyncDirection {
    ToDestination = 0, ///< selected rows of the source listing into the destination tree
    ToSource = 1,      ///< selected rows of the destination listing into the source tree
};

/**
 * The Tag of a review row that is to be copied. The copy list takes only rows with this tag,
 * so a row given another tag would be left out; the program only ever stores this one.
 */
inline constexpr int SyncOperationCode = 2;

/**
 * Reviews and copies the selected rows of \a fromListing to the other tree: the rows whose
 * file exists on the from side are listed in the review dialog (or "No files to copy." is
 * shown), and after "Copy" they are copied in the dialog's row order. \a from and \a to are
 * the collections of the copy's two sides. The listings and collections are left as they are.
 * Called by the Tools menu's and the listing popup's copy commands.
 */
void ShowSynchronizer(QWidget *owner, SyncDirection direction, ListView *fromListing,
                      const ComparisonFileCollection &from, const ComparisonFileCollection &to);

/**
 * Where \a file of \a from goes in the tree of \a to: the real path of its counterpart when
 * the pair exists there (a pair matched despite letter case is replaced, not doubled), else
 * its path below \a to's root. Empty when \a to has no root.
 */
QByteArray SyncTarget(const ComparisonFile &file, const ComparisonFileCollection &from,
                      const ComparisonFileCollection &to);

/** The review dialog's status text: two blanks, the count with grouping, " files to copy." ("1
 * file"). */
QString SyncCountText(int count);
