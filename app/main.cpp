#include "app/Startup.h"
#include "app/frmMain.h"

#include <QApplication>

int main(int argc, char *argv[]) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Pairscope"));
    QApplication::setOrganizationName(QStringLiteral("Pairscope"));
    QApplication::setApplicationVersion(QStringLiteral(PAIRSCOPE_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("pairscope"));

    // The arguments as the shell gave them (Qt has taken its own out of argv): bytes, so that a
    // folder whose path is not valid UTF-8 keeps it.
    QList<QByteArray> arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QByteArray(argv[i]));
    Startup startup;
    if (!startup.Main(arguments))
        return 0;
    return app.exec();
}
