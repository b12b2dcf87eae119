#include "views/ListModel.h"

#include "views/ImageList.h"
#include "views/ListColumns.h"
#include "views/TextCollation.h"

#include <algorithm>

namespace {

// While rows keep coming (a compare run yields to the event loop every few milliseconds),
// the view is given them at most this often; each batch costs the view one layout pass.
constexpr int FlushIntervalMs = 250;

// Above this many separate runs of removed rows one reset is cheaper than a removal signal
// per run, each of which moves every persistent index behind it.
constexpr int MaximumRemovalRuns = 64;

} // namespace

ListModel::ListModel(ListView *view)
    : m_view(view) {
    m_flushTimer.setSingleShot(true);
    connect(&m_flushTimer, &QTimer::timeout, this, &ListModel::flush);
}

ListModel::~ListModel() = default;

int ListModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : m_shownRows;
}

int ListModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : columnTotal();
}

QVariant ListModel::data(const QModelIndex &index, int role) const {
    if (!index.isValid() || index.row() >= m_shownRows || index.column() >= columnTotal())
        return QVariant();
    const ListRow &r = *m_rows[size_t(index.row())];
    switch (role) {
    case Qt::DisplayRole:
        return text(r, index.column());
    case Qt::DecorationRole:
        if (index.column() == 0 && r.icon > 0 && m_icons) {
            const QIcon icon = m_icons->Icon(r.icon);
            if (!icon.isNull())
                return icon;
        }
        return QVariant();
    case Qt::TextAlignmentRole:
        return int(column(index.column())->Alignment() | Qt::AlignVCenter);
    case Qt::ToolTipRole:
        // The Difference cell names every difference of the pair, not only the first.
        if (recordColumnType(r, index.column()) == ColumnType::Difference) {
            QStringList texts;
            for (const int code : r.record->Differences().codes())
                texts << ComparisonFile::DifferenceText(code);
            return texts.join(QLatin1Char('\n'));
        }
        return QVariant();
    case Qt::FontRole:
        // A row stands for an identical pair when its tag holds difference code 1.
        if (m_boldDifferent && r.tag.toInt() != 1)
            return m_boldFont;
        return QVariant();
    default:
        return QVariant();
    }
}

QVariant ListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= columnTotal())
        return QVariant();
    if (role == Qt::DisplayRole)
        return column(section)->Text();
    if (role == Qt::TextAlignmentRole)
        return int(column(section)->Alignment() | Qt::AlignVCenter);
    return QVariant();
}

Qt::ItemFlags ListModel::flags(const QModelIndex &index) const {
    if (!index.isValid())
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
}

void ListModel::flush() {
    m_flushTimer.stop();
    flushChanges();
    if (m_shownRows < rowTotal()) {
        beginInsertRows(QModelIndex(), m_shownRows, rowTotal() - 1);
        m_shownRows = rowTotal();
        endInsertRows();
    }
    m_sinceFlush.start();
}

void ListModel::scheduleFlush() {
    if (m_flushTimer.isActive())
        return;
    const qint64 since = m_sinceFlush.isValid() ? m_sinceFlush.elapsed() : FlushIntervalMs;
    m_flushTimer.start(int(std::max<qint64>(0, FlushIntervalMs - since)));
}

void ListModel::markChanged(const ListRow &row) {
    if (row.index >= m_shownRows)
        return; // not shown yet: the view reads it when the row is handed over
    if (m_changedFirst < 0) {
        m_changedFirst = m_changedLast = row.index;
    } else {
        m_changedFirst = std::min(m_changedFirst, row.index);
        m_changedLast = std::max(m_changedLast, row.index);
    }
    scheduleFlush();
}

void ListModel::flushChanges() {
    if (m_changedFirst < 0)
        return;
    const int first = m_changedFirst;
    const int last = std::min(m_changedLast, m_shownRows - 1);
    m_changedFirst = m_changedLast = -1;
    if (columnTotal() > 0 && first <= last)
        Q_EMIT dataChanged(index(first, 0), index(last, columnTotal() - 1));
}

void ListModel::renumber(size_t from) {
    for (size_t i = from; i < m_rows.size(); ++i)
        m_rows[i]->index = int(i);
}

void ListModel::rehash() {
    m_byKey.clear();
    m_byKey.reserve(qsizetype(m_rows.size()));
    for (const auto &row : m_rows) {
        if (!row->key.isEmpty())
            m_byKey.insert(row->key, row.get());
    }
}

ListRow *ListModel::addRow(const QString &key, const QString &text, int position) {
    ListRow **slot = nullptr;
    if (!key.isEmpty()) {
        // One look-up both refuses a used key and takes the slot for the new row.
        slot = &m_byKey[key];
        if (*slot)
            return nullptr;
    }
    return placeNewRow(key, text, position, slot);
}

ListRow *ListModel::findOrAddRow(const QString &key, const QString &text) {
    ListRow *&slot = m_byKey[key];
    return slot ? slot : placeNewRow(key, text, -1, &slot);
}

ListRow *ListModel::placeNewRow(const QString &key, const QString &text, int position,
                                ListRow **slot) {
    auto row = std::make_shared<ListRow>();
    ListRow *raw = row.get();
    // Filled before anything else can reach the hash and move its slots.
    if (slot)
        *slot = raw;
    row->key = key;
    if (!text.isEmpty())
        row->texts.push_back(text);
    if (position < 0 || position >= rowTotal()) {
        if (position >= 0)
            flush(); // placed rows are shown at once, so pending ones go first
        row->index = rowTotal();
        m_rows.push_back(std::move(row));
        if (position < 0)
            scheduleFlush();
        else
            flush();
    } else {
        flush();
        beginInsertRows(QModelIndex(), position, position);
        m_rows.insert(m_rows.begin() + position, std::move(row));
        ++m_shownRows;
        renumber(size_t(position));
        endInsertRows();
    }
    return raw;
}

void ListModel::removeRow(int index) {
    if (index < 0 || index >= rowTotal())
        return;
    flush();
    beginRemoveRows(QModelIndex(), index, index);
    const auto &row = m_rows[size_t(index)];
    if (!row->key.isEmpty())
        m_byKey.remove(row->key);
    m_rows.erase(m_rows.begin() + index);
    --m_shownRows;
    renumber(size_t(index));
    endRemoveRows();
}

int ListModel::removeRowsIf(const std::function<bool(const ListRow &)> &remove, bool *wasReset) {
    *wasReset = false;
    flush();
    // Runs of removed rows, first to last.
    std::vector<std::pair<int, int>> runs;
    int removed = 0;
    for (int i = 0; i < rowTotal(); ++i) {
        if (!remove(*m_rows[size_t(i)]))
            continue;
        ++removed;
        if (!runs.empty() && runs.back().second == i - 1)
            runs.back().second = i;
        else
            runs.emplace_back(i, i);
    }
    if (runs.empty())
        return 0;

    if (runs.size() > size_t(MaximumRemovalRuns)) {
        beginResetModel();
        std::vector<std::shared_ptr<ListRow>> kept;
        kept.reserve(m_rows.size() - size_t(removed));
        auto run = runs.begin();
        for (int i = 0; i < rowTotal(); ++i) {
            while (run != runs.end() && run->second < i)
                ++run;
            if (run == runs.end() || i < run->first)
                kept.push_back(std::move(m_rows[size_t(i)]));
        }
        m_rows = std::move(kept);
        m_shownRows = rowTotal();
        renumber(0);
        rehash();
        m_changedFirst = m_changedLast = -1;
        endResetModel();
        *wasReset = true;
        return removed;
    }

    // Last run first, so that the positions of the runs still to be removed stay valid.
    for (auto run = runs.rbegin(); run != runs.rend(); ++run) {
        beginRemoveRows(QModelIndex(), run->first, run->second);
        for (int i = run->first; i <= run->second; ++i) {
            const auto &row = m_rows[size_t(i)];
            if (!row->key.isEmpty())
                m_byKey.remove(row->key);
        }
        m_rows.erase(m_rows.begin() + run->first, m_rows.begin() + run->second + 1);
        m_shownRows -= run->second - run->first + 1;
        endRemoveRows();
    }
    renumber(size_t(runs.front().first));
    return removed;
}

void ListModel::clearRows() {
    m_flushTimer.stop();
    beginResetModel();
    m_rows.clear();
    m_byKey.clear();
    m_shownRows = 0;
    m_changedFirst = m_changedLast = -1;
    endResetModel();
}

int ListModel::recordColumnType(const ListRow &row, int column) const {
    // Bits of ownTexts exist for the first 64 columns; later ones always hold their own text.
    if (!row.textsFromRecord || !row.record || column < 0 || column >= 64 ||
        (row.ownTexts >> column) & 1u || column >= columnTotal())
        return 0;
    // The first column created shows the item text, the name.
    if (column == 0)
        return ColumnType::Name;
    const int type = m_columnTypes[size_t(column)];
    return type >= 2 && type <= ColumnTypeCount ? type : 0;
}

QString ListModel::text(const ListRow &row, int column) const {
    switch (const int type = recordColumnType(row, column)) {
    case 0:
        return row.storedText(column);
    case ColumnType::Name:
        return row.record->Name();
    default:
        return row.record->ColumnString(type, m_fullPath);
    }
}

void ListModel::reserveRows(int count) {
    if (count <= rowTotal())
        return;
    m_rows.reserve(size_t(count));
    m_byKey.reserve(count);
}

void ListModel::setText(ListRow &row, int column, const QString &text) {
    if (column < 0)
        return;
    if (recordColumnType(row, column) != 0) {
        if (this->text(row, column) == text)
            return;
        row.ownTexts |= quint64(1) << column;
    }
    if (size_t(column) >= row.texts.size()) {
        if (text.isEmpty())
            return;
        row.texts.resize(size_t(column) + 1);
    }
    QString &slot = row.texts[size_t(column)];
    if (slot == text)
        return;
    slot = text;
    markChanged(row);
}

void ListModel::setRecord(ListRow &row, const ComparisonFilePtr &record, bool textsFromRecord) {
    // Whether what the row shows may change: only a row that reads its texts from a record
    // shows anything of it.
    const bool changed = (textsFromRecord || row.textsFromRecord) &&
                         (row.record != record || row.textsFromRecord != textsFromRecord ||
                          row.ownTexts != 0 || !row.texts.empty());
    row.record = record;
    row.textsFromRecord = textsFromRecord;
    if (textsFromRecord) {
        row.ownTexts = 0;
        row.texts = {};
    }
    if (changed)
        markChanged(row);
}

void ListModel::setFullPathTexts(bool fullPath) {
    if (m_fullPath == fullPath)
        return;
    m_fullPath = fullPath;
    flushChanges();
    if (m_shownRows > 0 && columnTotal() > 0)
        Q_EMIT dataChanged(index(0, 0), index(m_shownRows - 1, columnTotal() - 1),
                           {Qt::DisplayRole});
}

void ListModel::setTag(ListRow &row, const QVariant &tag) {
    const bool wasBold = row.tag.toInt() != 1;
    row.tag = tag;
    if (m_boldDifferent && wasBold != (tag.toInt() != 1))
        markChanged(row);
}

void ListModel::setIcon(ListRow &row, int icon) {
    if (row.icon == icon)
        return;
    row.icon = icon;
    markChanged(row);
}

void ListModel::sortRows(const std::vector<QString> &keys, Qt::SortOrder order) {
    flush();
    if (m_rows.size() < 2 || keys.size() != m_rows.size())
        return;
    const std::vector<int> sorted = TextCollation().order(keys, order);

    Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    std::vector<std::shared_ptr<ListRow>> rows;
    rows.reserve(m_rows.size());
    for (int from : sorted)
        rows.push_back(std::move(m_rows[size_t(from)]));
    m_rows = std::move(rows);
    renumber(0);

    // Every persistent index (the selection, the current row) moves with its row.
    std::vector<int> newPosition(m_rows.size());
    for (size_t to = 0; to < sorted.size(); ++to)
        newPosition[size_t(sorted[to])] = int(to);
    const QModelIndexList from = persistentIndexList();
    QModelIndexList to;
    to.reserve(from.size());
    for (const QModelIndex &old : from)
        to.append(index(newPosition[size_t(old.row())], old.column()));
    changePersistentIndexList(from, to);
    Q_EMIT layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

int ListModel::sortedPosition(int column, Qt::SortOrder order, const QString &text) {
    flush();
    const TextCollation collation;
    // The first row that sorts after the text, so that equal texts keep their order of
    // arrival.
    auto after = std::upper_bound(m_rows.begin(), m_rows.end(), text,
                                  [&](const QString &value, const std::shared_ptr<ListRow> &row) {
                                      const int c =
                                          collation.compare(value, this->text(*row, column));
                                      return order == Qt::AscendingOrder ? c < 0 : c > 0;
                                  });
    return int(after - m_rows.begin());
}

ColumnHeader *ListModel::appendColumn(const QString &key, const QString &text, float width,
                                      Qt::Alignment alignment) {
    flushChanges();
    const int index = columnTotal();
    beginInsertColumns(QModelIndex(), index, index);
    m_columns.emplace_back(new ColumnHeader(m_view, key, text, width, alignment));
    m_columns.back()->m_index = index;
    m_columnTypes.push_back(ColumnTypeFromKey(key));
    endInsertColumns();
    return m_columns.back().get();
}

void ListModel::removeColumn(int index) {
    if (index < 0 || index >= columnTotal())
        return;
    flushChanges();
    beginRemoveColumns(QModelIndex(), index, index);
    // The item text belongs to the row, not to a column: removing the first header drops
    // the first sub-item instead, and the header that follows it shows the item text.
    const size_t text = size_t(std::max(index, 1));
    // Bits of the columns after the removed one move down with their texts.
    const quint64 below = text < 64 ? (quint64(1) << text) - 1 : ~quint64(0);
    for (const auto &row : m_rows) {
        if (row->texts.size() > text)
            row->texts.erase(row->texts.begin() + qsizetype(text));
        if (text < 64)
            row->ownTexts = (row->ownTexts & below) | ((row->ownTexts >> 1) & ~below);
    }
    m_columns.erase(m_columns.begin() + index);
    m_columnTypes.erase(m_columnTypes.begin() + index);
    for (size_t i = size_t(index); i < m_columns.size(); ++i)
        m_columns[i]->m_index = int(i);
    endRemoveColumns();
}

void ListModel::clearColumns() {
    if (m_columns.empty())
        return;
    flushChanges();
    beginRemoveColumns(QModelIndex(), 0, columnTotal() - 1);
    for (const auto &row : m_rows) {
        row->texts.resize(std::min<size_t>(row->texts.size(), 1));
        row->ownTexts &= 1u;
    }
    m_columns.clear();
    m_columnTypes.clear();
    endRemoveColumns();
}

void ListModel::columnChanged(const ColumnHeader &column) {
    const int section = column.SubItemIndex();
    Q_EMIT headerDataChanged(Qt::Horizontal, section, section);
    if (m_shownRows > 0)
        Q_EMIT dataChanged(index(0, section), index(m_shownRows - 1, section),
                           {Qt::TextAlignmentRole});
}

void ListModel::setSmallIcons(ImageList *icons) {
    m_icons = icons;
    if (m_shownRows > 0 && columnTotal() > 0)
        Q_EMIT dataChanged(index(0, 0), index(m_shownRows - 1, 0), {Qt::DecorationRole});
}

void ListModel::setBoldDifferent(bool bold) {
    if (m_boldDifferent == bold)
        return;
    m_boldDifferent = bold;
    if (m_shownRows > 0 && columnTotal() > 0)
        Q_EMIT dataChanged(index(0, 0), index(m_shownRows - 1, columnTotal() - 1), {Qt::FontRole});
}
