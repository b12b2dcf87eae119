#pragma once

#include "tools/CopyJob.h"
#include "tools/ModalDialog.h"

#include <vector>

class ImageList;
class QCheckBox;
class QLabel;
class QPushButton;
class QStatusBar;
class QTreeWidget;
class QTreeWidgetItem;

/**
 * The copy review: one row per file with its name, folder, action ("Copy (new)" or
 * "Copy (overwrite)") and destination; "Prompt before overwriting"; Copy and Cancel. A click
 * on a column header sorts by it, a second click on the same header reverses the order; the
 * files are copied in the order shown. The dialog is resizable down to a minimum size.
 */
class frmSynchronizer : public ModalDialog {
    Q_OBJECT

public:
    /** The columns of the review list. */
    enum Column { NameColumn, FolderColumn, ActionColumn, DestinationColumn };

    explicit frmSynchronizer(QWidget *parent = nullptr);

    QTreeWidget *lvwFiles;
    QCheckBox *chkPrompt;
    QPushButton *cmdOK;
    QPushButton *cmdCancel;
    QStatusBar *StatusBar1;
    ImageList *ImageList1;

    /** Empties the list for the next use; the check box and the sort order stay. */
    void Clear();
    /** Appends a row for the copy \a item, with the operation code \a tag; returns it. */
    QTreeWidgetItem *AddRow(const QString &name, const QString &folder, const CopyItem &item,
                            int tag);
    /** The text in the status bar. */
    QString StatusText() const;
    void SetStatusText(const QString &text);

    /**
     * The copy list: for every row whose tag is \a operationCode, in the order the rows are
     * shown now, the file's real path and its target.
     */
    std::vector<CopyItem> CopyList(int operationCode) const;

    /** Sorts by \a column, or reverses the order when it is already the sort column. */
    void SortByColumn(int column);

protected:
    bool event(QEvent *event) override;

private:
    QLabel *m_status;
    /** What each row copies (real paths and roots), by the index a row holds. */
    std::vector<CopyItem> m_items;
    bool m_activated = false;
};
