#pragma once

#include "engine/YieldHook.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <array>
#include <functional>
#include <utility>
#include <vector>

class ComparisonFileCollection;
class ListView;

/**
 * The two result listings, source (side 0) and destination (side 1), and what couples them
 * while View > Link File Listings is checked: the same columns, sorting together, the same
 * vertical scroll position, and a selection made in one mirrored in the other by file (each
 * row's counterpart is the row whose key is its own moved from one root to the other).
 * Sorting on a header click is handled here in both states.
 */
class LinkedListings : public QObject {
    Q_OBJECT

public:
    /** The file collection of a side (0 or 1), or null when there is none yet. */
    using Collections = std::function<const ComparisonFileCollection *(int side)>;

    LinkedListings(ListView *source, ListView *destination, Collections collections,
                   QObject *parent = nullptr);

    ListView *list(int side) const { return m_lists[size_t(side)]; }

    /** Lets the event loop run while large lists are sorted (see SortListView). */
    void setYieldHook(YieldHook hook) { m_yield = std::move(hook); }

    bool isLinked() const { return m_linked; }
    /**
     * Sets the link state without the switching procedure (at start-up, after the window has
     * matched the columns); starts the scroll follower when on.
     */
    void SetLinked(bool linked);

    /**
     * The switching procedure, after the option has been stored. Switching on copies the
     * source list's columns to the destination list, mirrors the source selection, and sorts
     * the destination list like the source list: the column used is the source's shown
     * column whose one-based index equals the source's zero-based sort key, which is the
     * column shown just before the sorted one in type order, as the program has always done;
     * when there is none (sorted on the first column) both lists are sorted as by a click on
     * the source list's first column. Switching off leaves everything as it is.
     */
    void SwitchLinking(bool linked);

    /**
     * A click on column type \a type of list \a side: the same column again toggles the
     * direction, another column sorts ascending. The clicked list is sorted with the source
     * collection, and when linked the other list with the destination collection, whichever
     * list was clicked: the program has always paired them by the order of the calls.
     */
    void ColumnClick(int side, int type);

    /**
     * Sets every row of the other list selected exactly when its counterpart in list
     * \a modelSide is selected (rows without one are deselected), then MirrorFocus().
     */
    void MirrorSelection(int modelSide);
    /**
     * Puts the other list's focus on the row at the same position as the focused row of
     * list \a modelSide. The focused row is searched from the second row on, so focus on the
     * first row (or none) is not copied.
     */
    void MirrorFocus(int modelSide);

    /**
     * One tick of the scroll follower: stops the timer once linking is off; otherwise, when
     * both lists have rows, scrolls the follower so that its first row's top matches the
     * leader's, nudging it by +16, -32 and -1 pixels when two lists of equal height still
     * differ. The list the user scrolled since the last tick leads; otherwise the source list
     * leads while it has the focus, else the destination list.
     */
    void ScrollTick();

    /** Ticks every ~30 ms while linked. */
    QTimer &scrollTimer() { return m_scrollTimer; }

private:
    const ComparisonFileCollection *Collection(int side) const;
    /** Forgets the pairings of list \a fromSide that no longer hold; see CounterpartCache. */
    void CheckCounterparts(int fromSide);
    /**
     * The row in the other list of the counterpart of zero-based \a row of list \a fromSide,
     * or -1; looked up once, then kept. CheckCounterparts() must have been called since the
     * event loop last ran.
     */
    int CounterpartRow(int fromSide, int row);
    /**
     * Looks up the counterparts of list \a fromSide in slices, letting the event loop run
     * between them, so that mirroring a large selection afterwards finds them all known.
     */
    void LearnCounterparts(int fromSide);

    std::array<ListView *, 2> m_lists;
    Collections m_collections;
    YieldHook m_yield;
    bool m_linked = false;
    bool m_mirroring = false;
    bool m_following = false;
    /** The side whose scroll position the user changed since the last tick, or -1. */
    int m_scrolled = -1;
    QTimer m_scrollTimer;

    /**
     * Per side, for each slot of its list (see FileListModel::slotOf), the slot of its
     * counterpart in the other list. A pairing depends on the keys and the collections only,
     * so it holds while rows move, go and come back, until either collection or either list's
     * slots change; a counterpart not listed is looked up again once the other list has
     * listed new keys.
     */
    struct CounterpartCache {
        static constexpr int Unknown = -3;
        static constexpr int NotListed = -2;
        static constexpr int None = -1;
        std::vector<int> slots;
        const ComparisonFileCollection *from = nullptr;
        const ComparisonFileCollection *to = nullptr;
        quint64 generations[2] = {0, 0};
        quint64 slotsGenerations[2] = {0, 0};
        /** The other list's slot count when the NotListed entries were looked up. */
        int otherSlots = 0;
    };
    std::array<CounterpartCache, 2> m_counterparts;
};
