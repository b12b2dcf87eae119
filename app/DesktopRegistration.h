#pragma once

#include <QString>
#include <QStringList>

/** The folders the desktop reads entries and icons from: the user's first, then the system's. */
struct DataFolders {
    QString user;       ///< $XDG_DATA_HOME
    QStringList system; ///< $XDG_DATA_DIRS

    /** This session's folders. */
    static DataFolders standard();
};

/** What the start-up registration found and did. */
enum class Registration {
    Installed,   ///< an installed entry serves the desktop; nothing written
    BuildFolder, ///< the program runs from a build folder; nothing written
    Written,     ///< the user's entry names this program (written now or earlier)
    Failed,      ///< the entry could not be written
};

/**
 * The start-up registration of the program with the desktop. Installing puts a desktop entry
 * where the desktop finds it; only where none is installed does start-up write the user's own
 * entry, with the icon it names, for \a executable. It never writes one for a program inside a
 * build folder. An entry an earlier start wrote is removed once an installed one exists, since
 * the user's entry would hide it. Errors are not reported beyond the result.
 */
Registration RegisterDesktopEntry(const QString &executable, const DataFolders &folders);

/** True when \a executable lies inside a CMake build folder. */
bool InBuildFolder(const QString &executable);
