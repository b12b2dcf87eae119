#pragma once

#include <QObject>
#include <QString>

#include <functional>

class QMimeData;
class QWidget;

/**
 * Lets a dialog and every control on it take a folder (or a file) dragged from the desktop.
 * A drag is offered the copy action when its first item is an existing folder (or file);
 * anything else carrying items is refused, so an edit box never takes a dropped name as
 * text. Drags that carry no items (plain text) are left to the control.
 */
class PathDropFilter : public QObject {
    Q_OBJECT
public:
    /** What a drop must name to be taken. */
    enum class Accepts { Folder, File };

    PathDropFilter(Accepts accepts, std::function<void(const QString &)> onDrop,
                   QObject *parent = nullptr);

    /** Makes \a root and every control on it accept drops through this filter. */
    void Attach(QWidget *root);

    /** The local path of the drag's first item when it is acceptable, else "". */
    QString AcceptablePath(const QMimeData *data) const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    Accepts m_accepts;
    std::function<void(const QString &)> m_onDrop;
};
