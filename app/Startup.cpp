#include "Startup.h"

#include "frmMain.h"

#include "engine/PathHelpers.h"
#include "settings/Options.h"
#include "views/frmSplash.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QMessageBox>
#include <QPointer>
#include <QThread>

#include <cerrno>
#include <dirent.h>
#include <exception>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/** The working folder's own bytes (QDir::currentPath() loses those that are not UTF-8). */
QByteArray workingFolder() {
    QByteArray buffer(4096, Qt::Uninitialized);
    while (!::getcwd(buffer.data(), std::size_t(buffer.size()))) {
        if (errno != ERANGE)
            return QByteArray(".");
        buffer.resize(buffer.size() * 2);
    }
    return QByteArray(buffer.constData());
}

const char *const failureMessage =
    "The file system cannot be read: the root folder could not be listed.\n"
    "\n"
    "Reading folders is needed for the Pairscope to function.\n"
    "You can check the permissions of the root folder \n"
    "at:  / (for example with the command ls -la /)\n"
    "\n"
    "The Pairscope will now exit.\n";

} // namespace

StartupEnvironment StartupEnvironment::system() {
    StartupEnvironment env;
    env.isShiftDown = [] {
        return QGuiApplication::queryKeyboardModifiers().testFlag(Qt::ShiftModifier);
    };
    env.clockMs = [] {
        static QElapsedTimer clock = [] {
            QElapsedTimer started;
            started.start();
            return started;
        }();
        return clock.elapsed();
    };
    env.sleep = [](int ms) { QThread::msleep(ulong(ms)); };
    env.fileSystemReadable = FileSystemReadable;
    env.dataFolders = DataFolders::standard();
    return env;
}

Startup::Startup(StartupEnvironment environment)
    : m_env(std::move(environment)) {}

void Startup::SampleShift() {
    if (m_env.isShiftDown && m_env.isShiftDown())
        m_resetPosition = true;
}

frmMain *Startup::Main(const QList<QByteArray> &arguments) {
    m_resetPosition = false;
    QPointer<frmMain> main;
    try {
        QPointer<frmSplash> splash = new frmSplash;
        splash->setAttribute(Qt::WA_DeleteOnClose);
        splash->show();
        splash->FadeIn();
        while (splash && splash->Alpha() != 255) {
            QCoreApplication::processEvents(QEventLoop::AllEvents);
            SampleShift();
            if (splash && splash->Alpha() != 255)
                m_env.sleep(5);
        }

        if (!m_env.fileSystemReadable()) {
            QMessageBox::critical(nullptr, QStringLiteral("Pairscope"),
                                  QString::fromUtf8(failureMessage));
            UnloadAllForms(false);
            return nullptr;
        }

        // The splash stays up at least this long even when the window loads faster, so that
        // its hint about Shift can be read, and Shift is watched all the while.
        const qint64 started = m_env.clockMs();
        for (bool first = true;; first = false) {
            SampleShift();
            if (first) {
                main = new frmMain;
                main->setAttribute(Qt::WA_DeleteOnClose);
                SampleShift();
            }
            QCoreApplication::processEvents(QEventLoop::AllEvents);
            if (m_env.clockMs() - started >= minimumSplashMs)
                break;
            m_env.sleep(5);
        }

        main->InitializeDisplay();
        main->LoadPosition(m_resetPosition);
        main->show();
        if (splash && Options::alwaysOnTop()) {
            // The splash stays in front of the main window while it fades.
            splash->setWindowFlag(Qt::WindowStaysOnTopHint, true);
            splash->show();
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents);

        RegisterDesktopEntry(QCoreApplication::applicationFilePath(), m_env.dataFolders);

        const std::array<QString, 2> folders = FoldersFromArguments(arguments);
        for (int side = 0; side < 2; ++side) {
            if (!folders[side].isEmpty())
                main->SelectFolder(side, folders[side]);
        }

        m_env.sleep(fadeOutDelayMs);
        if (splash)
            splash->FadeOut();
    } catch (const std::exception &error) {
        QMessageBox::critical(
            main, QStringLiteral("Pairscope"),
            QStringLiteral("Error: %1\n\nSource: main").arg(QString::fromLocal8Bit(error.what())));
    }
    return main;
}

std::array<QString, 2> FoldersFromArguments(const QList<QByteArray> &arguments) {
    std::array<QString, 2> folders;
    for (int side = 0; side < 2 && side < arguments.size(); ++side) {
        QByteArray native = arguments[side];
        struct stat status;
        if (native.isEmpty() || ::stat(native.constData(), &status) != 0 ||
            !S_ISDIR(status.st_mode))
            continue;
        // A folder named relative to the shell's working folder is kept absolute, so that the
        // recent list still names it when the program is next started elsewhere.
        if (!native.startsWith('/'))
            native = workingFolder() + '/' + native;
        // Cleaned byte for byte: Latin-1 gives every byte a character of its own and back.
        folders[side] = PathTextFromNative(QDir::cleanPath(QString::fromLatin1(native)).toLatin1());
    }
    return folders;
}

bool FileSystemReadable() {
    DIR *root = ::opendir("/");
    if (!root)
        return false;
    errno = 0;
    const bool listed = ::readdir(root) != nullptr || errno == 0;
    ::closedir(root);
    return listed;
}

void UnloadAllForms(bool includeMain) {
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows)
        window->hide();
    QCoreApplication::processEvents();
    // Closing one window may delete others, so each is held by a guarded pointer.
    QList<QPointer<QWidget>> remaining;
    for (QWidget *window : QApplication::topLevelWidgets())
        remaining << window;
    for (const QPointer<QWidget> &window : remaining) {
        if (window && (includeMain || window->objectName() != QLatin1String("frmMain")))
            window->close();
    }
}
