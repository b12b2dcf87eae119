#pragma once

#include <QByteArray>
#include <QString>

class ComparisonFile;
class ComparisonFileCollection;
class ListView;
class QWidget;

/**
 * The external diff program: its setting ("DiffEXE"), the dialog that names it, and its
 * launch with the selected file and its counterpart, the source file first.
 */

/**
 * The program file that \a program names: a bare name (no "/") is looked up on PATH as a
 * shell would, anything else is a path. "" when that is no existing executable file.
 */
QString ResolveDiffProgram(const QString &program);

/** True when \a program names an existing executable file (see ResolveDiffProgram()). */
bool IsDiffProgram(const QString &program);

/** Why \a program cannot be started, in one sentence; "" when it names a program. */
QString DiffProgramProblem(const QString &program);

/**
 * The diff program in use, read from "DiffEXE": the text as saved when it names a program,
 * else "" (which leaves Examine Differences disabled).
 */
QString LoadDiffProgram();

/**
 * Runs the diff program dialog over \a owner, starting from \a program (the one in use) and
 * offering the diff programs found on this computer; on OK stores the text as typed. Returns
 * the program in use afterwards: LoadDiffProgram() after OK, \a program after Cancel.
 */
QString SelectDiffProgram(QWidget *owner, const QString &program);

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
 * Starts \a program (a path, or a bare name found on PATH) with \a pair's two paths as its
 * two arguments, detached and without a shell (names with blanks or any other bytes arrive as
 * they are). Returns false with the reason in \a error when it could not be started.
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
