#pragma once

#include "app/StatusLine.h"
#include "app/frmMain.h"
#include "views/FileListModel.h"
#include "views/ListView.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTest>

/** A shown main window with both folders chosen (if given), ready to compare them. */
struct ComparedWindow {
    explicit ComparedWindow(const QString &source = {}, const QString &destination = {})
        : roots{source, destination} {
        window.InitializeDisplay();
        window.resize(900, 600);
        window.show();
        for (int side = 0; side < 2; ++side)
            if (!roots[side].isEmpty())
                folder(side)->setEditText(roots[side]);
    }

    void compare() { find<QPushButton>("cmdCompare")->click(); } // to its end
    QString status() const { return statusLine()->shownText(); }
    ListView *list(int side) const { return find<ListView>("lvwFiles" + QString::number(side)); }
    QComboBox *folder(int side) { return find<QComboBox>("cboSelectPath" + QString::number(side)); }
    StatusLine *statusLine() const { return find<StatusLine>("StatusBar1"); }
    template <typename T> T *find(const QString &name) const { return window.findChild<T *>(name); }

    /** The menu item captioned \a caption, found as the user finds it. */
    QAction *item(const QString &caption) const {
        for (QAction *item : window.findChildren<QAction *>())
            if (item->text() == caption)
                return item;
        return nullptr;
    }

    bool focus(QWidget *widget) {
        window.activateWindow();
        widget->setFocus(Qt::OtherFocusReason);
        return QTest::qWaitFor([widget] { return widget->hasFocus(); });
    }

    /** Opens a menu of the menu bar as Alt and its access key do. */
    QMenu *openMenu(Qt::Key key) {
        QTest::keyClick(&window, key, Qt::AltModifier);
        if (!QTest::qWaitFor([] { return QApplication::activePopupWidget() != nullptr; }))
            return nullptr;
        return qobject_cast<QMenu *>(QApplication::activePopupWidget());
    }

    /** The row of the file at \a relative below the root of \a side, or -1. */
    int row(int side, const QString &relative) const {
        return list(side)->files()->rowOfKey(roots[side] + QLatin1Char('/') + relative);
    }

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
    QStringList rows(int side) const {
        QStringList keys;
        for (int i = 0; i < list(side)->files()->count(); ++i)
            keys << list(side)->files()->record(i)->Key().mid(roots[side].size() + 1);
        return keys;
    }

    QString roots[2];
    frmMain window;
};
