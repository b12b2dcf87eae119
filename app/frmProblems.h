#pragma once

#include "engine/CollectionProblem.h"

#include <QDialog>
#include <QList>

class QLabel;
class QStandardItemModel;
class QTreeView;

/**
 * The non-modal list of the items a compare could not take in (unreadable folders, names
 * dropped as case duplicates), with the reason for each, opened from the status line.
 */
class frmProblems : public QDialog {
    Q_OBJECT

public:
    explicit frmProblems(QWidget *parent = nullptr);

    /** Shows the problems of the source side, then those of the destination side. */
    void SetProblems(const QList<CollectionProblem> &source,
                     const QList<CollectionProblem> &destination);
    /** The list as text: one "side<TAB>path<TAB>reason" line per item. */
    QString ProblemsText() const;

    QLabel *lblSummary = nullptr;
    QTreeView *lvwProblems = nullptr;

private:
    QStandardItemModel *m_model = nullptr;
};
