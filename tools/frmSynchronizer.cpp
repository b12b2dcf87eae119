#include "tools/frmSynchronizer.h"

#include "views/ColumnHeader.h"
#include "views/ImageList.h"
#include "views/ListView.h"

#include <QCheckBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStatusBar>
#include <QVBoxLayout>

frmSynchronizer::frmSynchronizer(QWidget *parent)
    : ModalDialog(parent)
    , lvwFiles(new ListView(this))
    , chkPrompt(new QCheckBox(QStringLiteral("&Prompt before overwriting"), this))
    , cmdOK(new QPushButton(QStringLiteral("&Copy"), this))
    , cmdCancel(new QPushButton(QStringLiteral("Cancel"), this))
    , StatusBar1(new QStatusBar(this))
    , ImageList1(new ImageList(this))
    , m_status(new QLabel(QStringLiteral("Ready"), this)) {
    setObjectName(QStringLiteral("frmSynchronizer"));
    setSizeGripEnabled(false); // the status bar has its own
    chkPrompt->setChecked(true);
    cmdOK->setDefault(true);

    lvwFiles->setObjectName(QStringLiteral("lvwFiles"));
    lvwFiles->setFrameShadow(QFrame::Sunken);
    lvwFiles->AddColumn(QStringLiteral("Name"), QStringLiteral("Name"), 150);
    lvwFiles->AddColumn(QStringLiteral("Folder"), QStringLiteral("In Folder"), 200);
    lvwFiles->AddColumn(QStringLiteral("Action"), QStringLiteral("Action"), 110);
    lvwFiles->AddColumn(QStringLiteral("Destination"), QStringLiteral("Destination"), 280);
    lvwFiles->setSmallIcons(ImageList1);
    connect(lvwFiles, &ListView::ColumnClick, this,
            [this](ColumnHeader *column) { SortByColumn(column); });

    StatusBar1->addWidget(m_status, 1);
    StatusBar1->setSizeGripEnabled(true);

    connect(cmdOK, &QPushButton::clicked, this, &QDialog::accept);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(chkPrompt);
    buttons->addStretch(1);
    buttons->addWidget(cmdOK);
    buttons->addSpacing(6);
    buttons->addWidget(cmdCancel);

    auto *content = new QVBoxLayout;
    content->setContentsMargins(8, 8, 8, 6);
    content->setSpacing(12);
    content->addWidget(lvwFiles, 1);
    content->addLayout(buttons);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(content, 1);
    layout->addWidget(StatusBar1);

    setMinimumSize(380, 220);
    resize(720, 360);
}

void frmSynchronizer::Clear() {
    lvwFiles->ClearItems();
    m_items.clear();
    SetStatusText(QStringLiteral("Ready"));
}

void frmSynchronizer::SetCopyItem(const ListItem &row, const CopyItem &item) {
    m_items.insert(row.Key(), item);
}

QString frmSynchronizer::StatusText() const {
    return m_status->text();
}

void frmSynchronizer::SetStatusText(const QString &text) {
    m_status->setText(text);
}

std::vector<CopyItem> frmSynchronizer::CopyList(int operationCode) const {
    std::vector<CopyItem> items;
    for (int i = 1; i <= lvwFiles->ItemCount(); ++i) {
        const ListItem row = lvwFiles->Item(i);
        if (row.Tag().toInt() != operationCode)
            continue;
        // The row's key is lower-cased for identity: the item holds the real paths.
        const auto item = m_items.constFind(row.Key());
        if (item != m_items.constEnd())
            items.push_back(*item);
    }
    return items;
}

void frmSynchronizer::SortByColumn(const ColumnHeader *column) {
    if (!column)
        return;
    const int key = column->SubItemIndex();
    Qt::SortOrder order = Qt::AscendingOrder;
    if (lvwFiles->Sorted() && lvwFiles->SortKey() == key)
        order =
            lvwFiles->SortOrder() == Qt::AscendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder;
    // Sorting stays off while key and order change, so the rows are sorted once.
    lvwFiles->setSorted(false);
    lvwFiles->setSortKey(key);
    lvwFiles->setSortOrder(order);
    lvwFiles->setSorted(true);
}

bool frmSynchronizer::event(QEvent *event) {
    if (event->type() == QEvent::WindowActivate && !m_activated) {
        m_activated = true;
        if (cmdOK->isEnabled())
            cmdOK->setFocus();
    }
    return ModalDialog::event(event);
}
