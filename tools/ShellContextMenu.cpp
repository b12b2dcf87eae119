#include "tools/ShellContextMenu.h"

#include "tools/DesktopActions.h"

#include <QCursor>
#include <QIcon>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>

namespace {

void reportFailure(QWidget *owner, const QString &text) {
    if (!text.isEmpty())
        QMessageBox::warning(owner, QStringLiteral("Pairscope"), text);
}

} // namespace

ShellContextMenu::ShellContextMenu(QObject *parent)
    : QObject(parent) {}

void ShellContextMenu::AddFile(const QByteArray &FileOrFolder) {
    if (!FileOrFolder.isEmpty() && !m_files.contains(FileOrFolder))
        m_files.append(FileOrFolder);
}

void ShellContextMenu::AddMenuItem(const QString &Caption, int ItemType, int ItemState,
                                   int ItemData) {
    if (ItemType & MFT_SEPARATOR)
        m_items.append({QString(), MFT_SEPARATOR, MFS_ENABLED, ItemData});
    else
        m_items.append({Caption, ItemType, ItemState, ItemData});
}

void ShellContextMenu::Clear() {
    m_files.clear();
    m_items.clear();
}

QMenu *ShellContextMenu::BuildMenu(QWidget *owner) {
    auto *menu = new QMenu(owner);
    QAction *ownDefault = nullptr;
    for (const Item &item : std::as_const(m_items)) {
        if (item.type & MFT_SEPARATOR) {
            menu->addSeparator();
            continue;
        }
        QAction *action = menu->addAction(item.caption);
        action->setEnabled((item.state & MFS_GRAYED) != MFS_GRAYED);
        if (item.state & MFS_DEFAULT)
            ownDefault = action;
        connect(action, &QAction::triggered, this,
                [this, caption = item.caption, data = item.data] {
                    Q_EMIT MenuItemInvoked(caption, data);
                });
    }
    if (!m_items.isEmpty() && !(m_items.last().type & MFT_SEPARATOR))
        menu->addSeparator();
    AddDesktopActions(menu, owner);
    // The desktop's default (Open) is bold only when the caller allows it and has no default
    // of its own.
    if (ownDefault)
        menu->setDefaultAction(ownDefault);
    else if (!m_useShellDefault)
        menu->setDefaultAction(nullptr);
    return menu;
}

void ShellContextMenu::AddDesktopActions(QMenu *menu, QWidget *owner) {
    const QList<QByteArray> files = m_files;
    QPointer<QWidget> parent = owner;

    QAction *open = menu->addAction(QStringLiteral("&Open"), menu, [files, parent] {
        QString error;
        if (!DesktopActions::Open(files, &error))
            reportFailure(parent, error);
    });
    menu->setDefaultAction(open);

    QMenu *openWith = menu->addMenu(QStringLiteral("Open &With"));
    for (const DesktopActions::Application &application : DesktopActions::ApplicationsFor(files)) {
        openWith->addAction(QIcon::fromTheme(application.iconName), application.name, menu,
                            [files, parent, id = application.id] {
                                QString error;
                                if (!DesktopActions::OpenWith(id, files, &error))
                                    reportFailure(parent, error);
                            });
    }
    // A desktop without applications for the type offers none.
    openWith->setEnabled(!openWith->isEmpty());

    menu->addSeparator();
    menu->addAction(QStringLiteral("Copy &Path"), menu,
                    [files] { DesktopActions::CopyPaths(files); });
    menu->addAction(QIcon::fromTheme(QStringLiteral("user-trash")),
                    QStringLiteral("Move to &Trash"), menu,
                    [files, parent] { reportFailure(parent, DesktopActions::MoveToTrash(files)); });
    menu->addSeparator();
    menu->addAction(QStringLiteral("P&roperties"), menu,
                    [files, parent] { DesktopActions::ShowProperties(parent, files); });
}

void ShellContextMenu::PopupMenu(QWidget *owner, int X, int Y) {
    if (m_files.isEmpty())
        return;
    const QPoint point = X == -1 && Y == -1 ? QCursor::pos() : QPoint(X, Y);
    QMenu *menu = BuildMenu(owner);
    menu->exec(point);
    delete menu;
}
