#pragma once

#include "engine/ComparisonFile.h"

#include <QTreeView>

#include <utility>
#include <vector>

class FileListModel;

/**
 * A result listing: a tree view over a FileListModel with full-row extended selection, one
 * column per column type, and a header that keeps the columns' order, widths, visibility and
 * sort indicator. Model column n shows column type n + 1.
 *
 * Where the program's rules count columns "in creation order", the shown columns are taken
 * in type order; shownType() and sortKey() give that view of the header.
 */
class ListView : public QTreeView {
    Q_OBJECT

public:
    explicit ListView(QWidget *parent = nullptr);

    FileListModel *files() const { return m_files; }

    /** The type of the \a index-th shown column in type order (counting from 1), or 0. */
    int shownType(int index) const;
    /** How many columns are shown. */
    int shownCount() const;
    /** The column type the rows were last sorted on (the sort indicator's column). */
    int sortType() const;
    /** The zero-based place of sortType() among the shown columns in type order. */
    int sortKey() const;
    Qt::SortOrder sortOrder() const;

    /** Selects every row, rows still waiting for their batch included, as one range. */
    void selectAll() override;
    /** One flag per row, in list order: whether the row is selected. */
    std::vector<bool> selectedRows() const;
    /** Selects exactly the rows whose flag is set; rows past the end of \a rows are cleared. */
    void setSelectedRows(const std::vector<bool> &rows);
    /**
     * Puts the rows in the order \a sorted gives (see FileListModel::applyOrder); the
     * selected rows and the focused one stay so, unannounced, as the same files are selected.
     */
    void applyOrder(const std::vector<int> &sorted);
    int selectedCount() const;
    /** The records of the selected rows, in list order. */
    std::vector<ComparisonFilePtr> selectedRecords() const;
    /** The focused row's record when that row is selected, else the first selected one. */
    ComparisonFilePtr selectedRecord() const;
    /** The zero-based row that has the focus, or -1. */
    int focusedRow() const;
    /** Moves the focus to zero-based \a row without changing the selection. */
    void setFocusedRow(int row);

Q_SIGNALS:
    /** The header of column type \a type was clicked. */
    void columnClicked(int type);
    /** The header was right-clicked at global \a position. */
    void columnMenuRequested(const QPoint &position);

protected:
    void changeEvent(QEvent *event) override;
    void dataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                     const QList<int> &roles = QList<int>()) override;
    void drawBranches(QPainter *painter, const QRect &rect,
                      const QModelIndex &index) const override;

private:
    FileListModel *m_files;
    /** The sort indicator when a header section was last pressed; never sorted: "Name" up. */
    std::pair<int, Qt::SortOrder> m_sortBeforeClick{0, Qt::AscendingOrder};
};
