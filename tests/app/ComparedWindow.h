#pragma once

#include "app/frmMain.h"
#include "views/ListView.h"

#include <QComboBox>
#include <QPushButton>
#include <QStringList>
#include <QTest>

/** A shown main window with both folders chosen, ready to compare them. */
struct ComparedWindow {
    ComparedWindow(const QString &source, const QString &destination) {
        window.InitializeDisplay();
        window.resize(900, 600);
        window.show();
        window.cboSelectPath[0]->setEditText(source);
        window.cboSelectPath[1]->setEditText(destination);
    }

    /** Runs a compare to its end. */
    void compare() { window.cmdCompare->click(); }

    /** Makes the window the active one, so that focus can be given to its controls. */
    bool activate() {
        window.activateWindow();
        return QTest::qWaitForWindowActive(&window);
    }

    /** Keys of list \a side in row order, relative to \a root (lower case). */
    QStringList rows(int side, const QString &root) const {
        QStringList keys;
        const ListView *list = window.lvwFiles[size_t(side)];
        for (int i = 1; i <= list->ItemCount(); ++i)
            keys << list->Item(i).Key().mid(root.size() + 1);
        return keys;
    }

    /** Keys of the selected rows of list \a side in row order, relative to \a root. */
    QStringList selectedRows(int side, const QString &root) const {
        QStringList keys;
        const ListView *list = window.lvwFiles[size_t(side)];
        for (int i = 1; i <= list->ItemCount(); ++i) {
            if (list->Item(i).Selected())
                keys << list->Item(i).Key().mid(root.size() + 1);
        }
        return keys;
    }

    frmMain window;
};
