#include <scoremodel/actions/ACGetVoiceTrack.h>

#include <scoremodel/events/base/ECBase.h>

ACGetVoiceTrack::ACGetVoiceTrack(int bReverse) : ACBase(bReverse)
{
}

ACGetVoiceTrack::~ACGetVoiceTrack() = default;

int ACGetVoiceTrack::DoAction(ECBase *e)
{
    if (!e)
        return ResultFailed;
    MCVoiceTrack *vt = e->GetVoiceTrack();
    if (!vt)
        return ResultContinue;
    m_voiceTrack = *vt;
    return ResultStop;
}
