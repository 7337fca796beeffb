#include <scoremodel/actions/ACSetVoiceTrack.h>

#include <scoremodel/events/base/ECBase.h>

#include <algorithm>

namespace
{
// The "all tracks" value of measure queries: never a real track.
constexpr int kAllTracks = 0x7FE;
constexpr int kHighestTrack = 0x7FB;
constexpr int kStructuralVoice = 14;
constexpr int kHighestVoice = 7;
} // namespace

ACSetVoiceTrack::ACSetVoiceTrack() = default;

ACSetVoiceTrack::ACSetVoiceTrack(int track, int voice) : m_nTrack(track), m_nVoice(voice)
{
}

ACSetVoiceTrack::~ACSetVoiceTrack() = default;

int ACSetVoiceTrack::DoAction(ECBase *e)
{
    if (!e)
        return ResultFailed;
    MCVoiceTrack *vt = e->GetVoiceTrack();
    if (!vt)
        return ResultContinue;

    if (m_nTrack != kNoTrack)
    {
        const int current = vt->GetTrack();
        if (current == kAllTracks)
            return ResultContinue;
        if (current != kNoTrack && (current < m_nTrackMin || current > m_nTrackMax))
            return ResultContinue;
        vt->SetTrack(static_cast<unsigned>(std::clamp(m_nTrack, 0, kHighestTrack)));
    }

    if (m_nVoice != kNoVoice)
    {
        const int current = vt->GetVoice();
        if (current != kStructuralVoice && current != kNoVoice && (current < m_nVoiceMin || current > m_nVoiceMax))
            return ResultContinue;
        vt->SetVoice(static_cast<unsigned>(std::clamp(m_nVoice, 0, kHighestVoice)));
    }
    return ResultContinue;
}

void ACSetVoiceTrack::SetTrackRange(int minTrack, int maxTrack)
{
    m_nTrackMin = minTrack;
    m_nTrackMax = maxTrack;
}

void ACSetVoiceTrack::SetVoiceRange(int minVoice, int maxVoice)
{
    m_nVoiceMin = minVoice;
    m_nVoiceMax = maxVoice;
}
