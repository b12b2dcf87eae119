#pragma once

#include <QByteArray>
#include <QString>

/**
 * Something a comparison could not take in: a folder whose entries could not be read or
 * reached, or a file left unpaired because a name on the other side differs from it only in
 * letter case where a folder cannot tell the two apart. The run records it and goes on.
 */
struct CollectionProblem {
    enum class Kind {
        /** The folder (or the root) could not be opened, listed or entered. */
        UnreadableFolder,
        /** A file whose name differs only in letter case from one it could not be paired with. */
        CaseTwin,
        /** A file whose contents could not be read for its checksum. */
        UnreadableFile,
        /** The trees kept changing under the comparison; no path. */
        KeptChanging,
    };

    Kind kind = Kind::UnreadableFolder;
    /** The path for display. */
    QString path;
    /** The path as bytes. */
    QByteArray nativePath;
    /** Why, in words: the system's error text, or the name of the file that was kept. */
    QString reason;

    /** "PATH: REASON" (the reason alone without a path), for a list. */
    QString toString() const {
        return path.isEmpty() ? reason : path + QLatin1String(": ") + reason;
    }
};
