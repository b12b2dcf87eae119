#include "engine/TreeWalker.h"

#include "engine/TemporaryCopyName.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace {
constexpr std::size_t listingBufferSize = 64 * 1024;
}

TreeWalker::TreeWalker(Callbacks callbacks)
    : m_callbacks(std::move(callbacks))
    , m_buffer(listingBufferSize) {}

bool TreeWalker::list(const QByteArray &nativePath, bool isRoot) {
    m_names.clear();
    m_entries.clear();
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
            if (TemporaryCopyName::isTemporaryCopyName(name))
                continue;
            bool folder = entry->d_type == DT_DIR;
            if (entry->d_type == DT_UNKNOWN) {
                struct stat st;
                if (::fstatat(fd, name, &st, AT_SYMLINK_NOFOLLOW) != 0)
                    continue;
                folder = S_ISDIR(st.st_mode);
            }
            const std::size_t length = std::strlen(name);
            quint64 prefix = 0;
            for (std::size_t i = 0; i < 8; ++i)
                prefix = (prefix << 8) | (i < length ? static_cast<unsigned char>(name[i]) : 0u);
            m_entries.push_back({prefix, quint32(m_names.size()), quint32(length), folder});
            m_names.insert(m_names.end(), name, name + length);
        }
    }
    ::close(fd);
    // Byte order: names are compared as unsigned bytes, the shorter first on a common start.
    // Most names differ within their first eight bytes, which compare as one number (a name
    // holds no zero byte, so the padding orders a shorter name first).
    const char *names = m_names.data();
    std::sort(m_entries.begin(), m_entries.end(), [names](const Entry &a, const Entry &b) {
        if (a.prefix != b.prefix)
            return a.prefix < b.prefix;
        const auto tail = [names](const Entry &e) {
            return e.length <= 8 ? std::string_view()
                                 : std::string_view(names + e.offset + 8, e.length - 8);
        };
        return tail(a) < tail(b);
    });
    return true;
}

bool TreeWalker::visitFiles(const FolderRef &folder, std::vector<QByteArray> &subfolders) {
    subfolders.clear();
    m_files.clear();
    for (const Entry &entry : m_entries) {
        QByteArray name(m_names.data() + entry.offset, qsizetype(entry.length));
        (entry.folder ? subfolders : m_files).push_back(std::move(name));
    }
    return m_files.empty() || m_callbacks.files(folder, m_files);
}

void TreeWalker::walk(const FolderRef &root) {
    struct Frame {
        FolderRef folder;
        std::vector<QByteArray> subfolders;
        std::size_t next = 0;
    };
    std::vector<Frame> stack;

    stack.push_back({root, {}, 0});
    if (!list(root->nativePath(), true) || !visitFiles(root, stack.back().subfolders))
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
        FolderRef child = FolderRef::makeChild(top.folder, top.subfolders[top.next++]);
        Frame frame{child, {}, 0};
        if (!list(child->nativePath(), false))
            continue;
        if (!visitFiles(child, frame.subfolders))
            return;
        stack.push_back(std::move(frame));
    }
}
