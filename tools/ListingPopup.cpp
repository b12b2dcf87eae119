#include "tools/ListingPopup.h"

#include "engine/PathHelpers.h"
#include "tools/ShellContextMenu.h"
#include "views/ListView.h"

#include <QMenu>

#include <sys/stat.h>

ListingSelection ListingSelection::Of(const ListView *listing) {
    ListingSelection result;
    if (!listing)
        return result;
    bool any = false;
    QString folderKey;
    for (const ComparisonFilePtr &file : listing->selectedRecords()) {
        struct stat st {};
        const QByteArray path = file ? file->NativePath() : QByteArray();
        const QString parentKey =
            KeyFromNative(path.left(std::max<qsizetype>(path.lastIndexOf('/'), 1)));
        if (!file || ::lstat(path.constData(), &st) != 0 || (any && parentKey != folderKey)) {
            result.kind = ToolsMenu;
            result.files.clear();
            return result;
        }
        any = true;
        folderKey = parentKey;
        if (!S_ISDIR(st.st_mode))
            result.files.append(path);
    }
    result.kind = any ? ShellMenu : NoValidFiles;
    return result;
}

void AddListingItems(ShellContextMenu &menu, int side, bool diffProgramSet) {
    using M = ShellContextMenu;
    menu.AddMenuItem(QStringLiteral("Open Containing Folder"), M::MFT_STRING, M::MFS_ENABLED,
                     ListingPopupItem::OpenContainingFolder);
    if (diffProgramSet)
        menu.AddMenuItem(QStringLiteral("Examine Differences"), M::MFT_STRING, M::MFS_ENABLED,
                         ListingPopupItem::ExamineDifferences);
    else
        menu.AddMenuItem(QStringLiteral("Examine Differences"), M::MFT_STRING, M::MFS_GRAYED, 0);
    menu.AddMenuItem(QString(), M::MFT_SEPARATOR, 0, 0);
    menu.AddMenuItem(QStringLiteral("Copy To Source..."), M::MFT_STRING,
                     side == 1 ? M::MFS_ENABLED : M::MFS_GRAYED, ListingPopupItem::CopyToSource);
    menu.AddMenuItem(QStringLiteral("Copy To Destination..."), M::MFT_STRING,
                     side == 0 ? M::MFS_ENABLED : M::MFS_GRAYED,
                     ListingPopupItem::CopyToDestination);
    menu.AddMenuItem(QString(), M::MFT_SEPARATOR, 0, 0);
}

std::unique_ptr<ShellContextMenu>
ShowListingPopup(ListView *listing, int side, bool diffProgramSet, QMenu *mnuBadItemPopup,
                 QMenu *mnuTools, const QPoint &globalPosition,
                 const std::function<void(const QString &caption, int itemData)> &onItem) {
    if (!listing)
        return nullptr;
    listing->setFocus(Qt::PopupFocusReason);
    const ListingSelection selection = ListingSelection::Of(listing);
    if (selection.kind != ListingSelection::ShellMenu) {
        QMenu *popup =
            selection.kind == ListingSelection::NoValidFiles ? mnuBadItemPopup : mnuTools;
        if (popup)
            popup->exec(globalPosition);
        return nullptr;
    }
    auto menu = std::make_unique<ShellContextMenu>();
    AddListingItems(*menu, side, diffProgramSet);
    for (const QByteArray &file : selection.files)
        menu->AddFile(file);
    menu->SetUseShellDefault(true);
    if (onItem)
        QObject::connect(menu.get(), &ShellContextMenu::MenuItemInvoked, menu.get(), onItem);
    menu->PopupMenu(listing, globalPosition.x(), globalPosition.y());
    return menu;
}
