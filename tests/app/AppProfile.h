#pragma once

#include <QFile>
#include <QTemporaryDir>

/**
 * A profile of its own for a GUI test run: the settings and the data folder (desktop entry)
 * point into a temporary folder before anything reads them, so no test touches a real one.
 * Create it first in initTestCase().
 */
class AppProfile {
public:
    AppProfile() {
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_dir.path() + QStringLiteral("/config")));
        qputenv("XDG_DATA_HOME", QFile::encodeName(m_dir.path() + QStringLiteral("/data")));
    }

    bool isValid() const { return m_dir.isValid(); }
    QString dataHome() const { return m_dir.path() + QStringLiteral("/data"); }

private:
    QTemporaryDir m_dir;
};
