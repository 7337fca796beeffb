// MCStructureJournal: what a bar-structure command changed in a document,
// kept so that its undo gives back exactly the tree before and its redo
// exactly the tree after. Internal to the library.
//
// Re-cutting bars touches most of a score at once: times behind the change
// shift, measures get new times, events change measures, measures are made
// and taken away, meters come and go, and nested commands do part of it.
// Undoing that by running the inverse operations does not give the same
// tree back: an event that kept its time while its bars shrank lies behind
// the new scope and would be shifted by the inverse, measures made at the
// end would stay, and equal times would come back in another order. So the
// command records instead: Begin takes the state of every event under the
// performance (time, child list, parent list) and the conductor staff's
// columns; End compares the tree with it and keeps, for what differs only,
// both states, holding a reference on every event it names so that taken
// out events live on for the redo.
//
// Restoring writes the lists and times straight back (no AddChild or
// RemoveChild, whose rules would change what they are given), then brings
// derived data up to date from the tree: every staff's clef and key cache,
// every envelope's values (clock times, bar/pulse/tick positions).
//
// Cost: Begin and End walk the whole document (O(events)); what is kept is
// O(changes). Restoring costs the changes plus the envelopes' refresh.
#pragma once

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/base/ECBase.h>

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

class ECPerformance;

class MCStructureJournal
{
public:
    MCStructureJournal();
    MCStructureJournal(const MCStructureJournal &) = delete;
    MCStructureJournal &operator=(const MCStructureJournal &) = delete;
    ~MCStructureJournal();

    // Records the document as it stands. Drops any earlier record.
    void Begin(ECPerformance *document);
    // Compares the document with what Begin recorded and keeps the
    // differences; the full record is dropped.
    void End();
    // 1 once End has run.
    int IsComplete() const { return m_complete ? 1 : 0; }
    // The state Begin saw (an undo), or the one End saw (a redo).
    void RestoreBefore() { Restore(false); }
    void RestoreAfter() { Restore(true); }
    // 1 between RestoreBefore and the next RestoreAfter: the command's next
    // run is a redo, which restores instead of working afresh.
    int IsUndone() const { return m_undone ? 1 : 0; }
    // Drops the record and every reference it holds.
    void Release();

private:
    struct Snapshot;
    // A list kept in m_lists: `count` members from `at`.
    struct Range
    {
        std::uint32_t at = 0;
        std::uint32_t count = 0;
    };
    // One changed event, held by the record: its time, child list and
    // parent list before (0) and after (1), each where it changed.
    struct Change
    {
        ECBase *event;
        bool timeChanged = false;
        bool childrenChanged = false;
        bool parentsChanged = false;
        MCTime time[2];
        Range children[2];
        Range parents[2];
    };
    // The rows of a column (the measure of each staff) before and after,
    // for a column whose rows changed (a removal empties them).
    struct Rows
    {
        ECBase *column;
        int maxTrack[2];
        Range rows[2];
    };
    struct Columns
    {
        std::vector<ECBase *> measures;
        int maxMeasure = -1;
        int cursor = 0;
        MCTime end;
    };

    template <class Visit>
    static void WalkDocument(ECPerformance *document, Visit &&visit);
    void Restore(bool after);
    bool InDocument(ECBase *event, std::unordered_map<ECBase *, bool> &known) const;
    void UnlinkOutside();
    Range Keep(const ECBase *const *members, std::size_t count);
    Range Keep(ECBase::EventList *list);
    void WriteList(ECBase::EventList &list, const Range &range);
    static void ReadColumns(ECPerformance *document, Columns &out);
    void WriteColumns(const Columns &columns);
    void RecordRows();

    ECPerformance *m_pDocument = nullptr;
    std::unique_ptr<Snapshot> m_snapshot;
    std::vector<Change> m_changes;
    std::vector<ECBase *> m_lists;
    Columns m_columns[2];
    std::vector<Rows> m_rows;
    bool m_columnsChanged = false;
    bool m_complete = false;
    bool m_undone = false;
};
