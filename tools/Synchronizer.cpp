#include "tools/Synchronizer.h"

#include "engine/ComparisonFileCollection.h"
#include "engine/PathHelpers.h"
#include "tools/CopyJob.h"
#include "tools/CopyProgressDialog.h"
#include "tools/SafeFileCopy.h"
#include "tools/frmSynchronizer.h"
#include "views/FileIconCache.h"
#include "views/ImageList.h"
#include "views/ListView.h"

#include <QCheckBox>
#include <QLocale>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTreeWidget>

namespace {

/** The review dialog is made once and kept, so "Prompt before overwriting" lasts until exit. */
frmSynchronizer *reviewDialog(QWidget *owner) {
    static QPointer<frmSynchronizer> form;
    if (!form)
        form = new frmSynchronizer(owner);
    return form;
}

} // namespace

QByteArray SyncTarget(const ComparisonFile &file, const ComparisonFileCollection &from,
                      const ComparisonFileCollection &to) {
    if (const ComparisonFilePtr counterpart = to.Counterpart(file, from);
        counterpart && counterpart->HasFileObject())
        return counterpart->NativePath();
    QByteArray root = to.RootFolderNative();
    if (root.isEmpty())
        return {};
    // The path below the root, put below the other root: the root is replaced once, at the
    // start, whatever the rest of the path contains.
    if (!root.endsWith('/'))
        root += '/';
    return root + file.RelativeNativePath();
}

QString SyncCountText(int count) {
    return QStringLiteral("  ") + QLocale().toString(count) +
           (count == 1 ? QStringLiteral(" file to copy.") : QStringLiteral(" files to copy."));
}

void ShowSynchronizer(QWidget *owner, SyncDirection direction, ListView *fromListing,
                      const ComparisonFileCollection &from, const ComparisonFileCollection &to) {
    if (!fromListing)
        return;
    frmSynchronizer *form = reviewDialog(owner);
    form->setWindowTitle(direction == SyncDirection::ToDestination
                             ? QStringLiteral("copy to destination")
                             : QStringLiteral("copy to source"));
    form->cmdOK->setText(QStringLiteral("&Copy"));
    form->Clear();

    for (const ComparisonFilePtr &file : fromListing->selectedRecords()) {
        if (!file->DetailsLoaded())
            file->UpdateDetails();
        if (!file->HasFileObject() || !IsValidFileObject(file->FileObject()))
            continue; // the file does not exist on the from side
        const QByteArray target = SyncTarget(*file, from, to);
        if (target.isEmpty())
            continue;
        CopyItem copyItem{file->NativePath(), target, from.RootFolderNative(),
                          to.RootFolderNative()};
        // The same checks the copy makes, without changing anything: the review tells what
        // will happen, a refusal included (the copy then reports it again).
        SafeFileCopy look(copyItem);
        QString action;
        if (look.look()) {
            copyItem.target = look.lookedTarget();
            action = look.targetExists() ? QStringLiteral("Copy (overwrite)")
                                         : QStringLiteral("Copy (new)");
        } else {
            action = QStringLiteral("Not copied: ") + look.errorString();
        }
        QTreeWidgetItem *row = form->AddRow(file->Name(), RemoveTrailingSlash(file->ParentFolder()),
                                            copyItem, SyncOperationCode);
        row->setText(frmSynchronizer::ActionColumn, action);
        row->setText(frmSynchronizer::DestinationColumn, DisplayFromNative(copyItem.target));
        // The listings' icon rule: one image per type, one per "exe" or "ico" file.
        const QString key = FileIconCache::RecordIconKey(*file);
        FileIconCache::AddFileIcon(form->ImageList1, file->NativePath(), key);
        row->setIcon(frmSynchronizer::NameColumn,
                     form->ImageList1->Icon(
                         std::max(1, FileIconCache::ImageIndexOfKey(form->ImageList1, key))));
    }

    const int count = form->lvwFiles->topLevelItemCount();
    if (count == 0) {
        QMessageBox::information(owner, QStringLiteral("Pairscope"),
                                 QStringLiteral("No files to copy."));
        return;
    }
    form->SetStatusText(SyncCountText(count));
    if (!form->ShowOver(owner))
        return;

    CopyJob job(form->CopyList(SyncOperationCode));
    job.setPromptBeforeOverwriting(form->chkPrompt->isChecked());
    CopyProgressDialog::RunCopyJob(owner, job);
}
