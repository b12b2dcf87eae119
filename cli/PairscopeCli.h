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

    /** What run() does when it is done. */
    enum class Ending {
        Return,
        /**
         * Ends the process with the exit status, after flushing the streams. The system takes
         * back a process's memory at once; freeing the records of a large tree one by one
         * would only delay the end.
         */
        ExitProcess,
    };

    /**
     * Runs with \a arguments (those after the program name), writing the report to \a out and
     * progress and problems to \a err; returns the exit status.
     */
    static int run(const QList<QByteArray> &arguments, std::FILE *out = stdout,
                   std::FILE *err = stderr, Ending ending = Ending::Return);
};
