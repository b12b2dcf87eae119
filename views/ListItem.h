#pragma once

#include "engine/ComparisonFile.h"

#include <QPointer>
#include <QString>
#include <QVariant>

#include <memory>

class ListView;
struct ListRow;

/**
 * A handle on one row of a ListView. It stays attached to its row when the list is sorted or
 * other rows come and go; once its own row is removed the handle is invalid, reads return
 * empty values and writes do nothing. A default-constructed handle is "nothing".
 */
class ListItem {
public:
    ListItem() = default;

    bool isValid() const { return bool(row()); }
    explicit operator bool() const { return isValid(); }

    /** The key the row was added with (a file row's key is its full path in lower case). */
    QString Key() const;

    /** The item text, shown by the first column created. */
    QString Text() const;
    void setText(const QString &text);

    /** Sub-item \a index (1 = the second column created, and so on); "" when never set. */
    QString SubItems(int index) const;
    void setSubItems(int index, const QString &text);

    /** A value of the program's own (a file row's difference code). */
    QVariant Tag() const;
    void setTag(const QVariant &tag);

    bool Selected() const;
    void setSelected(bool selected);

    /** One-based index into the list's small-icon image list; 0 for none. */
    int SmallIcon() const;
    void setSmallIcon(int index);

    /** The one-based position in the list as it is ordered now; 0 for an invalid handle. */
    int Index() const;

    /** The file record behind the row, so that tools reach its real path; may be null. */
    ComparisonFilePtr Record() const;
    /**
     * Makes the row show \a record; with \a textsFromRecord its name and the texts of its
     * record columns come from the record whenever they are read (ListModel::setRecord).
     */
    void setRecord(const ComparisonFilePtr &record, bool textsFromRecord = false);

    friend bool operator==(const ListItem &a, const ListItem &b) { return a.row() == b.row(); }

private:
    friend class ListView;
    ListItem(ListView *view, const std::shared_ptr<ListRow> &row)
        : m_view(view)
        , m_row(row) {}
    std::shared_ptr<ListRow> row() const { return m_view ? m_row.lock() : nullptr; }

    QPointer<ListView> m_view;
    std::weak_ptr<ListRow> m_row;
};
