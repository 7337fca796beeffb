#include <scoremodel/commands/CCRemove.h>

#include <scoremodel/commands/CCAdd.h>
#include <scoremodel/commands/CCAddTuplet.h>

#include <scoremodel/events/notes/ECGroup.h>

#include <set>
#include <vector>

IMPLEMENT_DYNCREATE(CCRemove, CCBase)


CCRemove::CCRemove() = default;

CCRemove::CCRemove(ECBase *event)
{
    Remove(event);
}

CCRemove::~CCRemove()
{
    m_relations.Clear();
    while (!m_removeList.IsEmpty())
        delete m_removeList.RemoveHead();
}

int CCRemove::GetCommandId()
{
    return COMMAND_ID_REMOVE;
}

CCRemoveItem *CCRemove::FindRemovePosition(ECBase *event)
{
    for (POSITION pos = m_removeList.GetHeadPosition(); pos;)
    {
        CCRemoveItem *item = m_removeList.GetNext(pos);
        if (item->GetChild() == event)
            return item;
    }
    return nullptr;
}

CCRemoveItem *CCRemove::Remove(ECBase *event)
{
    m_bRelationCached = 0;
    m_bRelationPending = 0;
    if (!m_listed.insert(event).second)
        return nullptr;
    auto *item = new CCRemoveItem;
    item->SetChild(event);
    m_removeList.AddTail(item);
    DiscardMirrors(event);
    return item;
}

int CCRemove::Remove(EventList *events)
{
    m_bRelationCached = 0;
    m_bRelationPending = 0;
    if (events)
        for (POSITION pos = events->GetHeadPosition(); pos;)
            Remove(events->GetNext(pos));
    return 1;
}

int CCRemove::GetRemoveEvents(EventList &list)
{
    for (POSITION pos = m_removeList.GetHeadPosition(); pos;)
        list.AddTail(m_removeList.GetNext(pos)->GetChild());
    return list.IsEmpty() ? 0 : 1;
}

int CCRemove::Process()
{
    if (!CCBase::Process())
        return 0;
    _CashParentChildRelation();
    DoRemove();
    m_bRelationPending = 1;
    return 1;
}

void CCRemove::DoRemove()
{
    for (POSITION pos = m_removeList.GetHeadPosition(); pos;)
    {
        ECBase *child = m_removeList.GetNext(pos)->GetChild();
        if (!child)
            continue;
        child->RemoveFromChildren();
        child->RemoveFromParents();
    }
}

void CCRemove::Undo()
{
    if (m_removeList.IsEmpty())
        return;
    _RestoreParentChildRelation();
    std::set<ECBase *> broughtByTuplet;
    CCAddTuplet *tuplets = nullptr;
    CCAdd *loose = nullptr;
    FCMidi none = FCMidi::MidiNull();
    for (POSITION pos = m_removeList.GetTailPosition(); pos;)
    {
        CCRemoveItem *item = m_removeList.GetPrev(pos);
        ECBase *child = item->GetChild();
        if (!child)
            continue;
        if (child->GetEventId() == EVENT_ID_TUPLET)
        {
            if (!tuplets)
            {
                tuplets = new CCAddTuplet;
                tuplets->SetSynchronous(IsSynchronous());
            }
            tuplets->Add(child, item->GetParent(), none);
            for (POSITION c = child->GetChildren()->GetHeadPosition(); c;)
                if (ECBase *note = child->GetChildren()->GetNext(c); note && note->GetEventId() == EVENT_ID_NOTE)
                    broughtByTuplet.insert(note);
            continue;
        }
        // A note its tuplet holds comes back with the tuplet; it also goes
        // back under the measure only if the measure held it itself.
        broughtByTuplet.erase(child);
        if (!m_direct.count(child))
            continue;
        if (!loose)
        {
            loose = new CCAdd;
            loose->SetSynchronous(IsSynchronous());
        }
        loose->Add(child, item->GetParent(), none);
    }
    // The add that runs last puts the lists back in their old order.
    if (loose)
        loose->SetChildOrder(m_order);
    else if (tuplets)
        tuplets->SetChildOrder(m_order);
    if (tuplets)
        tuplets->Apply(GetTarget());
    if (loose)
        loose->Apply(GetTarget());
    m_bRelationPending = 0;
}

void CCRemove::_CashParentChildRelation()
{
    if (m_bRelationCached)
        return;
    m_bRelationCached = 1;
    m_relations.Clear();
    m_order = std::make_shared<MCListOrder>();
    m_direct.clear();
    for (POSITION pos = m_removeList.GetHeadPosition(); pos;)
    {
        CCRemoveItem *item = m_removeList.GetNext(pos);
        ECBase *child = item->GetChild();
        if (!child)
            continue;
        ECBase::EventList *held = item->GetParent() ? item->GetParent()->GetChildren() : nullptr;
        if (held && held->Find(child))
            m_direct.insert(child);
        // Every list the removal can change.
        m_order->RecordAround(child);
        std::vector<ECBase *> children, parents;
        const int id = child->GetEventId();
        // Every group, not only a slur: a group out of the tree lets go of
        // its children (ECGroup::RemoveFromChildren), and undo must bring
        // back a beam's or a tie's as well; so does a chord, which hands its
        // notes to the measure as it leaves.
        if (child->IsKindOf(RUNTIME_CLASS(ECGroup)) || id == EVENT_ID_TUPLET || id == EVENT_ID_CHORD)
        {
            for (POSITION c = child->GetChildren()->GetHeadPosition(); c;)
                if (ECBase *e = child->GetChildren()->GetNext(c))
                    children.push_back(e);
        }
        else if (id == EVENT_ID_NOTE)
        {
            for (POSITION p = child->GetParents()->GetHeadPosition(); p;)
            {
                ECBase *parent = child->GetParents()->GetNext(p);
                if (parent && (parent->GetEventId() == EVENT_ID_SLUR || parent->GetEventId() == EVENT_ID_TUPLET))
                    parents.push_back(parent);
            }
            m_relations.EnterChordsOf(child);
        }
        m_relations.Enter(child, children, parents);
    }
}

void CCRemove::_RestoreParentChildRelation()
{
    if (m_bRelationPending)
        m_relations.Restore();
}
