#include "PathDropFilter.h"

#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>
#include <QWidget>

PathDropFilter::PathDropFilter(Accepts accepts, std::function<void(const QString &)> onDrop,
                               QObject *parent)
    : QObject(parent)
    , m_accepts(accepts)
    , m_onDrop(std::move(onDrop)) {}

void PathDropFilter::Attach(QWidget *root) {
    if (!root)
        return;
    root->setAcceptDrops(true);
    root->installEventFilter(this);
    for (QWidget *control : root->findChildren<QWidget *>()) {
        control->setAcceptDrops(true);
        control->installEventFilter(this);
    }
}

QString PathDropFilter::AcceptablePath(const QMimeData *data) const {
    if (!data || !data->hasUrls())
        return QString();
    const QList<QUrl> urls = data->urls();
    if (urls.isEmpty() || !urls.first().isLocalFile())
        return QString();
    const QString path = urls.first().toLocalFile();
    const QFileInfo info(path);
    const bool fits = m_accepts == Accepts::Folder ? info.isDir() : info.isFile();
    return fits ? path : QString();
}

bool PathDropFilter::eventFilter(QObject *watched, QEvent *event) {
    const QEvent::Type type = event->type();
    if (type != QEvent::DragEnter && type != QEvent::DragMove && type != QEvent::Drop)
        return QObject::eventFilter(watched, event);
    auto *drop = static_cast<QDropEvent *>(event);
    if (!drop->mimeData() || !drop->mimeData()->hasUrls())
        return false;

    const QString path = AcceptablePath(drop->mimeData());
    if (path.isEmpty()) {
        drop->setDropAction(Qt::IgnoreAction);
        drop->ignore();
        return true;
    }
    drop->setDropAction(Qt::CopyAction);
    drop->accept();
    if (type == QEvent::Drop && m_onDrop)
        m_onDrop(path);
    return true;
}
