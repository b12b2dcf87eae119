#include "frmComparisons.h"

#include "engine/ComparisonSet.h"
#include "settings/Options.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

using namespace ComparisonBits;

frmComparisons::frmComparisons(int comparisons, QWidget *parent)
    : ModalDialog(parent)
    , lblPrompt(new QLabel(QStringLiteral("Choose the comparisons you wish to perform."), this))
    , lstComparisons(new QListWidget(this))
    , chkDoCRCLast(new QCheckBox(QStringLiteral("Compare CRC-32 checksums &last"), this))
    , cmdOK(new QPushButton(QStringLiteral("OK"), this))
    , cmdCancel(new QPushButton(QStringLiteral("Cancel"), this))
    , m_savedDoCRCLast(Options::doCRCLast()) {
    setWindowTitle(QStringLiteral("select comparisons"));
    lstComparisons->setSelectionMode(QAbstractItemView::MultiSelection);
    lstComparisons->setUniformItemSizes(true);
    cmdOK->setDefault(true);

    auto *buttons = new QDialogButtonBox(this);
    buttons->addButton(cmdOK, QDialogButtonBox::AcceptRole);
    buttons->addButton(cmdCancel, QDialogButtonBox::RejectRole);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(lblPrompt);
    layout->addWidget(lstComparisons);
    layout->addWidget(chkDoCRCLast);
    layout->addWidget(buttons);

    chkDoCRCLast->setChecked(m_savedDoCRCLast);
    FillList();
    SelectComparisons(comparisons);
    // Six rows and no scroll bar: the list is exactly as tall as its rows.
    const int rows = lstComparisons->count();
    lstComparisons->setFixedHeight(lstComparisons->sizeHintForRow(0) * rows +
                                   2 * lstComparisons->frameWidth());
    lstComparisons->setMinimumWidth(lstComparisons->sizeHintForColumn(0) +
                                    2 * lstComparisons->frameWidth() + 8);

    connect(chkDoCRCLast, &QCheckBox::toggled, this, &frmComparisons::chkDoCRCLast_Toggled);
    connect(cmdOK, &QPushButton::clicked, this, &QDialog::accept);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

int frmComparisons::Comparisons() const {
    int comparisons = 0;
    for (const QListWidgetItem *item : lstComparisons->selectedItems())
        comparisons |= item->data(Qt::UserRole).toInt();
    return comparisons;
}

void frmComparisons::FillList() {
    // The checksum row stands where the checksum test runs: right after sizes, or last.
    const bool crcLast = chkDoCRCLast->isChecked();
    QList<int> order{Sizes};
    if (!crcLast)
        order.append(Checksums);
    order.append({Modified, Created, Accessed, Attributes});
    if (crcLast)
        order.append(Checksums);

    lstComparisons->clear();
    for (int bit : order) {
        auto *item = new QListWidgetItem(ComparisonDescription(bit, crcLast), lstComparisons);
        item->setData(Qt::UserRole, bit);
    }
}

void frmComparisons::SelectComparisons(int comparisons) {
    for (int row = 0; row < lstComparisons->count(); ++row) {
        QListWidgetItem *item = lstComparisons->item(row);
        item->setSelected((comparisons & item->data(Qt::UserRole).toInt()) != 0);
    }
    if (lstComparisons->count() > 0)
        lstComparisons->setCurrentRow(0, QItemSelectionModel::NoUpdate);
}

void frmComparisons::chkDoCRCLast_Toggled(bool checked) {
    const int comparisons = Comparisons();
    Options::setDoCRCLast(checked);
    FillList();
    SelectComparisons(comparisons);
}

void frmComparisons::done(int result) {
    if (result != QDialog::Accepted) {
        // Changes of the check box are stored as they happen; Cancel takes them back.
        Options::setDoCRCLast(m_savedDoCRCLast);
        const QSignalBlocker blocker(chkDoCRCLast);
        if (chkDoCRCLast->isChecked() != m_savedDoCRCLast) {
            const int comparisons = Comparisons();
            chkDoCRCLast->setChecked(m_savedDoCRCLast);
            FillList();
            SelectComparisons(comparisons);
        }
    }
    ModalDialog::done(result);
}
