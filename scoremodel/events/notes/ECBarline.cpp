#include <scoremodel/events/notes/ECBarline.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECBarline, ECBase, VERSIONABLE_SCHEMA | 2)

ECBarline::~ECBarline() = default;

CObject *ECBarline::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECBarline)))
        *this = *static_cast<ECBarline *>(src);
    return this;
}

int ECBarline::GetEventId() const
{
    return EVENT_ID_BARLINE;
}

int ECBarline::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CONDUCTOR_MEASURE);
    return 1;
}

void ECBarline::Serialize(CArchive &ar)
{
    ECBase::Serialize(ar);
    if (ar.IsStoring() || ActiveArchiveVersion() >= ArchiveVersionPackedMarks)
    {
        SerializeSpareByte(ar);
        return;
    }
    BYTE type = 0, pos = 0;
    ar >> type >> pos;
    SetSpareByte(0);
    SetBarlineType(type);
    SetBarlinePos(pos);
}
