#include <scoremodel/events/notes/ECNote.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECNote, ECWithTimeChild, VERSIONABLE_SCHEMA | 2)

ECNote::ECNote()
{
    m_time = MCTime(0.0f);
}

ECNote::~ECNote() = default;

ECNote &ECNote::operator=(const ECNote &other)
{
    if (this != &other)
        ECWithTimeChild::operator=(other);
    return *this;
}

int ECNote::operator==(const ECNote &other) const
{
    return ECWithTimeChild::operator==(other) && m_duration == other.m_duration;
}

CObject *ECNote::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECNote)))
        *this = *static_cast<ECNote *>(src);
    return this;
}

int ECNote::GetEventId() const
{
    return EVENT_ID_NOTE;
}

int ECNote::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_MEASURE);
    types.Add(EVENT_ID_CHORD);
    types.Add(EVENT_ID_BEAM);
    types.Add(EVENT_ID_TUPLET);
    return 1;
}

void ECNote::SetDuration(MCTime *duration)
{
    if (duration)
        m_duration = *duration;
}

void ECNote::Serialize(CArchive &ar)
{
    ECWithTimeChild::Serialize(ar);
    m_duration.Serialize(ar, ar.IsStoring() ? -1 : ActiveArchiveVersion());
}
