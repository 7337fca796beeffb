#include <scoremodel/events/notes/ECRest.h>

IMPLEMENT_SERIAL(ECRest, ECWithTimeChild, VERSIONABLE_SCHEMA | 2)

namespace
{
// Quarter notes by type; type 0 has no length.
constexpr float kRestLengths[] = {0.0f,    8.0f,   4.0f,  6.0f,   7.0f,    2.0f,     3.0f,   3.5f,
                                  1.0f,    1.5f,   1.75f, 0.5f,   0.75f,   0.875f,   0.25f,  0.375f,
                                  0.4375f, 0.125f, 0.1875f, 0.21875f, 0.0625f, 0.09375f, 0.03125f};
constexpr int kLastRestType = 22;
static_assert(sizeof(kRestLengths) / sizeof(kRestLengths[0]) == kLastRestType + 1);
} // namespace

ECRest::~ECRest() = default;

ECRest &ECRest::operator=(const ECRest &other)
{
    if (this != &other)
    {
        ECWithTimeChild::operator=(other);
        SetRestType(other.GetRestType());
        m_afterSplit = other.m_afterSplit;
    }
    return *this;
}

CObject *ECRest::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECRest)))
        *this = *static_cast<ECRest *>(src);
    return this;
}

int ECRest::GetEventId() const
{
    return EVENT_ID_REST;
}

int ECRest::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_MEASURE);
    types.Add(EVENT_ID_BEAM);
    types.Add(EVENT_ID_TUPLET);
    return 1;
}

int ECRest::GetRestType(BYTE baseType, BYTE dots)
{
    if (dots == 0)
        return baseType;
    if (baseType >= 2 && baseType <= 17 && (baseType - 2) % 3 == 0)
        return baseType + (dots == 1 ? 1 : 2);
    if (baseType == 20)
        return 21;
    return baseType;
}

MCTime ECRest::GetRestDuration(BYTE type, BYTE dots)
{
    const int resolved = GetRestType(type, dots);
    if (resolved <= 0 || resolved > kLastRestType)
        return MCTime::TimeNull();
    return MCTime(kRestLengths[resolved]);
}

int ECRest::GetRestTypeByTickDuration(float ticks)
{
    const float quarters = ticks * 4 * (1.0f / 1024);
    for (int type = 1; type <= kLastRestType; ++type)
        if (quarters == kRestLengths[type])
            return type;
    return 0;
}

int ECRest::HasDot()
{
    EventList *children = GetChildren();
    return children && children->FindEvent(EVENT_ID_DOT) != nullptr;
}
