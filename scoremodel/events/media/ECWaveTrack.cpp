#include <scoremodel/events/media/ECWaveTrack.h>

IMPLEMENT_SERIAL(ECWaveTrack, ECTrack, VERSIONABLE_SCHEMA | 2)

ECWaveTrack::ECWaveTrack() = default;

ECWaveTrack::~ECWaveTrack() = default;

ECWaveTrack &ECWaveTrack::operator=(const ECWaveTrack &other)
{
    if (this != &other)
        ECTrack::operator=(other);
    return *this;
}

CObject *ECWaveTrack::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECWaveTrack)))
        *this = *static_cast<ECWaveTrack *>(src);
    return this;
}

int ECWaveTrack::GetEventId() const
{
    return EVENT_ID_WAVE_TRACK;
}

int ECWaveTrack::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CONDUCTOR);
    return 1;
}
