#include "views/Splitter.h"

#include "views/PropertyError.h"

#include <QEvent>
#include <QMouseEvent>
#include <QPalette>

#include <algorithm>
#include <climits>
#include <cmath>

namespace {

[[noreturn]] void refuse() {
    throw PropertyError(QStringLiteral("pairscope.cSplitter"));
}

int checkedIndex(int index) {
    if (index < 0 || index > 1)
        refuse();
    return index;
}

// Positions may be set to anything, so the arithmetic runs in 64 bits and saturates instead
// of overflowing.
int saturated(qint64 value) {
    return int(std::clamp<qint64>(value, INT_MIN, INT_MAX));
}

} // namespace

Splitter::Splitter(QObject *parent)
    : QObject(parent) {}

Splitter::~Splitter() {
    // The helper widgets belong to the container, which may outlive the splitter.
    delete m_handle;
    delete m_dragBar;
    if (m_container)
        m_container->removeEventFilter(this);
}

void Splitter::setFullDrag(bool fullDrag) {
    m_fullDrag = fullDrag;
    Resize();
}

void Splitter::setOrientation(int orientation) {
    if (orientation != Horizontal && orientation != Vertical)
        refuse();
    m_orientation = orientation;
    updateCursor();
    Resize();
}

void Splitter::setProportion(float percent) {
    // Written so that NaN fails too.
    if (!(percent >= 0.0f && percent <= 100.0f))
        refuse();
    m_proportion = percent / 100.0f;
    Resize();
}

void Splitter::setPosition(int position) {
    storePosition(position);
    layOut();
}

void Splitter::setKeepProportion(bool keep) {
    m_keepProportion = keep;
    Resize();
}

void Splitter::setContainer(QWidget *container) {
    if (container == m_container)
        return;
    if (m_dragging)
        finishDrag();
    delete m_handle;
    delete m_dragBar;
    if (m_container)
        m_container->removeEventFilter(this);

    m_container = container;
    if (!m_container)
        return;
    m_container->installEventFilter(this);
    m_handle = new QWidget(m_container);
    m_handle->setObjectName(QStringLiteral("splitterHandle"));
    m_handle->installEventFilter(this);
    m_handle->show();
    updateCursor();
    adoptPanes();
    Resize();
}

void Splitter::setSplitterSize(int size) {
    if (size < 0)
        refuse();
    if (size == m_splitterSize)
        return;
    m_splitterSize = size;
    Resize();
}

int Splitter::MinimumSize(int index) const {
    return m_minimumSize[checkedIndex(index)];
}

void Splitter::setMinimumSize(int index, int size) {
    m_minimumSize[checkedIndex(index)] = size;
    Resize();
}

int Splitter::MaximumSize(int index) const {
    return m_maximumSize[checkedIndex(index)];
}

void Splitter::setMaximumSize(int index, int size) {
    m_maximumSize[checkedIndex(index)] = size;
    Resize();
}

void Splitter::Bind(QWidget *first, QWidget *second) {
    m_first = first;
    m_second = second;
    adoptPanes();
    layOut();
}

void Splitter::adoptPanes() {
    if (!m_container)
        return;
    for (QWidget *pane : {m_first.data(), m_second.data()}) {
        if (pane && pane->parentWidget() != m_container) {
            pane->setParent(m_container);
            pane->show();
        }
    }
    // The handle stays on top, so that no pane hides it where they meet.
    if (m_handle)
        m_handle->raise();
}

void Splitter::MouseDown(Qt::MouseButton button, Qt::KeyboardModifiers, int x, int y) {
    if (button != Qt::LeftButton || m_dragging || !m_container)
        return;
    bool cancel = false;
    Q_EMIT DragStarting(cancel, x, y);
    if (cancel)
        return;
    m_dragging = true;
    if (!m_fullDrag)
        drawBar(m_position);
}

void Splitter::MouseMove(Qt::MouseButtons buttons, Qt::KeyboardModifiers, int x, int y) {
    if (!m_dragging)
        return;
    if (!(buttons & Qt::LeftButton)) {
        // The release went to another window (a popup took the mouse): end where we are.
        finishDrag();
        return;
    }
    if (!m_fullDrag)
        eraseBar();
    storePosition(clamped(axisCoordinate(x, y)));
    if (m_fullDrag)
        layOut();
    else
        drawBar(m_position);
}

void Splitter::MouseUp(Qt::MouseButton button, Qt::KeyboardModifiers, int x, int y) {
    if (!m_dragging || button != Qt::LeftButton)
        return;
    eraseBar();
    storePosition(clamped(axisCoordinate(x, y)));
    finishDrag();
}

void Splitter::Resize() {
    if (m_keepProportion && m_container)
        storePosition(clamped(int(std::lrint(double(m_proportion) * extent()))));
    layOut();
}

bool Splitter::isBarShown() const {
    return m_dragBar && !m_dragBar->isHidden();
}

bool Splitter::eventFilter(QObject *watched, QEvent *event) {
    if (watched == m_handle) {
        switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseMove:
        case QEvent::MouseButtonRelease:
            handleMouseEvent(static_cast<QMouseEvent *>(event));
            return true;
        default:
            break;
        }
    } else if (watched == m_container) {
        if (event->type() == QEvent::Resize)
            Resize();
        else if (event->type() == QEvent::Hide && m_dragging)
            finishDrag();
    }
    return QObject::eventFilter(watched, event);
}

void Splitter::handleMouseEvent(const QMouseEvent *event) {
    const QPoint point = m_handle->mapTo(m_container, event->position().toPoint());
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        MouseDown(event->button(), event->modifiers(), point.x(), point.y());
        break;
    case QEvent::MouseMove:
        MouseMove(event->buttons(), event->modifiers(), point.x(), point.y());
        break;
    default:
        MouseUp(event->button(), event->modifiers(), point.x(), point.y());
        break;
    }
}

QRect Splitter::area() const {
    return m_container ? m_container->contentsRect() : QRect();
}

int Splitter::extent() const {
    const QRect a = area();
    return std::max(0, m_orientation == Horizontal ? a.height() : a.width());
}

int Splitter::axisCoordinate(int x, int y) const {
    const QRect a = area();
    const qint64 along = m_orientation == Horizontal ? qint64(y) - a.top() : qint64(x) - a.left();
    // Stands in for confining the pointer to the container during the drag.
    return int(std::clamp<qint64>(along, 0, extent()));
}

int Splitter::clamped(int position) const {
    const qint64 e = extent();
    const qint64 s = m_splitterSize;
    const auto &minimum = m_minimumSize;
    const auto &maximum = m_maximumSize;
    qint64 p = position;
    // The first pane's minimum is applied last so that it wins when nothing fits.
    if (maximum[1] >= 1 && e - p - s > maximum[1])
        p = e - maximum[1] - s;
    if (maximum[0] >= 1 && p > maximum[0])
        p = maximum[0];
    if (minimum[1] > 0 && e - p - s < minimum[1])
        p = e - minimum[1] - s;
    if (minimum[0] >= 1 && p < minimum[0])
        p = minimum[0];
    return saturated(p);
}

QRect Splitter::barRectAt(int position) const {
    const QRect a = area();
    if (m_orientation == Horizontal)
        return QRect(a.left(), saturated(qint64(a.top()) + position), a.width(), m_splitterSize);
    return QRect(saturated(qint64(a.left()) + position), a.top(), m_splitterSize, a.height());
}

void Splitter::layOut() {
    if (!m_container)
        return;
    const QRect a = area();
    const bool stacked = m_orientation == Horizontal;
    const int e = extent();
    // Each pane keeps to the container whatever the position: an unclamped position may lie
    // outside it.
    const int firstExtent = int(std::clamp<qint64>(m_position, 0, e));
    const int secondStart = int(std::clamp<qint64>(qint64(m_position) + m_splitterSize, 0, e));
    if (m_first)
        m_first->setGeometry(stacked ? QRect(a.left(), a.top(), a.width(), firstExtent)
                                     : QRect(a.left(), a.top(), firstExtent, a.height()));
    if (m_second)
        m_second->setGeometry(
            stacked ? QRect(a.left(), a.top() + secondStart, a.width(), e - secondStart)
                    : QRect(a.left() + secondStart, a.top(), e - secondStart, a.height()));
    if (m_handle)
        m_handle->setGeometry(barRectAt(m_position));
}

void Splitter::drawBar(int position) {
    if (!m_container)
        return;
    if (!m_dragBar) {
        m_dragBar = new QWidget(m_container);
        m_dragBar->setObjectName(QStringLiteral("splitterDragBar"));
        m_dragBar->setAttribute(Qt::WA_TransparentForMouseEvents);
        // A 50 % checkerboard over whatever lies below, as the classic inverted bar was.
        QPalette palette = m_dragBar->palette();
        palette.setBrush(QPalette::Window,
                         QBrush(palette.color(QPalette::WindowText), Qt::Dense4Pattern));
        m_dragBar->setPalette(palette);
        m_dragBar->setAutoFillBackground(true);
    }
    m_dragBar->setGeometry(barRectAt(position));
    m_dragBar->raise();
    m_dragBar->show();
}

void Splitter::eraseBar() {
    if (m_dragBar)
        m_dragBar->hide();
}

void Splitter::finishDrag() {
    eraseBar();
    layOut();
    const int e = extent();
    if (e > 0)
        m_proportion = std::clamp(float(m_position) / float(e), 0.0f, 1.0f);
    m_dragging = false;
}

void Splitter::updateCursor() {
    if (m_handle)
        m_handle->setCursor(m_orientation == Horizontal ? Qt::SplitVCursor : Qt::SplitHCursor);
}

void Splitter::storePosition(int position) {
    if (position == m_position)
        return;
    m_position = position;
    Q_EMIT PositionChanged(position);
}
