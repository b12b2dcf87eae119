#pragma once

#include <QByteArray>
#include <QProcess>
#include <QStringList>

/** What one run of pairscope-cli gave. */
struct CliResult {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;

#ifdef PAIRSCOPE_CLI_PATH
    /**
     * Runs pairscope-cli with \a arguments and \a input on its standard input, started through
     * \a launcher if given, with \a environment ("NAME=value") added; exit code -1 when it hangs
     * or crashes.
     */
    static CliResult run(const QStringList &arguments, const QByteArray &input = {},
                         const QStringList &environment = {}, const QStringList &launcher = {}) {
        QProcess process;
        QProcessEnvironment added = QProcessEnvironment::systemEnvironment();
        for (const QString &entry : environment)
            added.insert(entry.section(QLatin1Char('='), 0, 0), entry.section(QLatin1Char('='), 1));
        process.setProcessEnvironment(added);
        const QStringList command = launcher + QStringList{PAIRSCOPE_CLI_PATH} + arguments;
        process.start(command.first(), command.mid(1));
        process.write(input);
        process.closeWriteChannel();
        CliResult result;
        if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
            return result;
        result.exitCode = process.exitCode();
        result.out = process.readAllStandardOutput();
        result.err = process.readAllStandardError();
        return result;
    }
#endif
};
