#include "views/EdgeStyle.h"

#include <QPainter>

#include <array>

using namespace EdgeStyle;

namespace {

/** One line of an edge: the colour of its top and left sides, and of its bottom and right. */
struct Line {
    QColor topLeft;
    QColor bottomRight;
};

/** The lines of a style from the outside in; a layer with both its bits set draws nothing. */
struct Lines {
    std::array<Line, 2> line;
    int count = 0;

    void add(const QColor &topLeft, const QColor &bottomRight) {
        line[count++] = {topLeft, bottomRight};
    }
};

Lines linesOf(int edge, int flags, const QPalette &palette) {
    const auto colour = [&palette](QPalette::ColorRole role) { return palette.color(role); };
    const int outer = edge & (RaisedOuter | SunkenOuter);
    const int inner = edge & (RaisedInner | SunkenInner);
    const bool hasOuter = outer == RaisedOuter || outer == SunkenOuter;
    const bool hasInner = inner == RaisedInner || inner == SunkenInner;
    Lines lines;
    if (flags & (Flat | Mono)) {
        // One line colour and, inside it, the face; no light and shadow.
        const QColor line = colour((flags & Mono) ? QPalette::WindowText : QPalette::Dark);
        const QColor face = colour((flags & Mono) ? QPalette::Base : QPalette::Button);
        if (hasOuter || hasInner)
            lines.add(line, line);
        if (hasOuter && hasInner)
            lines.add(face, face);
        return lines;
    }
    // Soft swaps the top-left colours of the two layers: the brighter light (or the deeper
    // shadow) moves to the outside.
    const bool soft = flags & Soft;
    if (outer == RaisedOuter)
        lines.add(colour(soft ? QPalette::Light : QPalette::Midlight), colour(QPalette::Shadow));
    else if (outer == SunkenOuter)
        lines.add(colour(soft ? QPalette::Shadow : QPalette::Dark), colour(QPalette::Light));
    if (inner == RaisedInner)
        lines.add(colour(soft ? QPalette::Midlight : QPalette::Light), colour(QPalette::Dark));
    else if (inner == SunkenInner)
        lines.add(colour(soft ? QPalette::Dark : QPalette::Shadow), colour(QPalette::Midlight));
    return lines;
}

void drawDiagonal(QPainter &painter, const QRect &rect, const Lines &lines, int sides) {
    // The side bits name the corner the line ends in; it starts in the opposite one.
    const bool endsTop = sides & Top;
    const bool endsRight = sides & Right;
    const QPoint end(endsRight ? rect.right() : rect.left(), endsTop ? rect.top() : rect.bottom());
    const QPoint start(endsRight ? rect.left() : rect.right(),
                       endsTop ? rect.bottom() : rect.top());
    // Further lines lie beside the first, towards the inside of the corner the line cuts off.
    const QPoint step(endsRight == endsTop ? -1 : 1, 0);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    for (int i = 0; i < lines.count; ++i) {
        const Line &line = lines.line[size_t(i)];
        painter.setPen(QPen(endsTop ? line.topLeft : line.bottomRight, 0));
        painter.drawLine(start + step * i, end + step * i);
    }
    painter.restore();
}

} // namespace

bool drawEdge(QPainter &painter, QRect &rect, int edge, int flags, const QPalette &palette) {
    if (!painter.isActive())
        return false;
    const Lines lines = linesOf(edge, flags, palette);
    const int sides = flags & SideMask;
    if (flags & Diagonal) {
        drawDiagonal(painter, rect, lines, sides);
        return true;
    }

    QRect inside = rect.normalized();
    for (int i = 0; i < lines.count && !inside.isEmpty(); ++i) {
        const Line &line = lines.line[size_t(i)];
        // Top and left first, so that the bottom-right colour owns the two odd corners.
        if (sides & Top)
            painter.fillRect(QRect(inside.left(), inside.top(), inside.width(), 1), line.topLeft);
        if (sides & Left)
            painter.fillRect(QRect(inside.left(), inside.top(), 1, inside.height()), line.topLeft);
        if (sides & Bottom)
            painter.fillRect(QRect(inside.left(), inside.bottom(), inside.width(), 1),
                             line.bottomRight);
        if (sides & Right)
            painter.fillRect(QRect(inside.right(), inside.top(), 1, inside.height()),
                             line.bottomRight);
        inside.adjust((sides & Left) ? 1 : 0, (sides & Top) ? 1 : 0, (sides & Right) ? -1 : 0,
                      (sides & Bottom) ? -1 : 0);
    }
    if ((flags & Middle) && !inside.isEmpty())
        painter.fillRect(inside, palette.color((flags & Mono) ? QPalette::Base : QPalette::Button));
    if (flags & Adjust)
        rect = inside;
    return true;
}
