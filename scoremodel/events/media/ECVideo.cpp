#include <scoremodel/events/media/ECVideo.h>

IMPLEMENT_SERIAL(ECVideo, ECBase, VERSIONABLE_SCHEMA | 2)

ECVideo::~ECVideo() = default;

CObject *ECVideo::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECVideo)))
        *this = *static_cast<ECVideo *>(src);
    return this;
}

int ECVideo::GetEventId() const
{
    return EVENT_ID_VIDEO;
}

int ECVideo::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CONDUCTOR_STAFF);
    return 1;
}
