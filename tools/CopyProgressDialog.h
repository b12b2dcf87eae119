#pragma once

#include "tools/CopyJob.h"

#include <QElapsedTimer>
#include <QMessageBox>
#include <QProgressDialog>

/**
 * The one progress window of a copy: bytes and files of the whole job, the file being copied
 * (long names shortened in the middle), and Cancel. It asks the job's questions ("Replace?",
 * "Replace for good?") in message boxes that are its children, so they are always above it
 * and have the keyboard, and shows a summary of the errors and notes at the end.
 */
class CopyProgressDialog : public QProgressDialog, public CopyObserver {
    Q_OBJECT

public:
    /** A progress window for \a job, which must outlive it. */
    explicit CopyProgressDialog(const CopyJob &job, QWidget *parent = nullptr);

    /**
     * Runs \a job under a progress window owned by \a parent, then shows the summary when
     * anything was not copied. Returns the outcomes.
     */
    static std::vector<CopyOutcome> RunCopyJob(QWidget *parent, CopyJob &job);

    /**
     * The summary of a finished job, "" when every file was copied: how many were copied and,
     * one per line, each file that was not with the reason.
     */
    static QString SummaryText(const CopyJob &job, const std::vector<CopyOutcome> &outcomes,
                               QString *details);

    ReplaceAnswer askReplace(const CopyItem &item) override;
    ReplaceAnswer askReplaceWithoutTrash(const CopyItem &item, const QString &reason) override;
    ReplaceAnswer askReplaceAllWithoutTrash(const QList<CopyItem> &items,
                                            const QStringList &reasons) override;
    bool progress(const CopyProgress &progress) override;

private:
    void ShowProgress(const CopyProgress &progress);
    ReplaceAnswer ask(QMessageBox::Icon icon, const QString &text,
                      QMessageBox::StandardButtons buttons,
                      QMessageBox::StandardButton defaultButton);

    const CopyJob &m_job;
    QElapsedTimer m_sinceEvents;
    QElapsedTimer m_sincePaint;
    int m_shownItem = -2;
};
