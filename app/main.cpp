#include "app/Startup.h"
#include "app/frmMain.h"

#include <QApplication>

int main(int argc, char *argv[]) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Pairscope"));
    QApplication::setOrganizationName(QStringLiteral("Pairscope"));
    QApplication::setApplicationVersion(QStringLiteral(PAIRSCOPE_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("pairscope"));

    QStringList arguments = QApplication::arguments();
    arguments.removeFirst();
    Startup startup;
    if (!startup.Main(arguments))
        return 0;
    return app.exec();
}
