#include "engine/TreeWalker.h"

#include "engine/FdGuard.h"
#include "engine/LongPath.h"
#include "engine/NameBlock.h"
#include "engine/TemporaryCopyName.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace {

constexpr std::size_t listingBufferSize = 64 * 1024;
/** Listed names tried for a case-flipped spelling that is not itself listed. */
constexpr int probeTries = 8;
/** A .gitignore is read up to this size; the rest is ignored. */
constexpr qsizetype maxIgnoreFileSize = 1024 * 1024;

quint64 prefixOf(const char *name, std::size_t length) {
    quint64 prefix = 0;
    for (std::size_t i = 0; i < 8; ++i)
        prefix = (prefix << 8) | (i < length ? static_cast<unsigned char>(name[i]) : 0u);
    return prefix;
}

/** \a name with the case of every ASCII letter flipped; empty when it has no letter. */
QByteArray caseFlipped(const QByteArray &name) {
    QByteArray flipped = name;
    bool changed = false;
    for (char &c : flipped) {
        if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z')) {
            c ^= 0x20;
            changed = true;
        }
    }
    return changed ? flipped : QByteArray();
}

/**
 * The file systems that resolve names without regard to case, for a root whose names give no
 * letter to try: a hint only (FUSE reports its own type whatever it serves).
 */
bool fileSystemIgnoresCase(int fd) {
    struct statfs info;
    if (::fstatfs(fd, &info) != 0)
        return false;
    switch (static_cast<unsigned long>(info.f_type)) {
    case 0x4d44:     // FAT
    case 0x2011BAB0: // exFAT
    case 0x5346544e: // NTFS
    case 0xFF534D42: // CIFS
    case 0xFE534D42: // SMB2
    case 0x517B:     // SMB
        return true;
    default:
        return false;
    }
}

} // namespace

TreeWalker::TreeWalker(Callbacks callbacks, CaseRule rule, std::shared_ptr<const TreeFilter> filter)
    : m_callbacks(std::move(callbacks))
    , m_rule(rule)
    , m_filter(filter && filter->isActive() ? std::move(filter) : nullptr)
    , m_buffer(listingBufferSize) {}

bool TreeWalker::list(const FolderRef &folder, bool isRoot, TreeFilter::ScopePtr &scope) {
    m_names.clear();
    m_entries.clear();
    if (m_rule != CaseRule::Automatic)
        folder.get()->setIgnoresCase(m_rule == CaseRule::Insensitive);
    // The root may be given through a link; below it a link is a file and never entered.
    const int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC | (isRoot ? 0 : O_NOFOLLOW);
    const int fd = LongPath::open(folder->nativePath(), flags);
    if (fd < 0) {
        // A folder deleted during the walk is simply gone; anything else is worth telling.
        if (errno != ENOENT || isRoot)
            m_callbacks.unreadable(folder, errno);
        return false;
    }
    int error = readEntries(fd);
    if (error == 0 && !m_entries.empty()) {
        sortEntries();
        error = probe(fd, *folder.get(), isRoot);
        if (error == 0)
            resolveUnknownTypes(fd);
        if (error == 0 && m_filter)
            applyFilter(fd, *folder.get(), scope);
    }
    ::close(fd);
    if (error != 0) {
        m_entries.clear();
        m_callbacks.unreadable(folder, error);
        return false;
    }
    return true;
}

int TreeWalker::readEntries(int fd) {
    for (;;) {
        const ssize_t n = ::getdents64(fd, m_buffer.data(), m_buffer.size());
        if (n == 0)
            return 0;
        if (n < 0)
            return errno;
        for (ssize_t offset = 0; offset < n;) {
            const auto *entry = reinterpret_cast<const dirent64 *>(m_buffer.data() + offset);
            offset += entry->d_reclen;
            const char *name = entry->d_name;
            if (name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0)))
                continue;
            if (TemporaryCopyName::isTemporaryCopyName(name))
                continue;
            const std::size_t length = std::strlen(name);
            m_entries.push_back({prefixOf(name, length), quint32(m_names.size()), quint32(length),
                                 entry->d_type == DT_DIR, entry->d_type == DT_UNKNOWN});
            m_names.insert(m_names.end(), name, name + length);
        }
    }
}

void TreeWalker::sortEntries() {
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
}

QByteArray TreeWalker::entryName(const Entry &entry) const {
    return QByteArray(m_names.data() + entry.offset, qsizetype(entry.length));
}

bool TreeWalker::listed(const QByteArray &name) const {
    const quint64 prefix = prefixOf(name.constData(), std::size_t(name.size()));
    const auto begin =
        std::lower_bound(m_entries.begin(), m_entries.end(), prefix,
                         [](const Entry &entry, quint64 value) { return entry.prefix < value; });
    for (auto it = begin; it != m_entries.end() && it->prefix == prefix; ++it) {
        if (entryName(*it) == name)
            return true;
    }
    return false;
}

int TreeWalker::probe(int fd, FolderNode &folder, bool isRoot) const {
    QByteArray spelling;
    const int tries = std::min<int>(probeTries, int(m_entries.size()));
    for (int i = 0; i < tries && spelling.isEmpty(); ++i) {
        spelling = caseFlipped(entryName(m_entries[std::size_t(i)]));
        // Twins that differ only in case: the flipped spelling names the other file.
        if (!spelling.isEmpty() && listed(spelling))
            spelling.clear();
    }
    const bool flipped = !spelling.isEmpty();
    if (!flipped)
        spelling = entryName(m_entries.front());
    struct stat st;
    const int error =
        ::fstatat(fd, spelling.constData(), &st, AT_SYMLINK_NOFOLLOW) == 0 ? 0 : errno;
    if (error == EACCES || error == EPERM)
        return error;
    if (m_rule != CaseRule::Automatic)
        return 0;
    // A spelling that is not listed but still found: the folder resolves names without
    // regard to case. Without a letter to flip a folder keeps its parent's rule.
    if (flipped && (error == 0 || error == ENOENT))
        folder.setIgnoresCase(error == 0);
    else if (isRoot)
        folder.setIgnoresCase(fileSystemIgnoresCase(fd));
    return 0;
}

void TreeWalker::resolveUnknownTypes(int fd) {
    bool gone = false;
    for (Entry &entry : m_entries) {
        if (!entry.typeUnknown)
            continue;
        struct stat st;
        if (::fstatat(fd, entryName(entry).constData(), &st, AT_SYMLINK_NOFOLLOW) == 0) {
            entry.folder = S_ISDIR(st.st_mode);
        } else if (errno == ENOENT) {
            entry.length = 0;
            gone = true;
        }
        // Any other error leaves it a file: the stat of its pair will tell what went wrong.
    }
    if (gone)
        std::erase_if(m_entries, [](const Entry &entry) { return entry.length == 0; });
}

void TreeWalker::applyFilter(int fd, const FolderNode &folder, TreeFilter::ScopePtr &scope) {
    QByteArray base = folder.relativeNativePath();
    if (!base.isEmpty())
        base += '/';
    if (m_filter->gitignore && listed(QByteArrayLiteral(".gitignore"))) {
        const FdGuard file(
            ::openat(fd, ".gitignore", O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        if (file.get() >= 0) {
            // A .gitignore that cannot be read leaves nothing out.
            QByteArray text;
            char chunk[4096];
            ssize_t n;
            while (text.size() < maxIgnoreFileSize &&
                   (n = ::read(file.get(), chunk, sizeof chunk)) > 0)
                text.append(chunk, n);
            auto own = std::make_shared<TreeFilter::Scope>();
            own->rules.addLines(text);
            own->parent = scope;
            own->baseLength = base.size();
            if (!own->rules.isEmpty())
                scope = std::move(own);
        }
    }
    QByteArray path = base;
    std::erase_if(m_entries, [&](const Entry &entry) {
        path.truncate(base.size());
        path.append(m_names.data() + entry.offset, qsizetype(entry.length));
        return m_filter->excluded(scope.get(), path, entry.folder);
    });
}

bool TreeWalker::visitFiles(const FolderRef &folder, std::vector<QByteArray> &subfolders) {
    m_files.clear();
    qsizetype fileBytes = 0;
    for (const Entry &entry : m_entries)
        fileBytes += entry.folder ? 0 : qsizetype(entry.length) + 1;
    // The records keep their names for the whole compare: one allocation a folder.
    NameBlock names(fileBytes);
    for (const Entry &entry : m_entries) {
        if (entry.folder)
            subfolders.push_back(entryName(entry));
        else
            m_files.push_back(names.add(m_names.data() + entry.offset, qsizetype(entry.length)));
    }
    return m_files.empty() || m_callbacks.files(folder, m_files);
}

void TreeWalker::walk(const FolderRef &root) {
    struct Frame {
        FolderRef folder;
        std::vector<QByteArray> subfolders;
        std::size_t next = 0;
        /** The .gitignore rules in force in this folder. */
        TreeFilter::ScopePtr scope;
    };
    std::vector<Frame> stack;

    stack.push_back({root, {}, 0, {}});
    if (!list(root, true, stack.back().scope))
        return;
    if (m_callbacks.folder)
        m_callbacks.folder(root);
    if (!visitFiles(root, stack.back().subfolders))
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
        Frame frame{child, {}, 0, top.scope};
        if (!list(child, false, frame.scope))
            continue;
        if (m_callbacks.folder)
            m_callbacks.folder(child);
        if (!visitFiles(child, frame.subfolders))
            return;
        stack.push_back(std::move(frame));
    }
}
