#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

#include <ctime>

/**
 * A real folder tree in a temporary folder, removed afterwards. Paths are relative to the
 * tree's root; parent folders are created as needed.
 */
class TestTree {
public:
    TestTree();

    bool isValid() const { return m_dir.isValid(); }
    /** The root folder, without a trailing separator. */
    QString root() const;
    QString path(const QString &relative) const;
    QByteArray nativePath(const QByteArray &relative) const;

    /** Writes \a content to the file, replacing it. Returns false on any error. */
    bool write(const QString &relative, const QByteArray &content);
    /** Same, for a name given as raw bytes (not necessarily UTF-8). */
    bool writeNative(const QByteArray &relative, const QByteArray &content);
    bool mkdir(const QString &relative);
    /** Sets modified and accessed times (seconds and nanoseconds since the epoch). */
    bool setTimes(const QString &relative, time_t seconds, long nanoseconds = 0);

private:
    QTemporaryDir m_dir;
};

/** A seed for a random test, printed so a failing run can be repeated: PAIRSCOPE_SEED if set. */
quint32 testSeed();
