#include "engine/RecordedTree.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace {

/** Reads lines of any length with getline(), owning its buffer. */
class LineReader {
public:
    explicit LineReader(std::FILE *in)
        : m_in(in) {}
    ~LineReader() { std::free(m_buffer); }
    LineReader(const LineReader &) = delete;
    LineReader &operator=(const LineReader &) = delete;

    /** The next line without its newline; false at the end or on a read error. */
    bool next(QByteArrayView &line, bool &complete) {
        const ssize_t length = ::getline(&m_buffer, &m_capacity, m_in);
        if (length < 0)
            return false;
        complete = length > 0 && m_buffer[length - 1] == '\n';
        line = QByteArrayView(m_buffer, complete ? length - 1 : length);
        return true;
    }

private:
    std::FILE *m_in;
    char *m_buffer = nullptr;
    std::size_t m_capacity = 0;
};

QString lineError(qint64 line, const QString &reason) {
    return QStringLiteral("line %1: %2").arg(line).arg(reason);
}

} // namespace

std::shared_ptr<RecordedTree> RecordedTree::read(std::FILE *in, QString *error, bool *foreign) {
    auto tree = std::make_shared<RecordedTree>();
    LineReader reader(in);
    QByteArrayView line;
    bool complete = false;
    qint64 number = 0;
    while (reader.next(line, complete)) {
        ++number;
        QString reason;
        if (number == 1) {
            if (foreign)
                *foreign = !line.startsWith(ManifestFormat::Magic);
            if (const auto header = ManifestFormat::parseHeader(line, &reason))
                tree->m_header = *header;
        }
        if (reason.isEmpty() && !complete) {
            reason = QStringLiteral("the last line has no newline; the manifest was cut short");
        } else if (number > 1) {
            ManifestEntry entry;
            if (ManifestFormat::parseEntry(line, entry, &reason))
                tree->add(std::move(entry), number, &reason);
        }
        if (!reason.isEmpty()) {
            *error = lineError(number, reason);
            return nullptr;
        }
    }
    if (std::ferror(in)) {
        *error = QStringLiteral("could not be read: %1")
                     .arg(QString::fromLocal8Bit(std::strerror(errno)));
        return nullptr;
    }
    if (foreign && number == 0)
        *foreign = true;
    if (number == 0 || tree->m_folders.empty()) {
        *error = number == 0 ? QStringLiteral("empty; not a pairscope manifest")
                             : QStringLiteral("line %1: the manifest ends before its root "
                                              "folder's line")
                                   .arg(number + 1);
        return nullptr;
    }
    if (!tree->sortFiles(error))
        return nullptr;
    tree->m_folderIndex.clear();
    return tree;
}

bool RecordedTree::add(ManifestEntry &&entry, qint64 line, QString *error) {
    // The root's line comes first, and only there: every other line belongs below it.
    if (m_folders.empty() != entry.path.isEmpty() || (entry.path.isEmpty() && !entry.isFolder())) {
        *error = m_folders.empty() ? QStringLiteral("the root folder's line (\".\") must come "
                                                    "first")
                                   : QStringLiteral("a second root line");
        return false;
    }
    const qsizetype slash = entry.path.lastIndexOf('/');
    const QByteArray parentPath = slash < 0 ? QByteArray() : entry.path.left(slash);
    const auto parent = m_folderIndex.constFind(parentPath);
    if (!entry.path.isEmpty() && parent == m_folderIndex.cend()) {
        *error = QStringLiteral("its folder has no line before it");
        return false;
    }
    if (m_folderIndex.contains(entry.path)) {
        *error = QStringLiteral("a folder listed twice");
        return false;
    }
    if (entry.isFolder()) {
        RecordedFolder folder;
        folder.path = entry.path;
        folder.parent = entry.path.isEmpty() ? -1 : *parent;
        folder.ignoresCase = entry.ignoresCase;
        folder.unreadable = entry.unreadable;
        m_folderIndex.insert(entry.path, int(m_folders.size()));
        m_folders.push_back(std::move(folder));
        return true;
    }
    if (entry.stat.isValid() && entry.stat.created.isNull())
        m_lacksCreated = true;
    if (m_header.checksums && !entry.checksummed && entry.stat.kind != FileKind::Other &&
        entry.stat.isValid()) {
        *error = QStringLiteral("no CRC-32, though the first line says \"crc\"");
        return false;
    }
    m_folders[std::size_t(*parent)].files.push_back(
        {entry.path.mid(slash + 1), entry.stat, entry.checksummed, entry.checksum, line});
    return true;
}

bool RecordedTree::sortFiles(QString *error) {
    for (RecordedFolder &folder : m_folders) {
        std::stable_sort(folder.files.begin(), folder.files.end(),
                         [](const RecordedFolder::File &a, const RecordedFolder::File &b) {
                             return a.name < b.name;
                         });
        const auto twin =
            std::adjacent_find(folder.files.begin(), folder.files.end(),
                               [](const RecordedFolder::File &a, const RecordedFolder::File &b) {
                                   return a.name == b.name;
                               });
        if (twin != folder.files.end()) {
            *error = lineError(std::max(twin->line, (twin + 1)->line),
                               QStringLiteral("a file listed twice"));
            return false;
        }
        for (const RecordedFolder::File &file : folder.files) {
            QByteArray path = folder.path.isEmpty() ? file.name : folder.path + '/' + file.name;
            if (m_folderIndex.contains(path)) {
                *error = lineError(file.line, QStringLiteral("listed as a file and as a folder"));
                return false;
            }
        }
    }
    return true;
}

void RecordedTree::walk(const FolderRef &root, CaseRule rule, const TreeFilter *filter,
                        const TreeWalker::Callbacks &callbacks) const {
    const std::shared_ptr<const RecordedTree> self = shared_from_this();
    // A folder's node is made from its parent's, so that keys and pairing see the same chain
    // of folders as a walk of the disk would make.
    std::vector<FolderRef> nodes(m_folders.size());
    // Only the user's own rules: the .gitignore files were applied, if at all, by the writer.
    TreeFilter rules;
    if (filter)
        rules.rules = filter->rules;
    std::vector<QByteArray> names;
    for (std::size_t i = 0; i < m_folders.size(); ++i) {
        const RecordedFolder &folder = m_folders[i];
        if (i > 0 && callbacks.stop && callbacks.stop())
            return;
        if (folder.parent >= 0) {
            const FolderRef &parent = nodes[std::size_t(folder.parent)];
            // Left out, or below a folder left out: never entered.
            if (!parent || (!rules.rules.isEmpty() && rules.excluded(nullptr, folder.path, true)))
                continue;
            nodes[i] =
                FolderRef::makeChild(parent, folder.path.mid(folder.path.lastIndexOf('/') + 1));
        } else {
            nodes[i] = root;
        }
        FolderNode *node = nodes[i].get();
        node->setRecorded(std::shared_ptr<const RecordedFolder>(self, &folder));
        node->setIgnoresCase(rule == CaseRule::Automatic ? folder.ignoresCase
                                                         : rule == CaseRule::Insensitive);
        if (folder.unreadable) {
            callbacks.unreadable(nodes[i], 0);
            nodes[i] = FolderRef();
            continue;
        }
        if (callbacks.folder)
            callbacks.folder(nodes[i]);
        names.clear();
        for (const RecordedFolder::File &file : folder.files) {
            if (rules.rules.isEmpty() ||
                !rules.excluded(nullptr,
                                folder.path.isEmpty() ? file.name : folder.path + '/' + file.name,
                                false))
                names.push_back(file.name);
        }
        if (!names.empty() && !callbacks.files(nodes[i], names))
            return;
    }
}
