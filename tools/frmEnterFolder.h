#pragma once

#include "ModalDialog.h"

class PathDropFilter;
class QComboBox;
class QLabel;
class QPushButton;

/**
 * The small dialog for typing a folder: an editable combo (recent folders in its list), a
 * browse button and OK/Cancel. A folder dropped on any part of it becomes its text; a
 * dropped file is refused.
 */
class frmEnterFolder : public ModalDialog {
    Q_OBJECT
public:
    explicit frmEnterFolder(QWidget *parent = nullptr);

    QLabel *lblFolder;
    QComboBox *cboFolder;
    QPushButton *cmdBrowse;
    QPushButton *cmdOK;
    QPushButton *cmdCancel;

    /** Caption of the browser that cmdBrowse opens. */
    QString BrowseTitle;
    /** Prompt of the browser that cmdBrowse opens. */
    QString BrowsePrompt = QStringLiteral("Choose a folder");

    /** The folder text, without surrounding blanks. */
    QString Folder() const;
    /** Puts \a folder into the combo's text; \a recent become the combo's list. */
    void SetFolder(const QString &folder, const QStringList &recent = {});

    /** Runs the browser from the combo's text; its choice, if any, becomes the text. */
    void Browse();

protected:
    bool event(QEvent *event) override;

private:
    PathDropFilter *m_drops;
    bool m_activated = false;
};
