#pragma once

#include <QObject>
#include <QPointer>
#include <QRect>
#include <QWidget>

#include <array>

class QMouseEvent;

/**
 * The draggable bar between two panes of a container. It owns the bar's position, clamps it
 * between the panes' minimum and maximum sizes, can keep it at a fixed proportion when the
 * container is resized, and lays the two bound widgets out around it.
 *
 * Typical use: set the container, bind the two panes (children of the container, which must
 * have no layout of its own), then set the sizes. The splitter puts a thin handle widget over
 * the bar, with the sizing cursor, and watches the container's resizes itself; the mouse and
 * resize entry points stay public so that a caller can forward other events as well.
 *
 * All sizes are in the container's logical pixels. Setters that refuse a value throw
 * PropertyError (source "pairscope.cSplitter") and keep the old value.
 */
class Splitter : public QObject {
    Q_OBJECT
    /** true: the panes follow the mouse while dragging; false: a hatched bar does. */
    Q_PROPERTY(bool FullDrag READ FullDrag WRITE setFullDrag)
    /** 1 (Horizontal): panes stacked, the bar moves up and down; 2 (Vertical): side by side. */
    Q_PROPERTY(int Orientation READ Orientation WRITE setOrientation)
    /** The first pane's share of the container in percent, 0 to 100. */
    Q_PROPERTY(float Proportion READ Proportion WRITE setProportion)
    /** The first pane's extent: the bar's offset from the container's left or top edge. */
    Q_PROPERTY(int Position READ Position WRITE setPosition NOTIFY PositionChanged)
    /** When true, a container resize recomputes Position from Proportion. */
    Q_PROPERTY(bool KeepProportion READ KeepProportion WRITE setKeepProportion)
    /** The bar's thickness, 0 or more. */
    Q_PROPERTY(int SplitterSize READ SplitterSize WRITE setSplitterSize)

public:
    /** Values of Orientation. */
    enum : int {
        /** The bar runs across; the panes lie one above the other. */
        Horizontal = 1,
        /** The panes lie side by side; the bar moves left and right. */
        Vertical = 2,
    };

    explicit Splitter(QObject *parent = nullptr);
    ~Splitter() override;

    bool FullDrag() const { return m_fullDrag; }
    void setFullDrag(bool fullDrag);

    int Orientation() const { return m_orientation; }
    /** Accepts Horizontal (1) or Vertical (2). */
    void setOrientation(int orientation);

    /** In percent; 50 initially. */
    float Proportion() const { return m_proportion * 100.0f; }
    /** Accepts 0 to 100 inclusive. */
    void setProportion(float percent);

    int Position() const { return m_position; }
    /** Lays out at once; the value is not clamped until the next drag or kept-proportion resize. */
    void setPosition(int position);

    bool KeepProportion() const { return m_keepProportion; }
    void setKeepProportion(bool keep);

    /** The widget whose area is split. */
    QWidget *Container() const { return m_container; }
    void setContainer(QWidget *container);

    int SplitterSize() const { return m_splitterSize; }
    /** Accepts 0 or more; setting the current value does nothing. */
    void setSplitterSize(int size);

    /** Smallest extent of pane \a index (0 first, 1 second); below 1 means no minimum. */
    int MinimumSize(int index) const;
    void setMinimumSize(int index, int size);
    /** Largest extent of pane \a index (0 first, 1 second); below 1 means no maximum. */
    int MaximumSize(int index) const;
    void setMaximumSize(int index, int size);

    /**
     * Names the widgets on either side of the bar and lays out. They become children of the
     * container when they are not already.
     */
    void Bind(QWidget *first, QWidget *second);

    /** Starts a drag on the left button, \a x and \a y in the container's coordinates. */
    void MouseDown(Qt::MouseButton button, Qt::KeyboardModifiers modifiers, int x, int y);
    /** Follows the mouse while dragging. */
    void MouseMove(Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers, int x, int y);
    /** Ends a drag at the given point. */
    void MouseUp(Qt::MouseButton button, Qt::KeyboardModifiers modifiers, int x, int y);
    /** Applies the proportion (when kept) and lays out; called on the container's resize. */
    void Resize();

    /** True between an accepted MouseDown and its MouseUp. */
    bool isDragging() const { return m_dragging; }
    /** True while the hatched drag bar is on screen (only when FullDrag is false). */
    bool isBarShown() const;
    /** The bar's rectangle in the container's coordinates at the current Position. */
    QRect barRect() const { return barRectAt(m_position); }

Q_SIGNALS:
    /**
     * Raised when the left button goes down on the bar, before the drag starts; setting
     * \a cancel to true refuses the drag. Connect with a direct connection.
     */
    void DragStarting(bool &cancel, int x, int y);
    /** Position was changed, by a setter, a drag or a kept-proportion resize. */
    void PositionChanged(int position);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QRect area() const;
    int extent() const;
    int axisCoordinate(int x, int y) const;
    /** \a position after the designed clamping against the sizes and the extent. */
    int clamped(int position) const;
    void layOut();
    /** Makes the bound panes children of the container. */
    void adoptPanes();
    QRect barRectAt(int position) const;
    void drawBar(int position);
    void eraseBar();
    void finishDrag();
    void updateCursor();
    void storePosition(int position);
    void handleMouseEvent(const QMouseEvent *event);

    bool m_fullDrag = true;
    int m_orientation = Horizontal;
    float m_proportion = 0.5f;
    int m_position = 128;
    bool m_keepProportion = false;
    int m_splitterSize = 4;
    std::array<int, 2> m_minimumSize{8, 8};
    std::array<int, 2> m_maximumSize{-1, -1};

    QPointer<QWidget> m_container;
    QPointer<QWidget> m_first;
    QPointer<QWidget> m_second;
    /** Transparent widget over the bar: carries the sizing cursor and takes the mouse. */
    QPointer<QWidget> m_handle;
    /** The hatched bar of a FullDrag-false drag, shown to draw it and hidden to erase it. */
    QPointer<QWidget> m_dragBar;

    bool m_dragging = false;
};
