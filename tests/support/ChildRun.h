#pragma once

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QStringList>
#include <QTest>

/**
 * Runs one test function again in a child process started through a launcher (`setpriv` to
 * drop privileges, `unshare` for a private mount namespace), for faults only another context
 * can make: root reads and writes everything. The child sees PAIRSCOPE_TEST_CHILD=1 and runs
 * the function's real body, for the current data row only.
 */
namespace ChildRun {

/** True inside such a child. */
inline bool isChild() {
    return qEnvironmentVariableIsSet("PAIRSCOPE_TEST_CHILD");
}

/** The launcher that runs a command as the unprivileged user "nobody". */
inline QStringList unprivileged() {
    return {QStringLiteral("setpriv"), QStringLiteral("--reuid=65534"),
            QStringLiteral("--regid=65534"), QStringLiteral("--clear-groups")};
}

/**
 * Why \a launcher cannot run a child here, or an empty text when it can: the launcher itself
 * may be refused, or the user it runs as may not write the temporary folder (TMPDIR), where
 * every test tree is made.
 */
inline QString refusal(const QStringList &launcher) {
    const QString temporary = QDir::tempPath();
    const auto runs = [&launcher](const QStringList &command) {
        QProcess probe;
        probe.start(launcher.first(), launcher.mid(1) + command);
        return probe.waitForFinished(10000) && probe.exitStatus() == QProcess::NormalExit &&
               probe.exitCode() == 0;
    };
    if (!runs({QStringLiteral("true")}))
        return QStringLiteral("this needs `%1`, which is refused here")
            .arg(launcher.join(QLatin1Char(' ')));
    if (!runs({QStringLiteral("test"), QStringLiteral("-w"), temporary}))
        return QStringLiteral("`%1` may not write the temporary folder %2 (set TMPDIR)")
            .arg(launcher.join(QLatin1Char(' ')), temporary);
    return {};
}

/**
 * Runs \a function of this test executable through \a launcher and fails or skips the
 * current test as the child did. Skips with a message when the launcher is refused.
 */
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
    if (child.exitStatus() != QProcess::NormalExit || child.exitCode() != 0) {
        qWarning("%s", output.constData());
        QFAIL("the test failed in the child process");
    }
    if (output.contains("SKIP   :")) {
        qWarning("%s", output.constData());
        QSKIP("skipped in the child process");
    }
}

} // namespace ChildRun
