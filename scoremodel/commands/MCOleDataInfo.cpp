#include <scoremodel/commands/MCOleDataInfo.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/platform/CArchive.h>
#include <scoremodel/platform/Exceptions.h>

#include <string>

const wchar_t *const MCOleDataInfo::kInfoFormat = L"Sonarift Music Info";
const wchar_t *const MCOleDataInfo::kDataFormat = L"Sonarift Music Data";

namespace
{
constexpr int kNoTrack = 0x7FF;
} // namespace

MCOleDataInfo::MCOleDataInfo()
    : m_nVersion(ArchiveVersionCurrent), m_start(MCTime::TimeNull()), m_end(MCTime::TimeNull())
{
}

void MCOleDataInfo::Add(ECBase *event)
{
    if (!event)
        return;
    ++m_nCount;
    if (MCTime *time = event->GetTime())
    {
        if (*time != MCTime::TimeNull())
        {
            if (m_start == MCTime::TimeNull() || *time < m_start)
                m_start = *time;
            if (m_end == MCTime::TimeNull() || *time > m_end)
                m_end = *time;
        }
    }
    if (event->GetVoiceTrack())
    {
        const int track = event->GetTrack();
        if (track != kNoTrack)
        {
            if (m_nFirstTrack == kNoTrack || track < m_nFirstTrack)
                m_nFirstTrack = track;
            if (m_nLastTrack == kNoTrack || track > m_nLastTrack)
                m_nLastTrack = track;
        }
    }
}

void MCOleDataInfo::Serialize(CArchive &ar)
{
    if (ar.IsStoring())
    {
        ar << static_cast<WORD>(m_nVersion) << static_cast<LONG>(m_nCount);
        m_start.Serialize(ar, -1);
        m_end.Serialize(ar, -1);
        ar << static_cast<WORD>(m_nFirstTrack) << static_cast<WORD>(m_nLastTrack);
        return;
    }
    WORD version = 0, first = 0, last = 0;
    LONG count = 0;
    ar >> version >> count;
    if (version > ArchiveVersionCurrent)
        throw CArchiveException(CArchiveException::badSchema,
                                "clipboard data of version " + std::to_string(version));
    if (count < 0)
        throw CArchiveException(CArchiveException::badIndex, "clipboard data of " + std::to_string(count) + " events");
    MCTime start, end;
    start.Serialize(ar, version);
    end.Serialize(ar, version);
    ar >> first >> last;
    m_nVersion = version;
    m_nCount = count;
    m_start = start;
    m_end = end;
    m_nFirstTrack = first & kNoTrack;
    m_nLastTrack = last & kNoTrack;
}

bool MCOleDataInfo::operator==(const MCOleDataInfo &other) const
{
    return m_nVersion == other.m_nVersion && m_nCount == other.m_nCount && m_start == other.m_start &&
           m_end == other.m_end && m_nFirstTrack == other.m_nFirstTrack && m_nLastTrack == other.m_nLastTrack;
}
