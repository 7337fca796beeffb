#include <scoremodel/commands/CCAddTempo.h>

#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/envelopes/ECTempoEnv.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECConductorStaff.h>

IMPLEMENT_DYNCREATE(CCAddTempo, CCAddEnvPoint)

CCAddTempo::CCAddTempo() = default;

CCAddTempo::CCAddTempo(ECBase *event, ECBase *parent)
{
    FCMidi none = FCMidi::MidiNull();
    Add(event, parent, none);
}

CCAddTempo::~CCAddTempo() = default;

int CCAddTempo::GetCommandId()
{
    return COMMAND_ID_ADD_TEMPO;
}

CCAddItem *CCAddTempo::Add(ECBase *child, ECBase *parent, FCMidi &midi)
{
    if (!child || !(child->GetEventId() == EVENT_ID_TEMPO))
        return nullptr;
    return CCAdd::Add(child, parent, midi);
}

int CCAddTempo::Prepare()
{
    if (!CCAddEnvPoint::Prepare())
        return 0;
    ECTempoEnv *map = nullptr;
    for (POSITION pos = m_addList.GetHeadPosition(); pos;)
    {
        CCAddItem *item = m_addList.GetNext(pos);
        if (item->GetParent())
            continue;
        // Looked up without making the conductor staff: that would run a
        // command of its own in the middle of this one.
        if (!map)
            if (auto *score =
                    static_cast<ECConductorStaff *>(GetConductor()->GetDescendant(EVENT_ID_CONDUCTOR_STAFF, 1)))
                map = score->GetTempoEnv();
        if (map)
            item->SetParent(map);
    }
    return 1;
}
