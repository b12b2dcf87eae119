// syscall-probes: what a list of files costs to look at or read, one way against another, on
// one thread. The engine's choices of how to stat and read were made from these figures.
//
// usage: syscall-probes MODE [DEPTH] < LIST      (LIST: one path per line, e.g. from find -type f)
//   statx        statx() of each file
//   uring-statx  the same through io_uring, DEPTH requests in flight (default 64)
//   read         open(), one read() of up to 64 KiB, close() of each file
//   uring-read   the same through io_uring, as one linked open-read-close chain per file on a
//                direct descriptor, DEPTH chains in flight
//   read-crc     CRC-32 of each whole file read in 64 KiB chunks
//   mapped-crc   CRC-32 of each whole file read through mmap() windows of 8 MiB
//
// Prints the files that succeeded, the wall and the CPU seconds (user + system) of the run.
// Built with the benchmarks where liburing is installed (liburing-dev).
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <iostream>
#include <libdeflate.h>
#include <liburing.h>
#include <string>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::size_t chunk = 64 * 1024;
constexpr std::size_t window = 8 << 20;

double cpuSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval &t) { return double(t.tv_sec) + t.tv_usec / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

long plainStatx(const std::vector<std::string> &paths) {
    long ok = 0;
    struct statx st;
    for (const std::string &path : paths)
        ok += statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS, &st) == 0;
    return ok;
}

/** Keeps \a depth requests in flight; \a prepare queues those of file i, \a done counts one. */
template <typename Prepare, typename Done>
void inFlight(io_uring &ring, std::size_t count, std::size_t depth, Prepare prepare, Done done) {
    std::size_t next = 0;
    std::size_t pending = 0;
    while (next < count || pending > 0) {
        while (pending < depth && next < count) {
            prepare(next++);
            ++pending;
        }
        io_uring_submit_and_wait(&ring, 1);
        io_uring_cqe *cqe;
        unsigned head;
        unsigned seen = 0;
        io_uring_for_each_cqe(&ring, head, cqe) {
            ++seen;
            pending -= done(*cqe) ? 1 : 0;
        }
        io_uring_cq_advance(&ring, seen);
    }
}

long uringStatx(const std::vector<std::string> &paths, std::size_t depth) {
    io_uring ring;
    io_uring_queue_init(unsigned(depth), &ring, 0);
    std::vector<struct statx> results(depth);
    long ok = 0;
    inFlight(
        ring, paths.size(), depth,
        [&](std::size_t i) {
            io_uring_prep_statx(io_uring_get_sqe(&ring), AT_FDCWD, paths[i].c_str(),
                                AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS, &results[i % depth]);
        },
        [&](const io_uring_cqe &cqe) {
            ok += cqe.res == 0;
            return true;
        });
    io_uring_queue_exit(&ring);
    return ok;
}

long plainRead(const std::vector<std::string> &paths, std::vector<char> &buffer) {
    long ok = 0;
    for (const std::string &path : paths) {
        const int fd = open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
        if (fd < 0)
            continue;
        ok += read(fd, buffer.data(), chunk) >= 0;
        close(fd);
    }
    return ok;
}

long uringRead(const std::vector<std::string> &paths, std::size_t depth,
               std::vector<char> &buffer) {
    io_uring ring;
    io_uring_queue_init(unsigned(depth * 3), &ring, 0);
    std::vector<int> slots(depth, -1);
    io_uring_register_files(&ring, slots.data(), unsigned(depth));
    buffer.resize(depth * chunk);
    long ok = 0;
    inFlight(
        ring, paths.size(), depth,
        [&](std::size_t i) {
            const unsigned slot = unsigned(i % depth);
            io_uring_sqe *open = io_uring_get_sqe(&ring);
            io_uring_prep_openat_direct(open, AT_FDCWD, paths[i].c_str(), O_RDONLY | O_NOFOLLOW, 0,
                                        slot);
            open->flags |= IOSQE_IO_LINK;
            open->user_data = 0;
            io_uring_sqe *read = io_uring_get_sqe(&ring);
            io_uring_prep_read(read, int(slot), buffer.data() + slot * chunk, chunk, 0);
            // A short read ends a plain link: the close must follow whatever the read did.
            read->flags |= IOSQE_FIXED_FILE | IOSQE_IO_HARDLINK;
            read->user_data = 0;
            io_uring_sqe *close = io_uring_get_sqe(&ring);
            io_uring_prep_close_direct(close, slot);
            close->user_data = 1;
        },
        [&](const io_uring_cqe &cqe) {
            if (cqe.user_data != 1)
                return false;
            ok += cqe.res == 0;
            return true;
        });
    io_uring_queue_exit(&ring);
    return ok;
}

long checksums(const std::vector<std::string> &paths, bool mapped, std::vector<char> &buffer) {
    long ok = 0;
    unsigned combined = 0;
    for (const std::string &path : paths) {
        const int fd = open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
        struct stat st;
        if (fd < 0 || fstat(fd, &st) != 0)
            continue;
        unsigned crc = 0;
        if (mapped) {
            for (std::size_t done = 0; done < std::size_t(st.st_size);) {
                const std::size_t length = std::min(window, std::size_t(st.st_size) - done);
                void *map = mmap(nullptr, length, PROT_READ, MAP_SHARED, fd, off_t(done));
                if (map == MAP_FAILED)
                    break;
                madvise(map, length, MADV_SEQUENTIAL);
                crc = unsigned(libdeflate_crc32(crc, map, length));
                munmap(map, length);
                done += length;
            }
        } else {
            ssize_t n;
            while ((n = read(fd, buffer.data(), chunk)) > 0)
                crc = unsigned(libdeflate_crc32(crc, buffer.data(), std::size_t(n)));
        }
        combined ^= crc;
        ++ok;
        close(fd);
    }
    // Printed, so that the sums are computed at all.
    std::printf("combined checksum %08x\n", combined);
    return ok;
}

} // namespace

int main(int argc, char **argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: syscall-probes MODE [DEPTH] < LIST\n");
        return 2;
    }
    const std::string mode = argv[1];
    const std::size_t depth = argc > 2 ? std::size_t(std::atoi(argv[2])) : 64;
    std::vector<std::string> paths;
    for (std::string line; std::getline(std::cin, line);)
        paths.push_back(line);
    std::vector<char> buffer(chunk);

    const auto start = std::chrono::steady_clock::now();
    const double cpuAtStart = cpuSeconds();
    long ok = -1;
    if (mode == "statx")
        ok = plainStatx(paths);
    else if (mode == "uring-statx")
        ok = uringStatx(paths, depth);
    else if (mode == "read")
        ok = plainRead(paths, buffer);
    else if (mode == "uring-read")
        ok = uringRead(paths, depth, buffer);
    else if (mode == "read-crc" || mode == "mapped-crc")
        ok = checksums(paths, mode == "mapped-crc", buffer);
    if (ok < 0) {
        std::fprintf(stderr, "syscall-probes: unknown mode '%s'\n", mode.c_str());
        return 2;
    }
    const double wall =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("%-12s %zu files, %ld done, wall %.3f s, cpu %.3f s\n", mode.c_str(), paths.size(),
                ok, wall, cpuSeconds() - cpuAtStart);
    return 0;
}
