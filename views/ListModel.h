#pragma once

#include "views/ColumnHeader.h"
#include "views/ImageList.h"
#include "views/ListRow.h"

#include <QAbstractTableModel>
#include <QElapsedTimer>
#include <QFont>
#include <QHash>
#include <QPointer>
#include <QTimer>

#include <functional>
#include <memory>
#include <vector>

class ListView;

/**
 * The rows and column headers behind a ListView: rows in a vector, a hash from key to row,
 * headers in creation order. Model column n is the header created n-th, and shows the rows'
 * sub-item n (0 is the item text).
 *
 * Appended rows are handed to the view in batches: they count at once for the list's own
 * interface (rowTotal(), row(), the key hash) but reach rowCount() only when the event loop
 * runs, at most every ~250 ms while rows keep coming, or when flush() is called. Text changes
 * are announced the same way, as one range. A tree view relays out all its rows on every
 * insertion, so one insertion per file would cost time in proportion to the square of the list.
 */
class ListModel : public QAbstractTableModel {
    Q_OBJECT

public:
    explicit ListModel(ListView *view);
    ~ListModel() override;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    /** Hands pending rows and text changes to the view now. */
    void flush();

    /** Rows including those not yet handed to the view. */
    int rowTotal() const { return int(m_rows.size()); }
    /** The row at zero-based \a index (no bounds check). */
    const std::shared_ptr<ListRow> &row(int index) const { return m_rows[size_t(index)]; }
    /** The row with \a key, or null. */
    ListRow *rowByKey(const QString &key) const { return m_byKey.value(key); }

    /**
     * Adds a row at the end (handed to the view with the next batch), or at zero-based
     * \a position at once when it is not -1. Returns null when \a key is not empty and
     * already used.
     */
    ListRow *addRow(const QString &key, const QString &text, int position = -1);
    /**
     * The row with \a key (not empty), or a row added at the end with that key and \a text
     * when there is none, with a single look-up of the key.
     */
    ListRow *findOrAddRow(const QString &key, const QString &text);
    /** Removes the row at zero-based \a index. */
    void removeRow(int index);
    /**
     * Removes every row for which \a remove returns true, in one pass: the rows that stay keep
     * their order. Returns how many were removed. When the removed rows form many separate
     * runs the model is reset instead of announcing each run, and \a wasReset is set: the
     * caller then restores what the view lost (selection, focus, scroll position).
     */
    int removeRowsIf(const std::function<bool(const ListRow &)> &remove, bool *wasReset);
    void clearRows();
    /** Makes room for \a count rows in all. */
    void reserveRows(int count);

    /** The text of column \a column (0 = item text) of \a row, as shown. */
    QString text(const ListRow &row, int column) const;
    /** Sets the text of column \a column (0 = item text) of \a row. */
    void setText(ListRow &row, int column, const QString &text);
    /**
     * Makes \a row show \a record. With \a textsFromRecord its texts are the record's
     * (see ListRow::textsFromRecord) from now on, and texts set before are dropped: a
     * listing of a large compare then keeps no text per row at all.
     */
    void setRecord(ListRow &row, const ComparisonFilePtr &record, bool textsFromRecord);
    /** Whether the "In Folder" texts taken from records show full paths. */
    bool fullPathTexts() const { return m_fullPath; }
    void setFullPathTexts(bool fullPath);
    void setTag(ListRow &row, const QVariant &tag);
    void setIcon(ListRow &row, int icon);

    /**
     * Orders the rows stably by \a keys (one per row, compared as displayed texts are: by the
     * system locale's collation, ignoring case).
     */
    void sortRows(const std::vector<QString> &keys, Qt::SortOrder order);
    /**
     * The zero-based position at which a row whose column \a column reads \a text belongs in
     * a list sorted on that column (after the rows that compare equal).
     */
    int sortedPosition(int column, Qt::SortOrder order, const QString &text);

    int columnTotal() const { return int(m_columns.size()); }
    ColumnHeader *column(int index) const { return m_columns[size_t(index)].get(); }
    ColumnHeader *appendColumn(const QString &key, const QString &text, float width,
                               Qt::Alignment alignment);
    /** Removes header \a index and the sub-item it showed from every row. */
    void removeColumn(int index);
    void clearColumns();
    /** Announces a change of a header's caption or alignment. */
    void columnChanged(const ColumnHeader &column);

    /** The image list the rows' icons index, or null. */
    ImageList *smallIcons() const { return m_icons; }
    void setSmallIcons(ImageList *icons);

    /** Whether rows whose tag is not 1 (a pair that is not identical) are drawn in bold. */
    bool boldDifferent() const { return m_boldDifferent; }
    void setBoldDifferent(bool bold);
    void setBoldFont(const QFont &font) { m_boldFont = font; }

private:
    void scheduleFlush();
    void markChanged(const ListRow &row);
    void flushChanges();
    /**
     * Makes a row with \a key and \a text and places it (see addRow()); \a slot, when given,
     * is the key's entry in the hash, to be pointed at the row.
     */
    ListRow *placeNewRow(const QString &key, const QString &text, int position, ListRow **slot);
    /** The column type a record text of model column \a column is made for; 0 for none. */
    int recordColumnType(const ListRow &row, int column) const;
    void renumber(size_t from);
    void rehash();

    ListView *m_view;
    std::vector<std::shared_ptr<ListRow>> m_rows;
    QHash<QString, ListRow *> m_byKey;
    std::vector<std::unique_ptr<ColumnHeader>> m_columns;
    /** The column type of each header's key (ColumnTypeFromKey), in model order. */
    std::vector<int> m_columnTypes;
    bool m_fullPath = false;
    int m_shownRows = 0;
    int m_changedFirst = -1;
    int m_changedLast = -1;
    QTimer m_flushTimer;
    QElapsedTimer m_sinceFlush;
    QPointer<ImageList> m_icons;
    bool m_boldDifferent = false;
    QFont m_boldFont;
};
