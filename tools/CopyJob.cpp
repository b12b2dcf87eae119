#include "tools/CopyJob.h"

#include "tools/DesktopTrash.h"
#include "tools/SafeFileCopy.h"

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

bool exists(const QByteArray &path) {
    struct stat st {};
    return ::lstat(path.constData(), &st) == 0 || errno != ENOENT;
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

bool CopyJob::copyOne(int index, CopyObserver &observer, CopyOutcome &outcome) {
    const CopyItem &item = m_items[size_t(index)];
    SafeFileCopy copy(item.source, item.target);
    if (!copy.prepare()) {
        outcome = {CopyOutcome::Failed, copy.errorString()};
        return true;
    }
    // Asked before any data moves, so that No costs nothing.
    if (copy.targetExists() && m_prompt && !m_replaceAll) {
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

    // The old file goes to the trash only now that its replacement is complete: a failed
    // copy leaves it untouched.
    SafeFileCopy::Commit mode = SafeFileCopy::Commit::MustNotExist;
    QString reason;
    if (copy.targetExists() && !DesktopTrash::moveToTrash(item.target, &reason) &&
        exists(item.target)) {
        ReplaceAnswer answer = ReplaceAnswer::YesToAll;
        if (!m_replaceWithoutTrashAll)
            answer = observer.askReplaceWithoutTrash(item, reason);
        switch (answer) {
        case ReplaceAnswer::YesToAll:
            m_replaceWithoutTrashAll = true;
            [[fallthrough]];
        case ReplaceAnswer::Yes:
            mode = SafeFileCopy::Commit::Replace;
            break;
        case ReplaceAnswer::No:
            outcome = {CopyOutcome::Skipped,
                       QStringLiteral("Kept the existing file: it could not be moved to the "
                                      "trash (%1).")
                           .arg(reason)};
            return true;
        case ReplaceAnswer::Cancel:
            m_cancelled = true;
            return false;
        }
    }
    if (!copy.commit(mode)) {
        outcome = {CopyOutcome::Failed, copy.errorString()};
        return true;
    }
    outcome = {CopyOutcome::Copied, {}};
    return true;
}
