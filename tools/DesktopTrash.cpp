#include "tools/DesktopTrash.h"

#include <gio/gio.h>

namespace DesktopTrash {

bool moveToTrash(const QByteArray &nativePath, QString *error) {
    // GIO rather than QFile::moveToTrash: Qt 6.4's own version can drop the file into the
    // working folder when the data folder is missing and can loop when the trash is not
    // writable; GIO reports both as errors.
    GFile *file = g_file_new_for_path(nativePath.constData());
    GError *gerror = nullptr;
    const bool ok = g_file_trash(file, nullptr, &gerror);
    if (!ok && error)
        *error = gerror ? QString::fromUtf8(gerror->message)
                        : QStringLiteral("The trash refused the file.");
    if (gerror)
        g_error_free(gerror);
    g_object_unref(file);
    return ok;
}

} // namespace DesktopTrash
