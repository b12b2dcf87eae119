#include "ModalDialog.h"

#include "GeneralHelpers.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

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

QBoxLayout *ModalDialog::PathRow(QLabel *label, QWidget *box, QPushButton *browse) {
    auto *row = new QHBoxLayout;
    row->setSpacing(0);
    row->addWidget(label);
    row->addSpacing(4);
    row->addWidget(box, 1);
    row->addSpacing(6);
    row->addWidget(browse);
    return row;
}

QDialogButtonBox *ModalDialog::OkCancelButtons(QPushButton *ok, QPushButton *cancel) {
    auto *buttons = new QDialogButtonBox(this);
    buttons->addButton(ok, QDialogButtonBox::AcceptRole);
    buttons->addButton(cancel, QDialogButtonBox::RejectRole);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    return buttons;
}
