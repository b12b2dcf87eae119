#include "engine/MappedChecksum.h"

#include <csetjmp>
#include <csignal>
#include <libdeflate.h>
#include <mutex>
#include <sys/mman.h>

namespace {

/** The mapping the current thread is summing, and where to go back to when it fails. */
struct Guard {
    sigjmp_buf jump;
    const char *begin;
    const char *end;
};

thread_local Guard *t_guard = nullptr;
struct sigaction g_previous;

void onBusError(int signal, siginfo_t *info, void *context) {
    const Guard *guard = t_guard;
    const char *address = static_cast<const char *>(info->si_addr);
    if (guard && address >= guard->begin && address < guard->end)
        siglongjmp(t_guard->jump, 1);
    if (g_previous.sa_flags & SA_SIGINFO) {
        g_previous.sa_sigaction(signal, info, context);
    } else if (g_previous.sa_handler != SIG_DFL && g_previous.sa_handler != SIG_IGN) {
        g_previous.sa_handler(signal);
    } else {
        // Returning would touch the page again: the default action ends the process as it
        // would have without this handler.
        ::signal(SIGBUS, SIG_DFL);
        ::raise(SIGBUS);
    }
}

void catchBusErrors() {
    static std::once_flag installed;
    std::call_once(installed, [] {
        struct sigaction action {};
        action.sa_sigaction = onBusError;
        action.sa_flags = SA_SIGINFO;
        sigemptyset(&action.sa_mask);
        ::sigaction(SIGBUS, &action, &g_previous);
    });
}

/** Sums \a length bytes at \a data; false when the signal handler jumped back. */
bool sumGuarded(const char *data, std::size_t length, quint32 &crc) {
    Guard guard;
    guard.begin = data;
    guard.end = data + length;
    // The signal mask is saved and restored with the jump, so that SIGBUS is not left blocked.
    if (sigsetjmp(guard.jump, 1) != 0) {
        t_guard = nullptr;
        return false;
    }
    t_guard = &guard;
    crc = quint32(libdeflate_crc32(crc, data, length));
    t_guard = nullptr;
    return true;
}

} // namespace

bool MappedChecksum::update(int fd, qint64 offset, qint64 length, quint32 &crc) {
    catchBusErrors();
    const std::size_t size = std::size_t(length);
    void *map = ::mmap(nullptr, size, PROT_READ, MAP_SHARED, fd, off_t(offset));
    if (map == MAP_FAILED)
        return false;
    ::madvise(map, size, MADV_SEQUENTIAL);
    quint32 sum = crc;
    const bool read = sumGuarded(static_cast<const char *>(map), size, sum);
    ::munmap(map, size);
    if (read)
        crc = sum;
    return read;
}
