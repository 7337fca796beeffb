#include <scoremodel/events/structure/ECMeasure.h>

IMPLEMENT_SERIAL(ECMeasure, ECWithTimeChild, VERSIONABLE_SCHEMA | 2)

ECMeasure::ECMeasure()
{
    m_voiceTrack = MCVoiceTrack(14, 0x7FF);
}

ECMeasure::ECMeasure(const ECMeasure &other) : ECWithTimeChild(other)
{
}

ECMeasure::~ECMeasure() = default;

ECMeasure &ECMeasure::operator=(const ECMeasure &other)
{
    if (this != &other)
        ECWithTimeChild::operator=(other);
    return *this;
}

CObject *ECMeasure::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECMeasure)))
        *this = *static_cast<ECMeasure *>(src);
    return this;
}

int ECMeasure::GetEventId() const
{
    return EVENT_ID_MEASURE;
}

int ECMeasure::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_STAFF);
    return 1;
}
