#include "app/CommandLine.h"
#include "app/DesktopIdentity.h"
#include "app/Startup.h"
#include "app/frmMain.h"

#include <QApplication>

#include <cstdio>

namespace {

/** Writes \a text to \a stream; false when it could not all be written. */
bool print(std::FILE *stream, const QString &text) {
    const QByteArray bytes = text.toLocal8Bit();
    return std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream) ==
               size_t(bytes.size()) &&
           std::fflush(stream) == 0;
}

} // namespace

int main(int argc, char *argv[]) {
    // The command line is read before the application object exists: that object needs a
    // display, and --help must work without one.
    QList<QByteArray> raw;
    for (int i = 1; i < argc; ++i)
        raw.append(QByteArray(argv[i]));
    const CommandLine command = CommandLine::parse(raw);
    switch (command.action) {
    case CommandLine::Action::Help:
        return print(stdout, CommandLine::usage()) ? 0 : 2;
    case CommandLine::Action::Version:
        return print(stdout, QStringLiteral("pairscope " PAIRSCOPE_VERSION "\n")) ? 0 : 2;
    case CommandLine::Action::Error:
        print(stderr,
              QStringLiteral("pairscope: %1\nTry 'pairscope --help' for more information.\n")
                  .arg(command.error));
        return 2;
    case CommandLine::Action::Run:
        break;
    }

    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Pairscope"));
    QApplication::setOrganizationName(QStringLiteral("Pairscope"));
    QApplication::setApplicationVersion(QStringLiteral(PAIRSCOPE_VERSION));
    QApplication::setDesktopFileName(QString::fromLatin1(DesktopIdentity::AppId));
    DesktopIdentity::InstallIcons();

    Startup startup;
    if (!startup.Main(command.folders))
        return 0;
    return app.exec();
}
