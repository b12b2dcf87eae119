#pragma once

#include <QByteArray>
#include <QString>

/**
 * Something a walk could not take into the comparison: a folder whose entries could not be
 * read, or a file dropped because another name in the same tree differs from it only in
 * letter case. The walk records it and goes on.
 */
struct CollectionProblem {
    enum class Kind {
        /** The folder (or the root) could not be opened or listed. */
        UnreadableFolder,
        /** Another file of the tree has the same key (a name differing only in letter case). */
        CaseDuplicate,
    };

    Kind kind = Kind::UnreadableFolder;
    /** The path for display. */
    QString path;
    /** The path as bytes. */
    QByteArray nativePath;
    /** Why, in words: the system's error text, or the name of the file that was kept. */
    QString reason;

    /** "PATH: REASON", one line for a list or standard error. */
    QString toString() const { return path + QLatin1String(": ") + reason; }
};
