#include <scoremodel/events/structure/ECConductorStaff.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/platform/CArchive.h>

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
    return ECStaff::AddChild(child, sorted);
}

int ECConductorStaff::RemoveChild(ECBase *child, int deep)
{
    return ECStaff::RemoveChild(child, deep);
}

int ECConductorStaff::RemoveChildren(int deep)
{
    m_pTempoEnv = nullptr;
    m_pMeterEnv = nullptr;
    return ECStaff::RemoveChildren(deep);
}

int ECConductorStaff::GetStaffNumber(ECStaff *)
{
    return -1;
}

ECStaff *ECConductorStaff::GetStaff(int, int)
{
    return nullptr;
}

int ECConductorStaff::InsertStaff(ECStaff *, int)
{
    return -1;
}

void ECConductorStaff::RemoveStaff(ECStaff *)
{
}

void ECConductorStaff::OrderStaves()
{
}

void ECConductorStaff::RenumberStaves(int, int)
{
}

void ECConductorStaff::Serialize(CArchive &ar)
{
    ECStaff::Serialize(ar);
}

void ECConductorStaff::PostSerialize(CArchive &ar)
{
    ECStaff::PostSerialize(ar);
}
