#include "views/ColumnPopup.h"

#include "views/ColumnLayout.h"
#include "views/FileListModel.h"
#include "views/LinkedListings.h"
#include "views/ListColumns.h"
#include "views/ListView.h"

#include <QMenu>

ColumnPopup::ColumnPopup(LinkedListings *listings, QWidget *parent)
    : QObject(parent)
    , m_listings(listings)
    , m_menu(new QMenu(parent)) {
    const auto apply = [this] {
        ChangeLists([this](int side) { ApplyColumnMenu(m_listings->list(side)); });
    };
    for (int type = 1; type <= ColumnTypeCount; ++type) {
        QAction *action = m_menu->addAction(ColumnCaption(type));
        action->setCheckable(true);
        // A click has already inverted the check when triggered() arrives.
        connect(action, &QAction::triggered, this, apply);
        m_columns[size_t(type - 1)] = action;
    }
    m_columns[0]->setEnabled(false);
    m_menu->addSeparator();
    m_showAll = m_menu->addAction(tr("Show &All"));
    m_hideAll = m_menu->addAction(tr("&Hide All"));
    m_menu->addSeparator();
    m_resetLayout = m_menu->addAction(tr("&Reset Layout"));
    connect(m_showAll, &QAction::triggered, this, [this, apply] {
        SetOptionalChecks(true);
        apply();
    });
    connect(m_hideAll, &QAction::triggered, this, [this, apply] {
        SetOptionalChecks(false);
        apply();
    });
    connect(m_resetLayout, &QAction::triggered, this, [this] {
        ChangeLists([this](int side) {
            ColumnLayout::LoadLayout(m_listings->list(side), side == 1, true);
        });
    });

    for (int side = 0; side < 2; ++side) {
        ListView *list = listings->list(side);
        connect(list, &ListView::columnMenuRequested, this,
                [this, list](const QPoint &position) { Open(list, position); });
    }
}

QAction *ColumnPopup::ColumnAction(int type) const {
    return type >= 1 && type <= ColumnTypeCount ? m_columns[size_t(type - 1)] : nullptr;
}

void ColumnPopup::SyncColumnMenu(const ListView *list) {
    for (int type = 1; type <= ColumnTypeCount; ++type)
        ColumnAction(type)->setChecked(!list->isColumnHidden(FileListModel::columnOf(type)));
}

void ColumnPopup::ApplyColumnMenu(ListView *list) {
    for (int type = 1; type <= ColumnTypeCount; ++type) {
        if (ColumnAction(type)->isChecked())
            ColumnLayout::ShowColumn(list, type, ColumnLayout::DefaultWidth(list, type));
        else
            list->setColumnHidden(FileListModel::columnOf(type), true);
    }
}

void ColumnPopup::Open(ListView *list, const QPoint &position) {
    SyncColumnMenu(list);
    m_tag = list;
    m_menu->popup(position);
}

void ColumnPopup::SetOptionalChecks(bool checked) {
    // Item 1, "Name", is never touched.
    for (int type = 2; type <= ColumnTypeCount; ++type)
        ColumnAction(type)->setChecked(checked);
}

void ColumnPopup::ChangeLists(const std::function<void(int side)> &change) {
    // Linked lists change together; otherwise only the list the menu was opened on.
    for (int side = 0; side < 2; ++side) {
        if (m_listings->isLinked() || m_tag == m_listings->list(side))
            change(side);
    }
}
