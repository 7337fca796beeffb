#include <scoremodel/events/structure/ECConductorMeasure.h>

#include <scoremodel/actions/ACFindEvents.h>
#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/structure/ECConductorStaff.h>
#include <scoremodel/platform/CArchive.h>

#include <algorithm>

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
        // Checked against the rows once they are read (PostSerialize).
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
    if (ar.IsStoring())
        return;
    // A damaged document may name anything here: only measures stand in
    // the rows, this measure at 0, and the max track stays inside.
    for (INT_PTR i = 0; i < m_measures.GetSize(); ++i)
    {
        CObject *row = static_cast<CObArray &>(m_measures).GetAt(i);
        if (row && !row->IsKindOf(RUNTIME_CLASS(ECMeasure)))
            m_measures.SetAt(i, nullptr);
    }
    if (m_measures.GetSize() == 0)
        m_measures.SetSize(1, 4);
    m_measures.SetAt(0, this);
    if (m_nMaxTrack < 0 || m_nMaxTrack >= m_measures.GetSize())
        m_nMaxTrack = static_cast<int>(m_measures.GetSize()) - 1;
}

int ECConductorMeasure::GetMeasureEvents(int track, EventList &events)
{
    events.RemoveAll();
    const int first = track == 0x7FE ? 0 : track;
    const int last = track == 0x7FE ? m_nMaxTrack : track;
    for (int row = first; row <= last; ++row)
    {
        ECMeasure *measure = GetMeasureOnTrack(row);
        if (!measure)
            continue;
        ACFindEvents find;
        find.SetDepth(1);
        find.Apply(measure);
        for (POSITION pos = find.GetEvents().GetHeadPosition(); pos;)
        {
            ECBase *event = find.GetEvents().GetNext(pos);
            if (event != measure)
                events.AddTail(event);
        }
    }
    return events.IsEmpty() ? 0 : 1;
}

ECConductorMeasure *ECConductorMeasure::GetPreviousCondMeasure()
{
    auto *staff = static_cast<ECConductorStaff *>(GetAncestor(EVENT_ID_CONDUCTOR_STAFF, -1));
    if (!staff)
        return nullptr;
    const int number = GetMeasureNumber();
    if (number < 2)
        return nullptr;
    return static_cast<ECConductorMeasure *>(staff->GetMeasure(0, number - 1));
}

void ECConductorMeasure::SetMeasureTime(MCTime *time)
{
    if (!time)
        return;
    for (int row = 0; row <= m_nMaxTrack && row < m_measures.GetSize(); ++row)
        if (ECMeasure *measure = m_measures.GetAt(row))
            measure->SetTime(time);
}

int ECConductorMeasure::AddMeasureOnTrack(ECMeasure *measure, int track)
{
    if (!measure || track < 1 || track > m_nMaxTrack + 1)
        return 0;
    // The slots past the max track are spare: one of them makes room, so
    // the array does not grow with every insertion.
    const INT_PTR size = m_measures.GetSize();
    if (m_nMaxTrack + 1 < size && !m_measures.GetAt(size - 1))
        m_measures.RemoveAt(size - 1);
    if (track <= m_measures.GetSize())
        m_measures.InsertAt(track, measure);
    else
        m_measures.SetAtGrow(track, measure);
    ++m_nMaxTrack;
    return 1;
}

ECMeasure *ECConductorMeasure::RemoveMeasureOnTrack(int track)
{
    if (track < 1 || track > m_nMaxTrack || track >= m_measures.GetSize())
        return nullptr;
    ECMeasure *measure = m_measures.GetAt(track);
    m_measures.RemoveAt(track);
    m_measures.Add(nullptr);
    --m_nMaxTrack;
    return measure;
}

void ECConductorMeasure::RemoveMeasures()
{
    m_measures.RemoveAll();
    m_nMaxTrack = -1;
}

void ECConductorMeasure::OrderMeasures()
{
    // An exchange sort, as for the staves: few rows, nearly in order.
    const int last = std::min<int>(m_nMaxTrack, static_cast<int>(m_measures.GetSize()) - 1);
    for (int i = 0; i < last; ++i)
        for (int j = i + 1; j <= last; ++j)
        {
            ECMeasure *a = m_measures.GetAt(i);
            ECMeasure *b = m_measures.GetAt(j);
            if (a && b && b->GetTrack() < a->GetTrack())
            {
                m_measures.SetAt(i, b);
                m_measures.SetAt(j, a);
            }
        }
}
