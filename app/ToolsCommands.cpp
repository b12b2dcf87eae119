#include "ToolsCommands.h"

#include "MainMenuBar.h"
#include "frmMain.h"

#include "engine/ComparisonFileCollection.h"
#include "tools/DiffProgram.h"
#include "tools/ListingPopup.h"
#include "tools/RowDoubleClick.h"
#include "tools/ShellContextMenu.h"
#include "tools/ShowInFolder.h"
#include "tools/Synchronizer.h"
#include "tools/ToolsMenuState.h"
#include "views/ListView.h"

#include <QAction>
#include <QMenu>
#include <QTimer>

ToolsCommands::ToolsCommands(frmMain *window, const MainMenuBar &menus,
                             const std::array<ListView *, 2> &lists)
    : m_window(window)
    , m_menus(menus)
    , m_lists(lists)
    , m_noFiles(std::make_unique<ComparisonFileCollection>()) {
    const MainMenuBar &m = menus;
    connect(m.mnuTools, &QMenu::aboutToShow, this, &ToolsCommands::mnuTools_Click);
    connect(m.mnuToolsOpenContainingFolder, &QAction::triggered, this,
            &ToolsCommands::mnuToolsOpenContainingFolder_Click);
    connect(m.mnuToolsDiff, &QAction::triggered, this, &ToolsCommands::mnuToolsDiff_Click);
    connect(m.mnuToolsCopyToSource, &QAction::triggered, this,
            &ToolsCommands::mnuToolsCopyToSource_Click);
    connect(m.mnuToolsCopyToDest, &QAction::triggered, this,
            &ToolsCommands::mnuToolsCopyToDest_Click);
    connect(m.mnuFileSelectDiff, &QAction::triggered, this,
            [this] { m_diffProgram = SelectDiffProgram(m_window, m_diffProgram); });

    for (int side = 0; side < 2; ++side) {
        ListView *list = lists[size_t(side)];
        // The menu key opens the popup as a right-click does.
        list->setContextMenuPolicy(Qt::CustomContextMenu);
        connect(list, &QWidget::customContextMenuRequested, this,
                [this, list, side](const QPoint &position) {
                    ShowListingPopup(side, list->viewport()->mapToGlobal(position));
                });
        connect(list, &QAbstractItemView::doubleClicked, this,
                [this, side] { lvwFiles_DblClick(side); });
    }
    mnuTools_Click();
}

ToolsCommands::~ToolsCommands() = default;

void ToolsCommands::LoadDiffProgram() {
    m_diffProgram = ::LoadDiffProgram();
}

const ComparisonFileCollection &ToolsCommands::Collection(int side) const {
    const ComparisonFileCollection *files = m_window->Files(side);
    return files ? *files : *m_noFiles;
}

void ToolsCommands::mnuTools_Click() {
    const MainMenuBar &m = m_menus;
    m_side = m_window->ActiveSide();
    const ListView *list = m_side < 0 ? nullptr : m_lists[size_t(m_side)];
    const ToolsMenuState state =
        ToolsMenuState::Compute(m_side, list ? list->selectedCount() : 0, !m_diffProgram.isEmpty());
    const bool copyAllowed = !m_window->IsComparing();
    m.mnuToolsOpenContainingFolder->setEnabled(state.openContainingFolder);
    m.mnuToolsDiff->setEnabled(state.examineDifferences);
    m.mnuToolsCopyToSource->setEnabled(state.copyToSource && copyAllowed);
    m.mnuToolsCopyToDest->setEnabled(state.copyToDestination && copyAllowed);
    m_folderCommand = list ? ShowInFolder::CommandForSelection(list) : QString();
}

void ToolsCommands::mnuToolsOpenContainingFolder_Click() {
    ShowInFolder::OpenContainingFolder(m_folderCommand);
}

void ToolsCommands::mnuToolsDiff_Click() {
    if (m_side < 0)
        return;
    ExamineDifferences(m_window, m_diffProgram, m_lists[size_t(m_side)], m_side, Collection(0),
                       Collection(1));
}

void ToolsCommands::mnuToolsCopyToSource_Click() {
    ShowSynchronizer(m_window, SyncDirection::ToSource, m_lists[1], Collection(1), Collection(0));
}

void ToolsCommands::mnuToolsCopyToDest_Click() {
    ShowSynchronizer(m_window, SyncDirection::ToDestination, m_lists[0], Collection(0),
                     Collection(1));
}

void ToolsCommands::lvwFiles_DblClick(int side) {
    RowDoubleClick(m_window, m_diffProgram, m_lists[size_t(side)], side, Collection(0),
                   Collection(1));
}

void ToolsCommands::ShowListingPopup(int side, const QPoint &globalPosition) {
    const MainMenuBar &m = m_menus;
    // The previous popup goes first: a right-click never leaves two of them alive.
    oContextMenu.reset();
    oContextMenu =
        ::ShowListingPopup(m_lists[size_t(side)], side, !m_diffProgram.isEmpty(), m.mnuBadItemPopup,
                           m.mnuTools, globalPosition, [this](const QString &, int itemData) {
                               // Run once the popup has closed and its stack has unwound, so that
                               // the review dialog or a message box is not opened from inside the
                               // menu's own event loop.
                               QTimer::singleShot(0, this, [this, itemData] {
                                   oContextMenu_MenuItemInvoked(itemData);
                               });
                           });
}

void ToolsCommands::oContextMenu_MenuItemInvoked(int itemData) {
    mnuTools_Click();
    const MainMenuBar &m = m_menus;
    switch (itemData) {
    case ListingPopupItem::OpenContainingFolder:
        if (m.mnuToolsOpenContainingFolder->isEnabled())
            mnuToolsOpenContainingFolder_Click();
        break;
    case ListingPopupItem::CopyToSource:
        if (m.mnuToolsCopyToSource->isEnabled())
            mnuToolsCopyToSource_Click();
        break;
    case ListingPopupItem::CopyToDestination:
        if (m.mnuToolsCopyToDest->isEnabled())
            mnuToolsCopyToDest_Click();
        break;
    case ListingPopupItem::ExamineDifferences:
        if (m.mnuToolsDiff->isEnabled())
            mnuToolsDiff_Click();
        break;
    default:
        break;
    }
}
