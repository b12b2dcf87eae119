#pragma once

#include "engine/CaseRule.h"
#include "engine/FolderNode.h"
#include "engine/TreeFilter.h"

#include <QByteArray>

#include <functional>
#include <memory>
#include <vector>

/**
 * Walks a folder tree depth first, each folder's files before its subfolders, every list in
 * name-byte order, without following symbolic links and without a stat per file (the entry
 * type comes from the directory listing; only entries of unknown type are asked). Holds one
 * open folder at a time, and opens a path past PATH_MAX a piece at a time, so depth is limited
 * neither by descriptors nor by path length.
 *
 * Each folder with entries costs one more lookup: a case-flipped spelling of a listed name.
 * It tells whether the folder can be entered at all (a folder that can be listed but not
 * searched yields names whose files cannot be reached) and, under CaseRule::Automatic,
 * whether its file system resolves names without regard to case (FolderNode::ignoresCase()).
 *
 * With a filter, what it leaves out is dropped from each listing before anything of it is
 * reported or entered: a folder left out is never opened.
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
        /**
         * A folder that could not be opened, listed or entered, with the errno; nothing
         * below it is walked.
         */
        std::function<void(const FolderRef &folder, int error)> unreadable;
        /**
         * Optional: every folder that could be listed, the root first, before its files; also
         * one without files. A walk that only makes records has no use for it.
         */
        std::function<void(const FolderRef &folder)> folder;
    };

    explicit TreeWalker(Callbacks callbacks, CaseRule rule = CaseRule::Automatic,
                        std::shared_ptr<const TreeFilter> filter = {});

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
        /** The listing gave no type: the entry is asked with a stat. */
        bool typeUnknown;
    };

    /**
     * Lists a folder into m_entries, sorted, or returns false (after reporting) when it
     * cannot be read.
     */
    bool list(const FolderRef &folder, bool isRoot, TreeFilter::ScopePtr &scope);
    /**
     * Drops from the listing of \a folder (open as \a fd) what the filter leaves out, after
     * taking in its .gitignore, which then becomes \a scope.
     */
    void applyFilter(int fd, const FolderNode &folder, TreeFilter::ScopePtr &scope);
    /** Reads the whole listing of \a fd into m_entries; an errno, or 0. */
    int readEntries(int fd);
    void sortEntries();
    /**
     * Looks up a case-flipped spelling of a listed name in \a fd: sets \a folder's case rule
     * and returns 0, or the errno when the folder cannot be entered.
     */
    int probe(int fd, FolderNode &folder, bool isRoot) const;
    /** Asks the entries whose type the listing did not give; drops those gone meanwhile. */
    void resolveUnknownTypes(int fd);
    /** True when the listing holds the name \a name. */
    bool listed(const QByteArray &name) const;
    QByteArray entryName(const Entry &entry) const;
    /** Reports the files of the listing and puts the subfolders' names in the empty \a subfolders;
     * false when stopped. */
    bool visitFiles(const FolderRef &folder, std::vector<QByteArray> &subfolders);

    Callbacks m_callbacks;
    CaseRule m_rule;
    std::shared_ptr<const TreeFilter> m_filter;
    std::vector<char> m_buffer;
    /** The names of the folder being listed, one after another (no terminators). */
    std::vector<char> m_names;
    std::vector<Entry> m_entries;
    std::vector<QByteArray> m_files;
};
