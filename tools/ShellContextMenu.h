#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>

class QMenu;
class QWidget;

/**
 * The popup for files in a listing: the program's own items on top, then the desktop's
 * actions for the files: Open (default application), Open With (the applications the desktop
 * registers for the files' type), Copy Path, Move to Trash, Properties. Picking an own item
 * raises MenuItemInvoked; the desktop's actions run by themselves.
 */
class ShellContextMenu : public QObject {
    Q_OBJECT

public:
    /** @name Item types and states (the values of the platform's menu structures) */
    ///@{
    static constexpr int MFT_STRING = 0;
    static constexpr int MFT_SEPARATOR = 0x800;
    static constexpr int MFS_ENABLED = 0;
    static constexpr int MFS_GRAYED = 3;
    static constexpr int MFS_DEFAULT = 0x1000;
    ///@}

    explicit ShellContextMenu(QObject *parent = nullptr);

    /** Whether the desktop's default action (Open) may be shown as the menu's default. */
    bool UseShellDefault() const { return m_useShellDefault; }
    void SetUseShellDefault(bool on) { m_useShellDefault = on; }

    /** Adds a file (native path) to act on; a path added before is ignored. */
    void AddFile(const QByteArray &FileOrFolder);
    /**
     * Appends an own item: a separator when \a ItemType has the MFT_SEPARATOR bit, else an
     * item with \a Caption, grayed when \a ItemState has MFS_GRAYED, the menu's default when it
     * has MFS_DEFAULT. \a ItemData comes back with MenuItemInvoked.
     */
    void AddMenuItem(const QString &Caption, int ItemType, int ItemState, int ItemData);
    /** Forgets the files and the own items. */
    void Clear();

    const QList<QByteArray> &Files() const { return m_files; }
    int OwnItemCount() const { return int(m_items.size()); }

    /**
     * Builds the menu, owned by \a owner: the own items, a separator, then the desktop's
     * actions. Picking an item of the returned menu does what PopupMenu() would.
     */
    QMenu *BuildMenu(QWidget *owner);

    /**
     * Shows the menu over \a owner at the global point (\a X, \a Y), or at the cursor when
     * both are -1, and returns when it closes. Shows nothing when no file was added.
     */
    void PopupMenu(QWidget *owner, int X, int Y);

Q_SIGNALS:
    /** The user picked the own item with \a Caption and \a ItemData. */
    void MenuItemInvoked(const QString &Caption, int ItemData);

private:
    struct Item {
        QString caption;
        int type = MFT_STRING;
        int state = MFS_ENABLED;
        int data = 0;
    };
    void AddDesktopActions(QMenu *menu, QWidget *owner);

    QList<QByteArray> m_files;
    QList<Item> m_items;
    bool m_useShellDefault = false;
};
