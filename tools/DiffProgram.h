#pragma once

#include <QByteArray>
#include <QString>

class ComparisonFile;
class ComparisonFileCollection;
class ListView;
class QAction;
class QWidget;

/**
 * The external diff program: its setting ("DiffEXE"), the dialog that names it, and its
 * launch with the selected file and its counterpart, the source file first.
 */

/** True when \a path names an existing executable file (not a folder). */
bool IsDiffProgram(const QString &path);

/**
 * Reads "DiffEXE" into the Tag (the data) of \a mnuToolsDiff as a QString: the path when it
 * names a program, else "" (which leaves Examine Differences disabled).
 */
void LoadDiffProgram(QAction *mnuToolsDiff);

/**
 * Runs the diff program dialog over \a owner, starting from the Tag of \a mnuToolsDiff; on OK
 * stores the text as typed and reloads the Tag.
 */
void SelectDiffProgram(QWidget *owner, QAction *mnuToolsDiff);

/** The two files handed to the diff program, as real paths. */
struct DiffPair {
    QByteArray source;
    QByteArray destination;
};

/**
 * The pair for \a file of side \a side (0 source, 1 destination): its own real path and its
 * counterpart's, found by key in the other collection or, where the other side has no such
 * file, its path below the other root. The source file comes first whatever the side.
 */
DiffPair DiffPaths(const ComparisonFile &file, int side, const ComparisonFileCollection &source,
                   const ComparisonFileCollection &destination);

/**
 * Starts \a program with \a pair's two paths as its two arguments, detached and without a
 * shell (names with blanks or any other bytes arrive as they are). Returns false with a reason
 * in \a error when it could not be started.
 */
bool LaunchDiffProgram(const QString &program, const DiffPair &pair, QString *error);

/**
 * Examine Differences: starts \a program on the selected row of \a listing (side \a side) and
 * its counterpart; a start that fails is reported in a message box over \a owner. Does nothing
 * without a program or a selected row.
 */
void ExamineDifferences(QWidget *owner, const QString &program, const ListView *listing, int side,
                        const ComparisonFileCollection &source,
                        const ComparisonFileCollection &destination);
