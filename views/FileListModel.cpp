#include "views/FileListModel.h"

#include "engine/DifferenceCode.h"
#include "views/ImageList.h"
#include "views/ListColumns.h"
#include "views/RecordText.h"
#include "views/TextCollation.h"

#include <algorithm>

namespace {

// While rows keep coming (a compare run yields to the event loop every few milliseconds),
// the view is given them at most this often; each batch costs the view one layout pass.
constexpr int FlushIntervalMs = 250;

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
    const ComparisonFile *file = m_byKey.value(key);
    return file ? m_rowOf.value(file, -1) : -1;
}

void FileListModel::renumber() {
    m_rowOf.clear();
    m_rowOf.reserve(count());
    for (int i = 0; i < count(); ++i)
        m_rowOf.insert(record(i).get(), i);
}

int FileListModel::addRecord(const ComparisonFilePtr &record, int icon) {
    // One look-up both finds the row of the key and takes the slot for a new one.
    const ComparisonFile *&slot = m_byKey[record->Key()];
    if (slot) {
        const int row = m_rowOf.value(slot);
        Row &existing = m_rows[size_t(row)];
        if (existing.record != record || existing.icon != icon) {
            m_rowOf.remove(slot);
            m_rowOf.insert(record.get(), row);
            slot = record.get();
            existing = {record, icon};
            markChanged(row);
        }
        return row;
    }
    slot = record.get();
    m_rowOf.insert(slot, count());
    m_rows.push_back({record, icon});
    scheduleFlush();
    return count() - 1;
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
    const int removed = count() - kept;
    if (removed == 0)
        return 0;
    // One layout change instead of a removal per run of rows: the selection and the
    // current row move with their rows, and removed rows drop out of them.
    Q_EMIT layoutAboutToBeChanged();
    const QModelIndexList from = persistentIndexList();
    QModelIndexList to;
    to.reserve(from.size());
    for (const QModelIndex &old : from) {
        const int row = moved[size_t(old.row())];
        to.append(row < 0 ? QModelIndex() : index(row, old.column()));
    }
    std::vector<Row> rows;
    rows.reserve(size_t(kept));
    // Keys are built anew for whichever is fewer, the rows removed or the rows kept.
    const bool fewerKept = kept < removed;
    for (size_t i = 0; i < m_rows.size(); ++i) {
        if (moved[i] >= 0)
            rows.push_back(std::move(m_rows[i]));
        else if (!fewerKept)
            m_byKey.remove(m_rows[i].record->Key());
    }
    m_rows = std::move(rows);
    if (fewerKept) {
        m_byKey.clear();
        m_byKey.reserve(count());
        for (const Row &row : m_rows)
            m_byKey.insert(row.record->Key(), row.record.get());
    }
    m_shownRows = count();
    m_changedFirst = m_changedLast = -1;
    renumber();
    changePersistentIndexList(from, to);
    Q_EMIT layoutChanged();
    return removed;
}

void FileListModel::clear() {
    m_flushTimer.stop();
    beginResetModel();
    m_rows.clear();
    m_byKey.clear();
    m_rowOf.clear();
    m_shownRows = 0;
    m_changedFirst = m_changedLast = -1;
    endResetModel();
}

void FileListModel::reserve(int rows) {
    if (rows <= count())
        return;
    m_rows.reserve(size_t(rows));
    m_byKey.reserve(rows);
    m_rowOf.reserve(rows);
}

void FileListModel::sortByKeys(const std::vector<QString> &keys, Qt::SortOrder order) {
    flush();
    if (m_rows.size() < 2 || keys.size() != m_rows.size())
        return;
    const std::vector<int> sorted = TextCollation().order(keys, order);

    Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    std::vector<Row> rows;
    rows.reserve(m_rows.size());
    std::vector<int> newPosition(m_rows.size());
    for (size_t to = 0; to < sorted.size(); ++to) {
        rows.push_back(std::move(m_rows[size_t(sorted[to])]));
        newPosition[size_t(sorted[to])] = int(to);
    }
    m_rows = std::move(rows);
    renumber();
    // Every persistent index (the selection, the current row) moves with its row.
    const QModelIndexList from = persistentIndexList();
    QModelIndexList to;
    to.reserve(from.size());
    for (const QModelIndex &old : from)
        to.append(index(newPosition[size_t(old.row())], old.column()));
    changePersistentIndexList(from, to);
    Q_EMIT layoutChanged({}, QAbstractItemModel::VerticalSortHint);
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
