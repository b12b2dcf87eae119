#include "ListingShots.h"

#include "BenchWindow.h"

#include "app/frmMain.h"
#include "views/FileListModel.h"
#include "views/ListView.h"

#include <QDir>
#include <QPixmap>

#include <cstdio>

namespace {

struct Look {
    const char *name;
    bool allFiles;
    bool bold;
    bool fullPath;
    bool placeholders;
    int orientation;
};

constexpr Look looks[] = {
    {"differences", false, false, false, true, Options::VerticalOrientation},
    {"all-files-bold", true, true, false, true, Options::VerticalOrientation},
    {"full-paths", true, true, true, true, Options::VerticalOrientation},
    {"stacked", true, true, false, true, Options::HorizontalOrientation},
    {"no-placeholders", false, false, false, false, Options::HorizontalOrientation},
};

} // namespace

ListingShots::ListingShots(const QString &output, int comparisons)
    : m_output(output)
    , m_comparisons(comparisons) {}

int ListingShots::grab(const QString &source, const QString &destination) const {
    if (!QDir().mkpath(m_output))
        return 1;
    for (const QSize size : {QSize(1280, 800), QSize(640, 480)}) {
        for (const Look &look : looks) {
            BenchWindow::Setup setup;
            setup.view.allFiles = look.allFiles;
            setup.view.boldDifferences = look.bold;
            setup.view.fullPath = look.fullPath;
            setup.view.useMissingPlaceholders = look.placeholders;
            setup.orientation = look.orientation;
            setup.comparisons = m_comparisons;
            setup.size = size;
            BenchWindow bench(setup, source, destination);
            if (!bench.isReady())
                return 2;
            bench.compare();
            BenchWindow::settle(bench.window());
            const QString file = QStringLiteral("%1/%2-%3x%4.png")
                                     .arg(m_output, QLatin1String(look.name))
                                     .arg(size.width())
                                     .arg(size.height());
            if (!bench.window().grab().save(file))
                return 1;
            std::printf("%s: %d + %d rows, status '%s'\n", qPrintable(file),
                        bench.list(0)->files()->count(), bench.list(1)->files()->count(),
                        qPrintable(bench.statusText()));
        }
    }
    return 0;
}
