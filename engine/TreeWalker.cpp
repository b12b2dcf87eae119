#include "engine/TreeWalker.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
constexpr std::size_t listingBufferSize = 64 * 1024;
}

TreeWalker::TreeWalker(Callbacks callbacks)
    : m_callbacks(std::move(callbacks))
    , m_buffer(listingBufferSize) {}

bool TreeWalker::list(const QByteArray &nativePath, bool isRoot, std::vector<Entry> &entries) {
    entries.clear();
    // The root may be given through a link; below it a link is a file and never entered.
    const int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC | (isRoot ? 0 : O_NOFOLLOW);
    const int fd = ::open(nativePath.constData(), flags);
    if (fd < 0) {
        // A folder deleted during the walk is simply gone; anything else is worth telling.
        if (errno != ENOENT || isRoot)
            m_callbacks.unreadable(nativePath, errno);
        return false;
    }
    for (;;) {
        const ssize_t n = ::getdents64(fd, m_buffer.data(), m_buffer.size());
        if (n == 0)
            break;
        if (n < 0) {
            const int error = errno;
            ::close(fd);
            m_callbacks.unreadable(nativePath, error);
            return false;
        }
        for (ssize_t offset = 0; offset < n;) {
            const auto *entry = reinterpret_cast<const dirent64 *>(m_buffer.data() + offset);
            offset += entry->d_reclen;
            const char *name = entry->d_name;
            if (name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0)))
                continue;
            bool folder = entry->d_type == DT_DIR;
            if (entry->d_type == DT_UNKNOWN) {
                struct stat st;
                if (::fstatat(fd, name, &st, AT_SYMLINK_NOFOLLOW) != 0)
                    continue;
                folder = S_ISDIR(st.st_mode);
            }
            entries.push_back({QByteArray(name, qsizetype(std::strlen(name))), folder});
        }
    }
    ::close(fd);
    std::sort(entries.begin(), entries.end(),
              [](const Entry &a, const Entry &b) { return a.name < b.name; });
    return true;
}

bool TreeWalker::visitFiles(const FolderRef &folder, std::vector<Entry> &entries,
                            std::vector<QByteArray> &subfolders) {
    subfolders.clear();
    for (Entry &entry : entries) {
        if (entry.folder) {
            subfolders.push_back(std::move(entry.name));
            continue;
        }
        if (m_callbacks.stop())
            return false;
        m_callbacks.file(folder, std::move(entry.name));
    }
    return true;
}

void TreeWalker::walk(const FolderRef &root) {
    struct Frame {
        FolderRef folder;
        std::vector<QByteArray> subfolders;
        std::size_t next = 0;
    };
    std::vector<Entry> entries;
    std::vector<Frame> stack;

    stack.push_back({root, {}, 0});
    if (!list(root->nativePath(), true, entries) ||
        !visitFiles(root, entries, stack.back().subfolders))
        return;

    while (!stack.empty()) {
        Frame &top = stack.back();
        if (top.next >= top.subfolders.size()) {
            stack.pop_back();
            continue;
        }
        // Between levels the flags are tested too, so a stop also skips the subfolders.
        if (m_callbacks.stop())
            return;
        const QByteArray path = top.folder->childNativePath(top.subfolders[top.next++]);
        FolderRef child = FolderRef::make(path, root->nativePath().size(), root->rootPath());
        Frame frame{child, {}, 0};
        if (!list(path, false, entries))
            continue;
        if (!visitFiles(child, entries, frame.subfolders))
            return;
        stack.push_back(std::move(frame));
    }
}
