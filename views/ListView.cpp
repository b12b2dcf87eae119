#include "views/ListView.h"

#include "views/FileListModel.h"
#include "views/ListColumns.h"

#include <QAccessible>
#include <QEvent>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QSignalBlocker>

ListView::ListView(QWidget *parent)
    : QTreeView(parent)
    , m_files(new FileListModel(this)) {
    setModel(m_files);
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setExpandsOnDoubleClick(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    // Vertical scrolling moves whole rows, so that two lists of equal row height line up.
    setVerticalScrollMode(QAbstractItemView::ScrollPerItem);

    QHeaderView *bar = header();
    bar->setSectionsMovable(true);
    bar->setFirstSectionMovable(true);
    bar->setSectionsClickable(true);
    bar->setStretchLastSection(false);
    bar->setSortIndicator(m_sortBeforeClick.first, m_sortBeforeClick.second);
    bar->setContextMenuPolicy(Qt::CustomContextMenu);
    // The header turns its own indicator round on a click; the listings' rule decides the
    // order instead, from the indicator as it stood before the click.
    connect(bar, &QHeaderView::sectionPressed, this, [this] {
        m_sortBeforeClick = {header()->sortIndicatorSection(), header()->sortIndicatorOrder()};
    });
    connect(bar, &QHeaderView::sectionClicked, this, [this](int column) {
        header()->setSortIndicator(m_sortBeforeClick.first, m_sortBeforeClick.second);
        Q_EMIT columnClicked(FileListModel::typeOf(column));
    });
    connect(bar, &QWidget::customContextMenuRequested, this, [this](const QPoint &position) {
        Q_EMIT columnMenuRequested(header()->mapToGlobal(position));
    });
    QFont bold = font();
    bold.setBold(true);
    m_files->setBoldFont(bold);
}

void ListView::changeEvent(QEvent *event) {
    if (event->type() == QEvent::FontChange) {
        QFont bold = font();
        bold.setBold(true);
        m_files->setBoldFont(bold);
    }
    QTreeView::changeEvent(event);
}

void ListView::dataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                           const QList<int> &roles) {
    // The base class measures every changed row to find the area to repaint. When a View
    // option changes every row of a large list, painting the visible rows again is far
    // cheaper; nothing else of the view keeps row data (no editors, uniform row heights).
    constexpr int ManyRows = 512;
    if (topLeft.isValid() && bottomRight.row() - topLeft.row() >= ManyRows &&
        !QAccessible::isActive()) {
        viewport()->update();
        return;
    }
    QTreeView::dataChanged(topLeft, bottomRight, roles);
}

void ListView::drawBranches(QPainter *painter, const QRect &rect, const QModelIndex &index) const {
    // A flat list has no branch area; the base class would still look the row up in the
    // selection, run by run, which a scattered selection of many rows makes slow.
    if (rect.width() > 0)
        QTreeView::drawBranches(painter, rect, index);
}

int ListView::shownType(int index) const {
    for (int column = 0; column < ColumnTypeCount; ++column) {
        if (!isColumnHidden(column) && --index == 0)
            return FileListModel::typeOf(column);
    }
    return 0;
}

int ListView::shownCount() const {
    return ColumnTypeCount - header()->hiddenSectionCount();
}

int ListView::sortType() const {
    return FileListModel::typeOf(header()->sortIndicatorSection());
}

int ListView::sortKey() const {
    int key = 0;
    for (int column = 0; column < header()->sortIndicatorSection(); ++column)
        key += isColumnHidden(column) ? 0 : 1;
    return key;
}

Qt::SortOrder ListView::sortOrder() const {
    return header()->sortIndicatorOrder();
}

void ListView::selectAll() {
    m_files->flush();
    if (m_files->rowCount() == 0)
        return;
    // One range for every row: the view's own Select All splits it round hidden columns.
    selectionModel()->select(
        QItemSelection(m_files->index(0, 0),
                       m_files->index(m_files->rowCount() - 1, ColumnTypeCount - 1)),
        QItemSelectionModel::ClearAndSelect);
}

std::vector<bool> ListView::selectedRows() const {
    std::vector<bool> flags(size_t(m_files->rowCount()), false);
    for (const QItemSelectionRange &range : selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            flags[size_t(row)] = true;
    }
    return flags;
}

void ListView::setSelectedRows(const std::vector<bool> &rows) {
    m_files->flush();
    const int count = m_files->rowCount();
    QItemSelection selection;
    for (int row = 0; row < count;) {
        if (size_t(row) >= rows.size() || !rows[size_t(row)]) {
            ++row;
            continue;
        }
        int last = row;
        while (last + 1 < count && size_t(last + 1) < rows.size() && rows[size_t(last + 1)])
            ++last;
        selection.append(
            QItemSelectionRange(m_files->index(row, 0), m_files->index(last, ColumnTypeCount - 1)));
        row = last + 1;
    }
    if (selection == selectionModel()->selection())
        return;
    // Clearing first and then selecting the new runs keeps both steps linear: handing the
    // selection model an old and a new selection of many runs at once makes it compare
    // every run with every other.
    selectionModel()->clearSelection();
    if (!selection.isEmpty())
        selectionModel()->select(selection, QItemSelectionModel::Select);
}

void ListView::applyOrder(const std::vector<int> &sorted) {
    m_files->flush();
    if (sorted.size() != size_t(m_files->count()) || !selectionModel()->hasSelection()) {
        m_files->applyOrder(sorted);
        return;
    }
    // The selection model would follow each selected row through the move with an index of
    // its own, a noticeable wait for a large selection; its runs are put back in the new
    // order for much less.
    const std::vector<bool> before = selectedRows();
    std::vector<bool> after(before.size(), false);
    for (size_t to = 0; to < sorted.size(); ++to)
        after[to] = before[size_t(sorted[to])];
    const QSignalBlocker quiet(selectionModel());
    selectionModel()->clearSelection();
    m_files->applyOrder(sorted);
    setSelectedRows(after);
}

int ListView::selectedCount() const {
    int count = 0;
    for (const QItemSelectionRange &range : selectionModel()->selection())
        count += range.height();
    return count;
}

std::vector<ComparisonFilePtr> ListView::selectedRecords() const {
    std::vector<ComparisonFilePtr> records;
    const std::vector<bool> flags = selectedRows();
    for (size_t row = 0; row < flags.size(); ++row) {
        if (flags[row])
            records.push_back(m_files->record(int(row)));
    }
    return records;
}

ComparisonFilePtr ListView::selectedRecord() const {
    const int focused = focusedRow();
    if (focused >= 0 && selectionModel()->isRowSelected(focused))
        return m_files->record(focused);
    const std::vector<ComparisonFilePtr> records = selectedRecords();
    return records.empty() ? nullptr : records.front();
}

int ListView::focusedRow() const {
    const QModelIndex current = currentIndex();
    return current.isValid() ? current.row() : -1;
}

void ListView::setFocusedRow(int row) {
    m_files->flush();
    if (row >= 0 && row < m_files->rowCount())
        selectionModel()->setCurrentIndex(m_files->index(row, 0), QItemSelectionModel::NoUpdate);
}
