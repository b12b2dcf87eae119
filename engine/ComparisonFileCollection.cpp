#include "engine/ComparisonFileCollection.h"

#include "engine/PathHelpers.h"
#include "engine/TreeListing.h"
#include "engine/TreeWalker.h"

#include <cerrno>
#include <cstring>
#include <sys/stat.h>

namespace {

QByteArray normalizedRoot(QByteArray native) {
    while (native.size() > 1 && native.endsWith('/'))
        native.chop(1);
    return native;
}

QString errorText(int error) {
    return QString::fromLocal8Bit(std::strerror(error));
}

} // namespace

ComparisonFileCollection::ComparisonFileCollection(QObject *parent)
    : QObject(parent) {}

ComparisonFileCollection::~ComparisonFileCollection() = default;

QByteArray ComparisonFileCollection::RootFolderNative() const {
    return m_rootNative;
}

void ComparisonFileCollection::setRootFolder(const QString &folder) {
    walk(NativeFromPath(folder), folder);
}

void ComparisonFileCollection::setRootFolderNative(const QByteArray &folder) {
    walk(folder, DisplayFromNative(folder));
}

namespace {

/** 0 when \a native names a folder (a link to one counts), else the reason as an errno. */
int folderError(const QByteArray &native) {
    struct stat st;
    if (native.isEmpty())
        return ENOENT;
    if (::stat(native.constData(), &st) != 0)
        return errno;
    return S_ISDIR(st.st_mode) ? 0 : ENOTDIR;
}

bool isFolder(const QByteArray &native) {
    return folderError(native) == 0;
}

} // namespace

void ComparisonFileCollection::prepareRootFolder(const QString &folder) {
    m_prepared.reset();
    const QByteArray native = NativeFromPath(folder);
    if (!isFolder(native))
        return;
    const QByteArray root = normalizedRoot(native);
    m_prepared = std::make_unique<TreeListing>(FolderRef::make(root, root.size(), folder));
}

void ComparisonFileCollection::walk(const QByteArray &rootNative, const QString &asGiven) {
    m_rootFolder = asGiven;
    m_rootNative = normalizedRoot(rootNative);
    m_cancelled = false;
    resetRecords();
    // A root that is no longer a folder (unmounted, renamed since it was chosen) is a problem
    // the caller must see: taken as an empty tree, it would show every file of the other side
    // as missing. The root is kept, so that the other side's files still find their place.
    if (const int error = folderError(rootNative)) {
        m_prepared.reset();
        m_rootNode = FolderRef::make(m_rootNative, m_rootNative.size(), m_rootFolder);
        addProblem({CollectionProblem::Kind::UnreadableFolder, DisplayFromNative(m_rootNative),
                    m_rootNative, errorText(error)},
                   false);
        return;
    }
    m_inProgress = true;
    std::unique_ptr<TreeListing> listing = std::move(m_prepared);
    if (listing && (listing->root()->nativePath() != m_rootNative ||
                    listing->root()->rootPath() != m_rootFolder))
        listing.reset();
    m_rootNode = listing ? listing->root()
                         : FolderRef::make(m_rootNative, m_rootNative.size(), m_rootFolder);

    bool restarted = false;
    if (listing) {
        const bool listed = takeListing(*listing);
        listing.reset();
        if (listed || !m_needsRescan) {
            m_inProgress = false;
            return;
        }
        // A rescan asked for meanwhile walks the tree again, as it would restart a walk.
        restarted = true;
    }

    TreeWalker walker({
        [this] { return m_cancelled || m_needsRescan; },
        [this, &restarted](const FolderRef &folder, std::vector<QByteArray> &names) {
            m_pendingHashes.clear();
            for (const QByteArray &name : names)
                m_pendingHashes.push_back(RecordIndex::hashOf(*folder, name));
            return addFileRecords(folder, names, m_pendingHashes, restarted);
        },
        [this, &restarted](const QByteArray &path, int error) {
            addProblem({CollectionProblem::Kind::UnreadableFolder, DisplayFromNative(path), path,
                        errorText(error)},
                       restarted);
        },
    });
    for (;;) {
        if (m_cancelled)
            break;
        m_needsRescan = false;
        walker.walk(m_rootNode);
        if (!m_needsRescan)
            break;
        // Records found before the restart stay; meeting them again adds nothing.
        restarted = true;
    }
    m_inProgress = false;
}

bool ComparisonFileCollection::takeListing(TreeListing &listing) {
    const auto idle = [this] {
        if (m_yield)
            m_yield();
        return !m_cancelled && !m_needsRescan;
    };
    TreeListing::Batch batch;
    while (listing.take(batch, idle)) {
        // Between folders, as a walk of its own would test it.
        if (m_cancelled || m_needsRescan)
            return false;
        if (batch.error != 0) {
            addProblem({CollectionProblem::Kind::UnreadableFolder,
                        DisplayFromNative(batch.unreadablePath), batch.unreadablePath,
                        errorText(batch.error)},
                       false);
        } else if (!addFileRecords(batch.folder, batch.names, batch.hashes, false)) {
            return false;
        }
    }
    return !m_cancelled && !m_needsRescan;
}

bool ComparisonFileCollection::addFileRecords(const FolderRef &folder,
                                              std::vector<QByteArray> &names,
                                              const std::vector<quint32> &hashes, bool restarted) {
    // The keys are hashed ahead, so that the index slot of a name a few places on can be
    // fetched into the cache while this one is added: a slot is otherwise a cache miss.
    constexpr std::size_t lookAhead = 8;
    for (std::size_t i = 0; i < std::min(lookAhead, names.size()); ++i)
        m_index.prefetch(hashes[i]);
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (m_cancelled || m_needsRescan)
            return false;
        if (i + lookAhead < names.size())
            m_index.prefetch(hashes[i + lookAhead]);
        addFileRecord(folder, std::move(names[i]), hashes[i], restarted);
    }
    return true;
}

void ComparisonFileCollection::addFileRecord(const FolderRef &folder, QByteArray name, quint32 hash,
                                             bool restarted) {
    auto record = std::make_shared<ComparisonFile>(::FileObject(folder, std::move(name)));
    qsizetype existing = -1;
    if (insert(record, hash, &existing)) {
        Q_EMIT FileAdded(Count());
    } else if (existing >= 0) {
        const ComparisonFilePtr &kept = m_records[std::size_t(existing)];
        const QByteArray path = record->NativePath();
        if (kept->NativePath() != path) {
            addProblem({CollectionProblem::Kind::CaseDuplicate, record->Path(), path,
                        QStringLiteral("differs only in letter case from %1, which is compared "
                                       "instead")
                            .arg(kept->Path())},
                       restarted);
        }
    }
    if (m_yield)
        m_yield();
}

void ComparisonFileCollection::addProblem(CollectionProblem problem, bool restarted) {
    if (restarted) {
        for (const CollectionProblem &known : std::as_const(m_problems)) {
            if (known.kind == problem.kind && known.nativePath == problem.nativePath)
                return;
        }
    }
    m_problems.append(std::move(problem));
}

bool ComparisonFileCollection::insert(const ComparisonFilePtr &record, quint32 hash,
                                      qsizetype *existing) {
    const qsizetype found = find(*record, hash);
    if (existing)
        *existing = found;
    if (found >= 0)
        return false;
    m_index.insert(hash, qsizetype(m_records.size()));
    m_records.push_back(record);
    m_hashes.push_back(hash);
    ++m_generation;
    return true;
}

qsizetype ComparisonFileCollection::find(const ComparisonFile &other, quint32 hash) const {
    return m_index.find(hash, [this, &other](qsizetype position) {
        return RecordIndex::sameKey(*m_records[std::size_t(position)], other);
    });
}

void ComparisonFileCollection::resetRecords() {
    m_records.clear();
    m_records.shrink_to_fit();
    m_hashes.clear();
    m_hashes.shrink_to_fit();
    m_index.clear();
    m_problems.clear();
    m_placeholderFolders.clear();
    ++m_generation;
}

FolderRef ComparisonFileCollection::placeholderFolder(const QByteArray &relativeNative) {
    if (relativeNative.isEmpty())
        return m_rootNode;
    FolderRef &node = m_placeholderFolders[relativeNative];
    if (!node) {
        QByteArray path = m_rootNative;
        if (!path.endsWith('/'))
            path += '/';
        path += relativeNative;
        node = FolderRef::make(std::move(path), m_rootNative.size(), m_rootFolder);
    }
    return node;
}

ComparisonFilePtr ComparisonFileCollection::AddMissingFile(const ::FileObject &file,
                                                           const QString &otherRoot, int code) {
    return AddMissingFile(file, otherRoot, code, file.Stat());
}

ComparisonFilePtr ComparisonFileCollection::AddMissingFile(const ::FileObject &file,
                                                           const QString &otherRoot, int code,
                                                           const FileStat &stat) {
    if (file.isNull() || !m_rootNode)
        return nullptr;
    auto record = std::make_shared<ComparisonFile>(file);
    record->UpdateDetails(stat);

    const FolderNode &folder = *file.folder();
    const bool underOtherRoot =
        AddBackslash(folder.rootPath()).compare(AddBackslash(otherRoot), Qt::CaseInsensitive) == 0;
    if (underOtherRoot) {
        record->setLocation(placeholderFolder(folder.relativeNativePath()), file.nativeName());
    } else {
        // A file from elsewhere: translate its path as text, as a user-given root would be.
        const ::FileObject moved = ::FileObject::fromNativePath(
            NativeFromPath(TranslatePath(file.Path(), otherRoot, m_rootFolder, false)));
        record->setLocation(moved.folder(), moved.nativeName());
    }
    record->setFileObject(::FileObject());
    record->setParentTrailingSeparator(true);
    record->setDifferenceCode(code);
    if (!insert(record, RecordIndex::hashOf(*record)))
        return nullptr;
    return record;
}

void ComparisonFileCollection::RemoveMissingFiles() {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < m_records.size(); ++i) {
        if (!m_records[i]->HasFileObject())
            continue;
        if (kept != i) {
            m_records[kept] = std::move(m_records[i]);
            m_hashes[kept] = m_hashes[i];
        }
        ++kept;
    }
    if (kept == m_records.size())
        return;
    m_records.resize(kept);
    m_hashes.resize(kept);
    m_index.rebuild(m_hashes);
    m_placeholderFolders.clear();
    ++m_generation;
}

void ComparisonFileCollection::Clear() {
    m_prepared.reset();
    resetRecords();
    m_rootFolder.clear();
    m_rootNative.clear();
    m_rootNode = FolderRef();
    m_cancelled = false;
    m_needsRescan = false;
    m_needsRecompare = false;
}

ComparisonFilePtr ComparisonFileCollection::Item(int position) const {
    if (position < 1 || position > Count())
        return nullptr;
    return m_records[std::size_t(position - 1)];
}

ComparisonFilePtr ComparisonFileCollection::Item(const QString &key) const {
    if (!m_rootNode)
        return nullptr;
    const QString lower = key.toLower();
    const QString &rootKey = m_rootNode->keyPath();
    if (!lower.startsWith(rootKey))
        return nullptr;
    const QStringView relative = QStringView(lower).mid(rootKey.size());
    const qsizetype found = m_index.find(RecordKey::hash(relative), [&](qsizetype position) {
        return m_records[std::size_t(position)]->RelativeKey() == relative;
    });
    return found < 0 ? nullptr : m_records[std::size_t(found)];
}

ComparisonFilePtr ComparisonFileCollection::Counterpart(const ComparisonFile &other) const {
    return Counterpart(other, RecordIndex::hashOf(other));
}

ComparisonFilePtr ComparisonFileCollection::Counterpart(const ComparisonFile &other,
                                                        quint32 keyHash) const {
    const qsizetype found = find(other, keyHash);
    return found < 0 ? nullptr : m_records[std::size_t(found)];
}
