#include "views/LinkedListings.h"

#include "engine/ComparisonFileCollection.h"
#include "engine/PathHelpers.h"
#include "views/ColumnLayout.h"
#include "views/ListModel.h"
#include "views/ListSorting.h"
#include "views/ListView.h"

#include <QHash>

namespace {

// Short enough that the follower looks as if it moved with the leader.
constexpr int ScrollTickMs = 30;

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
        connect(list, &ListView::ColumnClick, this,
                [this, side](ColumnHeader *column) { ColumnClick(side, column); });
        // The follower's own change notifications arrive while m_mirroring is set and are
        // not mirrored back.
        const auto mirror = [this, side] {
            if (m_linked && !m_mirroring)
                MirrorSelection(side);
        };
        connect(list->selectionModel(), &QItemSelectionModel::selectionChanged, this, mirror);
        connect(list->selectionModel(), &QItemSelectionModel::currentChanged, this, mirror);

        const auto forget = [this] {
            m_counterparts[0].valid = false;
            m_counterparts[1].valid = false;
        };
        const QAbstractItemModel *model = list->listModel();
        connect(model, &QAbstractItemModel::rowsInserted, this, forget);
        connect(model, &QAbstractItemModel::rowsRemoved, this, forget);
        connect(model, &QAbstractItemModel::layoutChanged, this, forget);
        connect(model, &QAbstractItemModel::modelReset, this, forget);
    }
}

void LinkedListings::setLinked(bool linked) {
    m_linked = linked;
    if (linked)
        m_scrollTimer.start();
}

const ComparisonFileCollection *LinkedListings::collection(int side) const {
    return m_collections ? m_collections(side) : nullptr;
}

QString LinkedListings::rootFolder(int side) const {
    const ComparisonFileCollection *files = collection(side);
    return files ? files->RootFolder() : QString();
}

void LinkedListings::SwitchLinking(bool linked) {
    setLinked(linked);
    if (!linked)
        return;
    ListView *source = m_lists[0];
    ListView *destination = m_lists[1];
    ColumnLayout::MatchColumns(source, destination);
    Q_EMIT UpdateListView(1);
    MirrorSelection(0);
    const bool ascending = source->SortOrder() == Qt::AscendingOrder;
    if (!SortListView(destination, collection(1), source->Column(source->SortKey()), ascending))
        ColumnClick(0, source->Column(1));
}

void LinkedListings::ColumnClick(int side, const ColumnHeader *column) {
    if (!column)
        return;
    ListView *list = m_lists[size_t(side)];
    const bool ascending =
        column->SubItemIndex() != list->SortKey() || list->SortOrder() == Qt::DescendingOrder;
    SortListView(list, collection(0), column, ascending);
    if (m_linked)
        SortListView(m_lists[size_t(1 - side)], collection(1), column, ascending);
}

const std::vector<int> &LinkedListings::counterparts(int fromSide) {
    const ListModel *from = m_lists[size_t(fromSide)]->listModel();
    const ListModel *to = m_lists[size_t(1 - fromSide)]->listModel();
    CounterpartCache &cache = m_counterparts[size_t(fromSide)];
    const QString fromRoot = rootFolder(fromSide);
    const QString toRoot = rootFolder(1 - fromSide);
    // Keys never change once a row exists, so the translation holds until rows come, go
    // or move in either list, or a new compare brings new roots.
    if (cache.valid && cache.rows.size() == size_t(from->rowTotal()) &&
        cache.fromRoot == fromRoot && cache.toRoot == toRoot)
        return cache.rows;
    cache.rows.assign(size_t(from->rowTotal()), -1);
    // A row without a row of its own key on the other side belongs to a pair matched despite
    // letter case, where a folder ignores it: such pairs are found by their lower-case keys.
    QHash<QString, int> byLowerKey;
    for (int i = 0; i < from->rowTotal(); ++i) {
        const QString key = TranslatePath(from->row(i)->key, fromRoot, toRoot, false);
        if (const ListRow *row = to->rowByKey(key)) {
            cache.rows[size_t(i)] = row->index;
            continue;
        }
        if (byLowerKey.isEmpty()) {
            for (int j = 0; j < to->rowTotal(); ++j)
                byLowerKey.insert(to->row(j)->key.toLower(), to->row(j)->index);
        }
        cache.rows[size_t(i)] = byLowerKey.value(key.toLower(), -1);
    }
    cache.fromRoot = fromRoot;
    cache.toRoot = toRoot;
    cache.valid = true;
    return cache.rows;
}

void LinkedListings::MirrorSelection(int modelSide) {
    const int followerSide = 1 - modelSide;
    ListView *model = m_lists[size_t(modelSide)];
    ListView *follower = m_lists[size_t(followerSide)];
    m_mirroring = true;
    const std::vector<bool> selected = model->SelectedRows();
    const std::vector<int> &counterpart = counterparts(followerSide);
    std::vector<bool> wanted(counterpart.size(), false);
    for (size_t i = 0; i < counterpart.size(); ++i) {
        const int row = counterpart[i];
        wanted[i] = row >= 0 && size_t(row) < selected.size() && selected[size_t(row)];
    }
    follower->SetSelectedRows(wanted);
    MirrorFocus(modelSide);
    m_mirroring = false;
}

void LinkedListings::MirrorFocus(int modelSide) {
    // The focused row is searched from the second row on: focus on the first row, or none,
    // finds nothing, and focus cannot be given to every row at once, so nothing changes.
    const int focused = m_lists[size_t(modelSide)]->FocusedRow();
    if (focused <= 0)
        return;
    const bool wasMirroring = m_mirroring;
    m_mirroring = true;
    m_lists[size_t(1 - modelSide)]->SetFocusedRow(focused);
    m_mirroring = wasMirroring;
}

void LinkedListings::ScrollTick() {
    if (!m_linked) {
        m_scrollTimer.stop();
        return;
    }
    if (m_lists[0]->ItemCount() == 0 || m_lists[1]->ItemCount() == 0)
        return;
    const bool sourceLeads = m_lists[0]->window()->focusWidget() == m_lists[0];
    ListView *leader = m_lists[sourceLeads ? 0 : 1];
    ListView *follower = m_lists[sourceLeads ? 1 : 0];

    follower->ScrollVertically(follower->ItemTop(0) - leader->ItemTop(0));
    if (follower->ItemTop(0) == leader->ItemTop(0) || follower->height() != leader->height())
        return;
    // Nudges the program has always given a follower that would not line up.
    follower->ScrollVertically(16);
    follower->ScrollVertically(-32);
    follower->ScrollVertically(follower->ItemTop(0) != leader->ItemTop(0) ? -1 : 0);
}
