// MCOleDataIn: a selection read back from its two clipboard buffers (see
// MCOleDataOut): new events, ready for a paste command to add.
//
//     MCOleDataIn in;
//     if (in.SetBuffer(MCOleDataInfo::kInfoFormat, info.data(), info.size()) &&
//         in.SetBuffer(MCOleDataInfo::kDataFormat, data.data(), data.size()) && in.Read())
//         for (int i = 0; i < in.GetCount(); ++i) ... in.GetEvent(i) ...
//
// Read refuses, with 0 and no events, whatever is not what MCOleDataOut
// wrote: a corrupt or cut buffer, a version newer than this library's, a
// data buffer whose count differs from the info's, an object that is not an
// event. The error text says what was wrong. Nothing read is leaked.
//
// The object holds a reference on each event it read until it is destroyed
// or reads again; a paste takes its own references.
//
// Threads: on the document's thread.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/MCOleDataInfo.h>
#include <scoremodel/platform/Types.h>

#include <string>
#include <vector>

class ECBase;

class SCOREMODEL_API MCOleDataIn
{
public:
    MCOleDataIn() = default;
    ~MCOleDataIn();
    MCOleDataIn(const MCOleDataIn &) = delete;
    MCOleDataIn &operator=(const MCOleDataIn &) = delete;

    // Takes a copy of the buffer of a format name; 0 for an unknown name.
    int SetBuffer(const wchar_t *format, const BYTE *bytes, size_t size);

    // Reads the info alone: 1 when the info buffer holds a valid record.
    int ReadInfo();
    // Reads the info and the events. 1 on success.
    int Read();

    const MCOleDataInfo &GetInfo() const { return m_info; }
    int GetCount() const { return static_cast<int>(m_events.size()); }
    // The event at index; null outside 0..GetCount()-1.
    ECBase *GetEvent(int index) const;
    // Why the last Read or ReadInfo failed; empty after a success.
    const std::string &GetError() const { return m_error; }

private:
    void ReleaseEvents();

    std::vector<BYTE> m_infoBytes;
    std::vector<BYTE> m_dataBytes;
    MCOleDataInfo m_info;
    std::vector<ECBase *> m_events;
    std::string m_error;
};
