#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>
#include <memory>

class ListView;
class QMenu;
class QPoint;
class ShellContextMenu;

/** The item data of the own items in a listing's popup. */
namespace ListingPopupItem {
inline constexpr int OpenContainingFolder = 1;
inline constexpr int CopyToSource = 2;
inline constexpr int CopyToDestination = 3;
inline constexpr int ExamineDifferences = 4;
} // namespace ListingPopupItem

/** What a right-click in a listing shows. */
struct ListingSelection {
    enum Kind {
        NoValidFiles, ///< nothing selected: the single "No valid files selected" item
        ToolsMenu,    ///< a selection the desktop cannot take as one: the Tools menu
        ShellMenu,    ///< ShellContextMenu for files
    };
    Kind kind = NoValidFiles;
    /** For ShellMenu: the real paths of the selected rows that are files (not folders). */
    QList<QByteArray> files;

    /**
     * Judges the selection of \a listing. The desktop
     * builds one menu for items of one folder only, so every selected row must name an existing
     * file or folder and all of them must lie in the same folder (compared without regard to
     * case); otherwise the Tools menu is shown instead.
     */
    static ListingSelection Of(const ListView *listing);
};

/**
 * Adds the main window's own items for a click in listing \a side (0 source, 1 destination):
 * "Open Containing Folder", "Examine Differences" (grayed without a diff program), a separator,
 * "Copy To Source..." (grayed in the source listing), "Copy To Destination..." (grayed in the
 * destination listing), a separator.
 */
void AddListingItems(ShellContextMenu &menu, int side, bool diffProgramSet);

/**
 * The whole right-click in a listing: the listing takes the focus; with nothing selected
 * \a mnuBadItemPopup is shown, with a selection that fails the one-folder test \a mnuTools
 * (its enabling is the caller's, done when it opens); otherwise a new ShellContextMenu with
 * the own items and the selected files, whose own items call \a onItem(caption, item data).
 * Returns that menu (the caller keeps it until the next right-click), or null.
 */
std::unique_ptr<ShellContextMenu>
ShowListingPopup(ListView *listing, int side, bool diffProgramSet, QMenu *mnuBadItemPopup,
                 QMenu *mnuTools, const QPoint &globalPosition,
                 const std::function<void(const QString &caption, int itemData)> &onItem);
