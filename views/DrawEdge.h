#pragma once

#include <QColor>
#include <QPixmap>
#include <QWidget>

#include <array>

/**
 * A panel framed by three-dimensional edges, each side in its own style (EdgeStyle values).
 * Sides that share a style are drawn in one drawEdge() call. The frame is painted into an
 * off-screen picture on every resize, refresh and property change, and shown in one step.
 * The pointer is the widget's cursor, chosen by MousePointer.
 */
class DrawEdge : public QWidget {
    Q_OBJECT
    /** Sets/returns the edge style for the left edge. */
    Q_PROPERTY(int EdgeLeft READ EdgeLeft WRITE setEdgeLeft)
    /** Sets/returns the edge style for the top edge. */
    Q_PROPERTY(int EdgeTop READ EdgeTop WRITE setEdgeTop)
    /** Sets/returns the edge style for the right edge. */
    Q_PROPERTY(int EdgeRight READ EdgeRight WRITE setEdgeRight)
    /** Sets/returns the edge style for the bottom edge. */
    Q_PROPERTY(int EdgeBottom READ EdgeBottom WRITE setEdgeBottom)
    /** Sets/returns a value describing how to modify the styles for each edge. */
    Q_PROPERTY(int Flags READ Flags WRITE setFlags)
    /** The fill colour; by default the window background of the current palette. */
    Q_PROPERTY(QColor BackColor READ BackColor WRITE setBackColor RESET resetBackColor)
    /** The pointer over the panel: 0 default, 1 to 15 the standard pointers, 99 MouseIcon. */
    Q_PROPERTY(int MousePointer READ MousePointer WRITE setMousePointer)
    /** The picture of the custom pointer (MousePointer 99). */
    Q_PROPERTY(QPixmap MouseIcon READ MouseIcon WRITE setMouseIcon)
    /** Sets/returns the edge style for all edges. */
    Q_PROPERTY(int Edge READ Edge WRITE setEdge STORED false)

public:
    /** The value of MousePointer that shows MouseIcon. */
    static constexpr int CustomPointer = 99;

    explicit DrawEdge(QWidget *parent = nullptr);

    int EdgeLeft() const { return m_edges[0]; }
    void setEdgeLeft(int edge);
    int EdgeTop() const { return m_edges[1]; }
    void setEdgeTop(int edge);
    int EdgeRight() const { return m_edges[2]; }
    void setEdgeRight(int edge);
    int EdgeBottom() const { return m_edges[3]; }
    void setEdgeBottom(int edge);

    /** The modifier flags (EdgeStyle::Soft, Flat, ...); side bits in it are ignored. */
    int Flags() const { return m_flags; }
    void setFlags(int flags);

    QColor BackColor() const;
    void setBackColor(const QColor &colour);
    /** Follows the palette's window background again. */
    void resetBackColor();

    int MousePointer() const { return m_mousePointer; }
    /** Accepts 0 to 15 and 99; anything else throws PropertyError. */
    void setMousePointer(int pointer);
    QPixmap MouseIcon() const { return m_mouseIcon; }
    void setMouseIcon(const QPixmap &icon);

    /** The common style when all four sides share one, otherwise -1. */
    int Edge() const;
    /** Sets the left, top, right and bottom styles to \a edge, in that order. */
    void setEdge(int edge);

    /** Forces a complete update and repaint of the control. */
    void Refresh();

    /** The finished frame as last painted. */
    const QPixmap &picture() const { return m_picture; }

    /**
     * The colours the frame is drawn with: the palette's light, midlight, dark and shadow,
     * each blended halfway into BackColor, and BackColor as the face.
     */
    QPalette edgePalette() const;

protected:
    /**
     * Draws the sides named in \a flags in style \a edge; the repaint calls it once per group
     * of sides that share a style, always with the same \a rect.
     */
    virtual void drawSides(QPainter &painter, QRect &rect, int edge, int flags);

    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void applyPointer();

    std::array<int, 4> m_edges{1, 1, 1, 1};
    int m_flags = 0;
    QColor m_backColor;
    int m_mousePointer = 0;
    QPixmap m_mouseIcon;
    QPixmap m_picture;
};
