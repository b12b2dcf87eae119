#include "views/ColumnPopup.h"

#include "views/ColumnLayout.h"
#include "views/LinkedListings.h"
#include "views/ListColumns.h"
#include "views/ListHelpers.h"
#include "views/ListView.h"

#include <QMenu>

#include <vector>

ColumnPopup::ColumnPopup(LinkedListings *listings, QWidget *parent)
    : QObject(parent)
    , m_listings(listings)
    , m_menu(new QMenu(parent)) {
    for (int type = 1; type <= ColumnTypeCount; ++type) {
        QAction *action = m_menu->addAction(ColumnCaption(type));
        action->setCheckable(true);
        // A click has already inverted the check when triggered() arrives.
        connect(action, &QAction::triggered, this, &ColumnPopup::apply);
        m_columns[size_t(type - 1)] = action;
    }
    m_columns[0]->setEnabled(false);
    m_menu->addSeparator();
    m_showAll = m_menu->addAction(tr("Show &All"));
    m_hideAll = m_menu->addAction(tr("&Hide All"));
    m_menu->addSeparator();
    m_resetLayout = m_menu->addAction(tr("&Reset Layout"));
    connect(m_showAll, &QAction::triggered, this, [this] {
        setOptionalChecks(true);
        apply();
    });
    connect(m_hideAll, &QAction::triggered, this, [this] {
        setOptionalChecks(false);
        apply();
    });
    connect(m_resetLayout, &QAction::triggered, this, &ColumnPopup::resetLayout);

    for (int side = 0; side < 2; ++side) {
        ListView *list = listings->list(side);
        connect(list, &ListView::ColumnMenuRequested, this,
                [this, list](const QPoint &position) { Open(list, position); });
    }
}

QAction *ColumnPopup::columnAction(int type) const {
    return type >= 1 && type <= ColumnTypeCount ? m_columns[size_t(type - 1)] : nullptr;
}

void ColumnPopup::SyncColumnMenu(const ListView *list) {
    for (int type = 1; type <= ColumnTypeCount; ++type)
        columnAction(type)->setChecked(GetColumnByKey(list, ColumnKey(type)) != nullptr);
}

void ColumnPopup::ApplyColumnMenu(ListView *list) {
    for (int type = 1; type <= ColumnTypeCount; ++type) {
        const QString key = ColumnKey(type);
        const bool shown = GetColumnByKey(list, key) != nullptr;
        const bool checked = columnAction(type)->isChecked();
        if (shown && !checked)
            RemoveColumn(list, key);
        else if (!shown && checked)
            list->AddColumn(key, ColumnCaption(type), float(DefaultColumnWidth(type)));
    }
}

void ColumnPopup::Open(ListView *list, const QPoint &position) {
    SyncColumnMenu(list);
    m_tag = list;
    m_menu->popup(position);
}

void ColumnPopup::setOptionalChecks(bool checked) {
    // Item 1, "Name", is never touched.
    for (int type = 2; type <= ColumnTypeCount; ++type)
        columnAction(type)->setChecked(checked);
}

int ColumnPopup::sideOfTag() const {
    if (m_tag && m_tag == m_listings->list(0))
        return 0;
    if (m_tag && m_tag == m_listings->list(1))
        return 1;
    return -1;
}

void ColumnPopup::changeLists(const std::function<void(int side)> &change) {
    // Linked lists change together; otherwise only the list the menu was opened on.
    std::vector<int> sides;
    if (m_listings->isLinked())
        sides = {0, 1};
    else if (const int side = sideOfTag(); side >= 0)
        sides = {side};
    for (int side : sides)
        change(side);
    for (int side : sides)
        Q_EMIT UpdateListView(side);
}

void ColumnPopup::apply() {
    changeLists([this](int side) { ApplyColumnMenu(m_listings->list(side)); });
}

void ColumnPopup::resetLayout() {
    changeLists(
        [this](int side) { ColumnLayout::LoadLayout(m_listings->list(side), side == 1, true); });
}
