#pragma once

#include <QObject>
#include <QString>

#include <array>
#include <memory>

class ComparisonFileCollection;
class ListView;
class MainMenuBar;
class QPoint;
class ShellContextMenu;
class frmMain;

/**
 * The main window's file tools: the Tools menu (Open Containing Folder, Examine Differences,
 * Copy to Source, Copy to Destination), File > Select Diff Program..., and the right-click
 * popup and double click of both listings.
 *
 * The Tools items act on the listing that has the focus. Their enabled states, and the command
 * of Open Containing Folder, are computed whenever the menu opens and again before a popup's
 * own item runs, so that a command never acts on a selection it was not enabled for. The diff
 * program in use is kept here, read from the settings (LoadDiffProgram()) and changed by the
 * Select Diff Program dialog.
 */
class ToolsCommands : public QObject {
    Q_OBJECT

public:
    /** Connects the Tools and File items of \a menus and both \a lists of \a window. */
    ToolsCommands(frmMain *window, const MainMenuBar &menus,
                  const std::array<ListView *, 2> &lists);
    ~ToolsCommands() override;

    /** Reads the diff program in use from the settings (see ::LoadDiffProgram()). */
    void LoadDiffProgram();

    /**
     * Computes the four Tools items' enabled states for the focused listing and keeps Open
     * Containing Folder's command for it. While a compare runs the two copy items
     * stay disabled: a copy would change a tree the run is reading, from a listing that is
     * not complete yet.
     */
    void mnuTools_Click();

    /** Opens the file manager on the kept command's item; nothing when it is empty. */
    void mnuToolsOpenContainingFolder_Click();
    /** Starts the diff program on the focused listing's selected row and its counterpart. */
    void mnuToolsDiff_Click();
    /** Reviews, then copies the destination listing's selected files into the source tree. */
    void mnuToolsCopyToSource_Click();
    /** Reviews, then copies the source listing's selected files into the destination tree. */
    void mnuToolsCopyToDest_Click();

    /**
     * A double click on a row of listing \a side: a file on both sides is examined in the diff
     * program, a file on one side only is opened.
     */
    void lvwFiles_DblClick(int side);

    /**
     * The right-click in listing \a side at the global point \a globalPosition: "No valid files
     * selected", the Tools menu, or the desktop's menu with the window's own items on top.
     */
    void ShowListingPopup(int side, const QPoint &globalPosition);
    /**
     * Runs the popup's own item \a itemData (a ListingPopupItem) after refreshing the Tools
     * state, and only when the matching Tools item is enabled.
     */
    void oContextMenu_MenuItemInvoked(int itemData);

private:
    const ComparisonFileCollection &Collection(int side) const;

    frmMain *m_window;
    const MainMenuBar &m_menus;
    std::array<ListView *, 2> m_lists;
    /** The diff program in use; "" when none is chosen or it no longer exists. */
    QString m_diffProgram;
    /** Open Containing Folder's command for the selection of m_side ("" to do nothing). */
    QString m_folderCommand;
    /** The listing the Tools state was last computed for (-1: none had the focus). */
    int m_side = -1;
    /** The popup of the last right-click, kept until the next one. */
    std::unique_ptr<ShellContextMenu> oContextMenu;
    /** Stands in for a side that has no collection yet (before the first compare). */
    std::unique_ptr<ComparisonFileCollection> m_noFiles;
};
