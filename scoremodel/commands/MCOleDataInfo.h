// MCOleDataInfo: what a clipboard selection holds, readable without reading
// the events themselves, so that a host can grey out "Paste" or place the
// paste before it takes the data.
//
// The clipboard carries a selection in two formats, both plain byte buffers
// named by their format names: "Sonarift Music Info" holds this record and
// "Sonarift Music Data" the events (MCOleDataOut writes both, MCOleDataIn
// reads them).
//
// Archive record: the archive version of the data (2 bytes), the number of
// events (4 bytes), the earliest and the latest time of the events (MCTime
// records; TimeNull when no event has a time), the lowest and the highest
// track (2 bytes each; 0x7FF both when no event has a track).
//
// A plain value: copy freely, no lock.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/MCTime.h>
#include <scoremodel/platform/Types.h>

class CArchive;
class ECBase;

class SCOREMODEL_API MCOleDataInfo
{
public:
    // The format names of the two buffers.
    static const wchar_t *const kInfoFormat; // L"Sonarift Music Info"
    static const wchar_t *const kDataFormat; // L"Sonarift Music Data"

    MCOleDataInfo();

    // Counts the event in: its time and track widen the ranges.
    void Add(ECBase *event);

    int GetVersion() const { return m_nVersion; }
    int GetCount() const { return m_nCount; }
    const MCTime &GetStart() const { return m_start; }
    const MCTime &GetEnd() const { return m_end; }
    int GetFirstTrack() const { return m_nFirstTrack; }
    int GetLastTrack() const { return m_nLastTrack; }

    // Loading refuses a version newer than this library writes and a
    // negative count (CArchiveException badSchema, badIndex).
    void Serialize(CArchive &ar);

    bool operator==(const MCOleDataInfo &other) const;
    bool operator!=(const MCOleDataInfo &other) const { return !(*this == other); }

private:
    int m_nVersion;
    int m_nCount = 0;
    MCTime m_start;
    MCTime m_end;
    int m_nFirstTrack = 0x7FF;
    int m_nLastTrack = 0x7FF;
};
