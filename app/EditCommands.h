#pragma once

#include <QObject>
#include <QPointer>

#include <array>

class ListView;
class MainMenuBar;
class QWidget;

/**
 * The Edit menu of the main window: Select All and Clear Selections act on the listing that
 * has the keyboard focus, and are enabled by it. Select All is enabled while a listing has
 * the focus; Clear Selections while that listing has a selected row; with the focus
 * anywhere else both are disabled.
 *
 * The enabling is computed when the menu opens, and kept current while the focus or the
 * focused listing's selection changes, so that the items' shortcuts (Ctrl+A in a listing)
 * work without the menu having been opened.
 *
 * It has no parent: the window owns it and must release it before its menus and listings,
 * since a focus change while the window's children are being torn down would otherwise
 * reach items that are already gone.
 */
class EditCommands : public QObject {
    Q_OBJECT

public:
    /** Connects the Edit items of \a menus to \a lists, the listings of \a window. */
    EditCommands(const MainMenuBar &menus, const std::array<ListView *, 2> &lists, QWidget *window);

    /** The listing that has the keyboard focus within the window, or null. */
    ListView *ActiveList() const;
    /** The side (0 source, 1 destination) of ActiveList(), or -1 when neither has the focus. */
    int ActiveSide() const;

    /** Sets the two items' enabled states for the focused listing. */
    void mnuEdit_Click();
    /** Selects every row of the focused listing at once. */
    void mnuEditSelectAll_Click();
    /** Deselects the focused listing's selected rows. */
    void mnuEditClearSelections_Click();

private:
    const QWidget *ActiveControl() const;

    const MainMenuBar &m_menus;
    std::array<ListView *, 2> m_lists;
    QWidget *m_window;
    /** The control that had the focus before the menu bar took it for keyboard use. */
    QPointer<QWidget> m_beforeMenuBar;
};
