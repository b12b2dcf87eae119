#pragma once

#include "tools/CopyJob.h"
#include "tools/FolderBeneathRoot.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>
#include <sys/stat.h>

/**
 * Copies one file or symbolic link to its target path so that no partial file ever appears
 * under the final name, and nothing is read or written outside the two chosen roots: both
 * folders are opened below their roots without following links. The data goes to an unnamed
 * temporary file in the target folder (or, where the file system has none, to a file whose
 * name the walk never lists), is flushed, given the source's permissions and nanosecond times,
 * and only then linked or exchanged into place. Paths are native bytes, so names that are not
 * valid UTF-8 copy exactly.
 *
 * The steps are separate so that the caller can ask the user and dispose of the replaced file:
 * prepare() → writeTemporary() → commit(), then for a replaced target trashReplaced(),
 * dropReplaced() or restoreReplaced(); discard() at any point (the destructor discards, which
 * also removes the folders that were created for a copy that did not happen).
 */
class SafeFileCopy {
public:
    /**
     * Called while data is copied with the bytes of this file done so far; returning false
     * cancels the copy.
     */
    using Progress = std::function<bool(qint64 bytesDone)>;

    explicit SafeFileCopy(const CopyItem &item);
    ~SafeFileCopy();
    SafeFileCopy(const SafeFileCopy &) = delete;
    SafeFileCopy &operator=(const SafeFileCopy &) = delete;

    /**
     * Opens the source (a regular file or a symbolic link) and the target folder, creating
     * missing folders below the target root, and looks at the target. Fails for a missing or
     * special source, a link in a folder of either path, a vanished root, a target that is a
     * folder, a name too long, or a target that is the source itself.
     */
    bool prepare();
    /**
     * Makes the checks of prepare() without changing anything on disk (missing folders are
     * fine: they would be created), so that a review can tell what a copy would do.
     */
    bool look();
    /**
     * After look(): the target path as the disk spells it. Where a folder resolves names
     * without regard to case, an existing folder of another case is where the file goes.
     */
    QByteArray lookedTarget() const;
    /** True after prepare() when something (not a folder) already exists at the target. */
    bool targetExists() const { return m_targetExists; }
    /** The source's size as prepare() saw it (a link's size is the length of its text). */
    qint64 sourceSize() const { return m_sourceSize; }

    /**
     * Writes the temporary copy. Fails when the source cannot be read, the disk is full, the
     * folder refuses the file, the source changes or vanishes meanwhile, or \a progress asks
     * to cancel (then wasCancelled() is true). The temporary file is removed on failure.
     */
    bool writeTemporary(const Progress &progress);

    /** How commit() treats a file found at the target. */
    enum class Commit {
        MustNotExist, ///< fail if anything is at the target now
        Replace,      ///< exchange it with the copy; it is then kept aside until disposed of
    };
    /** Puts the copy in place under the target's name; the target folder is then flushed. */
    bool commit(Commit mode);
    /** True after commit(Replace) while the replaced file waits aside. */
    bool hasReplaced() const { return !m_asideName.isEmpty(); }
    /** Moves the replaced file to the trash, as the file of the target's name. */
    bool trashReplaced(QString *reason);
    /** Deletes the replaced file for good. */
    void dropReplaced();
    /** Puts the replaced file back under its name; the copy is dropped. */
    bool restoreReplaced();
    /** Removes the temporary copy, if any, and the folders made for it. */
    void discard();

    bool wasCancelled() const { return m_cancelled; }
    /** Why the last step failed, as one sentence for the user. */
    QString errorString() const { return m_error; }
    /** What the copy could not carry over although it succeeded (permissions on FAT). */
    QString note() const { return m_note; }

    /** The length limit of one name in a path, in bytes. */
    static constexpr int NameMax = 255;

private:
    bool fail(const QString &message);
    bool failErrno(const QString &what, int error);
    bool prepareSource();
    bool prepareTarget(FolderBeneathRoot::Mode mode);
    bool createTemporaryFile(int *fd);
    bool writeFileData(const Progress &progress);
    bool finishFile(int to, const struct stat &before);
    bool writeLink();
    bool copyData(int from, int to, qint64 size, const Progress &progress);
    bool copyRange(int from, int to, qint64 begin, qint64 end, const Progress &progress);
    bool checkSourceUnchanged(int from, const struct stat &before);
    bool nameTemporary();
    bool placeNew();
    bool exchange();

    CopyItem m_item;
    QByteArray m_sourceName;
    QByteArray m_name;          // the target's last path component
    QByteArray m_temporaryName; // in the target folder; empty when there is none
    QByteArray m_asideName;     // the replaced file after commit(Replace)
    FolderBeneathRoot m_sourceFolder;
    FolderBeneathRoot m_targetFolder;
    int m_sourceFd = -1;
    int m_unnamedFd = -1; // the unnamed temporary file, until it gets a name
    struct stat m_sourceStat {};
    qint64 m_sourceSize = 0;
    bool m_targetExists = false;
    bool m_committed = false;
    bool m_cancelled = false;
    bool m_plainCopy = false; // copy_file_range refused: read and write instead
    QString m_error;
    QString m_note;
};
