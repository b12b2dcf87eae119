#pragma once

#include <QCoreApplication>
#include <QProcess>
#include <QString>

/**
 * Runs this test program again as an unprivileged user with \a variable set to \a value, so
 * that its main() does one job and prints the outcome. Returns what it printed, with standard
 * error appended when it failed; \a ok tells whether it ran and exited with 0.
 */
inline QString runUnprivileged(const char *variable, const QString &value, bool *ok) {
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QLatin1String(variable), value);
    child.setProcessEnvironment(environment);
    child.start(QStringLiteral("setpriv"),
                {QStringLiteral("--reuid=65534"), QStringLiteral("--regid=65534"),
                 QStringLiteral("--clear-groups"), QCoreApplication::applicationFilePath()});
    *ok = child.waitForFinished(30000) && child.exitStatus() == QProcess::NormalExit &&
          child.exitCode() == 0;
    QString output = QString::fromUtf8(child.readAllStandardOutput());
    if (!*ok)
        output += QString::fromUtf8(child.readAllStandardError());
    return output;
}
