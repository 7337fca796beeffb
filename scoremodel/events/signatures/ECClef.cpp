#include <scoremodel/events/signatures/ECClef.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/events/notes/MirrorLinks.h>
#include <scoremodel/events/signatures/StaffSignature.h>
#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECClef, ECWithTime, VERSIONABLE_SCHEMA | 2)

namespace
{
// Documents from this version on hold the packed byte; before it, type and
// hand as two bytes.
constexpr int kPackedClefVersion = 3;
} // namespace

ECClef::ECClef() = default;

ECClef::ECClef(unsigned char type)
{
    m_type = type & 0x7F;
}

ECClef::ECClef(const ECClef &other) : ECWithTime(other)
{
    *this = other;
}

ECClef::~ECClef()
{
    RemoveMirrors();
}

ECClef &ECClef::operator=(const ECClef &other)
{
    if (this != &other)
    {
        ECWithTime::operator=(other);
        SetClefType(other.GetClefType());
        SetHand(other.GetHand());
    }
    return *this;
}

int ECClef::operator==(const ECClef &other) const
{
    return GetClefType() == other.GetClefType() && GetHand() == other.GetHand();
}

CObject *ECClef::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECClef)))
        *this = *static_cast<ECClef *>(src);
    return this;
}

int ECClef::GetEventId() const
{
    return EVENT_ID_CLEF;
}

int ECClef::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_MEASURE);
    return 1;
}

void ECClef::SetTime(MCTime *time)
{
    SetStaffCachedTime(this, time, GetHand(),
                       [](ECBase *e, MCTime *t) { static_cast<ECClef *>(e)->ECWithTime::SetTime(t); });
}

void ECClef::AddMirror(ECMirror *mirror)
{
    mirror_links::Add(m_mirrors, mirror, this);
}

void ECClef::RemoveMirror(ECMirror *mirror)
{
    mirror_links::Remove(m_mirrors, mirror);
}

void ECClef::RemoveMirrors()
{
    mirror_links::RemoveAll(m_mirrors);
}

void ECClef::Serialize(CArchive &ar)
{
    ECWithTime::Serialize(ar);
    if (ar.IsStoring())
    {
        ar << static_cast<BYTE>(GetClefType() | (GetHand() << 7));
        return;
    }
    BYTE type = 0, hand = 0;
    if (ActiveArchiveVersion() >= kPackedClefVersion)
    {
        ar >> type;
        hand = type >> 7;
    }
    else
        ar >> type >> hand;
    SetClefType(type);
    SetHand(hand);
}
