#pragma once

#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>
#include <QWidget>

/** Sends a drag of \a path and, when it is accepted, its drop; true when the drop was taken. */
inline bool dragAndDrop(QWidget *target, const QString &path) {
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path)});
    data.setText(path);
    const QPoint centre = target->rect().center();
    const auto actions = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent enter(centre, actions, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &enter);
    if (!enter.isAccepted() || enter.dropAction() != Qt::CopyAction)
        return false;
    QDropEvent drop(QPointF(centre), actions, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &drop);
    return drop.isAccepted();
}
