#include "views/DrawEdge.h"

#include "views/EdgeStyle.h"
#include "views/PropertyError.h"

#include <QEvent>
#include <QPainter>

#include <algorithm>

namespace {

/** The standard pointers 0 to 15 by their classic numbers; 0 and 99 are handled apart. */
constexpr std::array<Qt::CursorShape, 16> standardPointers{
    Qt::ArrowCursor,     Qt::ArrowCursor,   Qt::CrossCursor,     Qt::IBeamCursor,
    Qt::ArrowCursor,     Qt::SizeAllCursor, Qt::SizeBDiagCursor, Qt::SizeVerCursor,
    Qt::SizeFDiagCursor, Qt::SizeHorCursor, Qt::UpArrowCursor,   Qt::WaitCursor,
    Qt::ForbiddenCursor, Qt::BusyCursor,    Qt::WhatsThisCursor, Qt::SizeAllCursor,
};

} // namespace

DrawEdge::DrawEdge(QWidget *parent)
    : QWidget(parent) {
    Refresh();
}

void DrawEdge::setEdgeLeft(int edge) {
    m_edges[0] = edge;
    Refresh();
}

void DrawEdge::setEdgeTop(int edge) {
    m_edges[1] = edge;
    Refresh();
}

void DrawEdge::setEdgeRight(int edge) {
    m_edges[2] = edge;
    Refresh();
}

void DrawEdge::setEdgeBottom(int edge) {
    m_edges[3] = edge;
    Refresh();
}

void DrawEdge::setFlags(int flags) {
    m_flags = flags;
    Refresh();
}

QColor DrawEdge::BackColor() const {
    return m_backColor.isValid() ? m_backColor : palette().color(QPalette::Window);
}

void DrawEdge::setBackColor(const QColor &colour) {
    m_backColor = colour;
    Refresh();
}

void DrawEdge::resetBackColor() {
    setBackColor(QColor());
}

void DrawEdge::setMousePointer(int pointer) {
    if (pointer != CustomPointer && (pointer < 0 || pointer >= int(standardPointers.size())))
        throw PropertyError(QStringLiteral("pairscope.DrawEdge"));
    m_mousePointer = pointer;
    applyPointer();
}

void DrawEdge::setMouseIcon(const QPixmap &icon) {
    m_mouseIcon = icon;
    applyPointer();
}

int DrawEdge::Edge() const {
    const bool same = std::all_of(m_edges.begin(), m_edges.end(),
                                  [this](int edge) { return edge == m_edges[0]; });
    return same ? m_edges[0] : -1;
}

void DrawEdge::setEdge(int edge) {
    setEdgeLeft(edge);
    setEdgeTop(edge);
    setEdgeRight(edge);
    setEdgeBottom(edge);
}

void DrawEdge::Refresh() {
    using namespace EdgeStyle;
    const qreal ratio = devicePixelRatioF();
    QPixmap picture(size() * ratio);
    picture.setDevicePixelRatio(ratio);
    picture.fill(BackColor());
    QPainter painter(&picture);

    // Every call gets the same rectangle, so an Adjust flag shrinks it for the next group.
    QRect rect = this->rect();
    const int flags = m_flags & ~SideMask;
    const auto [left, top, right, bottom] = m_edges;
    bool topDone = top == left;
    bool rightDone = right == left;
    bool bottomDone = bottom == left;
    drawSides(painter, rect, left,
              flags | Left | (topDone ? Top : 0) | (rightDone ? Right : 0) |
                  (bottomDone ? Bottom : 0));
    if (!topDone) {
        const bool withRight = !rightDone && right == top;
        const bool withBottom = !bottomDone && bottom == top;
        rightDone = rightDone || withRight;
        bottomDone = bottomDone || withBottom;
        drawSides(painter, rect, top,
                  flags | Top | (withRight ? Right : 0) | (withBottom ? Bottom : 0));
    }
    if (!rightDone) {
        const bool withBottom = !bottomDone && bottom == right;
        bottomDone = bottomDone || withBottom;
        drawSides(painter, rect, right, flags | Right | (withBottom ? Bottom : 0));
    }
    if (!bottomDone)
        drawSides(painter, rect, bottom, flags | Bottom);
    painter.end();

    m_picture = picture;
    update();
}

void DrawEdge::drawSides(QPainter &painter, QRect &rect, int edge, int flags) {
    drawEdge(painter, rect, edge, flags, edgePalette());
}

QPalette DrawEdge::edgePalette() const {
    // Full-strength light and shadow make a heavy bevel on today's flat themes; halfway into
    // the panel's colour they read as a quiet groove, in light and dark themes alike.
    const QColor back = BackColor();
    QPalette edges = palette();
    for (QPalette::ColorRole role :
         {QPalette::Light, QPalette::Midlight, QPalette::Dark, QPalette::Shadow}) {
        const QColor full = edges.color(role);
        edges.setColor(role,
                       QColor((full.red() + back.red()) / 2, (full.green() + back.green()) / 2,
                              (full.blue() + back.blue()) / 2));
    }
    edges.setColor(QPalette::Button, back);
    return edges;
}

void DrawEdge::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.drawPixmap(0, 0, m_picture);
}

void DrawEdge::resizeEvent(QResizeEvent *event) {
    QWidget::resizeEvent(event);
    Refresh();
}

void DrawEdge::changeEvent(QEvent *event) {
    QWidget::changeEvent(event);
    // A new theme changes the colours of the picture.
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange)
        Refresh();
}

void DrawEdge::applyPointer() {
    if (m_mousePointer == 0 || (m_mousePointer == CustomPointer && m_mouseIcon.isNull()))
        unsetCursor();
    else if (m_mousePointer == CustomPointer)
        setCursor(QCursor(m_mouseIcon));
    else
        setCursor(standardPointers[size_t(m_mousePointer)]);
}
