#pragma once

#include <QProcess>
#include <QStringList>
#include <QTest>

/**
 * Runs one test function again in a child process started through a launcher (`setpriv` to
 * drop privileges, `unshare` for a private mount namespace), for faults only another context
 * can make. The child sees PAIRSCOPE_TEST_CHILD=1 and runs the function's real body.
 */
namespace ChildRun {

/** True inside such a child. */
inline bool isChild() {
    return qEnvironmentVariableIsSet("PAIRSCOPE_TEST_CHILD");
}

/**
 * Runs \a function of this test executable through \a launcher and fails or skips the
 * current test as the child did. Skips with a message when the launcher itself is refused.
 */
inline void run(const QStringList &launcher, const char *function) {
    QProcess probe;
    probe.start(launcher.first(), launcher.mid(1) + QStringList{QStringLiteral("true")});
    if (!probe.waitForFinished(10000) || probe.exitStatus() != QProcess::NormalExit ||
        probe.exitCode() != 0)
        QSKIP(qPrintable(QStringLiteral("this needs `%1`, which is refused here")
                             .arg(launcher.join(QLatin1Char(' ')))));

    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PAIRSCOPE_TEST_CHILD"), QStringLiteral("1"));
    child.setProcessEnvironment(environment);
    child.setProcessChannelMode(QProcess::MergedChannels);
    child.start(launcher.first(),
                launcher.mid(1) + QStringList{QCoreApplication::applicationFilePath(),
                                              QString::fromLatin1(function)});
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
