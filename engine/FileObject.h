#pragma once

#include "engine/FileStat.h"
#include "engine/FolderNode.h"

#include <QByteArray>
#include <QString>

/**
 * One file on disk, named by its folder and its name as bytes, so that a name that is not
 * valid UTF-8 is never lost. The object is valid while the file exists. Properties are read
 * fresh from disk on every call; read them all at once with Stat() when several are needed,
 * which costs a single statx. A default-constructed object is null ("Nothing").
 */
class FileObject {
public:
    FileObject() = default;
    FileObject(FolderRef folder, QByteArray name);
    /**
     * The file at \a nativePath (which need not exist). Its folder node is its own, with the
     * file's folder as root.
     */
    static FileObject fromNativePath(const QByteArray &nativePath);
    /** Same for a path given as text (encoded with the locale's file-name encoding). */
    static FileObject fromPath(const QString &path);

    bool isNull() const { return !m_folder; }

    /** The folder holding the file; null for a null object. */
    const FolderRef &folder() const { return m_folder; }
    /** The name as bytes. */
    const QByteArray &nativeName() const { return m_name; }
    /** The full path as bytes: the path for every disk operation. */
    QByteArray nativePath() const;

    /** The name for display (invalid UTF-8 shown as replacement characters). */
    QString Name() const;
    /** The full path for display. */
    QString Path() const;
    /** The containing folder's full path for display. */
    QString ParentFolder() const;

    /** All properties with one statx; kind Missing when the file cannot be read. */
    FileStat Stat() const;
    /** Convenience readers, one statx each; defaults (0, "no date") when the file is gone. */
    qint64 Size() const;
    int Attributes() const;
    FileTime DateCreated() const;
    FileTime DateLastModified() const;
    FileTime DateLastAccessed() const;
    /** The type name (the MIME type's description), found from the name alone. */
    QString Type() const;

    /**
     * The type name of a file called \a fileName with st_mode \a mode: by extension for regular
     * files (the file is never opened to sniff it), the inode type for links, FIFOs, sockets
     * and devices.
     */
    static QString typeName(const QString &fileName, quint32 mode);

    friend bool operator==(const FileObject &a, const FileObject &b) {
        return a.m_folder == b.m_folder && a.m_name == b.m_name;
    }

private:
    FolderRef m_folder;
    QByteArray m_name;
};
