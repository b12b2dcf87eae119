#pragma once

#include <QByteArray>
#include <QIcon>

/**
 * How the program presents itself to the desktop: the id its desktop entry, metainfo and icon
 * are named by, and its icons, compiled in so that they are there however it was started.
 */
namespace DesktopIdentity {

/** The application id: the desktop entry is AppId + ".desktop", the icon is named AppId. */
inline constexpr char AppId[] = "org.pairscope.Pairscope";

/** The program's own icon. */
QIcon ProgramIcon();

/** The program's icon as the SVG file that is installed into the hicolor theme. */
QByteArray ProgramIconSvg();

/** The desktop entry that is installed, which names the program "pairscope" on the PATH. */
QByteArray ProgramEntry();

/** The name of the compiled-in icon theme of file type icons. */
inline constexpr char FallbackTheme[] = "pairscope-fallback";

/**
 * Gives every window the program's icon and makes the compiled-in file type icons the fallback
 * icon theme; where the desktop names no theme at all they become the theme (which inherits
 * hicolor). Call once the application object exists.
 */
void InstallIcons();

} // namespace DesktopIdentity
