#include <scoremodel/commands/MCRelationCache.h>

namespace
{
std::vector<ECBase *> Elements(ECBase::EventList *list)
{
    std::vector<ECBase *> out;
    if (list)
        for (POSITION pos = list->GetHeadPosition(); pos;)
            if (ECBase *e = list->GetNext(pos))
                out.push_back(e);
    return out;
}
} // namespace

void MCRelationCache::Enter(ECBase *event, const std::vector<ECBase *> &children,
                            const std::vector<ECBase *> &parents)
{
    if (!event || (children.empty() && parents.empty()))
        return;
    auto relations = std::make_unique<Relations>();
    for (ECBase *child : children)
        relations->children.AddTail(child);
    for (ECBase *parent : parents)
        relations->parents.AddTail(parent);
    m_entries[event] = std::move(relations);
}

void MCRelationCache::Restore() const
{
    for (const auto &[event, relations] : m_entries)
    {
        for (POSITION pos = relations->children.GetHeadPosition(); pos;)
        {
            ECBase *child = relations->children.GetNext(pos);
            ECBase::EventList *held = event->GetChildren();
            if (held && !held->Find(child))
                event->AddChild(child, 1);
            if (!child->GetParents()->Find(event))
                child->AddParent(event);
        }
        for (POSITION pos = relations->parents.GetHeadPosition(); pos;)
        {
            ECBase *parent = relations->parents.GetNext(pos);
            ECBase::EventList *held = parent->GetChildren();
            if (held && !held->Find(event))
                parent->AddChild(event, 1);
        }
    }
}

void MCRelationCache::EnterChordsOf(ECBase *note)
{
    for (ECBase *parent : Elements(note->GetParents()))
        if (parent->GetEventId() == EVENT_ID_CHORD)
            Enter(parent, Elements(parent->GetChildren()), Elements(parent->GetParents()));
}

namespace
{
// Puts `list` in the order of `recorded`, members it does not name last.
void Reorder(ECBase::EventList *list, const std::vector<ECBase *> &recorded)
{
    if (!list)
        return;
    const std::vector<ECBase *> present = Elements(list);
    if (present == recorded)
        return;
    std::map<ECBase *, int> left;
    for (ECBase *e : present)
        ++left[e];
    std::vector<ECBase *> wanted;
    wanted.reserve(present.size());
    for (ECBase *e : recorded)
        if (auto it = left.find(e); it != left.end() && it->second > 0)
        {
            --it->second;
            wanted.push_back(e);
        }
    for (ECBase *e : present)
        if (auto it = left.find(e); it->second > 0)
        {
            --it->second;
            wanted.push_back(e);
        }
    if (wanted == present)
        return;
    // Hold every member while the list is rebuilt: its nodes hold the only
    // references some of them have.
    ECBase::EventList keep;
    for (ECBase *e : present)
        keep.AddTail(e);
    list->RemoveAll();
    for (ECBase *e : wanted)
        list->AddTail(e);
}
} // namespace

void MCListOrder::Record(ECBase *event)
{
    if (!event || m_lists.count(event))
        return;
    Lists lists{Elements(event->GetChildren()), Elements(event->GetParents())};
    m_held.AddTail(event);
    for (ECBase *e : lists.children)
        m_held.AddTail(e);
    for (ECBase *e : lists.parents)
        m_held.AddTail(e);
    m_lists.emplace(event, std::move(lists));
}

void MCListOrder::RecordAround(ECBase *event)
{
    if (!event)
        return;
    // An event with one parent and no children has no list whose order a
    // removal can change: its parent's list is recorded below.
    if (event->GetParents()->GetCount() > 1 || (event->GetChildren() && !event->GetChildren()->IsEmpty()))
        Record(event);
    auto relatives = [](ECBase *e) {
        std::vector<ECBase *> out = Elements(e->GetParents());
        for (ECBase *child : Elements(e->GetChildren()))
            out.push_back(child);
        return out;
    };
    for (ECBase *relative : relatives(event))
    {
        Record(relative);
        if (relative->GetEventId() == EVENT_ID_CHORD)
            for (ECBase *e : relatives(relative))
                Record(e);
    }
}

void MCListOrder::Restore() const
{
    // What a removal put where it was not (a tuplet or chord handing its
    // notes to the measure) goes first; nothing else can have changed the
    // lists between a command and its undo.
    for (const auto &[event, lists] : m_lists)
    {
        const std::vector<ECBase *> children = Elements(event->GetChildren());
        if (children != lists.children)
        {
            std::map<ECBase *, int> recorded;
            for (ECBase *e : lists.children)
                ++recorded[e];
            for (ECBase *e : children)
                if (recorded[e]-- <= 0)
                    event->RemoveChild(e, 0);
        }
        const std::vector<ECBase *> parents = Elements(event->GetParents());
        if (parents != lists.parents)
        {
            std::map<ECBase *, int> recorded;
            for (ECBase *e : lists.parents)
                ++recorded[e];
            for (ECBase *e : parents)
                if (recorded[e]-- <= 0)
                    e->RemoveChild(event, 0);
        }
    }
    for (const auto &[event, lists] : m_lists)
    {
        Reorder(event->GetChildren(), lists.children);
        Reorder(event->GetParents(), lists.parents);
    }
}
