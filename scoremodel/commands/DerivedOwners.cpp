#include <scoremodel/commands/DerivedOwners.h>

#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/envelopes/ECEnvelope.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECMeasure.h>
#include <scoremodel/events/structure/ECStaff.h>

void MCDerivedOwners::Note(ECBase *parent)
{
    if (!parent)
        return;
    ECBase *owner = parent->IsKindOf(RUNTIME_CLASS(ECEnvelope)) ? parent : parent->GetAncestor(EVENT_ID_STAFF);
    if (owner && !m_owners.Find(owner))
        m_owners.AddTail(owner);
}

void MCDerivedOwners::Refresh()
{
    for (POSITION pos = m_owners.GetHeadPosition(); pos;)
    {
        ECBase *owner = m_owners.GetNext(pos);
        if (owner->GetEventId() == EVENT_ID_STAFF)
            static_cast<ECStaff *>(owner)->RebuildCache();
        else if (owner->IsKindOf(RUNTIME_CLASS(ECEnvelope)))
            static_cast<ECEnvelope *>(owner)->UpdateChildren();
    }
    m_owners.RemoveAll();
}

void RefreshOwnersOf(CCAdd::AddList &items)
{
    MCDerivedOwners owners;
    for (POSITION pos = items.GetHeadPosition(); pos;)
        owners.Note(items.GetNext(pos)->GetParent());
    owners.Refresh();
}

void RefreshOwnersOf(CCRemove::RemoveList &items)
{
    MCDerivedOwners owners;
    for (POSITION pos = items.GetHeadPosition(); pos;)
        owners.Note(items.GetNext(pos)->GetParent());
    owners.Refresh();
}

void PlaceInMeasures(CCAdd::AddList &items, ECConductor *conductor)
{
    for (POSITION pos = items.GetHeadPosition(); conductor && pos;)
    {
        CCAddItem *item = items.GetNext(pos);
        ECBase *child = item->GetChild();
        if (item->GetParent() || !child || !child->GetTime())
            continue;
        if (ECMeasure *measure = conductor->GetMeasure(child->GetTrack(), *child->GetTime(), 0, 0))
            item->SetParent(measure);
    }
}
