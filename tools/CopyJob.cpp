#include "tools/CopyJob.h"

#include "tools/DesktopTrash.h"
#include "tools/SafeFileCopy.h"

#include <QHash>

#include <cerrno>
#include <sys/stat.h>

namespace {

/** The bytes a file adds to the total: a link counts the length of its text. */
qint64 countedSize(const QByteArray &path) {
    struct stat st {};
    if (::lstat(path.constData(), &st) != 0)
        return 0;
    return S_ISREG(st.st_mode) || S_ISLNK(st.st_mode) ? qint64(st.st_size) : 0;
}

/** True when a file (not a folder) is at \a path now. */
bool fileAt(const QByteArray &path) {
    struct stat st {};
    return ::lstat(path.constData(), &st) == 0 && !S_ISDIR(st.st_mode);
}

QByteArray folderOf(const QByteArray &path) {
    const qsizetype slash = path.lastIndexOf('/');
    return slash > 0 ? path.left(slash) : QByteArray("/");
}

} // namespace

CopyJob::CopyJob(std::vector<CopyItem> items)
    : m_items(std::move(items)) {}

std::vector<CopyOutcome> CopyJob::run(CopyObserver &observer) {
    m_cancelled = false;
    m_replaceAll = false;
    m_replaceWithoutTrashAll = false;
    std::vector<CopyOutcome> outcomes(m_items.size());
    std::vector<qint64> sizes;
    sizes.reserve(m_items.size());
    m_progress = CopyProgress{};
    for (const CopyItem &item : m_items) {
        sizes.push_back(countedSize(item.source));
        m_progress.bytesTotal += sizes.back();
    }
    m_progress.filesTotal = int(m_items.size());

    qint64 bytesBefore = 0;
    m_cancelled = !askAboutUntrashable(observer);
    for (int i = 0; i < int(m_items.size()) && !m_cancelled; ++i) {
        m_progress.current = i;
        if (!observer.progress(m_progress)) {
            m_cancelled = true;
            break;
        }
        if (!copyOne(i, observer, outcomes[size_t(i)]))
            break;
        // The total was counted before copying: a file that grew, shrank or failed still
        // moves the display by what was counted for it, so the bar ends at its end.
        bytesBefore += sizes[size_t(i)];
        m_progress.bytesDone = bytesBefore;
        m_progress.filesDone = i + 1;
    }
    m_progress.current = -1;
    if (!m_cancelled)
        observer.progress(m_progress);
    for (CopyOutcome &outcome : outcomes) {
        if (outcome.status == CopyOutcome::NotCopied && outcome.message.isEmpty())
            outcome.message = QStringLiteral("Not copied: the copy was cancelled.");
    }
    return outcomes;
}

bool CopyJob::askAboutUntrashable(CopyObserver &observer) {
    // One question before the first file, instead of two per file while copying.
    m_untrashable.assign(m_items.size(), false);
    QList<CopyItem> items;
    QStringList reasons;
    QHash<QByteArray, QString> refusals; // per folder: one look at the trash each
    for (size_t i = 0; i < m_items.size(); ++i) {
        if (!fileAt(m_items[i].target))
            continue;
        const QByteArray folder = folderOf(m_items[i].target);
        if (!refusals.contains(folder)) {
            QString reason;
            refusals.insert(folder, DesktopTrash::canTrash(folder, &reason) ? QString() : reason);
        }
        if (refusals.value(folder).isEmpty())
            continue;
        m_untrashable[i] = true;
        items.append(m_items[i]);
        reasons.append(refusals.value(folder));
    }
    m_untrashableAnswer =
        items.isEmpty() ? ReplaceAnswer::No : observer.askReplaceAllWithoutTrash(items, reasons);
    return m_untrashableAnswer != ReplaceAnswer::Cancel;
}

bool CopyJob::copyOne(int index, CopyObserver &observer, CopyOutcome &outcome) {
    const CopyItem &item = m_items[size_t(index)];
    SafeFileCopy copy(item);
    if (!copy.prepare()) {
        outcome = {CopyOutcome::Failed, copy.errorString()};
        return true;
    }
    const bool untrashable = copy.targetExists() && m_untrashable[size_t(index)];
    if (untrashable && m_untrashableAnswer != ReplaceAnswer::Yes) {
        outcome = {CopyOutcome::Skipped,
                   QStringLiteral("Kept the existing file: it cannot be moved to the trash.")};
        return true;
    }
    // Asked before any data moves, so that No costs nothing; a file already agreed to be
    // replaced for good is not asked about again.
    if (copy.targetExists() && m_prompt && !m_replaceAll && !untrashable) {
        switch (observer.askReplace(item)) {
        case ReplaceAnswer::Yes:
            break;
        case ReplaceAnswer::YesToAll:
            m_replaceAll = true;
            break;
        case ReplaceAnswer::No:
            outcome = {CopyOutcome::Skipped, QStringLiteral("Kept the existing file.")};
            return true;
        case ReplaceAnswer::Cancel:
            m_cancelled = true;
            return false;
        }
    }

    const qint64 base = m_progress.bytesDone;
    const bool written = copy.writeTemporary([&](qint64 done) {
        m_progress.bytesDone = base + done;
        return observer.progress(m_progress);
    });
    if (!written) {
        if (copy.wasCancelled()) {
            m_cancelled = true;
            return false;
        }
        outcome = {CopyOutcome::Failed, copy.errorString()};
        return true;
    }
    const auto mode =
        copy.targetExists() ? SafeFileCopy::Commit::Replace : SafeFileCopy::Commit::MustNotExist;
    if (!copy.commit(mode)) {
        outcome = {CopyOutcome::Failed, copy.errorString()};
        return true;
    }
    outcome = {CopyOutcome::Copied, copy.note()};
    if (!copy.hasReplaced())
        return true;
    if (untrashable) {
        copy.dropReplaced(); // agreed up front
        return true;
    }
    return disposeOfReplaced(index, copy, observer, outcome);
}

bool CopyJob::disposeOfReplaced(int index, SafeFileCopy &copy, CopyObserver &observer,
                                CopyOutcome &outcome) {
    // The new file is in place already; the old one goes to the trash only now, so a crash
    // at any moment leaves a target (the old one is then kept aside under a name no compare
    // lists).
    QString reason;
    if (copy.trashReplaced(&reason))
        return true;
    ReplaceAnswer answer = ReplaceAnswer::YesToAll;
    if (!m_replaceWithoutTrashAll)
        answer = observer.askReplaceWithoutTrash(m_items[size_t(index)], reason);
    switch (answer) {
    case ReplaceAnswer::YesToAll:
        m_replaceWithoutTrashAll = true;
        [[fallthrough]];
    case ReplaceAnswer::Yes:
        copy.dropReplaced();
        return true;
    case ReplaceAnswer::No:
    case ReplaceAnswer::Cancel:
        if (!copy.restoreReplaced()) {
            outcome = {CopyOutcome::Failed, copy.errorString()};
        } else {
            outcome = {CopyOutcome::Skipped,
                       QStringLiteral("Kept the existing file: it could not be moved to the "
                                      "trash (%1).")
                           .arg(reason)};
        }
        m_cancelled = answer == ReplaceAnswer::Cancel;
        return !m_cancelled;
    }
    return true;
}
