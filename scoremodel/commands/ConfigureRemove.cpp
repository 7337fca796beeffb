#include <scoremodel/commands/ConfigureRemove.h>

#include <scoremodel/commands/CCEdit.h>
#include <scoremodel/commands/CCRemove.h>
#include <scoremodel/commands/CCRemoveClef.h>
#include <scoremodel/commands/CCRemoveEnvPoint.h>
#include <scoremodel/commands/CCRemoveKey.h>
#include <scoremodel/commands/CCRemoveMeter.h>
#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/media/ECText.h>
#include <scoremodel/platform/MCLanguageManager.h>
#include <scoremodel/platform/MessageBox.h>

namespace
{
bool AtZero(ECBase *event)
{
    MCTime *time = event->GetTime();
    return time && !(*time == MCTime::TimeNull()) && *time == MCTime::TimeZero();
}

bool AboveZero(ECBase *event)
{
    MCTime *time = event->GetTime();
    return time && *time > MCTime::TimeZero();
}

void Tell(const wchar_t *key)
{
    MCMessageBox(MCLanguageManager::GetText(CString(L"DataModel"), CString(key)), MB_OK | MB_ICONINFORMATION);
}

// A command of its own for `event`.
template <class Remove>
void Own(ECBase *event, CTypedPtrList<MCCommandList, CCBase *> &commands)
{
    auto *remove = new Remove;
    remove->Remove(event);
    commands.AddTail(remove);
}

void Shared(ECBase *event, CTypedPtrList<MCCommandList, CCBase *> &commands)
{
    CCBase *shared = commands.GetCommand(COMMAND_ID_REMOVE, RUNTIME_CLASS(CCRemove));
    if (shared && shared->IsKindOf(RUNTIME_CLASS(CCRemove)))
        static_cast<CCRemove *>(shared)->Remove(event);
}

// A text of type 3 stays and loses its words.
void Empty(ECBase *event, CTypedPtrList<MCCommandList, CCBase *> &commands)
{
    CCBase *edit = commands.GetCommand(COMMAND_ID_EDIT, RUNTIME_CLASS(CCEdit));
    if (!edit || !edit->IsKindOf(RUNTIME_CLASS(CCEdit)))
        return;
    if (auto *copy = static_cast<ECText *>(static_cast<CCEdit *>(edit)->EditEvent(event)))
        copy->SetText(CString());
}
} // namespace

int ConfigureRemove(CTypedPtrList<MCEventList, ECBase *> *events, CTypedPtrList<MCCommandList, CCBase *> &commands)
{
    if (!events)
        return 0;
    CTypedPtrList<MCEventList, ECBase *> selection;
    for (POSITION pos = events->GetHeadPosition(); pos;)
        if (ECBase *event = events->GetNext(pos))
            selection.AddTail(event);
    selection.CollapseToAncestors(nullptr);
    for (POSITION pos = selection.GetHeadPosition(); pos;)
    {
        ECBase *event = selection.GetNext(pos);
        switch (event->GetEventId())
        {
        case EVENT_ID_BARLINE:
        case EVENT_ID_BEAM:
        case EVENT_ID_CONDUCTOR_MEASURE:
        case EVENT_ID_CONDUCTOR_STAFF:
        case EVENT_ID_DOT:
        case EVENT_ID_MEASURE:
        case EVENT_ID_PERFORMANCE:
        case EVENT_ID_STAFF:
            break;
        case EVENT_ID_CLEF:
            if (AboveZero(event))
                Own<CCRemoveClef>(event, commands);
            break;
        case EVENT_ID_KEY:
            if (AboveZero(event))
                Own<CCRemoveKey>(event, commands);
            break;
        case EVENT_ID_METER:
            if (AboveZero(event))
                Own<CCRemoveMeter>(event, commands);
            break;
        case EVENT_ID_DYNAMIC:
        case EVENT_ID_PEDAL:
        case EVENT_ID_TRANSPOSE:
        case EVENT_ID_COMPRESS:
            Own<CCRemoveEnvPoint>(event, commands);
            break;
        case EVENT_ID_TEMPO:
            if (AtZero(event))
                Tell(L"IDS_MSG_REMOVE_FIRST_TEMPO");
            else
                Own<CCRemoveEnvPoint>(event, commands);
            break;
        case EVENT_ID_PROGRAM_CHANGE:
            if (AtZero(event) && event->GetVoice() == 0)
                Tell(L"IDS_MSG_REMOVE_FIRST_PROGRAMCHANGE");
            else
                Shared(event, commands);
            break;
        case EVENT_ID_TEXT:
            if (static_cast<ECText *>(event)->GetTextType() == 3)
                Empty(event, commands);
            else
                Shared(event, commands);
            break;
        default:
            Shared(event, commands);
            break;
        }
    }
    return commands.IsEmpty() ? 0 : 1;
}
