#include "tools/Synchronizer.h"

#include "engine/ComparisonFileCollection.h"
#include "engine/PathHelpers.h"
#include "tools/CopyJob.h"
#include "tools/CopyProgressDialog.h"
#include "tools/RowRecord.h"
#include "tools/SafeFileCopy.h"
#include "tools/frmSynchronizer.h"
#include "views/AddToListview.h"
#include "views/FileIconCache.h"
#include "views/ListView.h"

#include <QCheckBox>
#include <QLocale>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

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

ListItem AddToSynchronizer(const ComparisonFilePtr &file, ListView *lvwSync, ImageList *Images) {
    if (!file || !lvwSync)
        return {};
    if (!file->DetailsLoaded())
        file->UpdateDetails();
    if (!file->HasFileObject() || !IsValidFileObject(file->FileObject()))
        return {};
    ListItem row = lvwSync->AddItem(file->Key(), file->Name());
    if (!row)
        return {};
    row.setSubItems(1, RemoveBackslash(file->ParentFolder()));
    row.setRecord(file);
    if (Images) {
        // The listings' icon rule: one image per type, one per "exe" or "ico" file.
        const QString key = RecordIconKey(*file);
        FileIconCache::AddFileIcon(Images, file->NativePath(), key);
        if (!lvwSync->SmallIcons())
            lvwSync->setSmallIcons(Images);
        const int index = FileIconCache::ImageIndexOfKey(Images, key);
        row.setSmallIcon(index > 0 ? index : 1);
    }
    return row;
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

    const std::vector<bool> selected = fromListing->SelectedRows();
    for (size_t i = 0; i < selected.size(); ++i) {
        if (!selected[i])
            continue;
        const ListItem item = fromListing->Item(int(i) + 1);
        const ComparisonFilePtr file = RowRecord(item, from);
        if (!file || !file->HasFileObject() || !IsValidFileObject(file->FileObject()))
            continue; // the file does not exist on the from side
        const QByteArray target = SyncTarget(*file, from, to);
        if (target.isEmpty())
            continue;
        ListItem row = AddToSynchronizer(file, form->lvwFiles, form->ImageList1);
        if (!row)
            continue;
        CopyItem copyItem{file->NativePath(), target, from.RootFolderNative(),
                          to.RootFolderNative()};
        // The same checks the copy makes, without changing anything: the review tells what
        // will happen, a refusal included (the copy then reports it again).
        SafeFileCopy look(copyItem);
        if (look.look()) {
            copyItem.target = look.lookedTarget();
            row.setSubItems(2, look.targetExists() ? QStringLiteral("Copy (overwrite)")
                                                   : QStringLiteral("Copy (new)"));
        } else {
            row.setSubItems(2, QStringLiteral("Not copied: ") + look.errorString());
        }
        row.setSubItems(3, DisplayFromNative(copyItem.target));
        row.setTag(SyncOperationCode);
        form->SetCopyItem(row, copyItem);
    }

    const int count = form->lvwFiles->ItemCount();
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
