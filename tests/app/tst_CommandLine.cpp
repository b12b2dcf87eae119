#include "app/CommandLine.h"

#include <QProcess>
#include <QTest>

class tst_CommandLine : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void foldersPassOverQtOptions() {
        const CommandLine line = CommandLine::parse(
            {"-style", "fusion", "src", "-reverse", "--platform=xcb", "--", "-dst"});
        QCOMPARE(line.action, CommandLine::Action::Run);
        QCOMPARE(line.folders, (QList<QByteArray>{"src", "-dst"}));
    }
    void answersWithoutADisplay_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("out"); // what standard output starts with
        QTest::addColumn<QString>("err"); // what standard error starts with
        const QString version = QStringLiteral("pairscope " PAIRSCOPE_VERSION "\n");
        QTest::newRow("--help") << QStringList{"src", "--help"} << 0
                                << "Usage: pairscope [options] [SOURCE [DESTINATION]]\n"
                                << "";
        QTest::newRow("--version after a Qt option's value")
            << QStringList{"-style", "--help", "--version"} << 0 << version << "";
        QTest::newRow("an unknown option")
            << QStringList{"--frobnicate", "--help"} << 2 << ""
            << "pairscope: unknown option '--frobnicate'\nTry 'pairscope --help'";
        QTest::newRow("a Qt option without its value")
            << QStringList{"src", "-style"} << 2 << ""
            << "pairscope: option '-style' needs a value\n";
    }
    void answersWithoutADisplay() {
        QFETCH(QStringList, arguments);
        QFETCH(int, status);
        QFETCH(QString, out);
        QFETCH(QString, err);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            environment.remove(QString::fromLatin1(name));
        QProcess program;
        program.setProcessEnvironment(environment);
        program.start(QStringLiteral(PAIRSCOPE_PROGRAM), arguments);
        QVERIFY(program.waitForFinished(60000));
        const QString written = QString::fromLocal8Bit(program.readAllStandardOutput());
        const QString complaint = QString::fromLocal8Bit(program.readAllStandardError());
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        // A null text does not start with "": an expected empty text is compared as emptiness.
        QVERIFY2(out.isEmpty() ? written.isEmpty() : written.startsWith(out), qPrintable(written));
        QVERIFY2(err.isEmpty() ? complaint.isEmpty() : complaint.startsWith(err),
                 qPrintable(complaint));
        QCOMPARE(program.exitCode(), status);
    }
};

QTEST_GUILESS_MAIN(tst_CommandLine)
#include "tst_CommandLine.moc"
