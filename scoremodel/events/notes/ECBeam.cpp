#include <scoremodel/events/notes/ECBeam.h>

IMPLEMENT_SERIAL(ECBeam, ECGroup, VERSIONABLE_SCHEMA | 2)

ECBeam::~ECBeam() = default;

CObject *ECBeam::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECBeam)))
        *this = *static_cast<ECBeam *>(src);
    return this;
}

int ECBeam::GetEventId() const
{
    return EVENT_ID_BEAM;
}

int ECBeam::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_MEASURE);
    return 1;
}

int ECBeam::RemoveChild(ECBase *child, int deep)
{
    return ECGroup::RemoveChild(child, deep) ? 1 : 0;
}
