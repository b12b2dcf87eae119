#pragma once

#include "ModalDialog.h"

class QCheckBox;
class QLabel;
class QListWidget;
class QPushButton;

/**
 * The dialog that chooses a comparison set: one row per comparison, in the order the
 * comparisons run, and whether checksums run last. Changing that check box moves the
 * checksum row and stores the setting at once; Cancel restores the stored value.
 */
class frmComparisons : public ModalDialog {
    Q_OBJECT
public:
    /** Opens with the rows of \a comparisons selected. */
    explicit frmComparisons(int comparisons, QWidget *parent = nullptr);

    QLabel *lblPrompt;
    QListWidget *lstComparisons;
    QCheckBox *chkDoCRCLast;
    QPushButton *cmdOK;
    QPushButton *cmdCancel;

    /** The set of the selected rows (the OR of their comparison bits). */
    int Comparisons() const;

    void done(int result) override;

private:
    void FillList();
    void SelectComparisons(int comparisons);
    void chkDoCRCLast_Toggled(bool checked);

    bool m_savedDoCRCLast;
};
