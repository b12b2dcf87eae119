#pragma once

#include <QDialog>

class QBoxLayout;
class QDialogButtonBox;
class QLabel;
class QPushButton;

/**
 * The dialogs' common manners: OK clears Cancelled and hides the dialog; Cancel, Escape or
 * closing the window sets Cancelled and hides it. The caller shows the dialog with ShowOver(),
 * then reads Cancelled() and the controls.
 */
class ModalDialog : public QDialog {
    Q_OBJECT
public:
    explicit ModalDialog(QWidget *parent = nullptr);

    /** True when the dialog was last ended by Cancel or closed by the user. */
    bool Cancelled() const { return m_cancelled; }

    /**
     * Shows the dialog modally over \a owner: the message font applied, centred over the
     * owner's window, and in the topmost band exactly when that window is. Returns true when
     * the user chose OK.
     */
    bool ShowOver(QWidget *owner);

    void done(int result) override;

protected:
    /**
     * The path dialogs' row: \a label, then \a box 4 pixels to its right and stretching, then
     * \a browse 6 pixels after the box.
     */
    static QBoxLayout *PathRow(QLabel *label, QWidget *box, QPushButton *browse);
    /** \a ok and \a cancel in the desktop's button order, accepting and rejecting the dialog. */
    QDialogButtonBox *OkCancelButtons(QPushButton *ok, QPushButton *cancel);

private:
    bool m_cancelled = false;
};
