// MCOleDataOut: a selection of events put into clipboard form: two byte
// buffers, the info (MCOleDataInfo) and the events written through the
// archive, each named by its format name.
//
//     MCOleDataOut out;
//     for (each selected event) out.AddEvent(pEvent);
//     out.Render();
//     host clipboard: put out.GetBuffer(MCOleDataInfo::kInfoFormat) under
//     "Sonarift Music Info", out.GetBuffer(MCOleDataInfo::kDataFormat)
//     under "Sonarift Music Data".
//
// The events are written as a document writes them (each with its
// children, in the newest layout), so the paste gets copies, never the
// originals. The object takes a reference on each event until it is
// destroyed or Clear is called.
//
// Data buffer: the event count (archive count), then each event (WriteObject).
//
// Threads: on the document's thread, as any read of the tree.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/MCOleDataInfo.h>
#include <scoremodel/platform/Types.h>

#include <vector>

class ECBase;

class SCOREMODEL_API MCOleDataOut
{
public:
    MCOleDataOut() = default;
    ~MCOleDataOut();
    MCOleDataOut(const MCOleDataOut &) = delete;
    MCOleDataOut &operator=(const MCOleDataOut &) = delete;

    // Adds an event to the selection (null and an event added before are
    // ignored); the buffers are out of date until the next Render.
    void AddEvent(ECBase *event);
    int GetCount() const { return static_cast<int>(m_events.size()); }
    // Drops the events and the buffers.
    void Clear();

    // Writes both buffers. 1 on success; 0, with empty buffers, when an
    // event cannot be written (a class that is not serializable).
    int Render();

    const MCOleDataInfo &GetInfo() const { return m_info; }
    // The buffer of a format name; empty for another name or before Render.
    const std::vector<BYTE> &GetBuffer(const wchar_t *format) const;

private:
    std::vector<ECBase *> m_events;
    MCOleDataInfo m_info;
    std::vector<BYTE> m_infoBytes;
    std::vector<BYTE> m_dataBytes;
};
