#include <scoremodel/commands/MCStructureJournal.h>

#include <scoremodel/commands/MeasureRecut.h>
#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECConductorMeasure.h>
#include <scoremodel/events/structure/ECConductorStaff.h>
#include <scoremodel/events/structure/ECPerformance.h>

#include <bit>
#include <unordered_map>
#include <unordered_set>
#include <cstdint>

namespace
{
// Exact equality, unlike MCTime's own comparison: a restore must write back
// the very value.
bool SameTime(const MCTime &a, const MCTime &b)
{
    return a.GetMode() == b.GetMode() &&
           std::bit_cast<std::uint32_t>(a.GetSeconds()) == std::bit_cast<std::uint32_t>(b.GetSeconds());
}

bool SameRows(ECBase *const *before, std::size_t count, const std::vector<ECBase *> &now)
{
    if (now.size() != count)
        return false;
    for (std::size_t i = 0; i < count; ++i)
        if (before[i] != now[i])
            return false;
    return true;
}

bool SameList(ECBase::EventList *list, const ECBase *const *begin, std::size_t count)
{
    if (!list)
        return count == 0;
    if (static_cast<std::size_t>(list->GetCount()) != count)
        return false;
    std::size_t i = 0;
    for (POSITION pos = list->GetHeadPosition(); pos; ++i)
        if (list->GetNext(pos) != begin[i])
            return false;
    return true;
}

} // namespace

// The state Begin records, flat: one entry per event, its lists as ranges
// of one pool, found by the event through an index.
struct MCStructureJournal::Snapshot
{
    struct Entry
    {
        ECBase *event;
        MCTime time;
        bool hasTime;
        std::size_t children, childCount, parents, parentCount;
    };
    std::vector<Entry> entries;
    std::vector<ECBase *> pool;
    // The rows of each column at Begin: max track and where they start in
    // `pool` (max track + 1 of them).
    std::unordered_map<ECBase *, std::pair<int, std::size_t>> rows;
};

// Every event under the document, each once (an event with several
// parents is met several times): the child lists and the events held by
// member (the chord staff), depth first. A state bit marks the events met,
// cleared again at the end, so the walk costs no look-up table.
template <class Visit>
void MCStructureJournal::WalkDocument(ECPerformance *document, Visit &&visit)
{
    std::vector<ECBase *> met;
    std::vector<ECBase *> stack{document};
    while (!stack.empty())
    {
        ECBase *event = stack.back();
        stack.pop_back();
        if (!event || (event->m_state & ECBase::StateVisited))
            continue;
        event->m_state |= ECBase::StateVisited;
        met.push_back(event);
        visit(event);
        for (int i = 0; ECBase *member = event->GetMemberEvent(i); ++i)
            stack.push_back(member);
        if (ECBase::EventList *children = event->GetChildren())
            for (POSITION pos = children->GetTailPosition(); pos;)
                stack.push_back(children->GetPrev(pos));
    }
    for (ECBase *event : met)
        event->m_state &= static_cast<BYTE>(~ECBase::StateVisited);
}

MCStructureJournal::MCStructureJournal() = default;

MCStructureJournal::~MCStructureJournal()
{
    Release();
}

void MCStructureJournal::Release()
{
    if (m_snapshot)
        for (Snapshot::Entry &entry : m_snapshot->entries)
        {
            entry.event->m_state &= static_cast<BYTE>(~ECBase::StateRecorded);
            entry.event->Unref(1);
        }
    m_snapshot.reset();
    UnlinkOutside();
    for (Change &change : m_changes)
        change.event->Unref(1);
    m_changes.clear();
    for (Rows &rows : m_rows)
        rows.column->Unref(1);
    m_rows.clear();
    m_lists.clear();
    m_complete = false;
    m_undone = false;
}

bool MCStructureJournal::InDocument(ECBase *event, std::unordered_map<ECBase *, bool> &known) const
{
    // Up the parents. When the document is not found, everything met lies
    // outside it too, and is known so from then on.
    std::vector<ECBase *> stack{event};
    std::unordered_set<ECBase *> met{event};
    while (!stack.empty())
    {
        ECBase *e = stack.back();
        stack.pop_back();
        auto it = known.find(e);
        if (e == m_pDocument || (it != known.end() && it->second))
        {
            known[event] = true;
            return true;
        }
        if (it != known.end())
            continue;
        for (POSITION pos = e->GetParents()->GetHeadPosition(); pos;)
            if (ECBase *parent = e->GetParents()->GetNext(pos); parent && met.insert(parent).second)
                stack.push_back(parent);
    }
    for (ECBase *e : met)
        known[e] = false;
    return false;
}

void MCStructureJournal::UnlinkOutside()
{
    if (!m_complete || !m_pDocument)
        return;
    // What the record kept that stands outside the document now (bars a
    // removal took out, with their notes; bars a redo would bring back)
    // would keep each other alive for ever once the record lets go: a
    // removed bar holds its notes and they hold it. Nothing can bring them
    // back any more, so their links come apart on both ends.
    std::unordered_map<ECBase *, bool> known;
    std::vector<ECBase *> outside;
    for (Change &change : m_changes)
        if (!InDocument(change.event, known))
            outside.push_back(change.event);
    for (ECBase *event : outside)
    {
        if (ECBase::EventList *children = event->GetChildren())
        {
            for (POSITION pos = children->GetHeadPosition(); pos;)
                if (ECBase *child = children->GetNext(pos))
                    while (child->m_parents.RemoveEvent(event))
                        ;
            children->RemoveAll();
            event->SetFlag(ECBase::FlagHasChildren, false);
        }
        for (POSITION pos = event->m_parents.GetHeadPosition(); pos;)
            if (ECBase *parent = event->m_parents.GetNext(pos))
                if (ECBase::EventList *siblings = parent->GetChildren())
                    while (siblings->RemoveEvent(event))
                        ;
        event->m_parents.RemoveAll();
    }
}

MCStructureJournal::Range MCStructureJournal::Keep(const ECBase *const *members, std::size_t count)
{
    Range range{static_cast<std::uint32_t>(m_lists.size()), static_cast<std::uint32_t>(count)};
    for (std::size_t i = 0; i < count; ++i)
        m_lists.push_back(const_cast<ECBase *>(members[i]));
    return range;
}

MCStructureJournal::Range MCStructureJournal::Keep(ECBase::EventList *list)
{
    Range range{static_cast<std::uint32_t>(m_lists.size()), 0};
    if (list)
        for (POSITION pos = list->GetHeadPosition(); pos;)
            m_lists.push_back(list->GetNext(pos));
    range.count = static_cast<std::uint32_t>(m_lists.size() - range.at);
    return range;
}

// Writes a list back as kept. Each member is held while the list is
// rebuilt: one the list alone held would die between the two steps.
void MCStructureJournal::WriteList(ECBase::EventList &list, const Range &range)
{
    ECBase *const *members = m_lists.data() + range.at;
    for (std::uint32_t i = 0; i < range.count; ++i)
        members[i]->Ref();
    list.RemoveAll();
    for (std::uint32_t i = 0; i < range.count; ++i)
        list.AddTail(members[i]);
    for (std::uint32_t i = 0; i < range.count; ++i)
        members[i]->Unref(1);
}

void MCStructureJournal::ReadColumns(ECPerformance *document, Columns &out)
{
    out = Columns{};
    ECConductor *conductor = document->GetConductor();
    auto *staff = conductor ? static_cast<ECConductorStaff *>(conductor->GetDescendant(EVENT_ID_CONDUCTOR_STAFF, 1))
                            : nullptr;
    if (!staff)
        return;
    ECConductorStaff::MeasureArray &columns = staff->GetConductorMeasures();
    for (int i = 0; i < columns.GetSize(); ++i)
        out.measures.push_back(columns.GetAt(i));
    out.maxMeasure = staff->m_nMaxMeasure;
    out.cursor = staff->m_nCurrentMeasure;
    out.end = staff->m_maxMeasureEndTime;
}

void MCStructureJournal::WriteColumns(const Columns &columns)
{
    ECConductor *conductor = m_pDocument->GetConductor();
    auto *staff = conductor ? static_cast<ECConductorStaff *>(conductor->GetDescendant(EVENT_ID_CONDUCTOR_STAFF, 1))
                            : nullptr;
    if (!staff)
        return;
    ECConductorStaff::MeasureArray &array = staff->GetConductorMeasures();
    array.RemoveAll();
    for (ECBase *measure : columns.measures)
        array.Add(static_cast<ECConductorMeasure *>(measure));
    staff->m_nMaxMeasure = columns.maxMeasure;
    staff->m_nCurrentMeasure = columns.cursor;
    staff->m_maxMeasureEndTime = columns.end;
}

void MCStructureJournal::Begin(ECPerformance *document)
{
    Release();
    m_pDocument = document;
    m_snapshot = std::make_unique<Snapshot>();
    Snapshot &s = *m_snapshot;
    WalkDocument(document, [&](ECBase *event) {
        Snapshot::Entry entry{event, MCTime::TimeNull(), false, 0, 0, 0, 0};
        if (MCTime *time = event->GetTime())
        {
            entry.time = *time;
            entry.hasTime = true;
        }
        entry.children = s.pool.size();
        if (ECBase::EventList *children = event->GetChildren())
            for (POSITION pos = children->GetHeadPosition(); pos;)
                s.pool.push_back(children->GetNext(pos));
        entry.childCount = s.pool.size() - entry.children;
        entry.parents = s.pool.size();
        for (POSITION pos = event->GetParents()->GetHeadPosition(); pos;)
            s.pool.push_back(event->GetParents()->GetNext(pos));
        entry.parentCount = s.pool.size() - entry.parents;
        s.entries.push_back(std::move(entry));
        // Whatever the command takes out must still be there to compare.
        event->Ref();
        event->m_state |= ECBase::StateRecorded;
    });
    ReadColumns(document, m_columns[0]);
    for (ECBase *c : m_columns[0].measures)
    {
        auto *column = static_cast<ECConductorMeasure *>(c);
        s.rows.emplace(column, std::make_pair(column->m_nMaxTrack, s.pool.size()));
        for (int track = 0; track <= column->m_nMaxTrack; ++track)
            s.pool.push_back(column->GetMeasures().GetAt(track));
    }
}

void MCStructureJournal::RecordRows()
{
    Snapshot &s = *m_snapshot;
    std::vector<ECBase *> columns = m_columns[0].measures;
    columns.insert(columns.end(), m_columns[1].measures.begin(), m_columns[1].measures.end());
    std::unordered_set<ECBase *> done;
    for (ECBase *c : columns)
    {
        if (!done.insert(c).second)
            continue;
        auto *column = static_cast<ECConductorMeasure *>(c);
        ECConductorMeasure::MeasureArray &now = column->GetMeasures();
        const int maxTrack = column->m_nMaxTrack;
        auto it = s.rows.find(column);
        Rows rows{column, {maxTrack, maxTrack}, {}};
        std::vector<ECBase *> current;
        for (int track = 0; track <= maxTrack && track < now.GetSize(); ++track)
            current.push_back(now.GetAt(track));
        rows.rows[1] = Keep(current.data(), current.size());
        if (it == s.rows.end())
            rows.rows[0] = rows.rows[1]; // made by the command: outside the score before it
        else
        {
            rows.maxTrack[0] = it->second.first;
            const std::size_t count = static_cast<std::size_t>(it->second.first + 1);
            if (rows.maxTrack[0] == maxTrack && SameRows(s.pool.data() + it->second.second, count, current))
                continue;
            rows.rows[0] = Keep(s.pool.data() + it->second.second, count);
        }
        column->Ref();
        m_rows.push_back(rows);
    }
}

void MCStructureJournal::End()
{
    if (!m_snapshot)
        return;
    Snapshot &s = *m_snapshot;
    auto compare = [&](ECBase *event, const Snapshot::Entry *entry) {
        Change change;
        change.event = event;
        MCTime *time = event->GetTime();
        if (entry)
        {
            if (time && entry->hasTime && !SameTime(*time, entry->time))
            {
                change.timeChanged = true;
                change.time[0] = entry->time;
                change.time[1] = *time;
            }
            if (!SameList(event->GetChildren(), s.pool.data() + entry->children, entry->childCount))
            {
                change.childrenChanged = true;
                change.children[0] = Keep(s.pool.data() + entry->children, entry->childCount);
                change.children[1] = Keep(event->GetChildren());
            }
            if (!SameList(event->GetParents(), s.pool.data() + entry->parents, entry->parentCount))
            {
                change.parentsChanged = true;
                change.parents[0] = Keep(s.pool.data() + entry->parents, entry->parentCount);
                change.parents[1] = Keep(event->GetParents());
            }
        }
        else
        {
            // Made by the command: before it, the event was linked nowhere.
            if (time)
            {
                change.timeChanged = true;
                change.time[0] = *time;
                change.time[1] = *time;
            }
            change.childrenChanged = event->GetChildren() && !event->GetChildren()->IsEmpty();
            change.children[1] = Keep(event->GetChildren());
            change.parentsChanged = !event->GetParents()->IsEmpty();
            change.parents[1] = Keep(event->GetParents());
        }
        if (change.timeChanged || change.childrenChanged || change.parentsChanged)
        {
            event->Ref();
            m_changes.push_back(std::move(change));
        }
    };
    // Each recorded event, in the tree or taken out of it. Then those the
    // command made: each is linked to an event whose lists changed (it
    // gained the new one), so they are found in the changed lists, without
    // a second walk of the tree.
    for (const Snapshot::Entry &entry : s.entries)
        compare(entry.event, &entry);
    std::vector<ECBase *> made;
    auto visitNew = [&](const Range &range) {
        for (std::uint32_t i = 0; i < range.count; ++i)
            if (ECBase *e = m_lists[range.at + i];
                e && !(e->m_state & (ECBase::StateRecorded | ECBase::StateVisited)))
            {
                e->m_state |= ECBase::StateVisited;
                made.push_back(e);
            }
    };
    for (std::size_t i = 0, seen = 0; i < m_changes.size() || seen < made.size();)
    {
        if (i < m_changes.size())
        {
            // Copies: visitNew reads m_lists, which compare may grow.
            const Range children = m_changes[i].children[1];
            const Range parents = m_changes[i].parents[1];
            ++i;
            visitNew(children);
            visitNew(parents);
        }
        else
            compare(made[seen++], nullptr);
    }
    for (ECBase *e : made)
        e->m_state &= static_cast<BYTE>(~ECBase::StateVisited);
    ReadColumns(m_pDocument, m_columns[1]);
    RecordRows();
    m_columnsChanged = m_columns[0].measures != m_columns[1].measures ||
                       m_columns[0].maxMeasure != m_columns[1].maxMeasure ||
                       m_columns[0].cursor != m_columns[1].cursor ||
                       !SameTime(m_columns[0].end, m_columns[1].end);
    if (!m_columnsChanged)
        for (Columns &c : m_columns)
            c.measures.clear();
    // Members of the kept lists that are not themselves changes stand in
    // the tree on both sides; the columns' measures are all changes or
    // children of the conductor staff. So the held changes keep alive
    // everything a restore writes.
    for (Snapshot::Entry &entry : s.entries)
    {
        entry.event->m_state &= static_cast<BYTE>(~ECBase::StateRecorded);
        entry.event->Unref(1);
    }
    m_snapshot.reset();
    m_complete = true;
}

void MCStructureJournal::Restore(bool after)
{
    if (!m_complete)
        return;
    m_undone = !after;
    const int side = after ? 1 : 0;
    for (Change &change : m_changes)
    {
        ECBase *event = change.event;
        if (change.childrenChanged)
            if (ECBase::EventList *children = event->GetChildren())
            {
                WriteList(*children, change.children[side]);
                event->SetFlag(ECBase::FlagHasChildren, !children->IsEmpty());
            }
        if (change.parentsChanged)
            WriteList(event->m_parents, change.parents[side]);
        if (change.timeChanged)
            if (MCTime *time = event->GetTime())
                *time = change.time[side];
    }
    if (m_columnsChanged)
        WriteColumns(m_columns[side]);
    for (Rows &rows : m_rows)
    {
        auto *column = static_cast<ECConductorMeasure *>(rows.column);
        ECConductorMeasure::MeasureArray &array = column->GetMeasures();
        array.RemoveAll();
        for (std::uint32_t i = 0; i < rows.rows[side].count; ++i)
            array.Add(static_cast<ECMeasure *>(m_lists[rows.rows[side].at + i]));
        column->m_nMaxTrack = rows.maxTrack[side];
    }
    // Derived data, from the tree as it now stands.
    if (ECConductor *conductor = m_pDocument->GetConductor())
        if (auto *staff =
                static_cast<ECConductorStaff *>(conductor->GetDescendant(EVENT_ID_CONDUCTOR_STAFF, 1)))
            staff->RebuildStaffCaches();
    measure_recut::RefreshEnvelopes(m_pDocument);
}
