#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

/**
 * What the command line asks of the window program. It is read before any window or display
 * exists, so that --help and --version work where there is no display at all.
 */
struct CommandLine {
    enum class Action { Run, Help, Version, Error };

    Action action = Action::Run;
    /**
     * The arguments that are not options, in order: the folders for the two path boxes, as
     * bytes, so that a path that is not valid UTF-8 keeps them.
     */
    QList<QByteArray> folders;
    /** For Error: what is wrong, in one line. */
    QString error;

    /**
     * Reads \a arguments (without the program's name). Qt's own window options (-style NAME,
     * -platform NAME, -reverse, ...) are passed over with their values, since the application
     * object takes them; any other option is an error. "--" ends the options.
     */
    static CommandLine parse(const QList<QByteArray> &arguments);

    /** The text --help prints. */
    static QString usage();
};
