#include "engine/TreeListing.h"

#include "engine/TreeWalker.h"

#include <chrono>

TreeListing::TreeListing(FolderRef root, CaseRule rule, std::shared_ptr<const TreeFilter> filter)
    : m_root(std::move(root))
    , m_rule(rule)
    , m_filter(std::move(filter))
    , m_thread([this] { run(); }) {}

TreeListing::~TreeListing() {
    m_stop.store(true, std::memory_order_relaxed);
    m_thread.join();
}

void TreeListing::run() {
    const auto publish = [this](Batch &&batch) {
        {
            const std::lock_guard lock(m_mutex);
            m_batches.push_back(std::move(batch));
        }
        m_ready.notify_one();
    };
    TreeWalker walker(
        {
            [this] { return m_stop.load(std::memory_order_relaxed); },
            [this, &publish](const FolderRef &folder, std::vector<QByteArray> &names) {
                Batch batch;
                batch.files.make(folder, names);
                publish(std::move(batch));
                return !m_stop.load(std::memory_order_relaxed);
            },
            [&publish](const FolderRef &folder, int error) {
                Batch batch;
                batch.files.folder = folder;
                batch.error = error;
                publish(std::move(batch));
            },
            {},
        },
        m_rule, m_filter);
    walker.walk(m_root);
    {
        const std::lock_guard lock(m_mutex);
        m_finished = true;
    }
    m_ready.notify_one();
}

bool TreeListing::take(Batch &batch, const std::function<bool()> &idle) {
    std::unique_lock lock(m_mutex);
    while (m_batches.empty()) {
        if (m_finished)
            return false;
        // A short wait, then the caller's events: the walk of a slow disk must not freeze it.
        if (!m_ready.wait_for(lock, std::chrono::milliseconds(5),
                              [this] { return !m_batches.empty() || m_finished; })) {
            lock.unlock();
            if (!idle())
                return false;
            lock.lock();
        }
    }
    batch = std::move(m_batches.front());
    m_batches.pop_front();
    return true;
}
