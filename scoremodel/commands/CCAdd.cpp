#include <scoremodel/commands/CCAdd.h>

#include <scoremodel/actions/ACFindEvents.h>
#include <scoremodel/commands/CCRemove.h>
#include <scoremodel/events/notes/ECNote.h>
#include <scoremodel/events/notes/ECRest.h>
#include <scoremodel/events/notes/ECSlur.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECMeasure.h>

#include <vector>

IMPLEMENT_DYNCREATE(CCAdd, CCBase)

CCAdd::CCAdd() = default;

CCAdd::CCAdd(ECBase *child, ECBase *parent, FCMidi &midi)
{
    Add(child, parent, midi);
}

CCAdd::~CCAdd()
{
    m_relations.Clear();
    while (!m_addList.IsEmpty())
        delete m_addList.RemoveHead();
}

int CCAdd::GetCommandId()
{
    return COMMAND_ID_ADD;
}

CCAddItem *CCAdd::Add(ECBase *child, ECBase *parent, FCMidi &midi)
{
    m_bRelationCached = 0;
    m_bRelationPending = 0;
    auto *item = new CCAddItem;
    item->SetChild(child);
    item->SetParent(parent);
    item->SetMidiData(midi);
    m_addList.AddTail(item);
    return item;
}

int CCAdd::GetAddEvents(EventList &list)
{
    for (POSITION pos = m_addList.GetHeadPosition(); pos;)
        list.AddTail(m_addList.GetNext(pos)->GetChild());
    return list.IsEmpty() ? 0 : 1;
}

int CCAdd::Process()
{
    if (!CCBase::Process())
        return 0;
    const bool redo = m_bRelationPending != 0;
    _RestoreParentChildRelation();
    for (POSITION pos = m_addList.GetHeadPosition(); pos;)
    {
        CCAddItem *item = m_addList.GetNext(pos);
        if (item->GetParent() && item->GetChild())
            item->GetParent()->AddChild(item->GetChild(), 1);
    }
    if (m_order)
        m_order->Restore();
    if (redo && m_redoOrder)
        m_redoOrder->Restore();
    m_bRelationPending = 0;
    return 1;
}

void CCAdd::Undo()
{
    if (m_addList.IsEmpty())
        return;
    _CashParentChildRelation();
    auto *remove = new CCRemove;
    remove->SetSynchronous(IsSynchronous());
    for (POSITION pos = m_addList.GetHeadPosition(); pos;)
    {
        ECBase *child = m_addList.GetNext(pos)->GetChild();
        if (!child)
            continue;
        remove->Remove(child);
        if (child->GetEventId() != EVENT_ID_REST || !GetConductor())
            continue;
        // The rests a split of this one left behind go with it.
        ECMeasure *measure = GetConductor()->GetMeasure(child->GetTrack(), *child->GetTime(), 0, 1);
        if (!measure)
            continue;
        ACFindEvents find(1);
        find.AddEvtType(EVENT_ID_REST);
        find.Apply(measure);
        for (POSITION found = find.GetEvents().GetHeadPosition(); found;)
        {
            auto *rest = static_cast<ECRest *>(find.GetEvents().GetNext(found));
            if (!rest->IsAfterSplit())
                continue;
            rest->Ref();
            rest->RemoveChildren(1);
            measure->RemoveChild(rest, 0);
            rest->Unref(1);
        }
    }
    remove->Apply(GetTarget());
    m_bRelationPending = 1;
}

void CCAdd::_CashParentChildRelation()
{
    if (m_bRelationCached)
        return;
    m_bRelationCached = 1;
    m_relations.Clear();
    m_redoOrder = std::make_unique<MCListOrder>();
    for (POSITION pos = m_addList.GetHeadPosition(); pos;)
    {
        ECBase *child = m_addList.GetNext(pos)->GetChild();
        if (!child)
            continue;
        // A child with one parent and no children of its own goes back
        // where it was by time alone; only the lists around one that the
        // cache links again can come back in another order.
        if (child->GetParents()->GetCount() > 1 || (child->GetChildren() && !child->GetChildren()->IsEmpty()))
            m_redoOrder->RecordAround(child);
        std::vector<ECBase *> children, parents;
        if (child->GetEventId() == EVENT_ID_SLUR)
        {
            // Grace notes of no length hang on their main note: they are not
            // the slur's to keep.
            for (POSITION c = child->GetChildren()->GetHeadPosition(); c;)
            {
                ECBase *note = child->GetChildren()->GetNext(c);
                if (note && note->GetEventId() == EVENT_ID_NOTE && !(*note->GetDuration() == MCTime::TimeZero()))
                    children.push_back(note);
            }
        }
        else if (child->GetEventId() == EVENT_ID_NOTE)
        {
            for (POSITION p = child->GetParents()->GetHeadPosition(); p;)
            {
                ECBase *parent = child->GetParents()->GetNext(p);
                if (parent && parent->GetEventId() == EVENT_ID_SLUR && !static_cast<ECSlur *>(parent)->IsRepeatSlur())
                    parents.push_back(parent);
            }
            m_relations.EnterChordsOf(child);
        }
        m_relations.Enter(child, children, parents);
    }
}

void CCAdd::_RestoreParentChildRelation()
{
    if (m_bRelationPending)
        m_relations.Restore();
}
