#pragma once

#include "tools/CopyJob.h"
#include "tools/ModalDialog.h"
#include "views/ListView.h" // (ListItem needs ListView complete)

#include <QHash>

#include <vector>

class ColumnHeader;
class ImageList;
class ListView;
class QCheckBox;
class QLabel;
class QPushButton;
class QStatusBar;

/**
 * The copy review: one row per file with its name, folder, action ("Copy (new)" or
 * "Copy (overwrite)") and destination; "Prompt before overwriting"; Copy and Cancel. A click
 * on a column header sorts by it, a second click on the same header reverses the order; the
 * files are copied in the order shown. The dialog is resizable down to a minimum size.
 */
class frmSynchronizer : public ModalDialog {
    Q_OBJECT

public:
    explicit frmSynchronizer(QWidget *parent = nullptr);

    ListView *lvwFiles;
    QCheckBox *chkPrompt;
    QPushButton *cmdOK;
    QPushButton *cmdCancel;
    QStatusBar *StatusBar1;
    ImageList *ImageList1;

    /** Empties the list for the next use; the check box keeps its state. */
    void Clear();
    /** Records what \a row copies: real paths and roots ("Destination" shows its display form). */
    void SetCopyItem(const ListItem &row, const CopyItem &item);
    /** The text in the status bar. */
    QString StatusText() const;
    void SetStatusText(const QString &text);

    /**
     * The copy list: for every row whose Tag is \a operationCode, in the order the rows are
     * shown now, the file's real path and its target.
     */
    std::vector<CopyItem> CopyList(int operationCode) const;

    /** Sorts by \a column, or reverses the order when it is already the sort column. */
    void SortByColumn(const ColumnHeader *column);

protected:
    bool event(QEvent *event) override;

private:
    QLabel *m_status;
    QHash<QString, CopyItem> m_items;
    bool m_activated = false;
};
