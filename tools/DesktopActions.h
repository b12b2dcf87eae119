#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

class QWidget;

/**
 * The desktop's own actions on files, as a file manager offers them: open with the default
 * application or a chosen one (the applications GIO registers for the MIME type), copy the
 * paths, move to the trash, show the properties. Paths are native bytes.
 */
namespace DesktopActions {

/** An application that can open files, as the desktop registers it. */
struct Application {
    QString id;   ///< the desktop entry's id ("org.example.Viewer.desktop")
    QString name; ///< the name shown in menus
    QString iconName;
};

/** The MIME type of \a nativePath, from its name alone (the file is never opened). */
QString MimeType(const QByteArray &nativePath);

/** The applications that can open every one of \a files, the default one first. */
QList<Application> ApplicationsFor(const QList<QByteArray> &files);

/** Starts the application \a id on \a files; false with a reason when it cannot. */
bool OpenWith(const QString &id, const QList<QByteArray> &files, QString *error);

/** Opens each of \a files with its default application; false with a reason on a failure. */
bool Open(const QList<QByteArray> &files, QString *error);

/** Puts the paths on the clipboard: as text, one a line, and as file URLs. */
void CopyPaths(const QList<QByteArray> &files);

/**
 * Moves \a files to the trash; returns one line per file that could not be moved ("" when
 * all went).
 */
QString MoveToTrash(const QList<QByteArray> &files);

/**
 * Shows the properties of \a files in the file manager; where none answers, a message box over
 * \a owner gives the first file's name, folder, type, size, date and permissions.
 */
void ShowProperties(QWidget *owner, const QList<QByteArray> &files);

/** The text of that message box for \a nativePath. */
QString PropertiesText(const QByteArray &nativePath);

} // namespace DesktopActions
