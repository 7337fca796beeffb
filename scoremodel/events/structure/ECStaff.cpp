#include <scoremodel/events/structure/ECStaff.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECStaff, ECTrack, VERSIONABLE_SCHEMA | 2)

ECStaff::ECStaff() : ECStaff(0)
{
}

ECStaff::ECStaff(BYTE type)
{
    SetSpareByte(0x80);
    SetStaffType(type);
}

ECStaff::ECStaff(const ECStaff &other) : ECTrack(other)
{
    SetSpareByte(0x80);
    *this = other;
}

ECStaff::~ECStaff() = default;

ECStaff &ECStaff::operator=(const ECStaff &other)
{
    if (this != &other)
    {
        ECTrack::operator=(other);
        SetStaffType(other.GetStaffType());
        m_staffSize = other.m_staffSize;
        m_nStaffLines = other.m_nStaffLines;
        m_nJianpuOffsetY = other.m_nJianpuOffsetY;
    }
    return *this;
}

int ECStaff::operator==(const ECStaff &other) const
{
    return GetStaffType() == other.GetStaffType() && m_staffSize == other.m_staffSize &&
           m_nStaffLines == other.m_nStaffLines;
}

CObject *ECStaff::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECStaff)))
        *this = *static_cast<ECStaff *>(src);
    return this;
}

int ECStaff::GetEventId() const
{
    return EVENT_ID_STAFF;
}

int ECStaff::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CONDUCTOR);
    return 1;
}

void ECStaff::Serialize(CArchive &ar)
{
    // ECTrack and ECWithTimeChild (what documents below version 1 stored)
    // have the same layout.
    ECTrack::Serialize(ar);
    if (ar.IsStoring())
    {
        ar << GetSpareByte();
        ar << m_percussionMap;
        ar << m_percussionPitch;
        ar << static_cast<LONG>(m_nStaffLines);
        ar << m_staffSize;
        return;
    }
    BYTE spare = 0;
    ar >> spare;
    SetSpareByte(spare);
    if (ActiveArchiveVersion() >= ArchiveVersionStaffLayout)
    {
        LONG lines = 0;
        ar >> m_percussionMap >> m_percussionPitch >> lines;
        m_nStaffLines = static_cast<int>(lines);
        ar >> m_staffSize;
    }
}

void ECStaff::PostSerialize(CArchive &ar)
{
    ECTrack::PostSerialize(ar);
    if (ar.IsLoading() && ActiveArchiveVersion() < ArchiveVersionStaffSize)
    {
        if (m_staffSize == 8)
            m_staffSize = 32;
        else if (m_staffSize == 9)
            m_staffSize = 33;
    }
}
