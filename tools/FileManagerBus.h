#pragma once

#include <QStringList>

#include <functional>

/**
 * Calls the desktop's file manager over the session bus (org.freedesktop.FileManager1):
 * \a method ("ShowItems", "ShowItemProperties", ...) with \a uris and an empty startup id.
 * Returns at once; \a onFailure runs from the event loop when the bus has no file manager or
 * the call fails (at once when there is no session bus).
 */
void CallFileManager(const QString &method, const QStringList &uris,
                     std::function<void()> onFailure);
