// gui-bench: drives the real main window on the offscreen platform and times what a user of
// the window waits for. bench/gui-bench.py runs it side by side with pairscope-cli.
//
// usage:
//   gui-bench compare [--all-files] [-c BITS] SOURCE DESTINATION
//       one compare from the click on Compare to the end of the run, then the window settled
//       and painted; how alive the window stayed meanwhile; the process's peak memory
//   gui-bench listings [-r ROUNDS] SOURCE DESTINATION
//       a compare with Show All Files on, then (each ROUNDS times, median printed) clicks on
//       the Size and Date Modified headers of the source list (both lists sort, linked) and
//       Show All Files turned off and on again
//   gui-bench stalls [-c BITS] SOURCE DESTINATION
//       with Show All Files on: a compare, a second compare, and each View toggle that changes
//       the listings (off, then on again); for each, the longest wait of the event loop from
//       the command until the window has finished and settled. Link File Listings is turned
//       on again with rows of the source list selected
//   gui-bench cancel [--key] [--after MS]... SOURCE DESTINATION
//       a compare cancelled MS after the click (one run per --after), by a mouse click on
//       Cancel or with --key by Esc; the cancel is posted from another thread as the window
//       system would post it, so the time until the event loop takes it counts
//   gui-bench make-tree FOLDER FILES [PER-FOLDER]
//       FILES empty files in folders of PER-FOLDER (default 1000) below FOLDER
//   gui-bench shots [-c BITS] OUTPUT SOURCE DESTINATION
//       pictures (PNG) of the window after a compare, one for each look of the listings a
//       user can choose (see ListingShots), written to the folder OUTPUT
//
// BITS is the comparison set (1 sizes, 2 modified, 4 created, 8 accessed, 16 attributes,
// 32 checksums); it must be one the combo offers by default: 3, 2, 0 or 31 (default 3).
// Every run uses a settings profile of its own in a temporary folder. Output is one
// "name value..." line per figure, for the script to read.
#include "BenchWindow.h"
#include "ListingShots.h"
#include "LivenessProbe.h"

#include "app/StatusText.h"
#include "app/frmMain.h"
#include "views/FileListModel.h"
#include "views/ListColumns.h"
#include "views/ListView.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

int usage() {
    std::fprintf(stderr, "usage: gui-bench compare [--all-files] [-c BITS] SOURCE DESTINATION\n"
                         "       gui-bench listings [-r ROUNDS] SOURCE DESTINATION\n"
                         "       gui-bench stalls [-c BITS] SOURCE DESTINATION\n"
                         "       gui-bench cancel [--key] [--after MS]... SOURCE DESTINATION\n"
                         "       gui-bench make-tree FOLDER FILES [PER-FOLDER]\n"
                         "       gui-bench shots [-c BITS] OUTPUT SOURCE DESTINATION\n");
    return 2;
}

/** The arguments after the mode: flags, then the two folders. */
struct Arguments {
    bool allFiles = false;
    bool key = false;
    int comparisons = 3;
    int rounds = 5;
    std::vector<int> after;
    QString output;
    QString source;
    QString destination;
};

bool parse(int argc, char **argv, Arguments &arguments) {
    QStringList folders;
    for (int i = 2; i < argc; ++i) {
        const bool hasValue = i + 1 < argc;
        if (std::strcmp(argv[i], "--all-files") == 0)
            arguments.allFiles = true;
        else if (std::strcmp(argv[i], "--key") == 0)
            arguments.key = true;
        else if (std::strcmp(argv[i], "-c") == 0 && hasValue)
            arguments.comparisons = std::atoi(argv[++i]);
        else if (std::strcmp(argv[i], "-r") == 0 && hasValue)
            arguments.rounds = std::max(1, std::atoi(argv[++i]));
        else if (std::strcmp(argv[i], "--after") == 0 && hasValue)
            arguments.after.push_back(std::max(0, std::atoi(argv[++i])));
        else if (argv[i][0] == '-')
            return false;
        else
            folders << QDir(QFile::decodeName(argv[i])).absolutePath();
    }
    // Screenshots name the folder for their pictures first.
    if (std::strcmp(argv[1], "shots") == 0 && !folders.isEmpty())
        arguments.output = folders.takeFirst();
    if (folders.size() != 2)
        return false;
    arguments.source = folders[0];
    arguments.destination = folders[1];
    return true;
}

/** CPU seconds (user and system) of \a who: RUSAGE_SELF or RUSAGE_THREAD. */
double cpuSeconds(int who) {
    rusage usage{};
    getrusage(who, &usage);
    const auto seconds = [](const timeval &t) {
        return double(t.tv_sec) + double(t.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

long peakResidentKb() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

void print(const char *name, const std::vector<double> &seconds) {
    std::printf("%s %.1f %.1f %.1f\n", name, median(seconds) * 1e3,
                *std::min_element(seconds.begin(), seconds.end()) * 1e3,
                *std::max_element(seconds.begin(), seconds.end()) * 1e3);
}

StatusText *statusTextOf(const frmMain &window) {
    return window.findChild<StatusText *>(QStringLiteral("StatusText"));
}

void printLiveness(const LivenessProbe &probe) {
    std::printf("list_paints %d\n", probe.watchedPaints());
    std::printf("loop_turns %d\nloop_gap_max_ms %.1f\nloop_gap_p99_ms %.1f\n", probe.turns(),
                probe.maxGapMs(), probe.gapPercentileMs(0.99));
    std::printf("loop_gap_max_during %s\n", qPrintable(probe.maxGapPhase()));
    std::printf("status_paints %d\nstatus_paint_interval_min_ms %.1f\n"
                "status_paint_interval_median_ms %.1f\n",
                probe.textPaints(), probe.minPaintIntervalMs(), probe.medianPaintIntervalMs());
    for (const LivenessProbe::Phase &phase : probe.phases())
        std::printf("phase_ms %.0f %s\n", phase.startMs, qPrintable(phase.name));
}

BenchWindow::Setup setupFor(const Arguments &arguments) {
    BenchWindow::Setup setup;
    setup.view.allFiles = arguments.allFiles;
    setup.comparisons = arguments.comparisons;
    return setup;
}

int compareMode(const Arguments &arguments) {
    BenchWindow bench(setupFor(arguments), arguments.source, arguments.destination);
    if (!bench.isReady())
        return usage();
    LivenessProbe probe(statusTextOf(bench.window()));
    for (ListView *list : {bench.list(0), bench.list(1)})
        probe.watchPaints(list->viewport());
    const double threadBefore = cpuSeconds(RUSAGE_THREAD);
    const double processBefore = cpuSeconds(RUSAGE_SELF);
    probe.start();
    const double run = bench.compare();
    probe.stop();
    const double settled = BenchWindow::settle(bench.window());
    std::printf("compare_s %.3f\nsettled_s %.3f\n", run, run + settled);
    // Against the wall time these tell waiting (or a busy machine) from work.
    std::printf("cpu_gui_thread_s %.3f\ncpu_process_s %.3f\n",
                cpuSeconds(RUSAGE_THREAD) - threadBefore, cpuSeconds(RUSAGE_SELF) - processBefore);
    std::printf("status %s\n", qPrintable(bench.statusText()));
    std::printf("rows %d %d\n", bench.list(0)->files()->count(), bench.list(1)->files()->count());
    printLiveness(probe);
    std::printf("maxrss_kb %ld\n", peakResidentKb());
    return 0;
}

int listingsMode(Arguments arguments) {
    arguments.allFiles = true;
    BenchWindow::Setup setup = setupFor(arguments);
    // Stacked panes give each list the window's width, as a user sorting wide lists would.
    setup.orientation = Options::HorizontalOrientation;
    setup.size = QSize(1600, 1000);
    BenchWindow bench(setup, arguments.source, arguments.destination);
    if (!bench.isReady())
        return usage();
    std::printf("compare_s %.3f\n", bench.compare() + BenchWindow::settle(bench.window()));
    std::printf("rows %d %d\n", bench.list(0)->files()->count(), bench.list(1)->files()->count());

    for (int type : {ColumnType::Size, ColumnType::DateModified}) {
        std::vector<double> seconds;
        for (int round = 0; round < arguments.rounds; ++round)
            seconds.push_back(bench.timed([&] { bench.clickHeader(0, type); }));
        print(type == ColumnType::Size ? "sort_size_ms" : "sort_modified_ms", seconds);
        // Linked lists sort together: the destination list must now be sorted on the same
        // column, or the figure timed one list only.
        std::printf("sorted_both %d\n",
                    bench.list(0)->sortType() == type && bench.list(1)->sortType() == type);
    }

    QAction *allFiles = nullptr;
    for (QAction *item : bench.window().findChildren<QAction *>())
        allFiles = item->text() == QLatin1String("Show A&ll Files") ? item : allFiles;
    std::vector<double> off;
    std::vector<double> on;
    int rowsOff = 0;
    for (int round = 0; round < arguments.rounds; ++round) {
        off.push_back(bench.timed([&] { allFiles->trigger(); }));
        rowsOff = bench.list(0)->files()->count() + bench.list(1)->files()->count();
        on.push_back(bench.timed([&] { allFiles->trigger(); }));
    }
    print("all_files_off_ms", off);
    print("all_files_on_ms", on);
    std::printf("rows_off_on %d %d\n", rowsOff,
                bench.list(0)->files()->count() + bench.list(1)->files()->count());
    std::printf("status %s\n", qPrintable(bench.statusText()));
    std::printf("maxrss_kb %ld\n", peakResidentKb());
    return 0;
}

/** Selects a block of a tenth of \a list's rows and every 1000th row, and focuses the block. */
void selectSome(ListView &list) {
    const int rows = list.files()->rowCount();
    std::vector<bool> selected(size_t(rows), false);
    for (int row = 0; row < rows; row += 1000)
        selected[size_t(row)] = true;
    std::fill_n(selected.begin() + rows / 2, rows / 10, true);
    list.setSelectedRows(selected);
    list.setFocusedRow(rows / 2);
}

int stallsMode(Arguments arguments) {
    arguments.allFiles = true;
    BenchWindow bench(setupFor(arguments), arguments.source, arguments.destination);
    if (!bench.isReady())
        return usage();
    frmMain &window = bench.window();
    LivenessProbe probe(statusTextOf(window));
    // Each command counts until its work is done, including work the window left to later
    // turns of the event loop, and the window has painted.
    const auto measure = [&](const char *name, const std::function<void()> &command) {
        probe.start();
        const qint64 start = BenchWindow::now();
        command();
        while (window.IsBusy())
            QApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
        BenchWindow::settle(window);
        probe.stop();
        std::printf("stall %s %.1f ms max, took %.0f ms, rows %d %d, during '%s'\n", name,
                    probe.maxGapMs(), double(BenchWindow::now() - start) / 1e6,
                    bench.list(0)->files()->count(), bench.list(1)->files()->count(),
                    qPrintable(probe.maxGapPhase()));
        std::fflush(stdout);
    };
    measure("compare", [&] { bench.compare(); });
    measure("recompare", [&] { bench.compare(); });
    QHash<QString, QAction *> items;
    for (QAction *item : window.findChildren<QAction *>())
        items.insert(item->text(), item);
    const char *toggles[][2] = {{"Show A&ll Files", "all_files"},
                                {"Use &Missing File Placeholders", "missing"},
                                {"Bold Different Files", "bold"},
                                {"Show &Full Path", "full_path"},
                                {"&Link File Listings", "link"}};
    for (const auto &toggle : toggles) {
        QAction *item = items.value(QString::fromLatin1(toggle[0]));
        if (!item)
            continue;
        for (const char *state : {"_1", "_2"}) {
            // Linking on mirrors the source list's selection: a user's selection of a block
            // of rows and a few single ones, made while the lists are not linked.
            if (std::strcmp(toggle[1], "link") == 0 && !item->isChecked())
                selectSome(*bench.list(0));
            const QByteArray name = QByteArray(toggle[1]) + state;
            measure(name.constData(), [item] { item->trigger(); });
        }
    }
    std::printf("status %s\n", qPrintable(bench.statusText()));
    return 0;
}

int cancelMode(Arguments arguments) {
    if (arguments.after.empty())
        arguments.after = {1000};
    BenchWindow bench(setupFor(arguments), arguments.source, arguments.destination);
    if (!bench.isReady())
        return usage();
    frmMain &window = bench.window();
    LivenessProbe probe(statusTextOf(window));
    for (int after : arguments.after) {
        qint64 posted = -1;
        qint64 taken = -1;
        QString phase;
        std::thread user([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(after));
            posted = BenchWindow::now();
            QMetaObject::invokeMethod(
                BenchWindow::compareButton(window),
                [&] {
                    taken = BenchWindow::now();
                    phase = bench.statusText();
                    if (arguments.key)
                        QTest::keyClick(&window, Qt::Key_Escape);
                    else
                        QTest::mouseClick(BenchWindow::compareButton(window), Qt::LeftButton);
                },
                Qt::QueuedConnection);
        });
        probe.start();
        bench.compare();
        const qint64 ended = BenchWindow::now();
        probe.stop();
        user.join();
        BenchWindow::settle(window);
        std::printf("cancel_after_ms %d\n", after);
        std::printf("phase %s\n", qPrintable(phase));
        std::printf("taken_ms %.1f\nstopped_ms %.1f\n", double(taken - posted) / 1e6,
                    double(ended - posted) / 1e6);
        std::printf("status %s\n", qPrintable(bench.statusText()));
        printLiveness(probe);
    }
    return 0;
}

int makeTree(int argc, char **argv) {
    if (argc < 4)
        return usage();
    const QByteArray root = argv[2];
    const long files = std::atol(argv[3]);
    const long perFolder = argc > 4 ? std::max(1L, std::atol(argv[4])) : 1000;
    if (::mkdir(root.constData(), 0755) != 0 && errno != EEXIST)
        return std::perror(root.constData()), 1;
    QByteArray folder;
    for (long i = 0; i < files; ++i) {
        if (i % perFolder == 0) {
            folder = root + "/d" + QByteArray::number(qlonglong(i / perFolder));
            if (::mkdir(folder.constData(), 0755) != 0 && errno != EEXIST)
                return std::perror(folder.constData()), 1;
        }
        const QByteArray path = folder + "/f" + QByteArray::number(qlonglong(i)) + ".txt";
        const int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
        if (fd < 0)
            return std::perror(path.constData()), 1;
        ::close(fd);
    }
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    if (argc < 2)
        return usage();
    const QByteArray mode = argv[1];
    if (mode == "make-tree")
        return makeTree(argc, argv);
    Arguments arguments;
    if (!parse(argc, argv, arguments))
        return usage();

    // A profile of its own: nothing read from or written to the user's settings.
    QTemporaryDir profile;
    if (!profile.isValid())
        return 1;
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(profile.path() + QStringLiteral("/config")));
    qputenv("XDG_DATA_HOME", QFile::encodeName(profile.path() + QStringLiteral("/data")));
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Pairscope"));
    QApplication::setOrganizationName(QStringLiteral("Pairscope"));

    if (mode == "compare")
        return compareMode(arguments);
    if (mode == "listings")
        return listingsMode(arguments);
    if (mode == "stalls")
        return stallsMode(arguments);
    if (mode == "cancel")
        return cancelMode(arguments);
    if (mode == "shots")
        return ListingShots(arguments.output, arguments.comparisons)
            .grab(arguments.source, arguments.destination);
    return usage();
}
