#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <sys/stat.h>

/**
 * Copies one file or symbolic link to its target path so that no partial file ever appears
 * under the final name: the data goes to a temporary file with a short name of our own in the
 * target folder, is flushed, given the source's permissions and nanosecond times, and only then
 * renamed onto the target. Paths are native bytes, so names that are not valid UTF-8 copy
 * exactly.
 *
 * The steps are separate so that the caller can ask the user and move an old target to the
 * trash between writing the copy and putting it in place:
 * prepare() → writeTemporary() → commit(), or discard() at any point (the destructor discards).
 */
class SafeFileCopy {
public:
    /**
     * Called while data is copied with the bytes of this file done so far; returning false
     * cancels the copy.
     */
    using Progress = std::function<bool(qint64 bytesDone)>;

    SafeFileCopy(QByteArray source, QByteArray target);
    ~SafeFileCopy();
    SafeFileCopy(const SafeFileCopy &) = delete;
    SafeFileCopy &operator=(const SafeFileCopy &) = delete;

    /**
     * Checks the source (a regular file or a symbolic link), creates missing target folders
     * and looks at the target. Fails for a missing or special source, a target that is a
     * folder, a name too long, or a target that is the source itself.
     */
    bool prepare();
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
        MustNotExist, ///< fail if anything is at the target now (it was moved away or new)
        Replace,      ///< replace whatever is there, atomically
    };
    /** Renames the temporary copy onto the target; the target folder is then flushed. */
    bool commit(Commit mode);
    /** Removes the temporary copy, if any. */
    void discard();

    bool wasCancelled() const { return m_cancelled; }
    /** Why the last step failed, as one sentence for the user. */
    QString errorString() const { return m_error; }

    /** The length limit of one name in a path, in bytes. */
    static constexpr int NameMax = 255;

private:
    bool fail(const QString &message);
    bool failErrno(const QString &what, int error);
    bool makeFolders(const QByteArray &folder);
    bool createTemporaryFile(int *fd);
    bool writeFileData(const Progress &progress);
    bool writeLink();
    bool copyData(int from, int to, qint64 size, const Progress &progress);
    bool copyRange(int from, int to, qint64 begin, qint64 end, const Progress &progress);
    bool checkSourceUnchanged(int from, const struct stat &before);

    QByteArray m_source;
    QByteArray m_target;
    QByteArray m_name;          // the target's last path component
    QByteArray m_temporaryName; // in the target folder; empty when there is none
    int m_folder = -1;          // the target folder, open for the *at() calls
    struct stat m_sourceStat {};
    qint64 m_sourceSize = 0;
    bool m_targetExists = false;
    bool m_cancelled = false;
    bool m_plainCopy = false; // copy_file_range refused: read and write instead
    QString m_error;
};
