// MCVoiceTrack: the voice and track of an event, packed in one 16-bit word.
//
// The word has two readings, chosen by bit 15:
//
//   bit 15 clear (unconverted)   bits 0-3 voice (0..15), bits 4-14 track (0..0x7FF)
//   bit 15 set   (converted)     bits 0-7 device (0..0xFF), bits 8-14 channel (0..0x7F)
//
// Voice 15 and track 0x7FF mean "none"; voice 14 marks structural events.
// Track 0 is the conductor staff, 1..n the staves, 0x7FC the chord staff and
// 0x7FE "all tracks" in measure queries. A word is converted when playback
// has resolved the track to a device and channel.
//
// A plain value: no lock, copy freely.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/Types.h>

class SCOREMODEL_API MCVoiceTrack
{
public:
    // Voice 15, track 0x7FF: raw 0x7FFF.
    MCVoiceTrack() = default;
    // Stores both fields, as SetVoice then SetTrack would.
    MCVoiceTrack(unsigned voice, unsigned track);

    // ---- Unconverted reading ----

    // The voice; 15 while the word is converted.
    int GetVoice() const { return IsConverted() ? 15 : (m_value & 0x000F); }
    // The track; 0x7FF while the word is converted.
    int GetTrack() const { return IsConverted() ? 0x7FF : ((m_value >> 4) & 0x7FF); }
    // Keeps the track bits, stores the low 4 bits of `voice`, clears bit 15.
    void SetVoice(unsigned voice);
    // Keeps the voice bits and stores `track << 4` cut to 16 bits. The track is
    // not masked further: a track of 0x800 or more reaches bit 15 and leaves
    // the word reading as converted. That is how the word always behaved.
    void SetTrack(unsigned track);

    // ---- Converted reading ----

    // The device; 0xFF while the word is not converted.
    int GetDevice() const { return IsConverted() ? (m_value & 0x00FF) : 0xFF; }
    // The channel; 0x7F while the word is not converted.
    int GetChannel() const { return IsConverted() ? ((m_value >> 8) & 0x7F) : 0x7F; }
    // Replaces the low byte with `device` and sets bit 15; the channel bits stay.
    void SetDevice(unsigned device);
    // Replaces bits 8-14 with `channel` and sets bit 15; the device byte stays.
    void SetChannel(unsigned channel);

    int IsConverted() const { return (m_value & 0x8000) != 0; }

    // ---- Raw word ----

    WORD GetValue() const { return m_value; }
    void SetValue(WORD value) { m_value = value; }

    // Compare the raw word.
    int operator==(const MCVoiceTrack &other) const { return m_value == other.m_value; }
    int operator!=(const MCVoiceTrack &other) const { return m_value != other.m_value; }

private:
    WORD m_value = 0x7FFF;
};

static_assert(sizeof(MCVoiceTrack) == 2, "MCVoiceTrack is one archive word");
