#pragma once

#include "settings/SettingsStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <fcntl.h>
#include <sys/stat.h>

/**
 * A profile of its own for a test run: XDG_CONFIG_HOME (settings) and XDG_DATA_HOME (desktop
 * entries, trash, MIME types) in a temporary folder on the test trees' file system, so that the
 * trash takes their files. Made before QSettings or GIO read them, which keep them for good.
 */
class TestProfile {
public:
    TestProfile() {
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(configHome()));
        qputenv("XDG_DATA_HOME", QFile::encodeName(dataHome()));
    }

    bool isValid() const { return m_dir.isValid(); }
    QString configHome() const { return m_dir.path() + QStringLiteral("/config"); }
    QString dataHome() const { return m_dir.path() + QStringLiteral("/data"); }
    QString trashFiles() const { return dataHome() + QStringLiteral("/Trash/files"); }
    QString trashInfo() const { return dataHome() + QStringLiteral("/Trash/info"); }

    /** Removes the settings file: the next read sees an empty store. */
    void clear() { QFile::remove(SettingsStore::fileName()); }

    QByteArray raw() const {
        QFile file(SettingsStore::fileName());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    /**
     * Replaces the settings file as a person editing it by hand would, each edit with a later
     * modification time, so that the store sees a change even when the size is the same.
     */
    bool edit(const QByteArray &content) {
        const QString name = SettingsStore::fileName();
        QDir().mkpath(QFileInfo(name).path());
        QFile file(name);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(content) < 0)
            return false;
        file.close();
        const timespec times[2] = {{++m_editTime, 0}, {m_editTime, 0}};
        return ::utimensat(AT_FDCWD, QFile::encodeName(name).constData(), times, 0) == 0;
    }

private:
    QTemporaryDir m_dir;
    time_t m_editTime = 1'000'000'000;
};
