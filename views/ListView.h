#pragma once

#include "views/ColumnHeader.h"
#include "views/ListItem.h"
#include "views/ListRow.h"

#include <QTreeView>

#include <functional>
#include <vector>

class ImageList;
class ListModel;

/**
 * A report list: rows of a key, an item text and sub-item texts under column headers, with
 * full-row extended selection, movable and resizable columns and an icon per row. Rows are
 * kept by a model of its own (no widget per row) with a hash from key to row, so looking a
 * row up by key takes constant time, and lists of hundreds of thousands of rows stay quick.
 *
 * Positions in this interface count from 1 where they name rows or headers (Item(),
 * Column()), as list positions do for the user; display positions of columns and row numbers
 * of the bulk selection calls count from 0.
 */
class ListView : public QTreeView {
    Q_OBJECT

public:
    explicit ListView(QWidget *parent = nullptr);
    ~ListView() override;

    /** @name Rows */
    ///@{
    int ItemCount() const;
    /** The row at one-based \a index, or nothing. */
    ListItem Item(int index) const;
    /** The row whose key is exactly \a key, or nothing. */
    ListItem ItemByKey(const QString &key) const;
    /**
     * Adds a row with \a key and \a text at the end (at its sorted place while Sorted() is
     * true). Returns nothing when \a key is not empty and already used.
     */
    ListItem AddItem(const QString &key, const QString &text);
    /**
     * The row whose key is exactly \a key; when there is none, a row added as AddItem() adds
     * it. One look-up of the key instead of two while the list is not sorted.
     */
    ListItem ItemByKeyOrAdd(const QString &key, const QString &text);
    /** Removes the row at one-based \a index. */
    void RemoveItem(int index);
    /**
     * Removes every row for which \a remove returns true in one pass; the rows that stay
     * keep their order, selection and focus. Use this rather than removing rows one by one
     * from a large list. Returns how many rows were removed.
     */
    int RemoveItemsIf(const std::function<bool(const ListRow &)> &remove);
    void ClearItems();
    /** Makes room for \a count rows in all, so that a long listing grows without rehashing. */
    void ReserveItems(int count);
    ///@}

    /** @name Column headers */
    ///@{
    int ColumnCount() const;
    /** The header at one-based creation \a index, or null. */
    ColumnHeader *Column(int index) const;
    /** The header with \a key, or null. */
    ColumnHeader *ColumnByKey(const QString &key) const;
    /**
     * Appends a header, shown at the right end. Returns null when \a key is not empty and
     * already used.
     */
    ColumnHeader *AddColumn(const QString &key, const QString &text, float width,
                            Qt::Alignment alignment = Qt::AlignLeft);
    /** Removes the header at one-based \a index with the sub-item it showed. */
    void RemoveColumnAt(int index);
    void ClearColumns();
    /**
     * The display order: element p is the zero-based creation index of the header shown at
     * position p.
     */
    std::vector<int> ColumnOrder() const;
    /**
     * Shows the headers in the order \a order gives (as ColumnOrder() returns it). An entry
     * that is out of range or repeats an earlier one is skipped; headers the array does not
     * place follow at the right end in creation order.
     */
    void SetColumnOrder(const std::vector<int> &order);
    ///@}

    /** @name Sorting by displayed text */
    ///@{
    /**
     * Setting Sorted to true sorts the rows at once on SortKey() in SortOrder(); while it
     * stays true, added rows are placed at their sorted position.
     */
    bool Sorted() const { return m_sorted; }
    void setSorted(bool sorted);
    /** The sub-item sorted on (0 = the item text). */
    int SortKey() const { return m_sortKey; }
    void setSortKey(int key);
    Qt::SortOrder SortOrder() const { return m_sortOrder; }
    void setSortOrder(Qt::SortOrder order);
    /**
     * Orders the rows by \a keys, one text per row in the current row order, as Sorted
     * would order them by their displayed texts; for sorting on values that the displayed
     * text does not order (sizes, dates).
     */
    void SortByKeys(const std::vector<QString> &keys, Qt::SortOrder order);
    ///@}

    /** @name Selection and focus */
    ///@{
    /**
     * The focused row when it is selected, otherwise the first selected row, otherwise
     * nothing.
     */
    ListItem SelectedItem() const;
    int SelectedCount() const;
    void SelectAll();
    void ClearSelections();
    /** One flag per row (zero-based, in list order): whether the row is selected. */
    std::vector<bool> SelectedRows() const;
    /** Selects exactly the rows whose flag is set; rows past the end of \a rows are cleared. */
    void SetSelectedRows(const std::vector<bool> &rows);
    /** The zero-based row that has the focus, or -1. */
    int FocusedRow() const;
    /** Moves the focus to zero-based \a row without changing the selection. */
    void SetFocusedRow(int row);
    /** Zero-based row shown at the top, or -1 for an empty list. */
    int TopRow() const;
    /**
     * The top edge of zero-based \a row in the list's viewport, in pixels: negative for a row
     * scrolled out above. 0 for a row that does not exist.
     */
    int ItemTop(int row) const;
    /**
     * Scrolls by \a pixels (positive: the rows move up), in whole rows: the amount is rounded
     * to the nearest number of rows, as a report list scrolls.
     */
    void ScrollVertically(int pixels);
    ///@}

    /** The image list the rows' small icons index; not owned. */
    ImageList *SmallIcons() const;
    void setSmallIcons(ImageList *icons);

    /**
     * Whether rows for pairs that are not identical (tag other than 1) are drawn in bold; the
     * window sets it from its View options.
     */
    bool BoldDifferent() const;
    void setBoldDifferent(bool bold);

    /** Hands rows added since the last batch to the view now. */
    void flushRows();

    /** The model (for item delegates and tests). */
    ListModel *listModel() const { return m_model; }

Q_SIGNALS:
    /** A header was clicked. */
    void ColumnClick(ColumnHeader *column);
    /** The header was right-clicked at global \a position. */
    void ColumnMenuRequested(const QPoint &position);

protected:
    void changeEvent(QEvent *event) override;

private:
    friend class ColumnHeader;
    friend class ListItem;

    ListItem handle(int row) const;
    void applyWidth(ColumnHeader &column);
    void headerChanged(const ColumnHeader &column);
    void setRowSelected(int row, bool selected);
    bool isRowSelected(int row) const;
    const std::vector<bool> &selectionFlags() const;
    void showSortIndicator();
    void sortNow();

    ListModel *m_model;
    bool m_sorted = false;
    int m_sortKey = 0;
    Qt::SortOrder m_sortOrder = Qt::AscendingOrder;
    bool m_settingWidth = false;
    mutable std::vector<bool> m_selection;
    mutable bool m_selectionKnown = false;
};
