#pragma once

#include "app/frmMain.h"
#include "views/ListView.h"

#include <QApplication>
#include <QComboBox>
#include <QMenu>
#include <QPushButton>
#include <QStringList>
#include <QTest>

/** A shown main window with both folders chosen, ready to compare them. */
struct ComparedWindow {
    explicit ComparedWindow(const QString &source = {}, const QString &destination = {})
        : roots{source, destination} {
        window.InitializeDisplay();
        window.resize(900, 600);
        window.show();
        // Without folders, the path boxes keep what the profile restored.
        for (int side = 0; side < 2; ++side) {
            if (!roots[side].isEmpty())
                window.cboSelectPath[size_t(side)]->setEditText(roots[side]);
        }
    }

    /** Runs a compare to its end. */
    void compare() { window.cmdCompare->click(); }

    /** Makes the window the active one, so that focus can be given to its controls. */
    bool activate() {
        window.activateWindow();
        return QTest::qWaitForWindowActive(&window);
    }

    bool focus(QWidget *widget) {
        widget->setFocus(Qt::OtherFocusReason);
        return QTest::qWaitFor([widget] { return widget->hasFocus(); });
    }

    /** Opens a menu of the menu bar from the keyboard, as Alt and its access key do. */
    QMenu *openMenu(Qt::Key key) {
        QTest::keyClick(&window, key, Qt::AltModifier);
        if (!QTest::qWaitFor([] { return QApplication::activePopupWidget() != nullptr; }))
            return nullptr;
        return qobject_cast<QMenu *>(QApplication::activePopupWidget());
    }

    ListView *list(int side) const { return window.lvwFiles[size_t(side)]; }

    /** The row of the file at \a relative below the root of \a side. */
    ListItem item(int side, const QString &relative) const {
        return list(side)->ItemByKey(roots[side] + QLatin1Char('/') + relative);
    }

    /** Selects exactly the rows of \a relatives in list \a side. */
    void select(int side, const QStringList &relatives) {
        list(side)->ClearSelections();
        for (const QString &relative : relatives)
            item(side, relative).setSelected(true);
    }

    /** Keys of list \a side in row order, relative to its root (lower case). */
    QStringList rows(int side, bool selectedOnly = false) const {
        QStringList keys;
        const ListView *view = list(side);
        for (int i = 1; i <= view->ItemCount(); ++i) {
            if (!selectedOnly || view->Item(i).Selected())
                keys << view->Item(i).Key().mid(roots[side].size() + 1);
        }
        return keys;
    }

    QString roots[2];
    frmMain window;
};
