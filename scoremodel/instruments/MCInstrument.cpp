#include <scoremodel/instruments/MCInstrument.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/platform/CArchive.h>
#include <scoremodel/platform/Exceptions.h>

IMPLEMENT_SERIAL(MCInstrument, DCBase, VERSIONABLE_SCHEMA | 1)

const int MCInstrument::FretsDefault[7] = {64, 59, 55, 50, 45, 40, 35};

MCInstrument::MCInstrument() = default;

MCInstrument::MCInstrument(CString name, CString description, int strings, int frets, int distance,
                           CArray<int, int> &tunes)
    : m_name(name), m_description(description), m_stringsCount(strings), m_fretsCount(frets),
      m_fingerDistance(distance)
{
    m_tunes.Copy(tunes);
}

MCInstrument::MCInstrument(const MCInstrument &other) : DCBase(other)
{
    *this = other;
}

MCInstrument::~MCInstrument() = default;

void MCInstrument::SetTunes(int index, int tune)
{
    if (index < 0 || index >= m_tunes.GetSize())
        throw CInvalidArgException("MCInstrument::SetTunes: no string " + std::to_string(index));
    m_tunes[index] = tune;
    m_initialized = 1;
}

void MCInstrument::SetTunes(CArray<int, int> &tunes)
{
    m_tunes.Copy(tunes); // does nothing for the instrument's own array
    m_initialized = 1;
}

int MCInstrument::Equals(const MCInstrument &other) const
{
    if (m_name != other.m_name || m_stringsCount != other.m_stringsCount || m_fretsCount != other.m_fretsCount ||
        m_fingerDistance != other.m_fingerDistance || m_tunes.GetSize() != other.m_tunes.GetSize())
        return 0;
    for (INT_PTR i = 0; i < m_tunes.GetSize(); ++i)
        if (m_tunes[i] != other.m_tunes[i])
            return 0;
    return 1;
}

MCInstrument &MCInstrument::operator=(const MCInstrument &other)
{
    if (this == &other)
        return *this;
    DCBase::operator=(other);
    m_name = other.m_name;
    m_description = other.m_description;
    m_stringsCount = other.m_stringsCount;
    m_fretsCount = other.m_fretsCount;
    m_fingerDistance = other.m_fingerDistance;
    m_tunes.Copy(other.m_tunes);
    m_initialized = other.m_initialized;
    return *this;
}

void MCInstrument::DoComplementationCopy(const MCInstrument &other)
{
    if (m_name.IsEmpty())
        m_name = other.m_name;
    if (m_description.IsEmpty())
        m_description = other.m_description;
    if (m_stringsCount == -1)
        m_stringsCount = other.m_stringsCount;
    if (m_fretsCount == -1)
        m_fretsCount = other.m_fretsCount;
    if (m_fingerDistance == -1)
        m_fingerDistance = other.m_fingerDistance;
    if (m_tunes.IsEmpty() && !other.m_tunes.IsEmpty())
    {
        m_tunes.Copy(other.m_tunes);
        m_initialized = 1;
    }
}

CObject *MCInstrument::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(MCInstrument)))
        *this = *static_cast<MCInstrument *>(src);
    else
        DCBase::Copy(src);
    return this;
}

void MCInstrument::Serialize(CArchive &ar)
{
    DCBase::Serialize(ar);
    m_tunes.Serialize(ar);
    if (ar.IsStoring())
    {
        ar << m_name << m_description << static_cast<LONG>(m_stringsCount) << static_cast<LONG>(m_fretsCount)
           << static_cast<LONG>(m_fingerDistance) << static_cast<LONG>(m_tunes.GetSize());
        for (int tune : m_tunes)
            ar << static_cast<LONG>(tune);
        ar << static_cast<LONG>(m_initialized);
        return;
    }

    const int version = ActiveArchiveVersion();
    if (version < ArchiveVersionInstrumentFields)
        return;
    LONG strings = 0;
    LONG frets = 0;
    LONG distance = 0;
    ar >> m_name >> m_description >> strings >> frets >> distance;
    m_stringsCount = strings;
    m_fretsCount = frets;
    m_fingerDistance = distance;
    if (version < ArchiveVersionInstrumentTunes)
        return;

    m_tunes.RemoveAll();
    LONG count = 0;
    ar >> count;
    if (count < 0)
        throw CArchiveException(CArchiveException::badIndex, "MCInstrument: negative tune count");
    // One by one, so a corrupt count costs no more memory than the stream
    // really holds before the read runs out.
    for (LONG i = 0; i < count; ++i)
    {
        LONG tune = 0;
        ar >> tune;
        m_tunes.Add(tune);
    }
    LONG initialized = 0;
    ar >> initialized;
    m_initialized = initialized;
}
