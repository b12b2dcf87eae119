#pragma once

#include <QApplication>
#include <QTimer>
#include <QWidget>

#include <functional>

/**
 * Runs \a act on the modal dialog that the next call opens (found once its event loop
 * runs), so that tests can inspect and answer dialogs shown with exec().
 */
inline void WhenModalShown(std::function<void(QWidget *)> act) {
    QTimer::singleShot(0, [act = std::move(act)] {
        QWidget *dialog = QApplication::activeModalWidget();
        act(dialog);
    });
}
