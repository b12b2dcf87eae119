#pragma once

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QTest>

/**
 * Runs the current test function (and data row) again in a child started through a launcher
 * (`setpriv` to drop privileges, `unshare` for a private mount namespace), for faults that root
 * cannot meet. The child sees PAIRSCOPE_TEST_CHILD=1 and runs the function's real body.
 */
namespace ChildRun {

inline bool isChild() {
    return qEnvironmentVariableIsSet("PAIRSCOPE_TEST_CHILD");
}

/** The launcher that runs a command as the unprivileged user "nobody". */
inline QStringList unprivileged() {
    return {QStringLiteral("setpriv"), QStringLiteral("--reuid=65534"),
            QStringLiteral("--regid=65534"), QStringLiteral("--clear-groups")};
}

/** Why \a launcher cannot run a child that writes the temporary folder (TMPDIR), or "". */
inline QString refusal(const QStringList &launcher) {
    const auto runs = [&launcher](const QStringList &command) {
        QProcess probe;
        probe.start(launcher.first(), launcher.mid(1) + command);
        return probe.waitForFinished(10000) && probe.exitStatus() == QProcess::NormalExit &&
               probe.exitCode() == 0;
    };
    const QString name = launcher.join(QLatin1Char(' '));
    if (!runs({QStringLiteral("true")}))
        return QStringLiteral("this needs `%1`, which is refused here").arg(name);
    if (!runs({QStringLiteral("test"), QStringLiteral("-w"), QDir::tempPath()}))
        return QStringLiteral("`%1` may not write the temporary folder %2 (set TMPDIR)")
            .arg(name, QDir::tempPath());
    return {};
}

/** Runs \a function through \a launcher; fails or skips as the child did, skips if refused. */
inline void run(const QStringList &launcher, const char *function) {
    if (const QString reason = refusal(launcher); !reason.isEmpty())
        QSKIP(qPrintable(reason));
    QString test = QString::fromLatin1(function);
    if (const char *tag = QTest::currentDataTag())
        test += QLatin1Char(':') + QString::fromUtf8(tag);
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PAIRSCOPE_TEST_CHILD"), QStringLiteral("1"));
    child.setProcessEnvironment(environment);
    child.setProcessChannelMode(QProcess::MergedChannels);
    child.start(launcher.first(),
                launcher.mid(1) + QStringList{QCoreApplication::applicationFilePath(), test});
    QVERIFY(child.waitForFinished(240000));
    const QByteArray output = child.readAll();
    const bool failed = child.exitStatus() != QProcess::NormalExit || child.exitCode() != 0;
    if (failed || output.contains("SKIP   :"))
        qWarning("%s", output.constData());
    if (failed)
        QFAIL("the test failed in the child process");
    if (output.contains("SKIP   :"))
        QSKIP("skipped in the child process");
}

} // namespace ChildRun
