#include "PopupKeys.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QKeyEvent>

namespace {

class PopupKeyFilter : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override {
        // Accepting the override claims the key for the drop-down; the key press that
        // follows then reaches the drop-down's own handling.
        if (event->type() == QEvent::ShortcutOverride) {
            switch (static_cast<QKeyEvent *>(event)->key()) {
            case Qt::Key_Return:
            case Qt::Key_Enter:
            case Qt::Key_Escape:
                event->accept();
                break;
            default:
                break;
            }
        }
        return QObject::eventFilter(watched, event);
    }
};

} // namespace

void KeepKeysInPopup(QComboBox *combo) {
    combo->view()->installEventFilter(new PopupKeyFilter(combo));
}
