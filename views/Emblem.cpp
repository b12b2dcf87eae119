#include "views/Emblem.h"

#include <QPainter>
#include <QPainterPath>

Emblem::Emblem(int side, QWidget *parent)
    : QWidget(parent)
    , m_side(side) {
    setFixedSize(side, side);
}

void Emblem::paint(QPainter &painter, QPointF topLeft, qreal side) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(topLeft);
    // Drawn on a 64-unit grid; the colours are fixed so the mark reads the same on any theme.
    painter.scale(side / 64.0, side / 64.0);
    painter.setPen(Qt::NoPen);

    const QColor sheets[2] = {QColor(0x2f, 0x6f, 0xb6), QColor(0x3f, 0x8f, 0x6a)};
    for (int i = 0; i < 2; ++i) {
        const qreal left = 5 + i * 29;
        painter.setBrush(sheets[i]);
        painter.drawRoundedRect(QRectF(left, 9, 25, 46), 4, 4);
        painter.setBrush(QColor(255, 255, 255, 220));
        for (int row = 0; row < 4; ++row)
            painter.drawRoundedRect(QRectF(left + 4, 17 + row * 9, 17, 3.5), 1.75, 1.75);
    }
    // The differing row, marked across both listings.
    painter.setBrush(QColor(0xf2, 0xa2, 0x2c));
    painter.drawRoundedRect(QRectF(2, 24.5, 60, 6.5), 3.25, 3.25);
    painter.restore();
}

QIcon Emblem::icon() {
    QIcon icon;
    for (int side : {16, 24, 32, 48, 64, 128, 256}) {
        QPixmap pixmap(side, side);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(painter, QPointF(0, 0), side);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

void Emblem::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    paint(painter, QPointF(0, 0), m_side);
}
