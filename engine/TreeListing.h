#pragma once

#include "engine/CaseRule.h"
#include "engine/FolderFiles.h"
#include "engine/FolderNode.h"
#include "engine/TreeFilter.h"

#include <QByteArray>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

/**
 * A TreeWalker run on a thread of its own: it lists the folders of a tree and makes the records
 * of their files, ahead of the collection that takes them in walk order. A window
 * starts the listing of both trees before it walks the first, so that the second tree is
 * read from the disk while the first one's records are made.
 */
class TreeListing {
public:
    /** One step of the walk: the files of one folder, or a folder that could not be read. */
    struct Batch {
        FolderFiles files;
        /** For a folder that could not be read (then files.folder): the errno; else 0. */
        int error = 0;
    };

    /** Starts listing the tree below \a root, telling letter case apart by \a rule. */
    TreeListing(FolderRef root, CaseRule rule, std::shared_ptr<const TreeFilter> filter = {});
    /** Stops the listing and waits for its thread. */
    ~TreeListing();

    TreeListing(const TreeListing &) = delete;
    TreeListing &operator=(const TreeListing &) = delete;

    const FolderRef &root() const { return m_root; }
    CaseRule rule() const { return m_rule; }
    const std::shared_ptr<const TreeFilter> &filter() const { return m_filter; }

    /**
     * Moves the next step into \a batch, waiting for it; false when the walk is over. While
     * it waits, \a idle is called every few milliseconds, and a false answer gives up (false).
     */
    bool take(Batch &batch, const std::function<bool()> &idle);

private:
    void run();

    FolderRef m_root;
    CaseRule m_rule;
    std::shared_ptr<const TreeFilter> m_filter;
    std::mutex m_mutex;
    std::condition_variable m_ready;
    std::deque<Batch> m_batches;
    bool m_finished = false;
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};
