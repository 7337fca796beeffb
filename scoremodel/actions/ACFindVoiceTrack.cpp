#include <scoremodel/actions/ACFindVoiceTrack.h>

#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/events/base/EventIds.h>

namespace
{
constexpr int kAnyVoice = 15;
constexpr int kStructuralVoice = 14;
constexpr int kAnyTrack = 0x7FF;
// The attachment that a note needs to count: its playback data.
constexpr int kNoteDataType = 0;
} // namespace

ACFindVoiceTrack::ACFindVoiceTrack(int n) : ACFindEvents(n)
{
}

ACFindVoiceTrack::~ACFindVoiceTrack() = default;

int ACFindVoiceTrack::DoAction(ECBase *e)
{
    if (!e)
        return ResultFailed;
    const int id = e->GetEventId();
    if ((id == EVENT_ID_GRACE_NOTE || id == EVENT_ID_NOTE) && !e->GetData(kNoteDataType, 0))
        return ResultContinue;
    MCVoiceTrack *vt = e->GetVoiceTrack();
    if (!vt)
        return ResultContinue;
    if (m_nVoice != kAnyVoice && m_nVoice != kStructuralVoice && vt->GetVoice() != m_nVoice)
        return ResultContinue;
    if (m_nTrack != kAnyTrack && vt->GetTrack() != m_nTrack)
        return ResultContinue;
    return ACFindEvents::DoAction(e);
}

void ACFindVoiceTrack::SetVoice(int voice)
{
    if (voice >= 0 && voice <= kAnyVoice)
        m_nVoice = voice;
}

void ACFindVoiceTrack::SetTrack(int track)
{
    if (track >= 0 && track <= kAnyTrack)
        m_nTrack = track;
}
