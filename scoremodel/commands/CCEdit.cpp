#include <scoremodel/commands/CCEdit.h>

#include <scoremodel/commands/DerivedOwners.h>

IMPLEMENT_DYNCREATE(CCEdit, CCBase)

namespace
{
// A new object of `event`'s class holding its values, with a reference.
ECBase *ValueCopy(ECBase *event)
{
    auto *copy = static_cast<ECBase *>(event->GetRuntimeClass()->CreateObject());
    if (!copy)
        return nullptr;
    copy->Ref();
    copy->Copy(event);
    return copy;
}

// The owners of what `event`'s values feed: its staff or its envelope.
void NoteOwners(MCDerivedOwners &owners, ECBase *event)
{
    for (POSITION pos = event->GetParents()->GetHeadPosition(); pos;)
        owners.Note(event->GetParents()->GetNext(pos));
}
} // namespace

CCEdit::CCEdit() = default;

CCEdit::~CCEdit()
{
    for (Edit &edit : m_edits)
    {
        if (edit.before)
            edit.before->Unref(1);
        edit.copy->Unref(1);
        edit.event->Unref(1);
    }
}

int CCEdit::GetCommandId()
{
    return COMMAND_ID_EDIT;
}

ECBase *CCEdit::EditEvent(ECBase *event)
{
    if (!event)
        return nullptr;
    if (ECBase *copy = GetEditCopy(event))
        return copy;
    ECBase *copy = ValueCopy(event);
    if (!copy)
        return nullptr;
    event->Ref();
    m_edits.push_back({event, copy, nullptr});
    return copy;
}

ECBase *CCEdit::GetEditCopy(ECBase *event) const
{
    for (const Edit &edit : m_edits)
        if (edit.event == event)
            return edit.copy;
    return nullptr;
}

int CCEdit::Process()
{
    if (!CCBase::Process())
        return 0;
    MCDerivedOwners owners;
    for (Edit &edit : m_edits)
    {
        if (!edit.before)
            edit.before = ValueCopy(edit.event);
        edit.event->Copy(edit.copy);
        NoteOwners(owners, edit.event);
    }
    owners.Refresh();
    return 1;
}

void CCEdit::Undo()
{
    MCDerivedOwners owners;
    for (auto it = m_edits.rbegin(); it != m_edits.rend(); ++it)
    {
        if (!it->before)
            continue;
        it->event->Copy(it->before);
        NoteOwners(owners, it->event);
    }
    owners.Refresh();
}
