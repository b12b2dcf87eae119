#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <ctime>

/** A real folder tree in a temporary folder, removed afterwards; parents are made as needed. */
class TestTree {
public:
    bool isValid() const { return m_dir.isValid(); }
    /** The root folder, without a trailing separator. */
    QString root() const { return m_dir.path(); }
    QString path(const QString &relative) const { return root() + QLatin1Char('/') + relative; }
    QByteArray nativePath(const QByteArray &relative) const {
        return QFile::encodeName(root()) + '/' + relative;
    }

    /** Writes \a content to the file, replacing it. Returns false on any error. */
    bool write(const QString &relative, const QByteArray &content) {
        return writeNative(QFile::encodeName(relative), content);
    }
    /** Same, for a name given as raw bytes (not necessarily UTF-8). */
    bool writeNative(const QByteArray &relative, const QByteArray &content);
    bool mkdir(const QString &relative) { return QDir().mkpath(path(relative)); }
    /** Sets modified and accessed times (seconds and nanoseconds since the epoch). */
    bool setTimes(const QString &relative, time_t seconds, long nanoseconds = 0);

private:
    QTemporaryDir m_dir;
};

/** A seed for a random test, printed so a failing run can be repeated: PAIRSCOPE_SEED if set. */
quint32 testSeed();
