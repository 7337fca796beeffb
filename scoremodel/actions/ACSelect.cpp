#include <scoremodel/actions/ACSelect.h>

#include <scoremodel/events/base/ECBase.h>

namespace
{
constexpr unsigned kNoVoice = 15;
constexpr unsigned kNoTrack = 0x7FF;
constexpr unsigned kConductorTrack = 0;

bool IsListed(const CUIntArray &values, unsigned value)
{
    for (UINT listed : values)
        if (listed == value)
            return true;
    return false;
}
} // namespace

ACSelect::ACSelect(const MCTime &start, const MCTime &end) : ACFindTime(start, end, ACRangeOpenEnd)
{
}

ACSelect::~ACSelect() = default;

int ACSelect::DoAction(ECBase *e)
{
    if (!e)
        return ResultFailed;
    unsigned voice = kNoVoice;
    unsigned track = kNoTrack;
    if (MCVoiceTrack *vt = e->GetVoiceTrack())
    {
        voice = static_cast<unsigned>(vt->GetVoice());
        track = static_cast<unsigned>(vt->GetTrack());
    }
    if (!FindTrack(track))
        return ResultSkip;
    if (!FindVoice(voice))
        return ResultContinue;
    if (e->GetTime())
        return ACFindTime::DoAction(e);
    return ACFindEvents::DoAction(e);
}

bool ACSelect::FindVoice(unsigned voice) const
{
    return voice == kNoVoice || m_voices.IsEmpty() || IsListed(m_voices, voice);
}

bool ACSelect::FindTrack(unsigned track) const
{
    return track == kNoTrack || track == kConductorTrack || m_tracks.IsEmpty() || IsListed(m_tracks, track);
}

void ACSelect::SetVoices(const CUIntArray &voices)
{
    m_voices.Copy(voices);
}

void ACSelect::SetTracks(const CUIntArray &tracks)
{
    m_tracks.Copy(tracks);
}
