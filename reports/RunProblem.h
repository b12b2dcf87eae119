#pragma once

#include <QByteArray>
#include <QString>

/** Something a run could not compare, as standard error and the json report tell it. */
struct RunProblem {
    /** The path it concerns, as bytes; empty when it concerns the whole run. */
    QByteArray path;
    /** Why, in words. */
    QString reason;

    /**
     * "PATH: REASON" (or the reason alone), escaped as tsv escapes names so that it stays one
     * line and the path keeps its own bytes.
     */
    QByteArray line() const;
};
