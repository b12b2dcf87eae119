#include "engine/FolderNode.h"

#include "engine/PathHelpers.h"

namespace {

QString keyFolder(const QByteArray &native) {
    QString key = KeyFromNative(native);
    if (!key.endsWith(QLatin1Char('/')))
        key += QLatin1Char('/');
    return key;
}

} // namespace

FolderNode::FolderNode(QByteArray nativePath, qsizetype rootNativeLength, QString rootPath)
    : m_nativePath(std::move(nativePath))
    , m_displayPath(DisplayFromNative(m_nativePath))
    , m_keyPath(keyFolder(m_nativePath))
    , m_rootPath(std::move(rootPath))
    , m_rootNativeLength(rootNativeLength) {
    m_rootKeyLength = rootNativeLength >= m_nativePath.size()
                          ? m_keyPath.size()
                          : keyFolder(m_nativePath.left(rootNativeLength)).size();
    m_relativeKeyHash = RecordKey::feed(RecordKey::Seed, RecordKey::fold(relativeKey()));
}

FolderNode::FolderNode(const FolderNode &parent, const QByteArray &name)
    : m_nativePath(parent.childNativePath(name))
    , m_displayPath(DisplayFromNative(m_nativePath))
    , m_rootKeyLength(parent.m_rootKeyLength)
    , m_rootPath(parent.m_rootPath)
    , m_rootNativeLength(parent.m_rootNativeLength)
    , m_parent(&parent)
    , m_ignoresCase(parent.m_ignoresCase) {
    parent.ref();
    // Keys are made name by name, so the parent's key is this key's beginning.
    m_keyPath.reserve(parent.m_keyPath.size() + name.size() + 1);
    m_keyPath += parent.m_keyPath;
    RecordKey::appendName(m_keyPath, name);
    m_keyPath += QLatin1Char('/');
    m_relativeKeyHash = RecordKey::feed(RecordKey::feedName(parent.m_relativeKeyHash, name), u'/');
}

QByteArrayView FolderNode::relativeNativeView() const {
    if (m_rootNativeLength >= m_nativePath.size())
        return {};
    const bool rootEndsInSlash =
        m_rootNativeLength > 0 && m_nativePath[m_rootNativeLength - 1] == '/';
    return QByteArrayView(m_nativePath).sliced(m_rootNativeLength + (rootEndsInSlash ? 0 : 1));
}

QByteArray FolderNode::relativeNativePath() const {
    return relativeNativeView().toByteArray();
}

QByteArray FolderNode::childNativePath(const QByteArray &name) const {
    QByteArray path;
    path.reserve(m_nativePath.size() + 1 + name.size());
    path += m_nativePath;
    if (!path.endsWith('/'))
        path += '/';
    path += name;
    return path;
}

void FolderNode::release(const FolderNode *node) {
    while (node && node->m_refs.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        const FolderNode *parent = node->m_parent;
        delete node;
        node = parent;
    }
}

QByteArray FolderNode::name() const {
    return m_nativePath.mid(m_nativePath.lastIndexOf('/') + 1);
}

bool FolderNode::sameRelativeKeyIgnoringCase(const FolderNode &other) const {
    return m_relativeKeyHash == other.m_relativeKeyHash &&
           RecordKey::fold(relativeKey()) == RecordKey::fold(other.relativeKey());
}
