// phase-times: where the time of one comparison goes, phase by phase.
//
// usage: phase-times [-b BITS] [-w WORKERS] [-n RUNS] [--no-slack] [--crc-first] SOURCE DESTINATION
//   BITS     comparison bits (1 sizes, 2 modified, 4 created, 8 accessed, 16 attributes, 32 CRC)
//   WORKERS  read-ahead threads of the engine (default: the engine's own choice)
//
// Prints, per run, the wall and CPU seconds (user + system, all threads) of the source walk,
// the destination walk and the comparison, plus the number of pairs. No events are handled
// beyond counting, so this is the engine's own cost; pairscope-cli adds its report on top.
#include "engine/ComparisonFileCollection.h"
#include "engine/Pairscope.h"

#include <QElapsedTimer>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/resource.h>

namespace {

double cpuSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval &t) { return double(t.tv_sec) + t.tv_usec / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/** Wall and CPU seconds of one phase. */
struct Phase {
    QElapsedTimer wall;
    double cpuAtStart = 0;

    void start() {
        cpuAtStart = cpuSeconds();
        wall.start();
    }
    void report(const char *name) {
        std::printf("  %-12s wall %7.3f s  cpu %7.3f s\n", name, wall.nsecsElapsed() / 1e9,
                    cpuSeconds() - cpuAtStart);
    }
};

int usage() {
    std::fprintf(stderr, "usage: phase-times [-b BITS] [-w WORKERS] [-n RUNS] [--no-slack] "
                         "[--crc-first] SOURCE DESTINATION\n");
    return 2;
}

} // namespace

int main(int argc, char **argv) {
    int bits = 3;
    int workers = -1;
    int runs = 1;
    bool slack = true;
    bool crcLast = true;
    const char *roots[2] = {nullptr, nullptr};
    int rootCount = 0;
    for (int i = 1; i < argc; ++i) {
        const bool hasValue = i + 1 < argc;
        if (!std::strcmp(argv[i], "-b") && hasValue)
            bits = std::atoi(argv[++i]);
        else if (!std::strcmp(argv[i], "-w") && hasValue)
            workers = std::atoi(argv[++i]);
        else if (!std::strcmp(argv[i], "-n") && hasValue)
            runs = std::atoi(argv[++i]);
        else if (!std::strcmp(argv[i], "--no-slack"))
            slack = false;
        else if (!std::strcmp(argv[i], "--crc-first"))
            crcLast = false;
        else if (argv[i][0] != '-' && rootCount < 2)
            roots[rootCount++] = argv[i];
        else
            return usage();
    }
    if (rootCount != 2)
        return usage();

    for (int run = 1; run <= runs; ++run) {
        std::printf("run %d\n", run);
        Phase phase;
        ComparisonFileCollection source;
        ComparisonFileCollection destination;
        phase.start();
        source.setRootFolderNative(QByteArray(roots[0]));
        phase.report("walk source");
        phase.start();
        destination.setRootFolderNative(QByteArray(roots[1]));
        phase.report("walk dest");

        Pairscope engine;
        if (workers >= 0)
            engine.setWorkerCount(workers);
        qint64 pairs = 0;
        QObject::connect(
            &engine, &Pairscope::FilesCompared, &engine,
            [&pairs](const ComparisonFilePtr &, const ComparisonFilePtr &, int) { ++pairs; });
        phase.start();
        const int status = engine.Compare(source, destination, bits, slack, crcLast, 65536);
        phase.report("compare");
        std::printf("  %lld pairs, status %d, %d workers\n", static_cast<long long>(pairs), status,
                    engine.workerCount());
    }
    return 0;
}
