#include <scoremodel/events/notes/ECTurn.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECTurn, ECWithChild, VERSIONABLE_SCHEMA | 2)

ECTurn::~ECTurn() = default;

CObject *ECTurn::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECTurn)))
        *this = *static_cast<ECTurn *>(src);
    return this;
}

int ECTurn::GetEventId() const
{
    return EVENT_ID_TURN;
}

int ECTurn::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_NOTE);
    types.Add(EVENT_ID_CHORD);
    return 1;
}

void ECTurn::GetAccidentals(BYTE &above, BYTE &below) const
{
    above = GetSpareByte() & 0x0F;
    below = GetSpareByte() >> 4;
}

void ECTurn::SetAccidentals(BYTE above, BYTE below)
{
    SetSpareByte(static_cast<BYTE>((above & 0x0F) | (below << 4)));
}

void ECTurn::SetAccidentalAbove(BYTE above)
{
    SetSpareByte(static_cast<BYTE>((GetSpareByte() & 0xF0) | (above & 0x0F)));
}

void ECTurn::SetAccidentalBelow(BYTE below)
{
    SetSpareByte(static_cast<BYTE>((GetSpareByte() & 0x0F) | (below << 4)));
}

int ECTurn::HasAccidentals(BYTE above, BYTE below) const
{
    BYTE a = 0, b = 0;
    GetAccidentals(a, b);
    return a == (above & 0x0F) && b == (below & 0x0F);
}

void ECTurn::Serialize(CArchive &ar)
{
    ECWithChild::Serialize(ar);
    SerializeSpareByte(ar);
    m_oldTypePending = ar.IsLoading() && ActiveArchiveVersion() < ArchiveVersionTurnAccidentals;
}

void ECTurn::PostSerialize(CArchive &ar)
{
    ECWithChild::PostSerialize(ar);
    // The load's walk can meet a turn once per path to it: convert once.
    if (!m_oldTypePending)
        return;
    m_oldTypePending = false;
    static const BYTE kOldTypes[][2] = {{0, 0}, {2, 0}, {0, 2}, {1, 0}, {0, 1}};
    const BYTE old = GetSpareByte();
    if (old < sizeof(kOldTypes) / sizeof(kOldTypes[0]))
        SetAccidentals(kOldTypes[old][0], kOldTypes[old][1]);
    else
        SetAccidentals(0, 0);
}
