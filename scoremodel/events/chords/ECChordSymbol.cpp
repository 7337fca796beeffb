#include <scoremodel/events/chords/ECChordSymbol.h>

IMPLEMENT_SERIAL(ECChordSymbol, ECWithTime, VERSIONABLE_SCHEMA | 2)

ECChordSymbol::~ECChordSymbol() = default;

ECChordSymbol &ECChordSymbol::operator=(const ECChordSymbol &other)
{
    if (this != &other)
    {
        ECWithTime::operator=(other);
        m_duration = other.m_duration;
    }
    return *this;
}

int ECChordSymbol::operator==(const ECChordSymbol &other) const
{
    return ECWithTime::operator==(other) && m_duration == other.m_duration;
}

CObject *ECChordSymbol::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECChordSymbol)))
        *this = *static_cast<ECChordSymbol *>(src);
    return this;
}

int ECChordSymbol::GetEventId() const
{
    return EVENT_ID_CHORD_SYMBOL;
}

int ECChordSymbol::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_MEASURE);
    return 1;
}

void ECChordSymbol::SetDuration(MCTime *duration)
{
    if (duration)
        m_duration = *duration;
}
