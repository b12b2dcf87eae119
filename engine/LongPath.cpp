#include "engine/LongPath.h"

#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <unistd.h>

namespace {

void closeKeepingErrno(int fd) {
    if (fd < 0)
        return;
    const int saved = errno;
    ::close(fd);
    errno = saved;
}

} // namespace

int LongPath::open(const QByteArray &path, int flags) {
    if (path.size() < PATH_MAX)
        return ::open(path.constData(), flags);
    int folder = AT_FDCWD;
    qsizetype start = 0;
    while (path.size() - start >= PATH_MAX) {
        const qsizetype cut = path.lastIndexOf('/', start + PATH_MAX - 1);
        if (cut <= start && !(cut == 0 && start == 0)) {
            // One name longer than a whole path may be: the system would refuse it too.
            closeKeepingErrno(folder);
            errno = ENAMETOOLONG;
            return -1;
        }
        const QByteArray piece = cut == 0 ? QByteArray("/") : path.mid(start, cut - start);
        const int next = ::openat(folder, piece.constData(), O_PATH | O_DIRECTORY | O_CLOEXEC);
        closeKeepingErrno(folder);
        if (next < 0)
            return -1;
        folder = next;
        start = cut + 1;
    }
    const int fd = ::openat(folder, path.constData() + start, flags);
    closeKeepingErrno(folder);
    return fd;
}

LongPath::Parent::Parent(const QByteArray &path)
    : m_fd(AT_FDCWD)
    , m_name(path.constData()) {
    if (path.size() < PATH_MAX)
        return;
    const qsizetype slash = path.lastIndexOf('/');
    if (slash < 0)
        return;
    m_folder = slash == 0 ? QByteArray("/") : path.left(slash);
    m_fd = LongPath::open(m_folder, O_PATH | O_DIRECTORY | O_CLOEXEC);
    m_name = path.constData() + slash + 1;
}

LongPath::Parent::~Parent() {
    if (m_fd >= 0)
        ::close(m_fd);
}
