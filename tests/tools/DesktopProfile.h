#pragma once

#include <QFile>
#include <QTemporaryDir>

/**
 * A desktop profile of its own for a test run: XDG_CONFIG_HOME and XDG_DATA_HOME (settings,
 * trash, desktop entries, MIME types) point into a temporary folder. Create it before
 * QSettings or GIO first read them: both remember the folders for the life of the process.
 * The folder lies beside the test trees (the same file system), so the trash takes their files.
 */
class DesktopProfile {
public:
    DesktopProfile() {
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(configHome()));
        qputenv("XDG_DATA_HOME", QFile::encodeName(dataHome()));
    }

    bool isValid() const { return m_dir.isValid(); }
    QString configHome() const { return m_dir.path() + QStringLiteral("/config"); }
    QString dataHome() const { return m_dir.path() + QStringLiteral("/data"); }
    QString trashFiles() const { return dataHome() + QStringLiteral("/Trash/files"); }
    QString trashInfo() const { return dataHome() + QStringLiteral("/Trash/info"); }

private:
    QTemporaryDir m_dir;
};
