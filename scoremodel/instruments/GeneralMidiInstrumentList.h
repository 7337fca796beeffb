// GeneralMidiInstrumentList: the 128 program names of the General MIDI
// Level 1 sound set, in program order (program 1, "Acoustic Grand Piano",
// at index 0), for choosing a playback sound beside a tablature instrument.
//
//     CString name = GeneralMidiInstrumentList::GetInstrumentName(24); // "Acoustic Guitar (nylon)"
//
// The table is filled by static initialisation and never changes, so it may
// be read from any thread.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CString.h>

class SCOREMODEL_API GeneralMidiInstrumentList
{
public:
    static constexpr unsigned long kCount = 128;

    // The name of program `index` (0..127); CInvalidArgException above.
    static CString &GetInstrumentName(unsigned long index);

private:
    static CString m_arInstruments[kCount];
};
