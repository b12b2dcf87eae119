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
        /** Asked before every file; true stops the whole walk. */
        std::function<bool()> stop;
        /** One file (anything that is not a folder) of \a folder. */
        std::function<void(const FolderRef &folder, QByteArray name)> file;
        /** A folder that could not be opened or listed, with the errno. */
        std::function<void(const QByteArray &nativePath, int error)> unreadable;
    };

    explicit TreeWalker(Callbacks callbacks);

    /** Walks below \a root. */
    void walk(const FolderRef &root);

private:
    struct Entry {
        QByteArray name;
        bool folder;
    };

    /** Lists a folder sorted, or returns false (after reporting) when it cannot be read. */
    bool list(const QByteArray &nativePath, bool isRoot, std::vector<Entry> &entries);
    /** Reports the files of a listing; returns the subfolder names, or false when stopped. */
    bool visitFiles(const FolderRef &folder, std::vector<Entry> &entries,
                    std::vector<QByteArray> &subfolders);

    Callbacks m_callbacks;
    std::vector<char> m_buffer;
};
