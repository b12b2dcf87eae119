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
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

frmSelectDiff::frmSelectDiff(QWidget *parent)
    : ModalDialog(parent)
    , lblProgram(new QLabel(QStringLiteral("&Program:"), this))
    , txtDiff(new QLineEdit(this))
    , cmdBrowse(new QPushButton(QStringLiteral("&Browse..."), this))
    , lblProblem(new QLabel(this))
    , lblFound(new QLabel(QStringLiteral("Diff programs &found on this computer:"), this))
    , lstFound(new QListWidget(this))
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

    // The line stays even when empty, so that the dialog does not jump while typing.
    lblProblem->setWordWrap(true);
    lblProblem->setMinimumHeight(lblProblem->fontMetrics().lineSpacing());
    lblFound->setBuddy(lstFound);
    lstFound->setMaximumHeight(6 * lstFound->fontMetrics().height() + 8);

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(row);
    layout->addWidget(lblProblem);
    layout->addSpacing(4);
    layout->addWidget(lblFound);
    layout->addWidget(lstFound);
    layout->addSpacing(4);
    layout->addWidget(lblNote);
    layout->addStretch(1);
    layout->addWidget(buttons);
    setSizeGripEnabled(false);

    connect(cmdBrowse, &QPushButton::clicked, this, &frmSelectDiff::Browse);
    // Said while typing, so that a name that would leave Examine Differences disabled is
    // explained before it is saved.
    connect(txtDiff, &QLineEdit::textChanged, this, [this](const QString &text) {
        lblProblem->setText(text.isEmpty() ? QString() : DiffProgramProblem(text));
        // A reason that wraps needs more room than the dialog was given.
        if (sizeHint().height() > height())
            adjustSize();
    });
    // Selection, not the current item: tabbing into the list makes an item current without
    // choosing it, and must not replace what was typed.
    connect(lstFound, &QListWidget::itemSelectionChanged, this, [this] {
        const QList<QListWidgetItem *> chosen = lstFound->selectedItems();
        if (!chosen.isEmpty())
            txtDiff->setText(chosen.first()->data(Qt::UserRole).toString());
    });
    connect(lstFound, &QListWidget::itemDoubleClicked, this, [this](QListWidgetItem *item) {
        txtDiff->setText(item->data(Qt::UserRole).toString());
        cmdOK->click();
    });

    m_drops = new PathDropFilter(
        PathDropFilter::Accepts::File, [this](const QString &file) { txtDiff->setText(file); },
        this);
    m_drops->Attach(this);
}

void frmSelectDiff::ShowFound(const QList<FoundDiffProgram> &programs) {
    lstFound->clear();
    for (const FoundDiffProgram &program : programs) {
        auto *item = new QListWidgetItem(
            QIcon::fromTheme(program.iconName),
            QStringLiteral("%1 (%2)").arg(program.name, program.program), lstFound);
        item->setData(Qt::UserRole, program.program);
    }
    lstFound->setVisible(!programs.isEmpty());
    lblFound->setText(programs.isEmpty()
                          ? QStringLiteral("No diff program was found on this computer.")
                          : QStringLiteral("Diff programs &found on this computer:"));
    adjustSize();
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
