#include "views/ListView.h"

#include "views/ListModel.h"

#include <QEvent>
#include <QHeaderView>
#include <QScrollBar>

#include <algorithm>
#include <cmath>

ListView::ListView(QWidget *parent)
    : QTreeView(parent)
    , m_model(new ListModel(this)) {
    setModel(m_model);
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
    setSortingEnabled(false);

    QHeaderView *bar = header();
    bar->setSectionsMovable(true);
    bar->setFirstSectionMovable(true);
    bar->setSectionsClickable(true);
    bar->setStretchLastSection(false);
    bar->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(bar, &QHeaderView::sectionClicked, this, [this](int logical) {
        if (ColumnHeader *column = Column(logical + 1))
            Q_EMIT ColumnClick(column);
    });
    connect(bar, &QHeaderView::sectionResized, this, [this](int logical, int, int size) {
        ColumnHeader *column = Column(logical + 1);
        if (!m_settingWidth && column && std::lrint(column->m_width) != size)
            column->m_width = float(size);
    });
    connect(bar, &QWidget::customContextMenuRequested, this, [this](const QPoint &position) {
        Q_EMIT ColumnMenuRequested(header()->mapToGlobal(position));
    });

    // The flags of selected rows are rebuilt on demand after anything that may move them.
    const auto forget = [this] { m_selectionKnown = false; };
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, forget);
    connect(m_model, &QAbstractItemModel::rowsInserted, this, forget);
    connect(m_model, &QAbstractItemModel::rowsRemoved, this, forget);
    connect(m_model, &QAbstractItemModel::columnsRemoved, this, forget);
    connect(m_model, &QAbstractItemModel::layoutChanged, this, forget);
    connect(m_model, &QAbstractItemModel::modelReset, this, forget);

    QFont bold = font();
    bold.setBold(true);
    m_model->setBoldFont(bold);
}

ListView::~ListView() = default;

void ListView::changeEvent(QEvent *event) {
    if (event->type() == QEvent::FontChange) {
        QFont bold = font();
        bold.setBold(true);
        m_model->setBoldFont(bold);
    }
    QTreeView::changeEvent(event);
}

void ListView::flushRows() {
    m_model->flush();
}

ListItem ListView::handle(int row) const {
    if (row < 0 || row >= m_model->rowTotal())
        return ListItem();
    return ListItem(const_cast<ListView *>(this), m_model->row(row));
}

int ListView::ItemCount() const {
    return m_model->rowTotal();
}

ListItem ListView::Item(int index) const {
    return handle(index - 1);
}

ListItem ListView::ItemByKey(const QString &key) const {
    const ListRow *row = m_model->rowByKey(key);
    return row ? handle(row->index) : ListItem();
}

ListItem ListView::AddItem(const QString &key, const QString &text) {
    const int position = m_sorted ? m_model->sortedPosition(m_sortKey, m_sortOrder, text) : -1;
    const ListRow *row = m_model->addRow(key, text, position);
    return row ? handle(row->index) : ListItem();
}

ListItem ListView::ItemByKeyOrAdd(const QString &key, const QString &text) {
    if (m_sorted || key.isEmpty()) {
        if (ListItem item = ItemByKey(key))
            return item;
        return AddItem(key, text);
    }
    return handle(m_model->findOrAddRow(key, text)->index);
}

void ListView::RemoveItem(int index) {
    m_model->removeRow(index - 1);
}

int ListView::RemoveItemsIf(const std::function<bool(const ListRow &)> &remove) {
    m_model->flush();
    // What a reset would lose, held by row so that it survives the renumbering.
    // Rows are held by shared pointer so that a removed one stays readable until the end.
    std::vector<std::shared_ptr<ListRow>> selected;
    const std::vector<bool> &flags = selectionFlags();
    for (size_t i = 0; i < flags.size(); ++i) {
        if (flags[i])
            selected.push_back(m_model->row(int(i)));
    }
    const int focused = FocusedRow();
    const auto focusedRow = focused >= 0 ? m_model->row(focused) : nullptr;
    const int top = TopRow();
    const auto topRow = top >= 0 ? m_model->row(top) : nullptr;
    const int horizontal = horizontalScrollBar()->value();

    bool wasReset = false;
    const int removed = m_model->removeRowsIf(remove, &wasReset);
    if (!wasReset)
        return removed;

    // Removed rows were dropped from the model; their index fields are stale, so a row is
    // found again only when the model still holds it at that index.
    const auto stillAt = [this](const ListRow *row) {
        return row && row->index < m_model->rowTotal() && m_model->row(row->index).get() == row;
    };
    std::vector<bool> keep(size_t(m_model->rowTotal()), false);
    for (const auto &row : selected) {
        if (stillAt(row.get()))
            keep[size_t(row->index)] = true;
    }
    if (std::find(keep.begin(), keep.end(), true) != keep.end())
        SetSelectedRows(keep);
    if (stillAt(focusedRow.get()))
        SetFocusedRow(focusedRow->index);
    if (stillAt(topRow.get()))
        scrollTo(m_model->index(topRow->index, 0), QAbstractItemView::PositionAtTop);
    horizontalScrollBar()->setValue(horizontal);
    return removed;
}

void ListView::ClearItems() {
    m_model->clearRows();
}

void ListView::ReserveItems(int count) {
    m_model->reserveRows(count);
}

int ListView::ColumnCount() const {
    return m_model->columnTotal();
}

ColumnHeader *ListView::Column(int index) const {
    if (index < 1 || index > m_model->columnTotal())
        return nullptr;
    return m_model->column(index - 1);
}

ColumnHeader *ListView::ColumnByKey(const QString &key) const {
    for (int i = 0; i < m_model->columnTotal(); ++i) {
        if (m_model->column(i)->Key() == key)
            return m_model->column(i);
    }
    return nullptr;
}

ColumnHeader *ListView::AddColumn(const QString &key, const QString &text, float width,
                                  Qt::Alignment alignment) {
    if (!key.isEmpty() && ColumnByKey(key))
        return nullptr;
    ColumnHeader *column = m_model->appendColumn(key, text, std::max(0.0f, width),
                                                 alignment & Qt::AlignHorizontal_Mask);
    applyWidth(*column);
    return column;
}

void ListView::RemoveColumnAt(int index) {
    m_model->removeColumn(index - 1);
}

void ListView::ClearColumns() {
    m_model->clearColumns();
}

std::vector<int> ListView::ColumnOrder() const {
    std::vector<int> order;
    for (int position = 0; position < header()->count(); ++position)
        order.push_back(header()->logicalIndex(position));
    return order;
}

void ListView::SetColumnOrder(const std::vector<int> &order) {
    const int count = header()->count();
    std::vector<int> sequence;
    std::vector<bool> placed(size_t(count), false);
    for (int index : order) {
        if (index >= 0 && index < count && !placed[size_t(index)]) {
            placed[size_t(index)] = true;
            sequence.push_back(index);
        }
    }
    for (int index = 0; index < count; ++index) {
        if (!placed[size_t(index)])
            sequence.push_back(index);
    }
    for (int position = 0; position < count; ++position)
        header()->moveSection(header()->visualIndex(sequence[size_t(position)]), position);
}

void ListView::applyWidth(ColumnHeader &column) {
    m_settingWidth = true;
    header()->resizeSection(column.SubItemIndex(), int(std::lrint(column.m_width)));
    m_settingWidth = false;
}

void ListView::headerChanged(const ColumnHeader &column) {
    m_model->columnChanged(column);
}

void ListView::setSorted(bool sorted) {
    m_sorted = sorted;
    if (sorted)
        sortNow();
}

void ListView::setSortKey(int key) {
    m_sortKey = std::max(0, key);
    showSortIndicator();
    if (m_sorted)
        sortNow();
}

void ListView::setSortOrder(Qt::SortOrder order) {
    m_sortOrder = order;
    showSortIndicator();
    if (m_sorted)
        sortNow();
}

void ListView::sortNow() {
    std::vector<QString> keys;
    keys.reserve(size_t(m_model->rowTotal()));
    for (int i = 0; i < m_model->rowTotal(); ++i)
        keys.push_back(m_model->text(*m_model->row(i), m_sortKey));
    header()->setSortIndicatorShown(true);
    SortByKeys(keys, m_sortOrder);
}

void ListView::SortByKeys(const std::vector<QString> &keys, Qt::SortOrder order) {
    m_model->sortRows(keys, order);
    showSortIndicator();
}

void ListView::showSortIndicator() {
    // The arrow tells the user which column the rows were last ordered on; a sort key past
    // the last header shows none.
    const int section = m_sortKey < m_model->columnTotal() ? m_sortKey : -1;
    header()->setSortIndicator(section, m_sortOrder);
}

const std::vector<bool> &ListView::selectionFlags() const {
    if (m_selectionKnown && m_selection.size() == size_t(m_model->rowTotal()))
        return m_selection;
    m_selection.assign(size_t(m_model->rowTotal()), false);
    const QItemSelection selection = selectionModel()->selection();
    for (const QItemSelectionRange &range : selection) {
        const int last = std::min(range.bottom(), m_model->rowTotal() - 1);
        for (int row = std::max(0, range.top()); row <= last; ++row)
            m_selection[size_t(row)] = true;
    }
    m_selectionKnown = true;
    return m_selection;
}

bool ListView::isRowSelected(int row) const {
    const std::vector<bool> &flags = selectionFlags();
    return row >= 0 && size_t(row) < flags.size() && flags[size_t(row)];
}

void ListView::setRowSelected(int row, bool selected) {
    if (row < 0 || row >= m_model->rowTotal() || m_model->columnTotal() == 0 ||
        isRowSelected(row) == selected)
        return;
    m_model->flush();
    const QItemSelection range(m_model->index(row, 0),
                               m_model->index(row, m_model->columnTotal() - 1));
    selectionModel()->select(range, selected ? QItemSelectionModel::Select
                                             : QItemSelectionModel::Deselect);
}

ListItem ListView::SelectedItem() const {
    const int focused = FocusedRow();
    if (isRowSelected(focused))
        return handle(focused);
    const std::vector<bool> &flags = selectionFlags();
    const auto first = std::find(flags.begin(), flags.end(), true);
    return first == flags.end() ? ListItem() : handle(int(first - flags.begin()));
}

int ListView::SelectedCount() const {
    const std::vector<bool> &flags = selectionFlags();
    return int(std::count(flags.begin(), flags.end(), true));
}

void ListView::SelectAll() {
    m_model->flush();
    if (m_model->rowTotal() == 0 || m_model->columnTotal() == 0)
        return;
    // One range for every row: selecting row by row would cost the selection model time in
    // proportion to the square of the list.
    const QItemSelection all(m_model->index(0, 0),
                             m_model->index(m_model->rowTotal() - 1, m_model->columnTotal() - 1));
    selectionModel()->select(all, QItemSelectionModel::ClearAndSelect);
}

void ListView::ClearSelections() {
    selectionModel()->clearSelection();
}

std::vector<bool> ListView::SelectedRows() const {
    return selectionFlags();
}

void ListView::SetSelectedRows(const std::vector<bool> &rows) {
    m_model->flush();
    const int count = m_model->rowTotal();
    const int lastColumn = m_model->columnTotal() - 1;
    if (lastColumn < 0)
        return;
    std::vector<bool> wanted(rows.begin(),
                             rows.begin() + std::min<qsizetype>(qsizetype(rows.size()), count));
    wanted.resize(size_t(count), false);
    if (wanted == selectionFlags())
        return;

    QItemSelection selection;
    for (int row = 0; row < count;) {
        if (!wanted[size_t(row)]) {
            ++row;
            continue;
        }
        int last = row;
        while (last + 1 < count && wanted[size_t(last + 1)])
            ++last;
        selection.append(
            QItemSelectionRange(m_model->index(row, 0), m_model->index(last, lastColumn)));
        row = last + 1;
    }
    // Clearing first and then selecting the new runs keeps both steps linear: handing the
    // selection model an old and a new selection of many runs at once makes it compare
    // every run with every other.
    QItemSelectionModel *model = selectionModel();
    model->clearSelection();
    if (!selection.isEmpty())
        model->select(selection, QItemSelectionModel::Select);
}

int ListView::FocusedRow() const {
    const QModelIndex current = currentIndex();
    return current.isValid() ? current.row() : -1;
}

void ListView::SetFocusedRow(int row) {
    m_model->flush();
    if (row < 0 || row >= m_model->rowTotal())
        return;
    selectionModel()->setCurrentIndex(m_model->index(row, 0), QItemSelectionModel::NoUpdate);
}

int ListView::TopRow() const {
    const QModelIndex top = indexAt(QPoint(0, 0));
    if (top.isValid())
        return top.row();
    return m_model->rowCount() > 0 ? 0 : -1;
}

int ListView::ItemTop(int row) const {
    if (row < 0 || row >= m_model->rowCount())
        return 0;
    const_cast<ListView *>(this)->executeDelayedItemsLayout();
    for (int column = 0; column < m_model->columnTotal(); ++column) {
        const QRect rect = visualRect(m_model->index(row, column));
        if (rect.isValid() || rect.height() > 0)
            return rect.top();
    }
    // No column to measure: rows are of uniform height, counted from the top row.
    return (row - verticalScrollBar()->value()) * std::max(1, sizeHintForRow(0));
}

void ListView::ScrollVertically(int pixels) {
    // Nothing to move: rows still waiting for their batch stay there. The scroll follower
    // asks for this every few milliseconds while a compare lists rows, and handing each
    // few rows over at once would relayout and repaint the whole list as often.
    if (pixels == 0)
        return;
    m_model->flush();
    executeDelayedItemsLayout();
    if (m_model->rowCount() == 0)
        return;
    const int height = std::max(1, indexRowSizeHint(m_model->index(0, 0)));
    // A half row or more counts as a row, in either direction.
    const long rows = std::lround(double(pixels) / height);
    QScrollBar *bar = verticalScrollBar();
    bar->setValue(bar->value() + int(rows));
}

ImageList *ListView::SmallIcons() const {
    return m_model->smallIcons();
}

void ListView::setSmallIcons(ImageList *icons) {
    m_model->setSmallIcons(icons);
}

bool ListView::BoldDifferent() const {
    return m_model->boldDifferent();
}

void ListView::setBoldDifferent(bool bold) {
    m_model->setBoldDifferent(bold);
}
