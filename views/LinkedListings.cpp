#include "views/LinkedListings.h"

#include "engine/ComparisonFileCollection.h"
#include "views/ColumnLayout.h"
#include "views/FileListModel.h"
#include "views/ListSorting.h"
#include "views/ListView.h"

#include <QItemSelectionModel>
#include <QScrollBar>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

// Short enough that the follower looks as if it moved with the leader.
constexpr int ScrollTickMs = 30;

/** The top edge of the first row in \a list's viewport, in pixels (negative once scrolled). */
int FirstRowTop(const ListView *list) {
    return -list->verticalScrollBar()->value() * std::max(1, list->sizeHintForRow(0));
}

/** Scrolls by \a pixels in whole rows, a half row or more counting as one, as a report list does.
 */
void ScrollVertically(ListView *list, int pixels) {
    if (pixels == 0)
        return;
    const int height = std::max(1, list->sizeHintForRow(0));
    QScrollBar *bar = list->verticalScrollBar();
    bar->setValue(bar->value() + int(std::lround(double(pixels) / height)));
}

} // namespace

LinkedListings::LinkedListings(ListView *source, ListView *destination, Collections collections,
                               QObject *parent)
    : QObject(parent)
    , m_lists{source, destination}
    , m_collections(std::move(collections)) {
    m_scrollTimer.setInterval(ScrollTickMs);
    connect(&m_scrollTimer, &QTimer::timeout, this, &LinkedListings::ScrollTick);

    for (int side = 0; side < 2; ++side) {
        ListView *list = m_lists[size_t(side)];
        connect(list, &ListView::columnClicked, this,
                [this, side](int type) { ColumnClick(side, type); });
        // The follower's own change notifications arrive while m_mirroring is set and are
        // not mirrored back.
        const auto mirror = [this, side] {
            if (m_linked && !m_mirroring)
                MirrorSelection(side);
        };
        connect(list->selectionModel(), &QItemSelectionModel::selectionChanged, this, mirror);
        connect(list->selectionModel(), &QItemSelectionModel::currentChanged, this, mirror);
        connect(list->verticalScrollBar(), &QScrollBar::valueChanged, this, [this, side] {
            if (!m_following)
                m_scrolled = side;
        });
    }
}

void LinkedListings::SetLinked(bool linked) {
    m_linked = linked;
    if (linked)
        m_scrollTimer.start();
}

const ComparisonFileCollection *LinkedListings::Collection(int side) const {
    return m_collections ? m_collections(side) : nullptr;
}

void LinkedListings::SwitchLinking(bool linked) {
    SetLinked(linked);
    if (!linked)
        return;
    ListView *source = m_lists[0];
    ColumnLayout::MatchColumns(source, m_lists[1]);
    if (source->selectionModel()->hasSelection()) {
        LearnCounterparts(1);
        if (!m_linked)
            return; // switched off again meanwhile
    }
    MirrorSelection(0);
    const bool ascending = source->sortOrder() == Qt::AscendingOrder;
    if (!SortListView(m_lists[1], Collection(1), source->shownType(source->sortKey()), ascending,
                      m_yield))
        ColumnClick(0, source->shownType(1));
}

void LinkedListings::ColumnClick(int side, int type) {
    const ListView *list = m_lists[size_t(side)];
    const bool ascending = type != list->sortType() || list->sortOrder() == Qt::DescendingOrder;
    SortListView(m_lists[size_t(side)], Collection(0), type, ascending, m_yield);
    if (m_linked)
        SortListView(m_lists[size_t(1 - side)], Collection(1), type, ascending, m_yield);
}

void LinkedListings::CheckCounterparts(int fromSide) {
    const FileListModel *from = m_lists[size_t(fromSide)]->files();
    const FileListModel *to = m_lists[size_t(1 - fromSide)]->files();
    const ComparisonFileCollection *fromFiles = Collection(fromSide);
    const ComparisonFileCollection *toFiles = Collection(1 - fromSide);
    CounterpartCache &cache = m_counterparts[size_t(fromSide)];
    const quint64 generations[2] = {fromFiles ? fromFiles->generation() : 0,
                                    toFiles ? toFiles->generation() : 0};
    const quint64 slotsGenerations[2] = {from->slotsGeneration(), to->slotsGeneration()};
    if (cache.from != fromFiles || cache.to != toFiles ||
        !std::equal(generations, generations + 2, cache.generations) ||
        !std::equal(slotsGenerations, slotsGenerations + 2, cache.slotsGenerations)) {
        cache.slots.clear();
        cache.from = fromFiles;
        cache.to = toFiles;
        std::copy(generations, generations + 2, cache.generations);
        std::copy(slotsGenerations, slotsGenerations + 2, cache.slotsGenerations);
    }
    cache.slots.resize(size_t(from->slotCount()), CounterpartCache::Unknown);
    if (cache.otherSlots != to->slotCount()) {
        std::replace(cache.slots.begin(), cache.slots.end(), CounterpartCache::NotListed,
                     CounterpartCache::Unknown);
        cache.otherSlots = to->slotCount();
    }
}

int LinkedListings::CounterpartRow(int fromSide, int row) {
    const FileListModel *from = m_lists[size_t(fromSide)]->files();
    const FileListModel *to = m_lists[size_t(1 - fromSide)]->files();
    CounterpartCache &cache = m_counterparts[size_t(fromSide)];
    int &slot = cache.slots[size_t(from->slotOf(row))];
    if (slot == CounterpartCache::Unknown) {
        // Found by the collection's own pairing rule: letter case and composed accents count
        // exactly as they did when the pairs were judged.
        const ComparisonFilePtr pair = cache.from && cache.to
                                           ? cache.to->Counterpart(*from->record(row), *cache.from)
                                           : nullptr;
        slot = CounterpartCache::None;
        if (pair) {
            const int listed = to->slotOfKey(pair->Key());
            slot = listed >= 0 ? listed : CounterpartCache::NotListed;
        }
    }
    return slot >= 0 ? to->rowOfSlot(slot) : -1;
}

void LinkedListings::LearnCounterparts(int fromSide) {
    constexpr int RowsPerSlice = 4096;
    const FileListModel *from = m_lists[size_t(fromSide)]->files();
    // Rows may move or go while the event loop runs: whatever is missed is looked up when
    // the selection is mirrored.
    for (int first = 0; m_yield && m_linked && first < from->count(); first += RowsPerSlice) {
        CheckCounterparts(fromSide);
        for (int row = first; row < std::min(from->count(), first + RowsPerSlice); ++row)
            CounterpartRow(fromSide, row);
        m_yield();
    }
}

void LinkedListings::MirrorSelection(int modelSide) {
    const int followerSide = 1 - modelSide;
    m_mirroring = true;
    std::vector<bool> wanted;
    // With nothing selected no counterpart is needed to know that none is.
    if (m_lists[size_t(modelSide)]->selectionModel()->hasSelection()) {
        const std::vector<bool> selected = m_lists[size_t(modelSide)]->selectedRows();
        CheckCounterparts(followerSide);
        wanted.assign(size_t(m_lists[size_t(followerSide)]->files()->count()), false);
        for (size_t i = 0; i < wanted.size(); ++i) {
            const int row = CounterpartRow(followerSide, int(i));
            wanted[i] = row >= 0 && size_t(row) < selected.size() && selected[size_t(row)];
        }
    }
    m_lists[size_t(followerSide)]->setSelectedRows(wanted);
    MirrorFocus(modelSide);
    m_mirroring = false;
}

void LinkedListings::MirrorFocus(int modelSide) {
    // The focused row is searched from the second row on: focus on the first row, or none,
    // finds nothing, and focus cannot be given to every row at once, so nothing changes.
    const int focused = m_lists[size_t(modelSide)]->focusedRow();
    if (focused <= 0)
        return;
    const bool wasMirroring = m_mirroring;
    m_mirroring = true;
    m_lists[size_t(1 - modelSide)]->setFocusedRow(focused);
    m_mirroring = wasMirroring;
}

void LinkedListings::ScrollTick() {
    if (!m_linked) {
        m_scrollTimer.stop();
        return;
    }
    const int scrolled = std::exchange(m_scrolled, -1);
    if (m_lists[0]->files()->rowCount() == 0 || m_lists[1]->files()->rowCount() == 0)
        return;
    const bool sourceLeads =
        scrolled >= 0 ? scrolled == 0 : m_lists[0]->window()->focusWidget() == m_lists[0];
    const ListView *leader = m_lists[sourceLeads ? 0 : 1];
    ListView *follower = m_lists[sourceLeads ? 1 : 0];

    m_following = true;
    ScrollVertically(follower, FirstRowTop(follower) - FirstRowTop(leader));
    if (FirstRowTop(follower) != FirstRowTop(leader) && follower->height() == leader->height()) {
        // Nudges the program has always given a follower that would not line up.
        ScrollVertically(follower, 16);
        ScrollVertically(follower, -32);
        ScrollVertically(follower, FirstRowTop(follower) != FirstRowTop(leader) ? -1 : 0);
    }
    m_following = false;
}
