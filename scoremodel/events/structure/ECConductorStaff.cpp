#include <scoremodel/events/structure/ECConductorStaff.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/actions/ACFindEvents.h>
#include <scoremodel/actions/ACSetVoiceTrack.h>
#include <scoremodel/events/envelopes/ECTempoEnv.h>
#include <scoremodel/events/signatures/ECMeterEnv.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECPerformance.h>
#include <scoremodel/platform/CArchive.h>

// A staff asked for by number and missing is made by a command, as the
// conductor makes its own missing tracks (see ECConductor.cpp).
#include <scoremodel/commands/CCAddTrack.h>

#include <algorithm>

IMPLEMENT_SERIAL(ECConductorStaff, ECStaff, VERSIONABLE_SCHEMA | 2)

ECConductorStaff::ECConductorStaff() : ECConductorStaff(nullptr, nullptr)
{
}

ECConductorStaff::ECConductorStaff(ECConductor *conductor, ECPerformance *performance)
    : m_pConductor(conductor), m_pPerformance(performance), m_maxMeasureEndTime(MCTime::TimeZero())
{
    m_staves.SetSize(16, 4);
    m_staves[0] = this;
}

ECConductorStaff::~ECConductorStaff() = default;

ECConductorStaff &ECConductorStaff::operator=(const ECConductorStaff &other)
{
    if (this != &other)
        ECStaff::operator=(other);
    return *this;
}

CObject *ECConductorStaff::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECConductorStaff)))
        *this = *static_cast<ECConductorStaff *>(src);
    return this;
}

int ECConductorStaff::GetEventId() const
{
    return EVENT_ID_CONDUCTOR_STAFF;
}

int ECConductorStaff::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CONDUCTOR);
    return 1;
}

int ECConductorStaff::AddChild(ECBase *child, int sorted)
{
    const int added = ECStaff::AddChild(child, sorted);
    if (added && child->GetEventId() == EVENT_ID_TEMPO_ENV)
        m_pTempoEnv = static_cast<ECTempoEnv *>(child);
    else if (added && child->GetEventId() == EVENT_ID_METER_ENV)
        m_pMeterEnv = static_cast<ECMeterEnv *>(child);
    return added;
}

ECTempoEnv *ECConductorStaff::GetTempoEnv()
{
    if (m_pTempoEnv)
        return m_pTempoEnv;
    auto *envelope = static_cast<ECTempoEnv *>(RUNTIME_CLASS(ECTempoEnv)->CreateObject());
    envelope->SetVoiceTrack(14, 0);
    if (!AddChild(envelope, 1))
        envelope->Unref(1);
    return m_pTempoEnv;
}

int ECConductorStaff::RemoveChild(ECBase *child, int deep)
{
    if (!ECStaff::RemoveChild(child, deep))
        return 0;
    if (child == m_pTempoEnv)
        m_pTempoEnv = nullptr;
    else if (child == m_pMeterEnv)
        m_pMeterEnv = nullptr;
    return 1;
}

int ECConductorStaff::RemoveChildren(int deep)
{
    m_pTempoEnv = nullptr;
    m_pMeterEnv = nullptr;
    return ECStaff::RemoveChildren(deep);
}

ECConductor *ECConductorStaff::GetConductor()
{
    if (!m_pConductor)
        m_pConductor = static_cast<ECConductor *>(GetAncestor(EVENT_ID_CONDUCTOR, -1));
    return m_pConductor;
}

ECPerformance *ECConductorStaff::GetPerformance()
{
    if (!m_pPerformance && GetConductor())
        m_pPerformance = m_pConductor->GetPerformance();
    return m_pPerformance;
}

// ---- Staves ----

int ECConductorStaff::LastStaffIndex() const
{
    return std::min(m_nMaxStaffNumber, static_cast<int>(m_staves.GetSize()) - 1);
}

int ECConductorStaff::GetStaffNumber(ECStaff *staff)
{
    if (!staff)
        return -1;
    for (int number = 0; number <= LastStaffIndex(); ++number)
        if (m_staves.GetAt(number) == staff)
            return number;
    return -1;
}

ECStaff *ECConductorStaff::GetStaff(int number, int create)
{
    if (number >= 0 && number <= LastStaffIndex())
        return m_staves.GetAt(number);
    if (!create)
        return nullptr;
    ECStaff *staff = new ECStaff;
    staff->SetVoiceTrack(14, number);
    return static_cast<ECStaff *>(CCAddTrack::AddNow(GetPerformance(), staff, -1));
}

int ECConductorStaff::InsertStaff(ECStaff *staff, int at)
{
    if (!staff || staff == this || GetStaffNumber(staff) >= 0 || !GetConductor())
        return -1;
    if (at < 1 || at > m_nMaxStaffNumber + 1)
        at = m_nMaxStaffNumber + 1;
    RenumberStaves(at, 1);
    staff->SetVoiceTrack(14, at);
    // Slots past the maximum are spare; the staff takes the one at `at`
    // while the array still has room, so the array does not grow for ever.
    if (m_nMaxStaffNumber + 1 < m_staves.GetSize() && !m_staves.GetAt(m_staves.GetSize() - 1))
        m_staves.RemoveAt(m_staves.GetSize() - 1);
    m_staves.InsertAt(at, staff);
    ++m_nMaxStaffNumber;
    m_pConductor->AddChild(staff, 1);
    return at;
}

void ECConductorStaff::RemoveStaff(ECStaff *staff)
{
    const int number = GetStaffNumber(staff);
    if (number < 1)
        return;
    m_staves.RemoveAt(number);
    m_staves.Add(nullptr);
    --m_nMaxStaffNumber;
    // Out of the tree first, so that the renumbering leaves the staff its
    // number: an undo puts it back there.
    if (GetConductor())
        m_pConductor->RemoveChild(staff, 0);
    RenumberStaves(number + 1, -1);
}

void ECConductorStaff::RenumberStaves(int from, int delta)
{
    ECBase *root = GetPerformance();
    if (!root)
        root = GetConductor();
    if (!root)
        return;
    ACFindEvents find(2);
    find.AddEvtType(EVENT_ID_STAFF);
    find.AddEvtType(EVENT_ID_CONDUCTOR_STAFF);
    find.SetDepth(root == m_pConductor ? 1 : 2);
    find.Apply(root);
    EventList &found = find.GetEvents();
    for (POSITION pos = found.GetTailPosition(); pos;)
    {
        ECBase *staff = found.GetPrev(pos);
        const int track = staff->GetTrack();
        // The chord staff (0x7FC) is not numbered with the staves.
        if (track != 0 && track >= from && track < 0x7FC)
        {
            // Voice 15 leaves the voices as they are.
            ACSetVoiceTrack move(track + delta, 15);
            move.Apply(staff);
        }
    }
}

void ECConductorStaff::OrderStaves()
{
    // An exchange sort: there are few staves, and they are nearly in order.
    const int last = LastStaffIndex();
    for (int i = 0; i < last; ++i)
        for (int j = i + 1; j <= last; ++j)
        {
            ECStaff *a = m_staves.GetAt(i);
            ECStaff *b = m_staves.GetAt(j);
            if (a && b && b->GetTrack() < a->GetTrack())
            {
                m_staves.SetAt(i, b);
                m_staves.SetAt(j, a);
            }
        }
}

// ---- Archive ----

void ECConductorStaff::Serialize(CArchive &ar)
{
    ECStaff::Serialize(ar);
    if (ar.IsStoring())
    {
        ar.WriteObject(GetConductor());
        ar.WriteObject(GetPerformance());
        ar << static_cast<DWORD>(m_nMaxStaffNumber) << static_cast<DWORD>(m_nMaxMeasure);
        m_maxMeasureEndTime.Serialize(ar, -1);
        ar.WriteObject(m_pTempoEnv);
        ar.WriteObject(m_pMeterEnv);
        return;
    }
    ar >> m_pConductor >> m_pPerformance;
    DWORD maxStaff = 0;
    DWORD maxMeasure = 0;
    ar >> maxStaff >> maxMeasure;
    // A damaged count must not turn into a negative index.
    m_nMaxStaffNumber = std::max(0, static_cast<int>(maxStaff));
    m_nMaxMeasure = std::max(-1, static_cast<int>(maxMeasure));
    m_maxMeasureEndTime.Serialize(ar, ActiveArchiveVersion());
    if (ActiveArchiveVersion() >= ArchiveVersionAttachmentSlots)
        ar >> m_pTempoEnv >> m_pMeterEnv;
}

void ECConductorStaff::PostSerialize(CArchive &ar)
{
    ECStaff::PostSerialize(ar);
    m_staves.Serialize(ar);
    if (ar.IsLoading())
    {
        // Only staves may stand in the array, and this staff at 0.
        for (INT_PTR i = 0; i < m_staves.GetSize(); ++i)
        {
            CObject *element = static_cast<CObArray &>(m_staves).GetAt(i);
            if (element && !element->IsKindOf(RUNTIME_CLASS(ECStaff)))
                m_staves.SetAt(i, nullptr);
        }
        if (m_staves.GetSize() == 0)
            m_staves.SetSize(1, 4);
        m_staves.SetAt(0, this);
        m_nMaxStaffNumber = LastStaffIndex();
    }
}
