#include <scoremodel/commands/CCAddTuplet.h>

#include <scoremodel/actions/ACFindEvents.h>
#include <scoremodel/commands/CCRemove.h>

IMPLEMENT_DYNCREATE(CCAddTuplet, CCAdd)

CCAddTuplet::CCAddTuplet() = default;

CCAddTuplet::~CCAddTuplet() = default;

int CCAddTuplet::GetCommandId()
{
    return COMMAND_ID_ADD_TUPLET;
}

CCAddItem *CCAddTuplet::Add(ECBase *child, ECBase *parent, FCMidi &midi)
{
    CCAddItem *item = CCAdd::Add(child, parent, midi);
    auto notes = std::make_unique<EventList>();
    if (child)
    {
        ACFindEvents find(1);
        find.AddEvtType(EVENT_ID_NOTE);
        find.Apply(child);
        for (POSITION pos = find.GetEvents().GetHeadPosition(); pos;)
            notes->AddTail(find.GetEvents().GetNext(pos));
    }
    m_notes[item] = std::move(notes);
    return item;
}

CCAddTuplet::EventList &CCAddTuplet::GetNoteList()
{
    return m_notes.empty() ? m_noNotes : *m_notes.begin()->second;
}

int CCAddTuplet::Prepare()
{
    if (!CCBase::Prepare())
        return 0;
    for (POSITION pos = m_addList.GetHeadPosition(); pos;)
    {
        CCAddItem *item = m_addList.GetNext(pos);
        ECBase *tuplet = item->GetChild();
        if (!tuplet || tuplet->GetEventId() != EVENT_ID_TUPLET || tuplet->GetDescendant(EVENT_ID_NOTE, -1))
            continue;
        auto found = m_notes.find(item);
        if (found == m_notes.end())
            continue;
        for (POSITION n = found->second->GetHeadPosition(); n;)
            tuplet->AddChild(found->second->GetNext(n), 1);
    }
    return 1;
}

void CCAddTuplet::Undo()
{
    if (GetNoteList().IsEmpty() || m_addList.IsEmpty())
        return;
    auto *remove = new CCRemove;
    remove->SetSynchronous(IsSynchronous());
    for (POSITION pos = m_addList.GetHeadPosition(); pos;)
    {
        CCAddItem *item = m_addList.GetNext(pos);
        if (auto found = m_notes.find(item); found != m_notes.end())
            for (POSITION n = found->second->GetHeadPosition(); n;)
                remove->Remove(found->second->GetNext(n));
        remove->Remove(item->GetChild());
    }
    remove->Apply(GetTarget());
}
