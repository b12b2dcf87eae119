#pragma once

#include <QByteArray>
#include <QString>

#include <sys/types.h>

/**
 * Where the freedesktop.org trash keeps the files of one file system: the user's own trash
 * for the file system that holds it, else the file system's `.Trash/$uid` (when an
 * administrator made `.Trash` sticky) or `.Trash-$uid`. File systems that only live in memory
 * or belong to the system have no trash, as on the desktop.
 */
class TrashFolder {
public:
    /** Finds the trash for files of the folder \a canonicalFolder, which is on device \a device. */
    static TrashFolder find(const QByteArray &canonicalFolder, dev_t device);

    bool isValid() const { return !m_path.isEmpty(); }
    /** Why there is none. */
    QString reason() const { return m_reason; }
    /** The trash folder (holding files/ and info/); may not exist yet. */
    QByteArray path() const { return m_path; }
    /** The trash info's Path= for \a originalPath: absolute, or relative to the top folder. */
    QByteArray infoPath(const QByteArray &originalPath) const;
    /** Creates the trash folder and its files/ and info/ as needed, private to the user. */
    bool create(QString *error) const;

private:
    QByteArray m_path;
    QByteArray m_top; ///< the file system's top folder; empty for the user's own trash
    QString m_reason;
};
