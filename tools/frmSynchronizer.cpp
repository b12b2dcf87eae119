#include "tools/frmSynchronizer.h"

#include "views/ImageList.h"
#include "views/TextCollation.h"

#include <QCheckBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QStatusBar>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

constexpr int TagRole = Qt::UserRole;
constexpr int ItemRole = Qt::UserRole + 1;

/** A review row, ordered as the listings order displayed texts. */
class ReviewRow : public QTreeWidgetItem {
public:
    using QTreeWidgetItem::QTreeWidgetItem;
    bool operator<(const QTreeWidgetItem &other) const override {
        static const TextCollation collation;
        const int column = treeWidget()->sortColumn();
        return collation.compare(text(column), other.text(column)) < 0;
    }
};

} // namespace

frmSynchronizer::frmSynchronizer(QWidget *parent)
    : ModalDialog(parent)
    , lvwFiles(new QTreeWidget(this))
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
    lvwFiles->setRootIsDecorated(false);
    lvwFiles->setUniformRowHeights(true);
    lvwFiles->setSelectionMode(QAbstractItemView::ExtendedSelection);
    lvwFiles->setHeaderLabels({QStringLiteral("Name"), QStringLiteral("In Folder"),
                               QStringLiteral("Action"), QStringLiteral("Destination")});
    const int widths[] = {150, 200, 110, 280};
    for (int column = 0; column < 4; ++column)
        lvwFiles->setColumnWidth(column, widths[column]);
    // Once sorted, the view keeps the rows sorted and turns the header's own clicks around.
    connect(lvwFiles->header(), &QHeaderView::sectionClicked, this, [this](int column) {
        if (!lvwFiles->isSortingEnabled())
            SortByColumn(column);
    });

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
    lvwFiles->clear();
    m_items.clear();
    SetStatusText(QStringLiteral("Ready"));
}

QTreeWidgetItem *frmSynchronizer::AddRow(const QString &name, const QString &folder,
                                         const CopyItem &item, int tag) {
    auto *row = new ReviewRow(QStringList{name, folder});
    row->setData(NameColumn, TagRole, tag);
    row->setData(NameColumn, ItemRole, int(m_items.size()));
    m_items.push_back(item);
    lvwFiles->addTopLevelItem(row);
    return row;
}

QString frmSynchronizer::StatusText() const {
    return m_status->text();
}

void frmSynchronizer::SetStatusText(const QString &text) {
    m_status->setText(text);
}

std::vector<CopyItem> frmSynchronizer::CopyList(int operationCode) const {
    std::vector<CopyItem> items;
    for (int i = 0; i < lvwFiles->topLevelItemCount(); ++i) {
        const QTreeWidgetItem *row = lvwFiles->topLevelItem(i);
        if (row->data(NameColumn, TagRole).toInt() == operationCode)
            items.push_back(m_items[size_t(row->data(NameColumn, ItemRole).toInt())]);
    }
    return items;
}

void frmSynchronizer::SortByColumn(int column) {
    QHeaderView *header = lvwFiles->header();
    const bool again = lvwFiles->isSortingEnabled() && header->sortIndicatorSection() == column &&
                       header->sortIndicatorOrder() == Qt::AscendingOrder;
    lvwFiles->sortByColumn(column, again ? Qt::DescendingOrder : Qt::AscendingOrder);
    lvwFiles->setSortingEnabled(true);
}

bool frmSynchronizer::event(QEvent *event) {
    if (event->type() == QEvent::WindowActivate && !m_activated) {
        m_activated = true;
        if (cmdOK->isEnabled())
            cmdOK->setFocus();
    }
    return ModalDialog::event(event);
}
