#include <scoremodel/events/notes/ECBrac.h>

#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECBrac, ECBase, VERSIONABLE_SCHEMA | 2)

ECBrac::~ECBrac() = default;

CObject *ECBrac::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECBrac)))
        *this = *static_cast<ECBrac *>(src);
    return this;
}

int ECBrac::GetEventId() const
{
    return EVENT_ID_BRAC;
}

int ECBrac::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CONDUCTOR_MEASURE);
    return 1;
}

void ECBrac::SetGroupID(BYTE groupId, int primary)
{
    m_groupId = groupId;
    SetSpareByte(static_cast<BYTE>((GetSpareByte() & 0x7F) | (primary ? 0x80 : 0)));
}

void ECBrac::Serialize(CArchive &ar)
{
    ECBase::Serialize(ar);
    SerializeSpareByte(ar);
}
