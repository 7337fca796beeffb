#include <scoremodel/events/notes/ECAccent.h>

#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECAccent, ECBase, VERSIONABLE_SCHEMA | 2)

namespace
{
enum FingerRange
{
    NotFinger,
    FingerGigit,
    FingerCycledGigit,
    FingerPima
};

FingerRange FingerRangeOf(BYTE type)
{
    if (type >= 0x5A && type <= 0x5F)
        return FingerGigit;
    if (type >= 0x60 && type <= 0x65)
        return FingerCycledGigit;
    if (type >= 0x66 && type <= 0x69)
        return FingerPima;
    return NotFinger;
}
} // namespace

ECAccent::~ECAccent() = default;

ECAccent &ECAccent::operator=(const ECAccent &other)
{
    if (this != &other)
    {
        ECBase::operator=(other);
        SetAccentType(other.GetAccentType());
    }
    return *this;
}

CObject *ECAccent::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECAccent)))
        *this = *static_cast<ECAccent *>(src);
    return this;
}

int ECAccent::GetEventId() const
{
    return EVENT_ID_ACCENT;
}

int ECAccent::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_NOTE);
    if (!IsFingerType())
        types.Add(EVENT_ID_CHORD);
    types.Add(EVENT_ID_GRACE_NOTE);
    return 1;
}

int ECAccent::IsFingerType() const
{
    return FingerRangeOf(GetAccentType()) != NotFinger;
}

int ECAccent::IsFingerTypeGigit() const
{
    return FingerRangeOf(GetAccentType()) == FingerGigit;
}

int ECAccent::IsFingerTypeCycledGigit() const
{
    return FingerRangeOf(GetAccentType()) == FingerCycledGigit;
}

int ECAccent::IsFingerTypePima() const
{
    return FingerRangeOf(GetAccentType()) == FingerPima;
}

int ECAccent::IsReplaceableFinger(BYTE other) const
{
    FingerRange range = FingerRangeOf(GetAccentType());
    return range != NotFinger && range == FingerRangeOf(other);
}

void ECAccent::Serialize(CArchive &ar)
{
    ECBase::Serialize(ar);
    if (ar.IsStoring())
    {
        ar << GetAccentType();
    }
    else
    {
        BYTE type = 0;
        ar >> type;
        SetAccentType(type);
    }
}
