#pragma once

#include <QList>
#include <QString>

/** A diff program found on this computer, as the Select Diff Program dialog offers it. */
struct FoundDiffProgram {
    QString name;     ///< as the desktop shows it ("Meld")
    QString program;  ///< the executable file, resolved on PATH
    QString iconName; ///< the icon theme's name for it; may be empty
};

/**
 * The diff programs installed here: the applications whose desktop entry says they compare
 * (a keyword, category or word of the generic name such as "diff" or "compare"), then the
 * well-known diff programs found on PATH that no entry named; each program file once, sorted
 * by name.
 * Entries that run in a terminal, hide themselves, or start through a launcher that does not
 * take two files as they are (flatpak, env, a shell) are left out, as is this program itself.
 */
QList<FoundDiffProgram> FindDiffPrograms();
