#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <vector>

class SafeFileCopy;

/**
 * One file to copy: its source and its full target path, both native bytes, and the roots of
 * the two trees: nothing is read outside the source root nor written outside the target root.
 */
struct CopyItem {
    QByteArray source;
    QByteArray target;
    QByteArray sourceRoot;
    QByteArray targetRoot;
};

/** The user's answer to "Replace?". */
enum class ReplaceAnswer { Yes, YesToAll, No, Cancel };

/** Where the copy job stands, for a progress display. */
struct CopyProgress {
    qint64 bytesDone = 0;
    qint64 bytesTotal = 0;
    int filesDone = 0;
    int filesTotal = 0;
    int current = -1; ///< index of the item being copied
};

/** What happened to one item. */
struct CopyOutcome {
    enum Status {
        NotCopied, ///< not reached: the job was cancelled before it
        Copied,
        Skipped, ///< the user chose not to replace the target
        Failed,  ///< see message
    };
    Status status = NotCopied;
    QString message; ///< why it was not copied, or a note on a copy (permissions not kept)
};

/**
 * The copy job's questions and progress, answered by a dialog in the program and by a script
 * in the tests. Every call comes from the thread that runs the job.
 */
class CopyObserver {
public:
    virtual ~CopyObserver() = default;
    /** Asked before an existing target is replaced, when prompting is on. */
    virtual ReplaceAnswer askReplace(const CopyItem &item) = 0;
    /**
     * Asked when the old target could not be moved to the trash: Yes replaces it for good,
     * Yes to All does so for every later file the trash refuses, No keeps it.
     */
    virtual ReplaceAnswer askReplaceWithoutTrash(const CopyItem &item, const QString &reason) = 0;
    /**
     * Asked once, before anything is copied, about the existing targets that cannot go to the
     * trash (each with the reason): Yes replaces them for good without asking again, No keeps
     * them, Cancel copies nothing.
     */
    virtual ReplaceAnswer askReplaceAllWithoutTrash(const QList<CopyItem> &items,
                                                    const QStringList &reasons) = 0;
    /** Called often while copying; returning false cancels the job. */
    virtual bool progress(const CopyProgress &progress) = 0;
};

/**
 * Copies many files, each to its own target path, in the given order. Each file is copied
 * safely (see SafeFileCopy); an existing target is exchanged with its copy and then moved to
 * the trash, so there is never a moment without a target.
 * An error on one file is recorded for it and the job goes on with the next; Cancel stops it
 * with no partial file left anywhere.
 */
class CopyJob {
public:
    explicit CopyJob(std::vector<CopyItem> items);

    /** Whether to ask before replacing an existing target. Default true. */
    void setPromptBeforeOverwriting(bool prompt) { m_prompt = prompt; }

    /** Runs the job; returns one outcome per item, in the items' order. */
    std::vector<CopyOutcome> run(CopyObserver &observer);
    /** True when the last run was cancelled by the observer or the user. */
    bool wasCancelled() const { return m_cancelled; }

    const std::vector<CopyItem> &items() const { return m_items; }

private:
    /** Asks once about the targets the trash will refuse; false when the job is cancelled. */
    bool askAboutUntrashable(CopyObserver &observer);
    /** Copies one item; false when the whole job is to stop. */
    bool copyOne(int index, CopyObserver &observer, CopyOutcome &outcome);
    /** Disposes of the target \a copy replaced; false when the whole job is to stop. */
    bool disposeOfReplaced(int index, SafeFileCopy &copy, CopyObserver &observer,
                           CopyOutcome &outcome);

    std::vector<CopyItem> m_items;
    CopyProgress m_progress;
    bool m_prompt = true;
    bool m_replaceAll = false;
    bool m_replaceWithoutTrashAll = false;
    /** The items whose target the trash refuses, and the answer given for them up front. */
    std::vector<bool> m_untrashable;
    ReplaceAnswer m_untrashableAnswer = ReplaceAnswer::No;
    bool m_cancelled = false;
};
