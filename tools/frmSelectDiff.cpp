#include "tools/frmSelectDiff.h"

#include "tools/DiffProgram.h"
#include "tools/PathDropFilter.h"

#include <QDialogButtonBox>
#include <QEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

frmSelectDiff::frmSelectDiff(QWidget *parent)
    : ModalDialog(parent)
    , lblProgram(new QLabel(QStringLiteral("&Program:"), this))
    , txtDiff(new QLineEdit(this))
    , cmdBrowse(new QPushButton(QStringLiteral("&Browse..."), this))
    , cmdOK(new QPushButton(QStringLiteral("OK"), this))
    , cmdCancel(new QPushButton(QStringLiteral("Cancel"), this))
    , lblNote(new QLabel(
          QStringLiteral(
              "folder pairscope sends file information via the command line, source file first."),
          this)) {
    setObjectName(QStringLiteral("frmSelectDiff"));
    setWindowTitle(QStringLiteral("Select Diff Program"));
    lblProgram->setBuddy(txtDiff);
    lblNote->setWordWrap(true);
    txtDiff->setMinimumWidth(300);
    cmdOK->setDefault(true);

    // The box sits 4 pixels right of its label and ends 6 pixels before the browse button.
    QBoxLayout *row = PathRow(lblProgram, txtDiff, cmdBrowse);
    QDialogButtonBox *buttons = OkCancelButtons(cmdOK, cmdCancel);

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(row);
    layout->addSpacing(4);
    layout->addWidget(lblNote);
    layout->addStretch(1);
    layout->addWidget(buttons);
    setSizeGripEnabled(false);

    connect(cmdBrowse, &QPushButton::clicked, this, &frmSelectDiff::Browse);

    m_drops = new PathDropFilter(
        PathDropFilter::Accepts::File, [this](const QString &file) { txtDiff->setText(file); },
        this);
    m_drops->Attach(this);
}

void frmSelectDiff::Browse() {
    const QString chosen =
        QFileDialog::getOpenFileName(this, QStringLiteral("Select Diff Program"), txtDiff->text(),
                                     QStringLiteral("All Files (*)"));
    if (!chosen.isEmpty()) {
        if (IsDiffProgram(chosen))
            txtDiff->setText(chosen);
        else
            QMessageBox::warning(this, QStringLiteral("Pairscope"),
                                 QStringLiteral("“%1” is not a program that can be started.")
                                     .arg(QFileInfo(chosen).fileName()));
    }
    if (txtDiff->isEnabled())
        txtDiff->setFocus();
}

bool frmSelectDiff::event(QEvent *event) {
    if (event->type() == QEvent::WindowActivate && !m_activated) {
        m_activated = true;
        if (txtDiff->isEnabled())
            txtDiff->setFocus();
    }
    return ModalDialog::event(event);
}
