#include "tools/FileManagerBus.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>

void CallFileManager(const QString &method, const QStringList &uris,
                     std::function<void()> onFailure) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        if (onFailure)
            onFailure();
        return;
    }
    QDBusMessage call =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.FileManager1"),
                                       QStringLiteral("/org/freedesktop/FileManager1"),
                                       QStringLiteral("org.freedesktop.FileManager1"), method);
    call << uris << QString();
    // Asynchronous: a file manager started by the call may take a while to answer, and the
    // window must stay live meanwhile.
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, 10000), qApp);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, qApp,
                     [watcher, onFailure = std::move(onFailure)] {
                         if (watcher->isError() && onFailure)
                             onFailure();
                         watcher->deleteLater();
                     });
}
