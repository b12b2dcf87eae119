#pragma once

#include "engine/RecordKey.h"

#include <QByteArray>
#include <QString>

#include <atomic>
#include <memory>
#include <utility>

class RecordedFolder;

/**
 * One folder of a walked tree, shared by every file record found in it, so that a record
 * carries its name alone and not a copy of its folder's path. Reference-counted intrusively
 * (through FolderRef) to keep the records small; the count is atomic because checksum and
 * stat workers may hold references while the caller's thread releases its own.
 */
class FolderNode {
public:
    /**
     * \a nativePath is the folder's full path as bytes, without a trailing separator (except
     * for "/"); \a rootNativeLength the length of the root's part of it; \a rootPath the root
     * folder as the collection was given it.
     */
    FolderNode(QByteArray nativePath, qsizetype rootNativeLength, QString rootPath);
    /** The subfolder \a name of \a parent, in the same tree; it holds its parent. */
    FolderNode(const FolderNode &parent, const QByteArray &name);

    FolderNode(const FolderNode &) = delete;
    FolderNode &operator=(const FolderNode &) = delete;

    /** Full native path, no trailing separator (except for the root of the file system). */
    const QByteArray &nativePath() const { return m_nativePath; }
    /** Full path for display: invalid UTF-8 bytes shown as replacement characters. */
    const QString &displayPath() const { return m_displayPath; }
    /**
     * The folder's full path in key form (KeyFromNative: letter case kept, invalid bytes and
     * backslashes escaped) with a trailing "/": a file's key is this followed by the key form
     * of its name.
     */
    const QString &keyPath() const { return m_keyPath; }
    /** The part of keyPath() below the root ("" for the root itself, else ending in "/"). */
    QStringView relativeKey() const { return QStringView(m_keyPath).mid(m_rootKeyLength); }
    /** relativeKey() folded and fed to a RecordKey hash: a file's key hash goes on from here. */
    RecordKey::State relativeKeyHash() const { return m_relativeKeyHash; }
    /** True when the two folders have the same relativeKey(). */
    bool sameRelativeKey(const FolderNode &other) const {
        return this == &other || (m_relativeKeyHash == other.m_relativeKeyHash &&
                                  relativeKey() == other.relativeKey());
    }
    /** True when the two folders' relativeKey()s are equal but for letter case. */
    bool sameRelativeKeyIgnoringCase(const FolderNode &other) const;

    /**
     * The folder this one was walked from; null for a root, and for a folder made from a
     * whole path.
     */
    const FolderNode *parent() const { return m_parent; }
    /** The folder's own name (the last part of its path). */
    QByteArray name() const;
    /** True when the file system resolves names in this folder without regard to case. */
    bool ignoresCase() const { return m_ignoresCase; }
    void setIgnoresCase(bool on) { m_ignoresCase = on; }
    /**
     * The folder as a manifest recorded it, when the tree was read from one: its files'
     * properties come from there, not from the disk. Null for a folder on disk.
     */
    const RecordedFolder *recorded() const { return m_recorded.get(); }
    void setRecorded(std::shared_ptr<const RecordedFolder> folder) {
        m_recorded = std::move(folder);
    }
    /** The root folder of the tree this folder belongs to, as given to the collection. */
    const QString &rootPath() const { return m_rootPath; }
    /** The folder's native path below the root, without leading separator ("" for the root). */
    QByteArray relativeNativePath() const;
    /** The same, as a view of nativePath(). */
    QByteArrayView relativeNativeView() const;
    /** Length of the root's native path inside nativePath(). */
    qsizetype rootNativeLength() const { return m_rootNativeLength; }

    /** Full native path of the entry \a name inside this folder. */
    QByteArray childNativePath(const QByteArray &name) const;

    void ref() const { m_refs.fetch_add(1, std::memory_order_relaxed); }
    /**
     * Drops a reference to \a node, deleting it when it was the last, and then its parents
     * likewise: a loop, not a chain of destructors, so depth cannot overflow the stack.
     */
    static void release(const FolderNode *node);

private:
    QByteArray m_nativePath;
    QString m_displayPath;
    QString m_keyPath;
    qsizetype m_rootKeyLength = 0;
    RecordKey::State m_relativeKeyHash = RecordKey::Seed;
    QString m_rootPath;
    qsizetype m_rootNativeLength;
    const FolderNode *m_parent = nullptr;
    std::shared_ptr<const RecordedFolder> m_recorded;
    mutable std::atomic<int> m_refs{0};
    bool m_ignoresCase = false;
};

/** An owning reference to a FolderNode. */
class FolderRef {
public:
    FolderRef() = default;
    explicit FolderRef(FolderNode *node)
        : m_node(node) {
        if (m_node)
            m_node->ref();
    }
    FolderRef(const FolderRef &other)
        : FolderRef(other.m_node) {}
    FolderRef(FolderRef &&other) noexcept
        : m_node(std::exchange(other.m_node, nullptr)) {}
    FolderRef &operator=(FolderRef other) noexcept {
        std::swap(m_node, other.m_node);
        return *this;
    }
    ~FolderRef() { FolderNode::release(m_node); }

    /** Creates a node; see FolderNode's constructor. */
    static FolderRef make(QByteArray nativePath, qsizetype rootNativeLength, QString rootPath) {
        return FolderRef(
            new FolderNode(std::move(nativePath), rootNativeLength, std::move(rootPath)));
    }
    /** Creates the node of the subfolder \a name of \a parent. */
    static FolderRef makeChild(const FolderRef &parent, const QByteArray &name) {
        return FolderRef(new FolderNode(*parent, name));
    }

    FolderNode *get() const { return m_node; }
    const FolderNode *operator->() const { return m_node; }
    const FolderNode &operator*() const { return *m_node; }
    explicit operator bool() const { return m_node != nullptr; }
    friend bool operator==(const FolderRef &a, const FolderRef &b) { return a.m_node == b.m_node; }

private:
    FolderNode *m_node = nullptr;
};
