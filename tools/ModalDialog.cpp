#include "ModalDialog.h"

#include "GeneralHelpers.h"

ModalDialog::ModalDialog(QWidget *parent)
    : QDialog(parent) {}

bool ModalDialog::ShowOver(QWidget *owner) {
    m_cancelled = false;
    ApplyMessageFont(this);
    CenterOverWindow(this, owner);
    SetTopmost(this, IsTopmost(owner));
    exec();
    return !m_cancelled;
}

void ModalDialog::done(int result) {
    // Every way out passes here: OK accepts, while Cancel, Escape and the close box reject.
    m_cancelled = result != QDialog::Accepted;
    QDialog::done(result);
}
