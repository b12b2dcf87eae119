#include "tools/FolderBeneathRoot.h"

#include <QFile>
#include <QList>

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

QString shown(const QByteArray &path) {
    return QFile::decodeName(path);
}

int openBeneath(int rootFd, const QByteArray &relative) {
    open_how how{};
    how.flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
    how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS;
    return int(::syscall(SYS_openat2, rootFd, relative.constData(), &how, sizeof how));
}

int openChild(int parent, const QByteArray &name) {
    return ::openat(parent, name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

/** The name with the case of every ASCII letter flipped; empty when it has no letter. */
QByteArray flippedCase(const QByteArray &name) {
    QByteArray flipped = name;
    bool changed = false;
    for (char &c : flipped) {
        if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z')) {
            c = char(c ^ 0x20);
            changed = true;
        }
    }
    return changed ? flipped : QByteArray();
}

/**
 * True when \a parent may find \a name under another letter case: a case-flipped spelling
 * resolves too. The listing then tells which name is stored (FUSE numbers each look-up on its
 * own, so the inodes alone cannot say).
 */
bool mayIgnoreCase(int parent, const QByteArray &name) {
    const QByteArray flipped = flippedCase(name);
    struct stat other {};
    return !flipped.isEmpty() &&
           ::fstatat(parent, flipped.constData(), &other, AT_SYMLINK_NOFOLLOW) == 0;
}

} // namespace

FolderBeneathRoot::~FolderBeneathRoot() {
    if (m_fd >= 0)
        ::close(m_fd);
    for (const auto &created : m_created)
        ::close(created.first);
}

bool FolderBeneathRoot::fail(Refusal refusal, const QString &message) {
    m_refusal = refusal;
    m_error = message;
    return false;
}

bool FolderBeneathRoot::open(const QByteArray &root, const QByteArray &relative, Mode mode) {
    m_spelled = relative;
    // The root may be reached through a link the user named; a missing root is never made.
    const int rootFd = ::open(root.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (rootFd < 0) {
        if (errno == ENOENT)
            return fail(Refusal::RootGone,
                        QStringLiteral("The folder “%1” no longer exists; it is not created again.")
                            .arg(shown(root)));
        if (errno == ENOTDIR)
            return fail(Refusal::RootGone,
                        QStringLiteral("“%1” is no longer a folder.").arg(shown(root)));
        return fail(Refusal::System, QStringLiteral("Could not open the folder “%1”: %2.")
                                         .arg(shown(root), qt_error_string(errno)));
    }
    if (relative.isEmpty()) {
        m_fd = rootFd;
        return true;
    }
    // The kernel's own check in one call; the walk below names the reason when it refuses,
    // and stands in where the kernel is too old for it.
    if (mode != Mode::Look && !relative.split('/').contains("..")) {
        m_fd = openBeneath(rootFd, relative);
        if (m_fd >= 0) {
            ::close(rootFd);
            return true;
        }
    }
    return walk(root, relative, mode, rootFd);
}

bool FolderBeneathRoot::walk(const QByteArray &root, const QByteArray &relative, Mode mode,
                             int rootFd) {
    QList<QByteArray> names = relative.split('/');
    names.removeAll(QByteArray());
    names.removeAll(QByteArray("."));
    int fd = rootFd;
    QByteArray path = root;
    QList<QByteArray> spelled;
    for (qsizetype i = 0; i < names.size(); ++i) {
        const QByteArray &name = names[i];
        path += '/' + name;
        if (name == "..") {
            ::close(fd);
            return fail(Refusal::LeavesRoot, QStringLiteral("The path “%1” leaves the folder “%2”.")
                                                 .arg(shown(relative), shown(root)));
        }
        int child = openChild(fd, name);
        if (child < 0 && errno == ENOENT && mode == Mode::Create) {
            if (::mkdirat(fd, name.constData(), 0777) == 0) {
                m_created.emplace_back(::fcntl(fd, F_DUPFD_CLOEXEC, 0), name);
            } else if (errno != EEXIST) {
                const int error = errno;
                ::close(fd);
                return fail(Refusal::System, QStringLiteral("Could not create the folder “%1”: %2.")
                                                 .arg(shown(path), qt_error_string(error)));
            }
            child = openChild(fd, name);
        }
        if (child < 0) {
            const int error = errno;
            struct stat st {};
            const bool isLink = ::fstatat(fd, name.constData(), &st, AT_SYMLINK_NOFOLLOW) == 0 &&
                                S_ISLNK(st.st_mode);
            ::close(fd);
            if (isLink)
                return fail(Refusal::Link,
                            QStringLiteral("“%1” is a symbolic link; nothing is copied through a "
                                           "link.")
                                .arg(shown(path)));
            if (error == ENOTDIR || error == ELOOP)
                return fail(Refusal::NotFolder,
                            QStringLiteral("“%1” is in the way: it is a file, not a folder.")
                                .arg(shown(path)));
            if (error == ENOENT && mode == Mode::Look) {
                // The rest would be created as asked for.
                m_missing = true;
                m_spelled = (spelled + names.mid(i)).join('/');
                return true;
            }
            if (error == ENOENT)
                return fail(Refusal::Missing,
                            QStringLiteral("The folder “%1” does not exist.").arg(shown(path)));
            return fail(Refusal::System, QStringLiteral("Could not open the folder “%1”: %2.")
                                             .arg(shown(path), qt_error_string(error)));
        }
        if (mode == Mode::Look)
            spelled.append(mayIgnoreCase(fd, name) ? storedSpelling(fd, name, child) : name);
        ::close(fd);
        fd = child;
    }
    m_fd = fd;
    if (mode == Mode::Look)
        m_spelled = spelled.join('/');
    return true;
}

QByteArray FolderBeneathRoot::storedSpelling(int parent, const QByteArray &name, int child) {
    struct stat st {};
    if (::fstat(child, &st) != 0)
        return name;
    const int listing = ::openat(parent, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR *folder = listing >= 0 ? ::fdopendir(listing) : nullptr;
    if (!folder) {
        if (listing >= 0)
            ::close(listing);
        return name;
    }
    // The name itself when it is stored; else the same inode; else, where a file system
    // numbers its listing otherwise (FUSE), the one name that differs only in letter case.
    QByteArray byInode;
    QByteArray alike;
    int alikeCount = 0;
    while (const dirent *entry = ::readdir(folder)) {
        if (qstrcmp(entry->d_name, name.constData()) == 0) {
            ::closedir(folder);
            return name;
        }
        if (entry->d_ino == st.st_ino)
            byInode = entry->d_name;
        if (qstricmp(entry->d_name, name.constData()) == 0) {
            alike = entry->d_name;
            ++alikeCount;
        }
    }
    const QByteArray stored = !byInode.isEmpty() ? byInode : alikeCount == 1 ? alike : name;
    ::closedir(folder);
    return stored;
}

void FolderBeneathRoot::removeCreated() {
    for (auto it = m_created.rbegin(); it != m_created.rend(); ++it) {
        ::unlinkat(it->first, it->second.constData(), AT_REMOVEDIR); // refused when not empty
        ::close(it->first);
    }
    m_created.clear();
}
