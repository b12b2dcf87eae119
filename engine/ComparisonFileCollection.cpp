#include "engine/ComparisonFileCollection.h"

#include "engine/PathHelpers.h"
#include "engine/RecordKey.h"
#include "engine/RecordedTree.h"
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
    m_prepared = std::make_unique<TreeListing>(FolderRef::make(root, root.size(), folder),
                                               m_caseRule, m_filter);
}

void ComparisonFileCollection::walk(const QByteArray &rootNative, const QString &asGiven) {
    m_rootFolder = asGiven;
    m_rootNative = normalizedRoot(rootNative);
    m_cancelled = false;
    resetRecords();
    if (m_recorded) {
        m_prepared.reset();
        m_inProgress = true;
        m_rootNode = FolderRef::make(m_rootNative, m_rootNative.size(), m_rootFolder);
        m_recorded->walk(m_rootNode, m_caseRule, m_filter.get(), walkCallbacks());
        m_inProgress = false;
        return;
    }
    // A root that is no longer a folder (unmounted, renamed since it was chosen) is a problem
    // the caller must see: taken as an empty tree, it would show every file of the other side
    // as missing. The root is kept, so that the other side's files still find their place,
    // and they could not be read here, as below any folder that could not be read.
    if (const int error = folderError(rootNative)) {
        m_prepared.reset();
        m_rootNode = FolderRef::make(m_rootNative, m_rootNative.size(), m_rootFolder);
        addUnreadableFolder(m_rootNode, error);
        return;
    }
    m_inProgress = true;
    std::unique_ptr<TreeListing> listing = std::move(m_prepared);
    if (listing && (listing->root()->nativePath() != m_rootNative ||
                    listing->root()->rootPath() != m_rootFolder || listing->rule() != m_caseRule ||
                    listing->filter() != m_filter))
        listing.reset();
    m_rootNode = listing ? listing->root()
                         : FolderRef::make(m_rootNative, m_rootNative.size(), m_rootFolder);

    if (listing) {
        const bool listed = takeListing(*listing);
        listing.reset();
        // A rescan asked for meanwhile walks the tree again, as it would restart a walk.
        if (listed || !m_needsRescan) {
            m_inProgress = false;
            return;
        }
    }

    TreeWalker walker(walkCallbacks(), m_caseRule, m_filter);
    for (;;) {
        if (m_cancelled)
            break;
        m_needsRescan = false;
        walker.walk(m_rootNode);
        if (!m_needsRescan)
            break;
        // Records found before the restart stay; meeting them again adds nothing.
    }
    m_inProgress = false;
}

TreeWalker::Callbacks ComparisonFileCollection::walkCallbacks() {
    return {
        [this] { return m_cancelled || m_needsRescan; },
        [this](const FolderRef &folder, std::vector<QByteArray> &names) {
            m_pending.make(folder, names);
            const bool more = addFileRecords(m_pending);
            m_pending.records.clear();
            return more;
        },
        [this](const FolderRef &folder, int error) { addUnreadableFolder(folder, error); },
        {},
    };
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
            addUnreadableFolder(batch.files.folder, batch.error);
        } else if (!addFileRecords(batch.files)) {
            return false;
        }
    }
    return !m_cancelled && !m_needsRescan;
}

bool ComparisonFileCollection::addFileRecords(const FolderFiles &files) {
    if (files.folder->ignoresCase())
        m_anyIgnoresCase = true;
    // The keys are hashed ahead, so that the index slot of a name a few places on can be
    // fetched into the cache while this one is added: a slot is otherwise a cache miss.
    const std::size_t count = files.records.size();
    constexpr std::size_t lookAhead = 8;
    for (std::size_t i = 0; i < std::min(lookAhead, count); ++i)
        m_index.prefetch(files.hashes[i]);
    for (std::size_t i = 0; i < count; ++i) {
        if (m_cancelled || m_needsRescan)
            return false;
        if (i + lookAhead < count)
            m_index.prefetch(files.hashes[i + lookAhead]);
        // Keys are exact, so a name is refused only when a restarted walk meets it again.
        if (insert(files.records[i], files.hashes[i]))
            Q_EMIT FileAdded(Count());
        if (m_yield)
            m_yield();
    }
    return true;
}

void ComparisonFileCollection::addProblem(CollectionProblem problem) {
    // A restarted walk or compare meets the same problems again.
    QByteArray key = problem.nativePath;
    key += char(problem.kind);
    if (m_problemKeys.contains(key))
        return;
    m_problemKeys.insert(key);
    m_problems.append(std::move(problem));
}

void ComparisonFileCollection::addUnreadableFolder(const FolderRef &folder, int error) {
    m_unreadableKeys.insert(folder->relativeKey().toString());
    addProblem({CollectionProblem::Kind::UnreadableFolder, folder->displayPath(),
                folder->nativePath(),
                folder->recorded() ? QStringLiteral("could not be read when the manifest was "
                                                    "written")
                                   : errorText(error)});
}

void ComparisonFileCollection::AddCaseTwinProblem(const ComparisonFile &record,
                                                  const ComparisonFile &twin) {
    addProblem({CollectionProblem::Kind::CaseTwin, record.Path(), record.NativePath(),
                QStringLiteral("differs only in letter case or in how its accents are "
                               "written from %1 on the other side; the two are not paired")
                    .arg(twin.Path())});
}

bool ComparisonFileCollection::IsBehindUnreadableFolder(const ComparisonFile &other) const {
    if (m_unreadableKeys.isEmpty())
        return false;
    if (m_unreadableKeys.contains(QString()))
        return true;
    const QString key = other.RelativeKey();
    for (qsizetype slash = key.indexOf(QLatin1Char('/')); slash >= 0;
         slash = key.indexOf(QLatin1Char('/'), slash + 1)) {
        if (m_unreadableKeys.contains(key.left(slash + 1)))
            return true;
    }
    return false;
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
    m_problemKeys.clear();
    m_unreadableKeys.clear();
    m_anyIgnoresCase = m_caseRule == CaseRule::Insensitive;
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
    const bool underOtherRoot = AddTrailingSlash(folder.rootPath()) == AddTrailingSlash(otherRoot);
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
    const QString &rootKey = m_rootNode->keyPath();
    if (!key.startsWith(rootKey))
        return nullptr;
    const QStringView relative = QStringView(key).mid(rootKey.size());
    const qsizetype found = m_index.find(RecordKey::hash(relative), [&](qsizetype position) {
        return m_records[std::size_t(position)]->RelativeKey() == relative;
    });
    return found < 0 ? nullptr : m_records[std::size_t(found)];
}

ComparisonFilePtr
ComparisonFileCollection::Counterpart(const ComparisonFile &other,
                                      const ComparisonFileCollection &otherSide) const {
    return Counterpart(other, RecordIndex::hashOf(other), otherSide);
}

ComparisonFilePtr
ComparisonFileCollection::Counterpart(const ComparisonFile &other, quint32 keyHash,
                                      const ComparisonFileCollection &otherSide) const {
    const qsizetype found = find(other, keyHash);
    if (found >= 0)
        return m_records[std::size_t(found)];
    if (!mayIgnoreCase() && !otherSide.mayIgnoreCase() && !composesNames(otherSide))
        return nullptr;
    return caseBlindCounterpart(other, keyHash, otherSide);
}

namespace {

/**
 * True when two names of a path, equal once folded, would be taken for one: spelt alike, or
 * alike once both are composed (\a composed), or held by a folder that ignores letter case
 * on one side.
 */
bool namesMayPair(const QByteArray &a, const QByteArray &b, bool composed, bool caseBlind) {
    return a == b || caseBlind || (composed && RecordKey::namesEqualComposed(a, b));
}

/**
 * True when the file systems would take the two paths, equal once folded, for the same: each
 * part spelt differently passes namesMayPair() with the folders that hold it.
 */
bool mayPair(const ComparisonFile &a, const ComparisonFile &b, bool composed) {
    const FolderNode *folderA = a.Folder().get();
    const FolderNode *folderB = b.Folder().get();
    if (!folderA || !folderB)
        return false;
    if (!namesMayPair(a.NativeName(), b.NativeName(), composed,
                      folderA->ignoresCase() || folderB->ignoresCase()))
        return false;
    while (!folderA->sameRelativeKey(*folderB)) {
        const FolderNode *parentA = folderA->parent();
        const FolderNode *parentB = folderB->parent();
        // A folder made from a whole path has no parents to ask: exact spelling only.
        if (!parentA || !parentB)
            return false;
        if (!namesMayPair(folderA->name(), folderB->name(), composed,
                          parentA->ignoresCase() || parentB->ignoresCase()))
            return false;
        folderA = parentA;
        folderB = parentB;
    }
    return true;
}

} // namespace

ComparisonFilePtr
ComparisonFileCollection::caseBlindCounterpart(const ComparisonFile &other, quint32 keyHash,
                                               const ComparisonFileCollection &otherSide) const {
    // Every real record here that the case rule would pair with it and whose exact namesake
    // does not exist on the other side; exactly one may pair.
    ComparisonFilePtr candidate;
    bool ambiguous = false;
    m_index.find(keyHash, [&](qsizetype position) {
        const ComparisonFilePtr &record = m_records[std::size_t(position)];
        if (!record->HasFileObject() || !RecordIndex::sameKeyIgnoringCase(*record, other) ||
            !mayPair(other, *record, composesNames(otherSide)) ||
            otherSide.find(*record, keyHash) >= 0)
            return false;
        if (candidate)
            ambiguous = true;
        candidate = record;
        return ambiguous;
    });
    if (!candidate || ambiguous)
        return nullptr;
    // A second name on the other side that could pair with it makes the choice arbitrary.
    const qsizetype rival = otherSide.m_index.find(keyHash, [&](qsizetype position) {
        const ComparisonFilePtr &record = otherSide.m_records[std::size_t(position)];
        return record.get() != &other && record->HasFileObject() &&
               RecordIndex::sameKeyIgnoringCase(*record, other) &&
               mayPair(*record, *candidate, composesNames(otherSide)) && find(*record, keyHash) < 0;
    });
    return rival >= 0 ? nullptr : candidate;
}

ComparisonFilePtr
ComparisonFileCollection::CaseTwin(const ComparisonFile &other,
                                   const ComparisonFileCollection &otherSide) const {
    if (!mayIgnoreCase() && !otherSide.mayIgnoreCase() && !composesNames(otherSide))
        return nullptr;
    const qsizetype found = m_index.find(RecordIndex::hashOf(other), [&](qsizetype position) {
        const ComparisonFilePtr &record = m_records[std::size_t(position)];
        return record->HasFileObject() && RecordIndex::sameKeyIgnoringCase(*record, other) &&
               mayPair(other, *record, composesNames(otherSide));
    });
    return found < 0 ? nullptr : m_records[std::size_t(found)];
}
