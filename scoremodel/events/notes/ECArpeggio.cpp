#include <scoremodel/events/notes/ECArpeggio.h>

#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECArpeggio, ECBase, VERSIONABLE_SCHEMA | 2)

ECArpeggio::~ECArpeggio() = default;

CObject *ECArpeggio::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECArpeggio)))
        *this = *static_cast<ECArpeggio *>(src);
    return this;
}

int ECArpeggio::GetEventId() const
{
    return EVENT_ID_ARPEGGIO;
}

int ECArpeggio::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CHORD);
    return 1;
}

void ECArpeggio::Serialize(CArchive &ar)
{
    ECBase::Serialize(ar);
    SerializeSpareByte(ar);
}
