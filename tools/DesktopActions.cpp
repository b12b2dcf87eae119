#include "tools/DesktopActions.h"

#include "tools/DesktopTrash.h"
#include "tools/FileManagerBus.h"
#include "tools/ShowInFolder.h"

#include <QApplication>
#include <QClipboard>
#include <QDateTime>
#include <QDesktopServices>
#include <QFile>
#include <QLocale>
#include <QMessageBox>
#include <QMimeData>
#include <QMimeDatabase>
#include <QPointer>
#include <QUrl>

#include <gio/gio.h>
#include <sys/stat.h>

namespace DesktopActions {

namespace {

QString fromGlib(const char *text) {
    return text ? QString::fromUtf8(text) : QString();
}

/** Takes a GError's message and frees it. */
QString takeError(GError *error, const QString &otherwise) {
    if (!error)
        return otherwise;
    const QString message = fromGlib(error->message);
    g_error_free(error);
    return message;
}

/** The GIO application with \a id among those for \a type, or null; the caller unrefs it. */
GAppInfo *findApplication(const QString &type, const QString &id) {
    GList *all = g_app_info_get_all_for_type(type.toUtf8().constData());
    GAppInfo *found = nullptr;
    for (GList *node = all; node; node = node->next) {
        auto *info = static_cast<GAppInfo *>(node->data);
        if (!found && fromGlib(g_app_info_get_id(info)) == id)
            found = G_APP_INFO(g_object_ref(info));
    }
    g_list_free_full(all, g_object_unref);
    return found;
}

bool launch(GAppInfo *info, const QList<QByteArray> &files, QString *error) {
    GList *list = nullptr;
    for (const QByteArray &file : files)
        list = g_list_append(list, g_file_new_for_path(file.constData()));
    GError *gerror = nullptr;
    const bool ok = g_app_info_launch(info, list, nullptr, &gerror);
    g_list_free_full(list, g_object_unref);
    if (!ok && error)
        *error = takeError(gerror, QStringLiteral("The application could not be started."));
    else if (gerror)
        g_error_free(gerror);
    return ok;
}

QString iconNameOf(GAppInfo *info) {
    GIcon *icon = g_app_info_get_icon(info);
    if (!icon || !G_IS_THEMED_ICON(icon))
        return QString();
    const gchar *const *names = g_themed_icon_get_names(G_THEMED_ICON(icon));
    return names && names[0] ? fromGlib(names[0]) : QString();
}

} // namespace

QString MimeType(const QByteArray &nativePath) {
    struct stat st {};
    if (::lstat(nativePath.constData(), &st) == 0 && S_ISDIR(st.st_mode))
        return QStringLiteral("inode/directory");
    static const QMimeDatabase database;
    return database.mimeTypeForFile(QFile::decodeName(nativePath), QMimeDatabase::MatchExtension)
        .name();
}

QList<Application> ApplicationsFor(const QList<QByteArray> &files) {
    if (files.isEmpty())
        return {};
    QStringList types;
    for (const QByteArray &file : files) {
        const QString type = MimeType(file);
        if (!types.contains(type))
            types.append(type);
    }
    // The applications of the first type that every other type has too.
    QList<Application> applications;
    GAppInfo *preferred =
        g_app_info_get_default_for_type(types.first().toUtf8().constData(), FALSE);
    const QString preferredId = preferred ? fromGlib(g_app_info_get_id(preferred)) : QString();
    if (preferred)
        g_object_unref(preferred);
    GList *all = g_app_info_get_all_for_type(types.first().toUtf8().constData());
    for (GList *node = all; node; node = node->next) {
        auto *info = static_cast<GAppInfo *>(node->data);
        if (!g_app_info_should_show(info))
            continue;
        const QString id = fromGlib(g_app_info_get_id(info));
        bool everyType = true;
        for (qsizetype t = 1; t < types.size() && everyType; ++t) {
            GAppInfo *other = findApplication(types[t], id);
            everyType = other != nullptr;
            if (other)
                g_object_unref(other);
        }
        if (!everyType)
            continue;
        const Application application{id, fromGlib(g_app_info_get_name(info)), iconNameOf(info)};
        if (id == preferredId)
            applications.prepend(application);
        else
            applications.append(application);
    }
    g_list_free_full(all, g_object_unref);
    return applications;
}

bool OpenWith(const QString &id, const QList<QByteArray> &files, QString *error) {
    if (files.isEmpty())
        return true;
    GAppInfo *info = findApplication(MimeType(files.first()), id);
    if (!info) {
        if (error)
            *error = QStringLiteral("The application is no longer installed.");
        return false;
    }
    const bool ok = launch(info, files, error);
    g_object_unref(info);
    return ok;
}

bool Open(const QList<QByteArray> &files, QString *error) {
    bool ok = true;
    for (const QByteArray &file : files) {
        GAppInfo *info =
            g_app_info_get_default_for_type(MimeType(file).toUtf8().constData(), FALSE);
        if (info) {
            ok = launch(info, {file}, error) && ok;
            g_object_unref(info);
        } else if (!QDesktopServices::openUrl(QUrl(ShowInFolder::FileUri(file)))) {
            if (error)
                *error = QStringLiteral("No application is set to open “%1”.")
                             .arg(QFile::decodeName(file));
            ok = false;
        }
    }
    return ok;
}

void CopyPaths(const QList<QByteArray> &files) {
    QStringList lines;
    QList<QUrl> urls;
    for (const QByteArray &file : files) {
        lines.append(QFile::decodeName(file));
        urls.append(QUrl(ShowInFolder::FileUri(file)));
    }
    auto *data = new QMimeData;
    data->setText(lines.join(QLatin1Char('\n')));
    data->setUrls(urls);
    QApplication::clipboard()->setMimeData(data);
}

QString MoveToTrash(const QList<QByteArray> &files) {
    QStringList failures;
    for (const QByteArray &file : files) {
        QString error;
        if (!DesktopTrash::moveToTrash(file, &error))
            failures.append(QStringLiteral("%1: %2").arg(QFile::decodeName(file), error));
    }
    return failures.join(QLatin1Char('\n'));
}

QString PropertiesText(const QByteArray &nativePath) {
    const QLocale locale;
    const qsizetype slash = nativePath.lastIndexOf('/');
    struct stat st {};
    if (::lstat(nativePath.constData(), &st) != 0)
        return QStringLiteral("“%1” no longer exists.").arg(QFile::decodeName(nativePath));
    const QDateTime modified = QDateTime::fromMSecsSinceEpoch(qint64(st.st_mtim.tv_sec) * 1000 +
                                                              st.st_mtim.tv_nsec / 1000000);
    return QStringLiteral("Name: %1\nFolder: %2\nType: %3\nSize: %4 bytes\nModified: %5\n"
                          "Permissions: %6")
        .arg(QFile::decodeName(nativePath.mid(slash + 1)),
             QFile::decodeName(slash > 0 ? nativePath.left(slash) : QByteArray("/")),
             QMimeDatabase().mimeTypeForName(MimeType(nativePath)).comment(),
             locale.toString(qint64(st.st_size)), locale.toString(modified, QLocale::LongFormat),
             QString::number(st.st_mode & 07777, 8).rightJustified(4, QLatin1Char('0')));
}

void ShowProperties(QWidget *owner, const QList<QByteArray> &files) {
    if (files.isEmpty())
        return;
    QStringList uris;
    for (const QByteArray &file : files)
        uris.append(ShowInFolder::FileUri(file));
    const QString fallbackText = PropertiesText(files.first());
    QPointer<QWidget> parent = owner;
    const auto fallback = [parent, fallbackText] {
        QMessageBox::information(parent, QStringLiteral("Pairscope"), fallbackText);
    };
    CallFileManager(QStringLiteral("ShowItemProperties"), uris, fallback);
}

} // namespace DesktopActions
