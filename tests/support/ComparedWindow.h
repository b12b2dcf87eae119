#pragma once

#include "app/frmMain.h"
#include "views/FileListModel.h"
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

    /** The row of the file at \a relative below the root of \a side, or -1. */
    int row(int side, const QString &relative) const {
        return list(side)->files()->rowOfKey(roots[side] + QLatin1Char('/') + relative);
    }

    /** The text row \a row of list \a side shows for column type \a type. */
    QString text(int side, int row, int type) const { return list(side)->files()->text(row, type); }

    /** Selects exactly the rows of \a relatives in list \a side. */
    void select(int side, const QStringList &relatives) {
        std::vector<bool> wanted(size_t(list(side)->files()->count()), false);
        for (const QString &relative : relatives) {
            if (const int at = row(side, relative); at >= 0)
                wanted[size_t(at)] = true;
        }
        list(side)->setSelectedRows(wanted);
    }

    /** Keys of list \a side in row order, relative to its root. */
    QStringList rows(int side, bool selectedOnly = false) const {
        QStringList keys;
        const ListView *view = list(side);
        const std::vector<bool> selected = view->selectedRows();
        for (int i = 0; i < view->files()->count(); ++i) {
            if (!selectedOnly || (size_t(i) < selected.size() && selected[size_t(i)]))
                keys << view->files()->record(i)->Key().mid(roots[side].size() + 1);
        }
        return keys;
    }

    QString roots[2];
    frmMain window;
};
