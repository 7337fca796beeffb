#include <scoremodel/events/structure/ECConductorMeasure.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECConductorMeasure, ECMeasure, VERSIONABLE_SCHEMA | 2)

ECConductorMeasure::ECConductorMeasure()
{
    m_voiceTrack = MCVoiceTrack(14, 0);
    m_measures.SetSize(16, 4);
    m_measures[0] = this;
}

ECConductorMeasure::ECConductorMeasure(MCTime &time) : ECConductorMeasure()
{
    m_time = time;
}

ECConductorMeasure::~ECConductorMeasure() = default;

ECConductorMeasure &ECConductorMeasure::operator=(const ECConductorMeasure &other)
{
    if (this != &other)
    {
        ECMeasure::operator=(other);
        SetCollapseMeasure(other.GetCollapseMeasure());
    }
    return *this;
}

CObject *ECConductorMeasure::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECConductorMeasure)))
        *this = *static_cast<ECConductorMeasure *>(src);
    return this;
}

int ECConductorMeasure::GetEventId() const
{
    return EVENT_ID_CONDUCTOR_MEASURE;
}

int ECConductorMeasure::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CONDUCTOR_STAFF);
    return 1;
}

ECMeasure *ECConductorMeasure::GetMeasureOnTrack(int track)
{
    if (track < 0 || track > m_nMaxTrack || track >= m_measures.GetSize())
        return nullptr;
    return m_measures.GetAt(track);
}

void ECConductorMeasure::Serialize(CArchive &ar)
{
    ECWithTimeChild::Serialize(ar);
    if (ar.IsStoring())
    {
        ar << static_cast<DWORD>(m_nMaxTrack);
        ar << GetCollapseMeasure();
    }
    else
    {
        DWORD maxTrack = 0;
        ar >> maxTrack;
        m_nMaxTrack = static_cast<int>(maxTrack);
        if (ActiveArchiveVersion() >= ArchiveVersionCollapse)
        {
            BYTE collapse = 0;
            ar >> collapse;
            SetCollapseMeasure(collapse);
        }
    }
}

void ECConductorMeasure::PostSerialize(CArchive &ar)
{
    ECMeasure::PostSerialize(ar);
    m_measures.Serialize(ar);
}
