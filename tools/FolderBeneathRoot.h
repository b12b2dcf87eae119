#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

/**
 * A folder below a root the user chose, opened without following a symbolic link in any
 * folder of the path, so that a link planted in a tree can never lead a copy outside it. The
 * root itself may be reached through a link (the user named it); below it, a link is refused.
 * A root that no longer exists is refused too: it is never created again.
 */
class FolderBeneathRoot {
public:
    /** What to do about folders of the path that do not exist. */
    enum class Mode {
        Open,   ///< they are an error
        Look,   ///< they are fine (they would be created); nothing is changed on disk
        Create, ///< they are created; removeCreated() takes them away again
    };
    /** Why open() failed. */
    enum class Refusal { None, RootGone, Link, NotFolder, Missing, LeavesRoot, System };

    FolderBeneathRoot() = default;
    ~FolderBeneathRoot();
    FolderBeneathRoot(const FolderBeneathRoot &) = delete;
    FolderBeneathRoot &operator=(const FolderBeneathRoot &) = delete;

    /**
     * Opens \a relative (folders separated by '/', empty for the root itself) below \a root.
     * In Look mode with folders missing, succeeds with fd() -1 and missingFolders() true.
     */
    bool open(const QByteArray &root, const QByteArray &relative, Mode mode);

    /** The open folder, for the *at() calls; -1 when it does not exist yet (Look). */
    int fd() const { return m_fd; }
    bool missingFolders() const { return m_missing; }
    /**
     * After open() in Look mode: \a relative as the disk spells it. Where a folder resolves
     * names without regard to case, an existing folder's own spelling replaces the one asked
     * for, so that what is shown is where the file will go.
     */
    QByteArray spelledRelative() const { return m_spelled; }

    Refusal refusal() const { return m_refusal; }
    /** Why open() failed, as one sentence for the user. */
    QString errorString() const { return m_error; }

    /** Removes the folders open() created, deepest first, as far as they are still empty. */
    void removeCreated();

private:
    bool fail(Refusal refusal, const QString &message);
    bool walk(const QByteArray &root, const QByteArray &relative, Mode mode, int rootFd);
    /** The name under which \a parent stores the entry found as \a name (same inode). */
    static QByteArray storedSpelling(int parent, const QByteArray &name, int child);

    int m_fd = -1;
    bool m_missing = false;
    QByteArray m_spelled;
    Refusal m_refusal = Refusal::None;
    QString m_error;
    /** The parent of each folder open() created and the folder's name, in creation order. */
    std::vector<std::pair<int, QByteArray>> m_created;
};
