#include "views/FileListModel.h"

#include "engine/DifferenceCode.h"
#include "views/BackgroundRelease.h"
#include "views/ImageList.h"
#include "views/ListColumns.h"
#include "views/RecordText.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

namespace {

// While rows keep coming (a compare run yields to the event loop every few milliseconds),
// the view is given them at most this often; each batch costs the view one layout pass.
constexpr int FlushIntervalMs = 250;

// Items freed on the release thread between two pauses: the allocator's lock is shared with
// the window's thread, which a tight loop of frees would keep waiting.
constexpr size_t ItemsPerSlice = 2048;

void PauseAfterSlice() {
    std::this_thread::sleep_for(std::chrono::microseconds(200));
}

/** Frees \a items (rows or records) on the release thread, a slice at a time. */
template <typename T> void ReleaseInSlices(std::vector<T> items) {
    RunReleaseInBackground([items = std::move(items)]() mutable {
        while (!items.empty()) {
            items.resize(items.size() - std::min(items.size(), ItemsPerSlice));
            PauseAfterSlice();
        }
    });
}

/** Frees \a table (a text for every key) on the release thread, a slice at a time. */
template <typename Key, typename Value> void ReleaseInSlices(QHash<Key, Value> table) {
    RunReleaseInBackground([table = std::move(table)]() mutable {
        for (auto entry = table.begin(); entry != table.end();) {
            for (size_t n = 0; n < ItemsPerSlice && entry != table.end(); ++n)
                entry = table.erase(entry);
            PauseAfterSlice();
        }
    });
}

/**
 * Puts element i of \a items at newPosition[i] in place, with no second array to allocate
 * and fill: \a newPosition must name every place once.
 */
template <typename T> void Permute(std::vector<T> &items, const std::vector<int> &newPosition) {
    std::vector<bool> placed(items.size(), false);
    for (size_t start = 0; start < items.size(); ++start) {
        if (placed[start])
            continue;
        // Follows the cycle through start, carrying the element displaced at each step.
        T carried = std::move(items[start]);
        size_t from = start;
        while (!placed[from]) {
            placed[from] = true;
            const auto to = size_t(newPosition[from]);
            std::swap(carried, items[to]);
            from = to;
        }
    }
}

} // namespace

FileListModel::FileListModel(QObject *parent)
    : QAbstractTableModel(parent) {
    m_flushTimer.setSingleShot(true);
    connect(&m_flushTimer, &QTimer::timeout, this, &FileListModel::flush);
}

int FileListModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : m_shownRows;
}

int FileListModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : ColumnTypeCount;
}

QString FileListModel::text(int row, int type) const {
    const ComparisonFile &file = *record(row);
    return type == ColumnType::Name ? file.Name()
                                    : RecordText::ColumnString(file, type, m_fullPath);
}

QVariant FileListModel::data(const QModelIndex &index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return QVariant();
    const int type = typeOf(index.column());
    switch (role) {
    case Qt::DisplayRole:
        return text(index.row(), type);
    case Qt::DecorationRole:
        if (type == ColumnType::Name && m_icons) {
            const QIcon icon = m_icons->Icon(m_rows[size_t(index.row())].icon);
            if (!icon.isNull())
                return icon;
        }
        return QVariant();
    case Qt::TextAlignmentRole:
        return int(ColumnAlignment(type) | Qt::AlignVCenter);
    case Qt::ToolTipRole:
        // The Difference cell names every difference of the pair, not only the first.
        if (type == ColumnType::Difference) {
            QStringList texts;
            for (const int code : record(index.row())->Differences().codes())
                texts << ComparisonFile::DifferenceText(code);
            return texts.join(QLatin1Char('\n'));
        }
        return QVariant();
    case Qt::FontRole:
        if (m_boldDifferent && record(index.row())->DifferenceCode() != DifferenceCode::Equal)
            return m_boldFont;
        return QVariant();
    default:
        return QVariant();
    }
}

QVariant FileListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= ColumnTypeCount)
        return QVariant();
    if (role == Qt::DisplayRole)
        return ColumnCaption(typeOf(section));
    if (role == Qt::TextAlignmentRole)
        return int(ColumnAlignment(typeOf(section)) | Qt::AlignVCenter);
    return QVariant();
}

Qt::ItemFlags FileListModel::flags(const QModelIndex &index) const {
    if (!index.isValid())
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
}

void FileListModel::flush() {
    m_flushTimer.stop();
    if (m_changedFirst >= 0) {
        const int last = std::min(m_changedLast, m_shownRows - 1);
        if (m_changedFirst <= last)
            Q_EMIT dataChanged(index(m_changedFirst, 0), index(last, ColumnTypeCount - 1));
        m_changedFirst = m_changedLast = -1;
    }
    if (m_shownRows < count()) {
        beginInsertRows(QModelIndex(), m_shownRows, count() - 1);
        m_shownRows = count();
        endInsertRows();
    }
    m_sinceFlush.start();
}

void FileListModel::scheduleFlush() {
    if (m_flushTimer.isActive())
        return;
    const qint64 since = m_sinceFlush.isValid() ? m_sinceFlush.elapsed() : FlushIntervalMs;
    m_flushTimer.start(int(std::max<qint64>(0, FlushIntervalMs - since)));
}

void FileListModel::markChanged(int row) {
    if (row >= m_shownRows)
        return; // not shown yet: the view reads it when the row is handed over
    m_changedFirst = m_changedFirst < 0 ? row : std::min(m_changedFirst, row);
    m_changedLast = std::max(m_changedLast, row);
    scheduleFlush();
}

void FileListModel::allChanged(const QList<int> &roles) {
    if (m_shownRows > 0)
        Q_EMIT dataChanged(index(0, 0), index(m_shownRows - 1, ColumnTypeCount - 1), roles);
}

int FileListModel::rowOfKey(const QString &key) const {
    const int slot = slotOfKey(key);
    return slot < 0 ? -1 : rowOfSlot(slot);
}

int FileListModel::slotOfKey(const QString &key) const {
    return m_slotOfKey.value(key, -1);
}

int FileListModel::addRecord(const ComparisonFilePtr &record, int icon) {
    // One look-up both finds the slot of the key and takes one for a new key.
    const qsizetype keys = m_slotOfKey.size();
    int &slot = m_slotOfKey[record->Key()];
    if (m_slotOfKey.size() == keys) {
        m_staleSlots[size_t(slot)] = false;
        if (const int row = m_rowOfSlot[size_t(slot)]; row >= 0) {
            Row &existing = m_rows[size_t(row)];
            if (existing.record != record || existing.icon != icon) {
                if (existing.record != record)
                    ++m_slotsGeneration;
                existing.record = record;
                existing.icon = icon;
                markChanged(row);
            }
            return row;
        }
    } else {
        slot = int(m_rowOfSlot.size());
        m_rowOfSlot.push_back(-1);
        m_staleSlots.push_back(false);
    }
    m_rowOfSlot[size_t(slot)] = count();
    ++m_rowsGeneration;
    m_rows.push_back({record, icon, slot});
    scheduleFlush();
    return count() - 1;
}

void FileListModel::markAllStale() {
    m_staleSlots.assign(m_staleSlots.size(), true);
}

int FileListModel::removeStaleRows() {
    return removeRowsIf([this](int row) { return m_staleSlots[size_t(m_rows[size_t(row)].slot)]; });
}

int FileListModel::removeRowsIf(const std::function<bool(int row)> &remove) {
    flush();
    // Where each row goes, -1 for a removed one.
    std::vector<int> moved(m_rows.size(), -1);
    int kept = 0;
    for (size_t i = 0; i < m_rows.size(); ++i) {
        if (!remove(int(i)))
            moved[i] = kept++;
    }
    return kept == count() ? 0 : moveRows(moved, QAbstractItemModel::NoLayoutChangeHint);
}

int FileListModel::moveRows(const std::vector<int> &newPosition,
                            QAbstractItemModel::LayoutChangeHint hint) {
    ++m_rowsGeneration;
    // One layout change instead of a removal per run of rows: the selection and the
    // current row move with their rows, and removed rows drop out of them.
    Q_EMIT layoutAboutToBeChanged({}, hint);
    const QModelIndexList from = persistentIndexList();
    QModelIndexList to;
    to.reserve(from.size());
    for (const QModelIndex &old : from) {
        const int row = newPosition[size_t(old.row())];
        to.append(row < 0 ? QModelIndex() : index(row, old.column()));
    }
    // Only the slots learn where their rows went; no key is looked at.
    for (size_t i = 0; i < m_rows.size(); ++i)
        m_rowOfSlot[size_t(m_rows[i].slot)] = newPosition[i];
    // Rows either go, the rest keeping their order, or all move: the rows that stay are
    // moved up in place, or the rows are permuted in place.
    std::vector<ComparisonFilePtr> gone;
    size_t kept = 0;
    for (size_t i = 0; i < m_rows.size(); ++i) {
        if (newPosition[i] < 0)
            gone.push_back(std::move(m_rows[i].record));
        else if (gone.empty())
            ++kept;
        else
            m_rows[kept++] = std::move(m_rows[i]);
    }
    if (gone.empty())
        Permute(m_rows, newPosition);
    else
        m_rows.resize(kept);
    const int removed = int(gone.size());
    // The removed rows' records may be their last holders.
    if (!gone.empty())
        ReleaseInSlices(std::move(gone));
    m_shownRows = count();
    m_changedFirst = m_changedLast = -1;
    changePersistentIndexList(from, to);
    Q_EMIT layoutChanged({}, hint);
    return removed;
}

void FileListModel::clear() {
    m_flushTimer.stop();
    ++m_rowsGeneration;
    ++m_slotsGeneration;
    beginResetModel();
    // Often the last holders of a compare's records: hundreds of thousands of them would take
    // the window a noticeable while to free.
    ReleaseInSlices(std::exchange(m_rows, {}));
    ReleaseInSlices(std::exchange(m_slotOfKey, {}));
    m_rowOfSlot = {};
    m_staleSlots = {};
    m_shownRows = 0;
    m_changedFirst = m_changedLast = -1;
    endResetModel();
}

void FileListModel::reserve(int rows) {
    if (rows <= count())
        return;
    m_rows.reserve(size_t(rows));
    m_slotOfKey.reserve(rows);
    m_rowOfSlot.reserve(size_t(rows));
    m_staleSlots.reserve(size_t(rows));
}

void FileListModel::applyOrder(const std::vector<int> &sorted) {
    flush();
    if (m_rows.size() < 2 || sorted.size() != m_rows.size())
        return;
    std::vector<int> newPosition(m_rows.size());
    for (size_t to = 0; to < sorted.size(); ++to)
        newPosition[size_t(sorted[to])] = int(to);
    moveRows(newPosition, QAbstractItemModel::VerticalSortHint);
}

void FileListModel::setFullPath(bool fullPath) {
    if (m_fullPath == fullPath)
        return;
    m_fullPath = fullPath;
    allChanged({Qt::DisplayRole});
}

void FileListModel::setBoldDifferent(bool bold) {
    if (m_boldDifferent == bold)
        return;
    m_boldDifferent = bold;
    allChanged({Qt::FontRole});
}

void FileListModel::setIcons(ImageList *icons) {
    m_icons = icons;
    allChanged({Qt::DecorationRole});
}
