#include <scoremodel/commands/MCStructureJournal.h>

#include <scoremodel/commands/MeasureRecut.h>
#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECConductorMeasure.h>
#include <scoremodel/events/structure/ECConductorStaff.h>
#include <scoremodel/events/structure/ECPerformance.h>

#include <bit>
#include <cstdint>
#include <unordered_set>

namespace
{
// Exact equality, unlike MCTime's own comparison: a restore must write back
// the very value.
bool SameTime(const MCTime &a, const MCTime &b)
{
    return a.GetMode() == b.GetMode() &&
           std::bit_cast<std::uint32_t>(a.GetSeconds()) == std::bit_cast<std::uint32_t>(b.GetSeconds());
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

std::vector<ECBase *> ListOf(ECBase::EventList *list)
{
    std::vector<ECBase *> out;
    if (list)
    {
        out.reserve(static_cast<std::size_t>(list->GetCount()));
        for (POSITION pos = list->GetHeadPosition(); pos;)
            out.push_back(list->GetNext(pos));
    }
    return out;
}

// Every event under the document, each once: the child lists and the
// events held by member (the chord staff), depth first.
template <class Visit>
void WalkDocument(ECPerformance *document, Visit &&visit)
{
    std::unordered_set<ECBase *> seen;
    std::vector<ECBase *> stack{document};
    while (!stack.empty())
    {
        ECBase *event = stack.back();
        stack.pop_back();
        if (!event || !seen.insert(event).second)
            continue;
        visit(event);
        for (int i = 0; ECBase *member = event->GetMemberEvent(i); ++i)
            stack.push_back(member);
        if (ECBase::EventList *children = event->GetChildren())
            for (POSITION pos = children->GetTailPosition(); pos;)
                stack.push_back(children->GetPrev(pos));
    }
}

// Writes a list back as given. Each member is held while the list is
// rebuilt: one the list alone held would die between the two steps.
void WriteList(ECBase::EventList &list, const std::vector<ECBase *> &members)
{
    for (ECBase *e : members)
        e->Ref();
    list.RemoveAll();
    for (ECBase *e : members)
        list.AddTail(e);
    for (ECBase *e : members)
        e->Unref(1);
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
    std::unordered_map<ECBase *, std::size_t> index;
};

MCStructureJournal::MCStructureJournal() = default;

MCStructureJournal::~MCStructureJournal()
{
    Release();
}

void MCStructureJournal::Release()
{
    if (m_snapshot)
        for (Snapshot::Entry &entry : m_snapshot->entries)
            entry.event->Unref(1);
    m_snapshot.reset();
    for (ECBase *e : m_held)
        e->Unref(1);
    m_held.clear();
    m_changes.clear();
    m_complete = false;
    m_undone = false;
}

void MCStructureJournal::Hold(ECBase *event)
{
    event->Ref();
    m_held.push_back(event);
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
        s.index.emplace(event, s.entries.size());
        s.entries.push_back(std::move(entry));
        // Whatever the command takes out must still be there to compare.
        event->Ref();
    });
    ReadColumns(document, m_columns[0]);
}

void MCStructureJournal::End()
{
    if (!m_snapshot)
        return;
    Snapshot &s = *m_snapshot;
    std::vector<bool> visited(s.entries.size(), false);
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
                change.children[0].assign(s.pool.begin() + static_cast<std::ptrdiff_t>(entry->children),
                                          s.pool.begin() +
                                              static_cast<std::ptrdiff_t>(entry->children + entry->childCount));
                change.children[1] = ListOf(event->GetChildren());
            }
            if (!SameList(event->GetParents(), s.pool.data() + entry->parents, entry->parentCount))
            {
                change.parentsChanged = true;
                change.parents[0].assign(s.pool.begin() + static_cast<std::ptrdiff_t>(entry->parents),
                                         s.pool.begin() +
                                             static_cast<std::ptrdiff_t>(entry->parents + entry->parentCount));
                change.parents[1] = ListOf(event->GetParents());
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
            change.children[1] = ListOf(event->GetChildren());
            change.parentsChanged = !event->GetParents()->IsEmpty();
            change.parents[1] = ListOf(event->GetParents());
        }
        if (change.timeChanged || change.childrenChanged || change.parentsChanged)
        {
            Hold(event);
            m_changes.push_back(std::move(change));
        }
    };
    WalkDocument(m_pDocument, [&](ECBase *event) {
        auto it = s.index.find(event);
        if (it != s.index.end())
            visited[it->second] = true;
        compare(event, it != s.index.end() ? &s.entries[it->second] : nullptr);
    });
    // Events the command took out of the tree.
    for (std::size_t i = 0; i < s.entries.size(); ++i)
        if (!visited[i])
            compare(s.entries[i].event, &s.entries[i]);
    ReadColumns(m_pDocument, m_columns[1]);
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
        entry.event->Unref(1);
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
    // Derived data, from the tree as it now stands.
    if (ECConductor *conductor = m_pDocument->GetConductor())
        if (auto *staff =
                static_cast<ECConductorStaff *>(conductor->GetDescendant(EVENT_ID_CONDUCTOR_STAFF, 1)))
            staff->RebuildStaffCaches();
    measure_recut::RefreshEnvelopes(m_pDocument);
}
