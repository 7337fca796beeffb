#include <scoremodel/events/notes/ECGraceNote.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECGraceNote, ECNote, VERSIONABLE_SCHEMA | 2)

ECGraceNote::~ECGraceNote() = default;

CObject *ECGraceNote::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECGraceNote)))
        *this = *static_cast<ECGraceNote *>(src);
    return this;
}

int ECGraceNote::GetEventId() const
{
    return EVENT_ID_GRACE_NOTE;
}

int ECGraceNote::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_NOTE);
    return 1;
}

void ECGraceNote::Serialize(CArchive &ar)
{
    ECNote::Serialize(ar);
    if (ar.IsLoading() && ActiveArchiveVersion() < ArchiveVersionPackedMarks)
    {
        MCTime unused;
        unused.Serialize(ar, ActiveArchiveVersion());
    }
}
