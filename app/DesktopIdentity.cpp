#include "DesktopIdentity.h"

#include <QFile>
#include <QGuiApplication>

// Outside any namespace, as Q_INIT_RESOURCE requires: the resources live in a static library,
// whose unreferenced initialiser the linker would otherwise drop.
static void initResources() {
    Q_INIT_RESOURCE(DesktopIdentity);
}

namespace DesktopIdentity {

namespace {

QString resourcePath(const char *suffix) {
    initResources();
    return QStringLiteral(":/pairscope/%1%2").arg(QLatin1String(AppId), QLatin1String(suffix));
}

QByteArray resource(const char *suffix) {
    QFile file(resourcePath(suffix));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

QIcon ProgramIcon() {
    return QIcon(resourcePath(".svg"));
}

QByteArray ProgramIconSvg() {
    return resource(".svg");
}

QByteArray ProgramEntry() {
    return resource(".desktop");
}

void InstallIcons() {
    initResources();
    QGuiApplication::setWindowIcon(ProgramIcon());
    const QString themes = QStringLiteral(":/pairscope/icons");
    if (!QIcon::themeSearchPaths().contains(themes))
        QIcon::setThemeSearchPaths(QIcon::themeSearchPaths() << themes);
    // Qt consults the fallback theme only below a named theme: with no theme named (no desktop
    // recognised) every file would show the same blank page.
    QIcon::setFallbackThemeName(QLatin1String(FallbackTheme));
    if (QIcon::themeName().isEmpty())
        QIcon::setThemeName(QLatin1String(FallbackTheme));
}

} // namespace DesktopIdentity
