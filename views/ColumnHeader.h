#pragma once

#include <QString>
#include <QVariant>

class ListView;

/**
 * One column header of a ListView. Headers are numbered in the order they were created
 * (Index() counts from 1); the header at Index() n shows the rows' sub-item n - 1, so the
 * first header shows the item text. Where a header is shown is its display Position(), which
 * the user changes by dragging it.
 *
 * A header belongs to its list view and lives until it is removed or the list's columns are
 * cleared; keep no pointer to it beyond that.
 */
class ColumnHeader {
public:
    ColumnHeader(const ColumnHeader &) = delete;
    ColumnHeader &operator=(const ColumnHeader &) = delete;

    /** The key the header was created with ("#5"); unique within its list, may be empty. */
    const QString &Key() const { return m_key; }

    /** The caption. */
    const QString &Text() const { return m_text; }
    void setText(const QString &text);

    /**
     * The width in pixels. A width set by the program is kept exactly (87.5 stays 87.5, shown
     * 88 pixels wide) until the user drags the column to another size.
     */
    float Width() const { return m_width; }
    void setWidth(float width);

    /** Alignment of the caption and of the column's texts. */
    Qt::Alignment Alignment() const { return m_alignment; }
    void setAlignment(Qt::Alignment alignment);

    /** The creation index, counting from 1. */
    int Index() const { return m_index + 1; }
    /** The sub-item this header shows: Index() - 1, so 0 is the item text. */
    int SubItemIndex() const { return m_index; }

    /** A value of the program's own, not shown. */
    const QVariant &Tag() const { return m_tag; }
    void setTag(const QVariant &tag) { m_tag = tag; }

    /** The zero-based display position. */
    int Position() const;
    /** Moves the header to display position \a position (clamped to the shown columns). */
    void setPosition(int position);

private:
    friend class ListModel;
    friend class ListView;
    ColumnHeader(ListView *view, QString key, QString text, float width, Qt::Alignment alignment)
        : m_view(view)
        , m_key(std::move(key))
        , m_text(std::move(text))
        , m_width(width)
        , m_alignment(alignment) {}

    ListView *m_view;
    QString m_key;
    QString m_text;
    float m_width;
    Qt::Alignment m_alignment;
    QVariant m_tag;
    int m_index = 0;
};
