#pragma once

#include <QObject>
#include <QPointer>

#include <array>
#include <functional>

class LinkedListings;
class ListView;
class QAction;
class QMenu;
class QPoint;
class QWidget;

/**
 * The menu a right-click on a listing's column header opens: one check item per column
 * type ("Name" always shown, so never switchable), then "Show All", "Hide All" and "Reset
 * Layout". A change applies to both listings while they are linked, otherwise to the list
 * whose header was clicked.
 */
class ColumnPopup : public QObject {
    Q_OBJECT

public:
    /** Builds the menu and opens it on a right-click on either list's header. */
    ColumnPopup(LinkedListings *listings, QWidget *parent);

    /** The menu (mnuColumnPopup). */
    QMenu *menu() const { return m_menu; }
    /** The check item of column type \a type (1..9); null outside. */
    QAction *ColumnAction(int type) const;
    QAction *showAllAction() const { return m_showAll; }
    QAction *hideAllAction() const { return m_hideAll; }
    QAction *resetLayoutAction() const { return m_resetLayout; }

    /** Checks exactly the items of the columns \a list shows. */
    void SyncColumnMenu(const ListView *list);
    /** Hides the columns whose items are unchecked and shows, at the right end, the others. */
    void ApplyColumnMenu(ListView *list);
    /** Syncs the menu with \a list, makes \a list its tag and shows it at \a position. */
    void Open(ListView *list, const QPoint &position);

private:
    void ChangeLists(const std::function<void(int side)> &change);
    void SetOptionalChecks(bool checked);

    LinkedListings *m_listings;
    QMenu *m_menu;
    std::array<QAction *, 9> m_columns{};
    QAction *m_showAll;
    QAction *m_hideAll;
    QAction *m_resetLayout;
    /** The list the menu was last opened on. */
    QPointer<ListView> m_tag;
};
