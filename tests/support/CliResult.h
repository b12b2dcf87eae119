#pragma once

#include <QByteArray>
#include <QProcess>

/** What one run of a command-line program gave. */
struct CliResult {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;

    /** Waits for the started \a process to end; exit code -1 when it hangs or crashes. */
    static CliResult of(QProcess &process) {
        CliResult result;
        if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
            return result;
        result.exitCode = process.exitCode();
        result.out = process.readAllStandardOutput();
        result.err = process.readAllStandardError();
        return result;
    }
};
