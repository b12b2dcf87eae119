#include "frmProblems.h"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QStandardItemModel>
#include <QTreeView>
#include <QVBoxLayout>

frmProblems::frmProblems(QWidget *parent)
    : QDialog(parent)
    , m_model(new QStandardItemModel(0, 3, this)) {
    setObjectName(QStringLiteral("frmProblems"));
    setWindowTitle(QStringLiteral("Items not compared - Pairscope"));
    setAttribute(Qt::WA_DeleteOnClose);
    setModal(false);
    resize(620, 300);

    lblSummary = new QLabel(this);
    lblSummary->setWordWrap(true);
    m_model->setHorizontalHeaderLabels(
        {QStringLiteral("Side"), QStringLiteral("Item"), QStringLiteral("Reason")});
    lvwProblems = new QTreeView(this);
    lvwProblems->setModel(m_model);
    lvwProblems->setRootIsDecorated(false);
    lvwProblems->setUniformRowHeights(true);
    lvwProblems->setEditTriggers(QAbstractItemView::NoEditTriggers);
    lvwProblems->setSelectionMode(QAbstractItemView::ExtendedSelection);
    lvwProblems->setSelectionBehavior(QAbstractItemView::SelectRows);
    lvwProblems->header()->setStretchLastSection(true);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    QPushButton *copy =
        buttons->addButton(QStringLiteral("&Copy List"), QDialogButtonBox::ActionRole);
    connect(copy, &QPushButton::clicked, this,
            [this] { QApplication::clipboard()->setText(ProblemsText()); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(lblSummary);
    layout->addWidget(lvwProblems, 1);
    layout->addWidget(buttons);
}

void frmProblems::SetProblems(const QList<CollectionProblem> &source,
                              const QList<CollectionProblem> &destination) {
    m_model->removeRows(0, m_model->rowCount());
    const auto add = [this](const QString &side, const QList<CollectionProblem> &problems) {
        for (const CollectionProblem &problem : problems) {
            QList<QStandardItem *> row{new QStandardItem(side), new QStandardItem(problem.path),
                                       new QStandardItem(problem.reason)};
            row[1]->setToolTip(problem.path);
            m_model->appendRow(row);
        }
    };
    add(QStringLiteral("Source"), source);
    add(QStringLiteral("Destination"), destination);
    const qsizetype count = source.size() + destination.size();
    lblSummary->setText(count == 1 ? QStringLiteral("1 item could not be compared:")
                                   : QStringLiteral("%1 items could not be compared:").arg(count));
    lvwProblems->resizeColumnToContents(0);
    lvwProblems->setColumnWidth(1, qMax(lvwProblems->columnWidth(1), width() / 2));
}

QString frmProblems::ProblemsText() const {
    QString text;
    for (int row = 0; row < m_model->rowCount(); ++row) {
        QStringList fields;
        for (int column = 0; column < m_model->columnCount(); ++column)
            fields << m_model->item(row, column)->text();
        text += fields.join(QLatin1Char('\t')) + QLatin1Char('\n');
    }
    return text;
}
