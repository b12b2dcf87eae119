#pragma once

#include "engine/FolderNode.h"

#include <QByteArray>

#include <functional>
#include <vector>

/**
 * Walks a folder tree depth first, each folder's files before its subfolders, every list in
 * name-byte order, without following symbolic links and without a stat per file (the entry
 * type comes from the directory listing; only entries of unknown type are asked). Holds one
 * open folder at a time, so depth is not limited by descriptors.
 */
class TreeWalker {
public:
    struct Callbacks {
        /** Asked between folders; true stops the whole walk. */
        std::function<bool()> stop;
        /**
         * The files (anything that is not a folder) of \a folder, in order; returns false
         * when the walk is to stop there (the callee tests its stop condition before each).
         * Not called for a folder without files.
         */
        std::function<bool(const FolderRef &folder, std::vector<QByteArray> &names)> files;
        /** A folder that could not be opened or listed, with the errno. */
        std::function<void(const QByteArray &nativePath, int error)> unreadable;
    };

    explicit TreeWalker(Callbacks callbacks);

    /** Walks below \a root. */
    void walk(const FolderRef &root);

private:
    /** One name of a listing: where its bytes are in m_names. */
    struct Entry {
        /** The first eight bytes, big-endian and zero-padded: they order like the bytes. */
        quint64 prefix;
        quint32 offset;
        quint32 length;
        bool folder;
    };

    /**
     * Lists a folder into m_entries, sorted, or returns false (after reporting) when it
     * cannot be read.
     */
    bool list(const QByteArray &nativePath, bool isRoot);
    /** Reports the files of the listing; returns the subfolder names, or false when stopped. */
    bool visitFiles(const FolderRef &folder, std::vector<QByteArray> &subfolders);

    Callbacks m_callbacks;
    std::vector<char> m_buffer;
    /** The names of the folder being listed, one after another (no terminators). */
    std::vector<char> m_names;
    std::vector<Entry> m_entries;
    std::vector<QByteArray> m_files;
};
