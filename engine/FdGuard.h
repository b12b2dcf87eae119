#pragma once

#include <unistd.h>

/** Closes a file descriptor on every path out of its scope, failed or cancelled. */
class FdGuard {
public:
    explicit FdGuard(int fd = -1)
        : m_fd(fd) {}
    ~FdGuard() {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    FdGuard(const FdGuard &) = delete;
    FdGuard &operator=(const FdGuard &) = delete;

    int get() const { return m_fd; }

private:
    int m_fd;
};
