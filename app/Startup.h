#pragma once

#include "app/DesktopRegistration.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <array>
#include <functional>

class frmMain;

/**
 * What start-up reads from its surroundings. Each member has a working default; tests
 * replace them so that no real keyboard, clock or pause is needed.
 */
struct StartupEnvironment {
    /** True while a Shift key is held. */
    std::function<bool()> isShiftDown;
    /** Milliseconds of a monotonic clock (any origin). */
    std::function<qint64()> clockMs;
    /** Pauses the program for that many milliseconds. */
    std::function<void(int)> sleep;
    /** True when the file system can be read (see FileSystemReadable()). */
    std::function<bool()> fileSystemReadable;
    /** Where the desktop entry is looked for and written (see RegisterDesktopEntry()). */
    DataFolders dataFolders;

    /** The defaults: the real keyboard, a monotonic clock, a real pause, the real check. */
    static StartupEnvironment system();
};

/**
 * The program's start-up: shows the splash, checks that folders can be read, prepares and
 * places the main window while the splash stays up at least 500 ms, registers with the desktop,
 * takes up to two folders from the command line and lets the splash fade away.
 */
class Startup {
public:
    explicit Startup(StartupEnvironment environment = StartupEnvironment::system());

    /**
     * Runs the start-up steps once with the program's \a arguments (without the program's
     * own name). Returns the shown main window (deleted when it closes), or nullptr when
     * the program must end.
     */
    frmMain *Main(const QList<QByteArray> &arguments);

    /** True once Shift was seen held at any sampling point of the last Main(). */
    bool ResetPosition() const { return m_resetPosition; }

    /** The least time the splash stays up while the main window loads. */
    static constexpr int minimumSplashMs = 500;
    /** The pause between the main window's appearance and the splash's fade-out. */
    static constexpr int fadeOutDelayMs = 350;

private:
    void SampleShift();

    StartupEnvironment m_env;
    bool m_resetPosition = false;
};

/**
 * The folders the command line names, as the path boxes take them: the first argument when it
 * is an existing folder becomes the source, the second when it is an existing folder the
 * destination. Anything else, and every further argument, is skipped silently; a skipped side
 * is empty. The arguments are bytes, as the shell gives them: a folder whose path is not valid
 * UTF-8 opens too (see PathTextFromNative()).
 */
std::array<QString, 2> FoldersFromArguments(const QList<QByteArray> &arguments);

/** True when the file system can be read: the root folder can be opened and listed. */
bool FileSystemReadable();

/**
 * Hides every top-level window, lets pending events run once, then closes every one that is
 * not the main window, and the main window too when \a includeMain is true.
 */
void UnloadAllForms(bool includeMain);
