#pragma once

#include <QIcon>
#include <QWidget>

class QPainter;

/**
 * The program's mark: two listings side by side with one differing row marked across both.
 * Shown by the splash and About windows; icon() gives it to windows as their icon.
 */
class Emblem : public QWidget {
    Q_OBJECT
public:
    /** A mark of \a side × \a side pixels. */
    explicit Emblem(int side, QWidget *parent = nullptr);

    QSize sizeHint() const override { return QSize(m_side, m_side); }

    /** Paints the mark into the square of side \a side at \a topLeft. */
    static void paint(QPainter &painter, QPointF topLeft, qreal side);
    /** The mark at the usual icon sizes. */
    static QIcon icon();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    int m_side;
};
