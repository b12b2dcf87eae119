#pragma once

#include "engine/ComparisonFile.h"
#include "views/ImageList.h"

#include <QAbstractTableModel>
#include <QElapsedTimer>
#include <QFont>
#include <QHash>
#include <QPointer>
#include <QTimer>

#include <functional>
#include <vector>

/**
 * The rows of a result listing: one file record per row (a placeholder record too), shown in
 * nine columns, one per column type (model column n shows type n + 1). Every text is read from
 * the record when it is shown, so a row stores nothing but its record and its icon.
 *
 * Appended rows are handed to the view in batches: they count at once for count(), record()
 * and rowOfKey() but reach rowCount() only when the event loop runs, at most every ~250 ms
 * while rows keep coming, or when flush() is called. A tree view lays out all its rows again
 * on every insertion, so one insertion per file would cost time in the square of the list.
 */
class FileListModel : public QAbstractTableModel {
    Q_OBJECT

public:
    explicit FileListModel(QObject *parent = nullptr);

    /** The column type (1..9) that model column \a column shows. */
    static int typeOf(int column) { return column + 1; }
    /** The model column that shows column type \a type. */
    static int columnOf(int type) { return type - 1; }

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    /** Hands pending rows and changes to the view now. */
    void flush();

    /** Rows, including those not yet handed to the view. */
    int count() const { return int(m_rows.size()); }
    /** The record of zero-based \a row (no bounds check). */
    const ComparisonFilePtr &record(int row) const { return m_rows[size_t(row)].record; }
    /** The row showing the record whose key is \a key, or -1. */
    int rowOfKey(const QString &key) const;
    /**
     * The slot of zero-based \a row: a number its key keeps, from 0 to slotCount(), while the
     * row moves, goes and comes back, until clear().
     */
    int slotOf(int row) const { return m_rows[size_t(row)].slot; }
    /** The slot of \a key, or -1 when the key has not been listed since clear(). */
    int slotOfKey(const QString &key) const;
    /** The row of \a slot, or -1 while its key is not listed. */
    int rowOfSlot(int slot) const { return m_rowOfSlot[size_t(slot)]; }
    int slotCount() const { return int(m_rowOfSlot.size()); }
    /** Changes when clear() drops the slots or a slot is given another record. */
    quint64 slotsGeneration() const { return m_slotsGeneration; }
    /** The text \a row shows for column type \a type. */
    QString text(int row, int type) const;

    /**
     * Shows \a record with image \a icon (one-based in the icon list, 0 for none): in the row
     * of its key when there is one, else in a row appended at the end. Returns the row.
     */
    int addRecord(const ComparisonFilePtr &record, int icon);
    /**
     * Marks every row stale; addRecord() takes the mark off the row it shows a record in, and
     * removeStaleRows() removes the rows still marked. The mark moves with its row in a sort.
     */
    void markAllStale();
    /** Removes the rows still marked stale, as removeRowsIf() does; returns how many. */
    int removeStaleRows();
    /**
     * Removes every zero-based row that \a remove accepts, in one pass: the rows that stay
     * keep their order, selection and focus. Returns how many were removed.
     */
    int removeRowsIf(const std::function<bool(int row)> &remove);
    /** Removes every row; the rows' storage is freed on the release thread. */
    void clear();
    /** Makes room for \a count rows in all. */
    void reserve(int count);

    /**
     * Puts the rows in the order \a sorted gives (element i: the row that goes to place i),
     * as TextCollation::order returns it. It must name every row once; nothing happens when
     * its size is not the number of rows.
     */
    void applyOrder(const std::vector<int> &sorted);
    /**
     * Changes whenever rows are added, removed, moved or cleared: work that let the event
     * loop run in between can tell that the rows it read are no longer where it left them.
     */
    quint64 rowsGeneration() const { return m_rowsGeneration; }

    /** Whether the "In Folder" texts show full paths. */
    bool fullPath() const { return m_fullPath; }
    void setFullPath(bool fullPath);
    /** Whether rows of pairs that are not identical (code other than 1) are drawn in bold. */
    bool boldDifferent() const { return m_boldDifferent; }
    void setBoldDifferent(bool bold);
    void setBoldFont(const QFont &font) { m_boldFont = font; }
    /** The image list the rows' icons index, or null. */
    ImageList *icons() const { return m_icons; }
    void setIcons(ImageList *icons);

private:
    struct Row {
        ComparisonFilePtr record;
        int icon = 0;
        /** The row's key's place in m_rowOfSlot; it stays with the key while the row moves. */
        int slot = 0;
    };

    void scheduleFlush();
    void markChanged(int row);
    void allChanged(const QList<int> &roles);
    /**
     * Moves the rows: row i goes to newPosition[i], or away when that is negative. Returns
     * how many went.
     */
    int moveRows(const std::vector<int> &newPosition, QAbstractItemModel::LayoutChangeHint hint);

    std::vector<Row> m_rows;
    /**
     * The slot of every key listed since the last clear(), and the row of each slot (-1 once
     * its row has gone): rows that move or go change only the small table of rows, and a key
     * listed again takes its old slot. Keeping the keys of rows that went costs memory
     * bounded by the records of the compare.
     */
    QHash<QString, int> m_slotOfKey;
    std::vector<int> m_rowOfSlot;
    /** The marks of markAllStale(), per slot, so that they move with their rows. */
    std::vector<bool> m_staleSlots;
    int m_shownRows = 0;
    quint64 m_rowsGeneration = 0;
    quint64 m_slotsGeneration = 0;
    int m_changedFirst = -1;
    int m_changedLast = -1;
    QTimer m_flushTimer;
    QElapsedTimer m_sinceFlush;
    bool m_fullPath = false;
    bool m_boldDifferent = false;
    QFont m_boldFont;
    QPointer<ImageList> m_icons;
};
