#pragma once

#include "tools/ModalDialog.h"

class PathDropFilter;
class QLabel;
class QLineEdit;
class QPushButton;

/**
 * The dialog that names the external diff program: a text box, a browse button, the note
 * on how the files are handed over, OK and Cancel. A file dropped on any part of it becomes
 * the text; a dropped folder or a name that does not exist is refused.
 */
class frmSelectDiff : public ModalDialog {
    Q_OBJECT

public:
    explicit frmSelectDiff(QWidget *parent = nullptr);

    QLabel *lblProgram;
    QLineEdit *txtDiff;
    QPushButton *cmdBrowse;
    QPushButton *cmdOK;
    QPushButton *cmdCancel;
    QLabel *lblNote;

    /**
     * Lets the user pick the program in a file dialog that starts at the text box's path;
     * only an executable file is taken. A cancel leaves the text as it was.
     */
    void Browse();

    /** The drop rule of the dialog (for its callers' tests). */
    PathDropFilter *Drops() const { return m_drops; }

protected:
    bool event(QEvent *event) override;

private:
    PathDropFilter *m_drops;
    bool m_activated = false;
};
