#include "frmEnterFolder.h"

#include "BrowseForFolder.h"
#include "PathDropFilter.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

frmEnterFolder::frmEnterFolder(QWidget *parent)
    : ModalDialog(parent)
    , lblFolder(new QLabel(QStringLiteral("&Folder:"), this))
    , cboFolder(new QComboBox(this))
    , cmdBrowse(new QPushButton(QStringLiteral("&Browse..."), this))
    , cmdOK(new QPushButton(QStringLiteral("OK"), this))
    , cmdCancel(new QPushButton(QStringLiteral("Cancel"), this)) {
    cboFolder->setEditable(true);
    // Typing Enter must not add the text to the list; the list shows recent folders only.
    cboFolder->setInsertPolicy(QComboBox::NoInsert);
    cboFolder->setMinimumContentsLength(40);
    cboFolder->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    lblFolder->setBuddy(cboFolder);
    cmdOK->setDefault(true);

    // The box sits 4 pixels right of its label and ends 6 pixels before the browse button.
    QBoxLayout *row = PathRow(lblFolder, cboFolder, cmdBrowse);
    QDialogButtonBox *buttons = OkCancelButtons(cmdOK, cmdCancel);

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(row);
    layout->addStretch(1);
    layout->addWidget(buttons);
    setSizeGripEnabled(false);

    connect(cmdBrowse, &QPushButton::clicked, this, &frmEnterFolder::Browse);

    m_drops = new PathDropFilter(
        PathDropFilter::Accepts::Folder,
        [this](const QString &folder) { cboFolder->setEditText(folder); }, this);
    m_drops->Attach(this);
}

QString frmEnterFolder::Folder() const {
    return cboFolder->currentText().trimmed();
}

void frmEnterFolder::SetFolder(const QString &folder, const QStringList &recent) {
    cboFolder->clear();
    cboFolder->addItems(recent);
    cboFolder->setEditText(folder);
}

void frmEnterFolder::Browse() {
    BrowseForFolder browser;
    browser.Owner = this;
    browser.DialogTitle = BrowseTitle;
    browser.Prompt = BrowsePrompt;
    browser.SelectedFolder = Folder();
    if (browser.Browse())
        cboFolder->setEditText(browser.SelectedFolder);
    cboFolder->setFocus();
}

bool frmEnterFolder::event(QEvent *event) {
    if (event->type() == QEvent::WindowActivate && !m_activated) {
        m_activated = true;
        cboFolder->setFocus();
        cboFolder->lineEdit()->selectAll();
    }
    return ModalDialog::event(event);
}
