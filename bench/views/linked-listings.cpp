// linked-listings: how long the two linked result listings take for their everyday commands
// on large lists.
//
// usage: linked-listings [-n ROWS] [-r ROUNDS] [--scratch FOLDER] [--keep]
//   ROWS    rows per listing (default 200000)
//   ROUNDS  how often each command is timed; the median is printed (default 5)
//
// Writes ROWS empty sparse files of varied sizes and dates below FOLDER/src (reused when
// present), walks them into the source collection and gives the destination collection a
// placeholder for each, so both listings show ROWS rows of real records. Then, on the
// offscreen platform with linking on, it times (event processing and a repaint included):
// Select All and Clear Selections in the source list (each mirrored to the destination
// list), a click on one row (mirrored), a block of half the rows selected while the
// destination list is ordered differently (mirrored into scattered rows), header clicks on
// Size, Date Modified and Name (sorting both lists), and the rows rebuilt in place (every
// row re-listed, as a change of the View options does). Not a test: figures depend on the
// machine and on what else it does.
#include "engine/ComparisonFileCollection.h"
#include "views/AddToListview.h"
#include "views/ColumnLayout.h"
#include "views/FileListModel.h"
#include "views/ImageList.h"
#include "views/LinkedListings.h"
#include "views/ListColumns.h"
#include "views/ListView.h"
#include "views/RecordText.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QHBoxLayout>
#include <QTest>
#include <QWidget>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

int usage() {
    std::fprintf(stderr,
                 "usage: linked-listings [-n ROWS] [-r ROUNDS] [--scratch FOLDER] [--keep]\n");
    return 2;
}

/** ROWS files in folders of 1,000, sizes and modified dates spread by a simple hash. */
bool makeTree(const QString &root, int rows) {
    const QString marker = root + QStringLiteral(".complete-%1").arg(rows);
    if (QFile::exists(marker))
        return true;
    QDir(root).removeRecursively();
    for (int i = 0; i < rows; ++i) {
        const QString folder = root + QStringLiteral("/d%1").arg(i / 1000, 3, 10, QLatin1Char('0'));
        if (i % 1000 == 0 && !QDir().mkpath(folder))
            return false;
        const quint32 hash = quint32(i) * 2654435761u;
        static const char *const extensions[] = {".txt", ".jpg", ".cpp", ".pdf", ".bin", ".html"};
        const QByteArray path =
            QFile::encodeName(folder + QStringLiteral("/file%1").arg(hash % 1000003u)) +
            QByteArray::number(i) + extensions[hash % 6];
        const int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (fd < 0)
            return false;
        // Sparse: the sizes are real but take no room.
        const bool sized = ::ftruncate(fd, off_t(hash % 50000000u)) == 0;
        const timespec times[2] = {{time_t(1500000000 + hash % 200000000u), 0},
                                   {time_t(1500000000 + (hash >> 3) % 200000000u), 0}};
        const bool dated = ::futimens(fd, times) == 0;
        ::close(fd);
        if (!sized || !dated)
            return false;
    }
    QFile file(marker);
    return file.open(QIODevice::WriteOnly);
}

/** Runs \a command \a rounds times (after \a prepare each time) and prints the median. */
void time(const char *name, int rounds, const std::function<void()> &prepare,
          const std::function<void()> &command, QWidget &window) {
    std::vector<double> milliseconds;
    for (int round = 0; round < rounds; ++round) {
        prepare();
        QCoreApplication::processEvents();
        QElapsedTimer timer;
        timer.start();
        command();
        // What the user waits for: the event loop settled and the window painted.
        QCoreApplication::processEvents();
        window.repaint();
        milliseconds.push_back(timer.nsecsElapsed() / 1e6);
    }
    std::sort(milliseconds.begin(), milliseconds.end());
    std::printf("  %-58s %9.1f ms   (min %.1f, max %.1f)\n", name,
                milliseconds[milliseconds.size() / 2], milliseconds.front(), milliseconds.back());
    std::fflush(stdout);
}

} // namespace

int main(int argc, char **argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    int rows = 200000;
    int rounds = 5;
    QString scratch = QStringLiteral("/tmp/pairscope-bench-lists");
    bool keep = false;
    for (int i = 1; i < argc; ++i) {
        const bool hasValue = i + 1 < argc;
        if (std::strcmp(argv[i], "-n") == 0 && hasValue)
            rows = std::atoi(argv[++i]);
        else if (std::strcmp(argv[i], "-r") == 0 && hasValue)
            rounds = std::max(1, std::atoi(argv[++i]));
        else if (std::strcmp(argv[i], "--scratch") == 0 && hasValue)
            scratch = QFile::decodeName(argv[++i]);
        else if (std::strcmp(argv[i], "--keep") == 0)
            keep = true;
        else
            return usage();
    }
    if (rows < 2)
        return usage();

    QApplication application(argc, argv);
    const QString sourceRoot = scratch + QStringLiteral("/src");
    const QString destinationRoot = scratch + QStringLiteral("/dst");
    std::printf("linked-listings: %d rows per list, median of %d rounds\n", rows, rounds);
    QElapsedTimer phase;
    phase.start();
    if (!makeTree(sourceRoot, rows) || !QDir().mkpath(destinationRoot)) {
        std::fprintf(stderr, "linked-listings: cannot write below %s\n", qPrintable(scratch));
        return 1;
    }
    ComparisonFileCollection files[2];
    files[0].setRootFolder(sourceRoot);
    files[1].setRootFolder(destinationRoot);
    for (const ComparisonFilePtr &record : files[0])
        files[1].AddMissingFile(record->FileObject(), sourceRoot, 2);
    std::printf("  tree and records ready in %.1f s (%d + %d records)\n", phase.elapsed() / 1e3,
                files[0].Count(), files[1].Count());

    QWidget window;
    ListView *lists[2] = {new ListView(&window), new ListView(&window)};
    auto *layout = new QHBoxLayout(&window);
    layout->addWidget(lists[0]);
    layout->addWidget(lists[1]);
    window.resize(1600, 900);
    ImageList images;
    LinkedListings listings(lists[0], lists[1], [&files](int side) { return &files[side]; });
    for (int side = 0; side < 2; ++side)
        ColumnLayout::LoadLayout(lists[side], side == 1, true);
    listings.SetLinked(true);
    window.show();
    lists[0]->setFocus();

    const auto list = [&](int side) {
        for (const ComparisonFilePtr &record : files[side])
            AddToListview(record, lists[side], &images);
        lists[side]->files()->flush();
    };
    time(
        "list both sides (AddToListview, empty lists)", 1, [] {},
        [&] {
            list(0);
            list(1);
        },
        window);

    const auto none = [] {};
    const auto clear = [&] { lists[0]->clearSelection(); };
    time(
        "Select All, mirrored", rounds, clear, [&] { lists[0]->selectAll(); }, window);
    time(
        "Clear Selections after Select All, mirrored", rounds, [&] { lists[0]->selectAll(); },
        clear, window);
    const auto clickRow = [&] {
        QWidget *viewport = lists[0]->viewport();
        const QRect row = lists[0]->visualRect(lists[0]->files()->index(3, 0));
        QTest::mouseClick(viewport, Qt::LeftButton, {}, row.center());
    };
    time(
        "click on one row after Select All, mirrored", rounds, [&] { lists[0]->selectAll(); },
        clickRow, window);
    time("click on one row after a click, mirrored", rounds, none, clickRow, window);

    // The destination ordered by size, the source by name: a block of the source is
    // scattered over the destination.
    const int name = ColumnType::Name;
    const int size = ColumnType::Size;
    const int modified = ColumnType::DateModified;
    listings.SetLinked(false);
    listings.ColumnClick(1, size);
    listings.SetLinked(true);
    std::vector<bool> half(size_t(rows), false);
    std::fill(half.begin(), half.begin() + rows / 2, true);
    time(
        "half the rows selected, mirrored into scattered rows", rounds, clear,
        [&] { lists[0]->setSelectedRows(half); }, window);
    time(
        "click on one row after that, mirrored", rounds, [&] { lists[0]->setSelectedRows(half); },
        clickRow, window);
    lists[0]->clearSelection();

    time(
        "header click on Size, both lists sorted", rounds, none,
        [&] { listings.ColumnClick(0, size); }, window);
    time(
        "header click on Date Modified, both lists sorted", rounds, none,
        [&] { listings.ColumnClick(0, modified); }, window);
    time(
        "header click on Name, both lists sorted", rounds, none,
        [&] { listings.ColumnClick(0, name); }, window);
    time(
        "header click on Size with all rows selected", rounds, [&] { lists[0]->selectAll(); },
        [&] { listings.ColumnClick(0, size); }, window);

    // What the records' own conversions cost, alone, per list: a size or date sort asks each
    // row's record for its sort key and then for its display text.
    for (int type : {3, 5}) {
        std::vector<ComparisonFilePtr> found;
        found.reserve(size_t(rows));
        const char *typeName = type == 3 ? "Size" : "Date Modified";
        const QByteArray lookUp =
            QByteArray("  records: ") + typeName + " look-up of every row key";
        time(
            lookUp.constData(), 1, none,
            [&] {
                for (int i = 0; i < lists[0]->files()->count(); ++i)
                    found.push_back(files[0].Item(lists[0]->files()->record(i)->Key()));
            },
            window);
        const QByteArray sortKeys =
            QByteArray("  records: ") + typeName + " SortString of every row";
        time(
            sortKeys.constData(), 1, none,
            [&] {
                for (const ComparisonFilePtr &record : found)
                    (void)RecordText::SortString(*record, type);
            },
            window);
        const QByteArray texts =
            QByteArray("  records: ") + typeName + " ColumnString of every row";
        time(
            texts.constData(), 1, none,
            [&] {
                for (const ComparisonFilePtr &record : found)
                    (void)RecordText::ColumnString(*record, type, false);
            },
            window);
    }

    // A change of the View options: rows that no longer qualify go, the rest are listed again.
    time(
        "rows rebuilt in place (sweep, re-list), both lists", rounds, none,
        [&] {
            for (int side = 0; side < 2; ++side) {
                lists[side]->files()->removeRowsIf([](int) { return false; });
                list(side);
            }
        },
        window);
    time(
        "rows removed and listed again, both lists", 1, none,
        [&] {
            for (int side = 0; side < 2; ++side) {
                lists[side]->files()->clear();
                list(side);
            }
        },
        window);

    if (!keep)
        QDir(scratch).removeRecursively();
    return 0;
}
