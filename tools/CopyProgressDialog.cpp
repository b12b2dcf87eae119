#include "tools/CopyProgressDialog.h"

#include <QApplication>
#include <QFile>
#include <QFontMetrics>
#include <QLocale>
#include <QMessageBox>

#include <algorithm>

namespace {

QString shownName(const QByteArray &path) {
    return QFile::decodeName(path.mid(path.lastIndexOf('/') + 1));
}

QString shownFolder(const QByteArray &path) {
    const qsizetype slash = path.lastIndexOf('/');
    return QFile::decodeName(slash > 0 ? path.left(slash) : QByteArray("/"));
}

ReplaceAnswer answerOf(int button) {
    switch (button) {
    case QMessageBox::Yes:
        return ReplaceAnswer::Yes;
    case QMessageBox::YesToAll:
        return ReplaceAnswer::YesToAll;
    case QMessageBox::No:
        return ReplaceAnswer::No;
    default:
        return ReplaceAnswer::Cancel;
    }
}

// The summary lists every file in its details, but only this many in the box itself.
constexpr int ListedInBox = 8;

constexpr QMessageBox::StandardButtons AllAnswers =
    QMessageBox::Yes | QMessageBox::YesToAll | QMessageBox::No | QMessageBox::Cancel;

// The widest a name or folder may be in the progress window: the window keeps its size and
// its Cancel button on screen whatever the names.
constexpr int NameWidth = 420;

} // namespace

CopyProgressDialog::CopyProgressDialog(const CopyJob &job, QWidget *parent)
    : QProgressDialog(parent)
    , m_job(job) {
    setWindowTitle(QStringLiteral("Pairscope"));
    setWindowModality(Qt::WindowModal);
    setAutoClose(false);
    setAutoReset(false);
    setRange(0, 1000);
    setMinimumDuration(400);
    setMinimumWidth(460);
    setCancelButtonText(QStringLiteral("Cancel"));
    setLabelText(QStringLiteral("Preparing to copy..."));
}

std::vector<CopyOutcome> CopyProgressDialog::RunCopyJob(QWidget *parent, CopyJob &job) {
    CopyProgressDialog dialog(job, parent);
    dialog.m_sinceEvents.start();
    dialog.m_sincePaint.start();
    dialog.setValue(0);
    const std::vector<CopyOutcome> outcomes = job.run(dialog);
    dialog.hide();

    QString details;
    const QString summary = SummaryText(job, outcomes, &details);
    if (!summary.isEmpty()) {
        QMessageBox box(QMessageBox::Warning, QStringLiteral("Pairscope"), summary, QMessageBox::Ok,
                        parent);
        if (!details.isEmpty())
            box.setDetailedText(details);
        box.exec();
    }
    return outcomes;
}

QString CopyProgressDialog::SummaryText(const CopyJob &job,
                                        const std::vector<CopyOutcome> &outcomes,
                                        QString *details) {
    const QLocale locale;
    int copied = 0;
    QStringList lines;
    for (size_t i = 0; i < outcomes.size(); ++i) {
        if (outcomes[i].status == CopyOutcome::Copied) {
            ++copied;
            if (outcomes[i].message.isEmpty())
                continue; // a copy with a note (permissions not kept) is listed
        }
        if (outcomes[i].status == CopyOutcome::NotCopied && lines.size() >= ListedInBox)
            continue; // after a cancel, the files never reached are counted, not listed
        lines.append(QStringLiteral("%1: %2").arg(QFile::decodeName(job.items()[i].target),
                                                  outcomes[i].message));
    }
    if (copied == int(outcomes.size()) && lines.isEmpty())
        return QString();
    const int notCopied = int(outcomes.size()) - copied;
    QString text = job.wasCancelled() ? QStringLiteral("The copy was cancelled. ") : QString();
    const QString copiedOfAll =
        QStringLiteral("%1 of %2 files copied")
            .arg(locale.toString(copied), locale.toString(int(outcomes.size())));
    text += notCopied > 0
                ? copiedOfAll + QStringLiteral("; %1 not copied:").arg(locale.toString(notCopied))
                : copiedOfAll + QStringLiteral(", with notes:");
    text += QStringLiteral("\n\n") + lines.mid(0, ListedInBox).join(QLatin1Char('\n'));
    if (lines.size() > ListedInBox || notCopied > lines.size())
        text += QStringLiteral("\n...");
    if (details)
        *details = lines.size() > ListedInBox ? lines.join(QLatin1Char('\n')) : QString();
    return text;
}

ReplaceAnswer CopyProgressDialog::ask(QMessageBox::Icon icon, const QString &text,
                                      QMessageBox::StandardButtons buttons,
                                      QMessageBox::StandardButton defaultButton) {
    // The question is the progress window's child, and that window is shown first: were it
    // to appear later (its own timer shows it), it would cover the question and take the
    // keyboard, and Enter would press its Cancel.
    forceShow();
    QMessageBox box(icon, QStringLiteral("Pairscope"), text, buttons, this);
    box.setDefaultButton(defaultButton);
    box.setEscapeButton(QMessageBox::Cancel);
    const ReplaceAnswer answer = answerOf(box.exec());
    m_sinceEvents.restart();
    return answer;
}

ReplaceAnswer CopyProgressDialog::askReplace(const CopyItem &item) {
    return ask(QMessageBox::Question,
               QStringLiteral("“%1” already exists in “%2”.\n\nReplace it? The file it replaces "
                              "goes to the trash.")
                   .arg(shownName(item.target), shownFolder(item.target)),
               AllAnswers, QMessageBox::Yes);
}

ReplaceAnswer CopyProgressDialog::askReplaceWithoutTrash(const CopyItem &item,
                                                         const QString &reason) {
    return ask(QMessageBox::Warning,
               QStringLiteral("“%1” in “%2” could not be moved to the trash:\n%3\n\nReplace it "
                              "for good? It cannot be restored afterwards.")
                   .arg(shownName(item.target), shownFolder(item.target), reason),
               AllAnswers, QMessageBox::No);
}

ReplaceAnswer CopyProgressDialog::askReplaceAllWithoutTrash(const QList<CopyItem> &items,
                                                            const QStringList &reasons) {
    QStringList lines;
    for (qsizetype i = 0; i < items.size() && i < ListedInBox; ++i)
        lines.append(
            QStringLiteral("“%1” in “%2”: %3")
                .arg(shownName(items[i].target), shownFolder(items[i].target), reasons[i]));
    if (items.size() > ListedInBox)
        lines.append(QStringLiteral("..."));
    return ask(QMessageBox::Warning,
               QStringLiteral("%1 of the files to be replaced cannot be moved to the trash:\n%2\n\n"
                              "Replace them for good? They cannot be restored afterwards. No "
                              "keeps them and copies the rest.")
                   .arg(QLocale().toString(int(items.size())), lines.join(QLatin1Char('\n'))),
               QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::No);
}

bool CopyProgressDialog::progress(const CopyProgress &progress) {
    // Painting every chunk would cost more than copying it: at most every 30 ms, and always
    // when a new file starts.
    if (progress.current != m_shownItem || m_sincePaint.hasExpired(30)) {
        ShowProgress(progress);
        m_sincePaint.restart();
    }
    if (m_sinceEvents.hasExpired(10)) {
        QApplication::processEvents();
        m_sinceEvents.restart();
    }
    return !wasCanceled();
}

void CopyProgressDialog::ShowProgress(const CopyProgress &progress) {
    const QLocale locale;
    m_shownItem = progress.current;
    int value = 1000;
    if (progress.bytesTotal > 0)
        value = int(progress.bytesDone * 1000 / progress.bytesTotal);
    else if (progress.filesTotal > 0)
        value = progress.filesDone * 1000 / progress.filesTotal;
    QString text;
    if (progress.current >= 0 && progress.current < int(m_job.items().size())) {
        const CopyItem &item = m_job.items()[size_t(progress.current)];
        const QFontMetrics metrics(font());
        text = QStringLiteral("Copying “%1”\nto “%2”\n\n")
                   .arg(metrics.elidedText(shownName(item.source), Qt::ElideMiddle, NameWidth),
                        metrics.elidedText(shownFolder(item.target), Qt::ElideMiddle, NameWidth));
    }
    text += QStringLiteral("%1 of %2 files, %3 of %4")
                .arg(locale.toString(progress.filesDone), locale.toString(progress.filesTotal),
                     locale.formattedDataSize(progress.bytesDone),
                     locale.formattedDataSize(progress.bytesTotal));
    setLabelText(text);
    setValue(std::clamp(value, 0, 1000));
}
