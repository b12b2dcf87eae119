#include "EditCommands.h"

#include "MainMenuBar.h"

#include "views/ListView.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>

EditCommands::EditCommands(const MainMenuBar &menus, const std::array<ListView *, 2> &lists,
                           QWidget *window)
    : m_menus(menus)
    , m_lists(lists)
    , m_window(window) {
    connect(menus.mnuEdit, &QMenu::aboutToShow, this, &EditCommands::mnuEdit_Click);
    connect(menus.mnuEditSelectAll, &QAction::triggered, this,
            &EditCommands::mnuEditSelectAll_Click);
    connect(menus.mnuEditClearSelections, &QAction::triggered, this,
            &EditCommands::mnuEditClearSelections_Click);

    // The shortcuts follow the enabling, so it moves with the focus and the selection rather
    // than waiting for the menu to open.
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *old, QWidget *now) {
        if (qobject_cast<QMenuBar *>(now) && !qobject_cast<QMenuBar *>(old))
            m_beforeMenuBar = old;
        mnuEdit_Click();
    });
    for (ListView *list : m_lists) {
        connect(list->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this, list] {
            if (ActiveList() == list)
                mnuEdit_Click();
        });
    }
    mnuEdit_Click();
}

ListView *EditCommands::ActiveList() const {
    const int side = ActiveSide();
    return side < 0 ? nullptr : m_lists[size_t(side)];
}

const QWidget *EditCommands::ActiveControl() const {
    // Opening a menu from the keyboard (Alt+E) gives the menu bar the focus; the commands
    // still act on the control the user was in.
    const QWidget *focus = m_window->focusWidget();
    return qobject_cast<const QMenuBar *>(focus) ? m_beforeMenuBar.data() : focus;
}

int EditCommands::ActiveSide() const {
    const QWidget *focus = ActiveControl();
    if (!focus)
        return -1;
    for (int side = 0; side < 2; ++side) {
        const ListView *list = m_lists[size_t(side)];
        if (focus == list || list->isAncestorOf(focus))
            return side;
    }
    return -1;
}

void EditCommands::mnuEdit_Click() {
    const ListView *list = ActiveList();
    m_menus.mnuEditSelectAll->setEnabled(list != nullptr);
    m_menus.mnuEditClearSelections->setEnabled(list && list->selectedCount() > 0);
}

void EditCommands::mnuEditSelectAll_Click() {
    if (ListView *list = ActiveList())
        list->selectAll();
}

void EditCommands::mnuEditClearSelections_Click() {
    if (ListView *list = ActiveList())
        list->clearSelection();
}
