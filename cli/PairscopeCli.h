#pragma once

#include <QByteArray>
#include <QList>

#include <cstdio>

/** The whole of pairscope-cli: arguments in, report out, exit status back. */
class PairscopeCli {
public:
    /** Exit statuses, as `diff -q` has them. */
    enum ExitStatus {
        NoDifferences = 0,
        Differences = 1,
        Trouble = 2,
    };

    /**
     * Runs with \a arguments (those after the program name), writing the report to \a out and
     * progress and problems to \a err; returns the exit status.
     */
    static int run(const QList<QByteArray> &arguments, std::FILE *out = stdout,
                   std::FILE *err = stderr);
};
