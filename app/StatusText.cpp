#include "StatusText.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>

StatusText::StatusText(QWidget *parent)
    : QWidget(parent) {
    // The text must never push the status bar, and so the window, wider.
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

void StatusText::setText(const QString &text) {
    if (text == m_text)
        return;
    m_text = text;
    update();
}

void StatusText::setClickable(bool clickable) {
    if (clickable == m_clickable)
        return;
    m_clickable = clickable;
    setCursor(clickable ? Qt::PointingHandCursor : Qt::ArrowCursor);
    setFocusPolicy(clickable ? Qt::TabFocus : Qt::NoFocus);
    update();
}

QSize StatusText::sizeHint() const {
    return {fontMetrics().averageCharWidth() * 40, fontMetrics().height() + 4};
}

QSize StatusText::minimumSizeHint() const {
    return {0, fontMetrics().height() + 4};
}

void StatusText::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    QFont font = this->font();
    font.setUnderline(m_clickable);
    painter.setFont(font);
    if (m_clickable)
        painter.setPen(palette().color(QPalette::Link));
    const QRect area = rect().adjusted(2, 0, -2, 0);
    const QString shown = QFontMetrics(font).elidedText(m_text, Qt::ElideRight, area.width());
    painter.drawText(area, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, shown);
    if (hasFocus()) {
        QStyleOptionFocusRect option;
        option.initFrom(this);
        option.rect = area;
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
    }
}

void StatusText::mouseReleaseEvent(QMouseEvent *event) {
    if (m_clickable && event->button() == Qt::LeftButton && rect().contains(event->pos()))
        Q_EMIT clicked();
    QWidget::mouseReleaseEvent(event);
}

bool StatusText::event(QEvent *event) {
    // While it is a focused link, Enter opens it rather than reaching the window's own
    // Enter key (which starts a compare).
    if (event->type() == QEvent::ShortcutOverride && m_clickable) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space) {
            event->accept();
            return true;
        }
    }
    return QWidget::event(event);
}

void StatusText::keyPressEvent(QKeyEvent *event) {
    const int key = event->key();
    if (m_clickable && (key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter)) {
        Q_EMIT clicked();
        return;
    }
    QWidget::keyPressEvent(event);
}
