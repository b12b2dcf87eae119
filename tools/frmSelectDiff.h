#pragma once

#include "tools/DiffProgramFinder.h"
#include "tools/ModalDialog.h"

class PathDropFilter;
class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QPushButton;

/**
 * The dialog that names the external diff program: a text box (a path, or a name found on
 * PATH) that says below it why its text names no program, a browse button, the diff programs
 * found on this computer to pick from, the note on how the files are handed over, OK and
 * Cancel. A file dropped on any part of it becomes the text; a dropped folder or a name that
 * does not exist is refused.
 */
class frmSelectDiff : public ModalDialog {
    Q_OBJECT

public:
    explicit frmSelectDiff(QWidget *parent = nullptr);

    QLabel *lblProgram;
    QLineEdit *txtDiff;
    QPushButton *cmdBrowse;
    QLabel *lblProblem;
    QLabel *lblFound;
    QListWidget *lstFound;
    QPushButton *cmdOK;
    QPushButton *cmdCancel;
    QLabel *lblNote;

    /**
     * Lets the user pick the program in a file dialog that starts at the text box's path;
     * only an executable file is taken. A cancel leaves the text as it was.
     */
    void Browse();

    /**
     * Offers \a programs in the list: picking one puts its program into the text box, and a
     * double click also presses OK. With none, the list gives way to a line that says so.
     */
    void ShowFound(const QList<FoundDiffProgram> &programs);

    /** The drop rule of the dialog (for its callers' tests). */
    PathDropFilter *Drops() const { return m_drops; }

protected:
    bool event(QEvent *event) override;

private:
    PathDropFilter *m_drops;
    bool m_activated = false;
};
