#include "GeneralHelpers.h"

#include <QApplication>
#include <QComboBox>
#include <QScreen>
#include <QWidget>
#include <QWindow>

int AddComboItem(QComboBox *combo, const QString &text, int itemData) {
    if (!combo)
        return -1;
    combo->addItem(text, itemData);
    return combo->count() - 1;
}

int FindComboItemData(const QComboBox *combo, int itemData) {
    if (!combo)
        return -1;
    for (int i = 0; i < combo->count(); ++i) {
        const QVariant data = combo->itemData(i);
        if (data.isValid() && data.toInt() == itemData)
            return i;
    }
    return -1;
}

void SetTopmost(QWidget *window, bool on) {
    if (!window)
        return;
    window = window->window();
    Qt::WindowFlags flags = window->windowFlags();
    if (flags.testFlag(Qt::WindowStaysOnTopHint) == on)
        return;
    flags.setFlag(Qt::WindowStaysOnTopHint, on);
    if (QWindow *handle = window->windowHandle()) {
        // setWindowFlags() would re-create a shown window, hiding and possibly moving it;
        // telling the existing native window keeps its place and visibility.
        window->overrideWindowFlags(flags);
        handle->setFlags(flags);
    } else {
        window->setWindowFlags(flags);
    }
}

bool IsTopmost(const QWidget *window) {
    return window && window->window()->windowFlags().testFlag(Qt::WindowStaysOnTopHint);
}

void CenterOverWindow(QWidget *form, const QWidget *window) {
    if (!form)
        return;
    if (!form->testAttribute(Qt::WA_Resized))
        form->adjustSize();
    const bool overWindow = window && window->isVisible();
    const QRect over = overWindow ? window->window()->frameGeometry() : QRect();
    QScreen *screen = overWindow ? window->window()->screen() : QGuiApplication::primaryScreen();
    const QRect available = screen ? screen->availableGeometry() : QRect();
    const QRect target = overWindow ? over : available;

    // The frame is not known before the first show; the client size is close enough then.
    const QSize size = form->isVisible() ? form->frameGeometry().size() : form->size();
    QRect placed(QPoint(), size);
    placed.moveCenter(target.center());
    if (available.isValid()) {
        placed.moveRight(qMin(placed.right(), available.right()));
        placed.moveBottom(qMin(placed.bottom(), available.bottom()));
        placed.moveLeft(qMax(placed.left(), available.left()));
        placed.moveTop(qMax(placed.top(), available.top()));
    }
    form->move(placed.topLeft());
}

QString GetMessageFontName() {
    return QApplication::font().family();
}

void ApplyMessageFont(QWidget *form) {
    if (!form)
        return;
    const QString family = GetMessageFontName();
    const auto apply = [&family](QWidget *widget) {
        QFont font = widget->font();
        font.setFamily(family);
        widget->setFont(font);
    };
    apply(form);
    for (QWidget *control : form->findChildren<QWidget *>())
        apply(control);
}
