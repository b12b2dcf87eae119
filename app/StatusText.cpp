#include "StatusText.h"

#include <QAccessible>
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
    // Painted text is invisible to a screen reader: the text is also the accessible name of
    // this label and of the status bar that holds it, and each change is announced.
    const QString spoken = text.trimmed();
    setAccessibleName(spoken);
    if (QWidget *bar = parentWidget())
        bar->setAccessibleName(spoken);
    QAccessibleEvent changed(this, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&changed);
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
    // The leading blanks indent the text; a link underlines the words alone.
    qsizetype words = 0;
    while (words < m_text.size() && m_text.at(words).isSpace())
        ++words;
    const int indent = fontMetrics().horizontalAdvance(m_text.left(words));
    const QRect area = rect().adjusted(2 + indent, 0, -2, 0);
    const QString shown =
        QFontMetrics(font).elidedText(m_text.mid(words), Qt::ElideRight, area.width());
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
