// FCMidi: a typed field holding one short MIDI message, and the tests that
// classify it by its status byte.
//
//   FCMidi m;
//   m.SetValue(0x003F40B0ul);       // controller 64 (sustain) at 63 on channel 1
//   m.IsPedalUp();                  // 1
//
// The classification is virtual so that FCMidiSysEx can answer for a system
// exclusive message whatever its status byte holds. Here a status of 0xF0 is
// left out of every system test: system exclusive belongs to FCMidiSysEx.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/FCBase.h>

// A short MIDI message: status, data byte 1 and data byte 2 in the low three
// bytes of one word, the status lowest.
union MIDIWORD
{
    struct
    {
        BYTE status;
        BYTE data1;
        BYTE data2;
    } bytes;
    unsigned long value;
};

class SCOREMODEL_API FCMidi : public FCBase
{
public:
    // All three bytes 0.
    FCMidi();
    explicit FCMidi(unsigned long value);
    FCMidi(const FCMidi &other) = default;
    // Copies the message word and the two flags. Between two FCMidiSysEx
    // objects it is the full, deep assignment of FCMidiSysEx, whichever
    // static type the caller holds, so the bytes and their length always
    // travel together.
    FCMidi &operator=(const FCMidi &other);
    ~FCMidi() override;

    // The empty message, all three bytes 0; made on first use.
    static const FCMidi &MidiNull();

    // ---- Classification (results 0 or 1) ----

    virtual BYTE GetStatusByte() const;
    // The status masked with 0xF0: the kind of a channel message.
    virtual BYTE GetStatusMSB() const;
    // The status byte is not 0.
    virtual int HasData() const;
    // Note on or note off (0x80 or 0x90).
    virtual int IsNote() const;
    // 0x90 with a velocity other than 0.
    virtual int IsNoteOn() const;
    // 0x80, or 0x90 with velocity 0.
    virtual int IsNoteOff() const;
    virtual int IsPolyPressureMsg() const;  // 0xA0
    virtual int IsControllerMsg() const;    // 0xB0
    virtual int IsProgramMsg() const;       // 0xC0
    virtual int IsChanPressureMsg() const;  // 0xD0
    virtual int IsPitchBendMsg() const;     // 0xE0
    // Controller 7.
    virtual int IsVolumeMsg() const;
    // Controller 64 at 64 or more.
    virtual int IsPedalDown() const;
    // Controller 64 below 64.
    virtual int IsPedalUp() const;
    // A controller message for controller `controller`.
    virtual int IsControllerType(unsigned int controller) const;
    // Status 0x80..0xEF.
    virtual int IsChannelMsg() const;
    // A controller message for controller 0x78 or above (all sound off,
    // reset, local control, the mode messages).
    virtual int IsChannelModeMsg() const;
    // A channel message that is not a channel mode message.
    virtual int IsChannelVoiceMsg() const;
    // Status 0xF1..0xFF (0xF0 is not one here).
    virtual int IsSysMsg() const;
    // Status 0xF1..0xF7.
    virtual int IsSysCommonMsg() const;
    // Status 0xF8..0xFF.
    virtual int IsSysRealtimeMsg() const;
    // Never, in this class.
    virtual int IsSysExMsg() const;

    // ---- Bytes ----

    // The status masked with 0x0F: the channel of a channel message.
    BYTE GetStatusLSB() const { return static_cast<BYTE>(StatusOf(m_value) & 0x0F); }
    void SetStatusByte(BYTE status) { SetByte(0, status); }
    // Replaces the high nibble of the status, keeping the low one.
    void SetStatusMSB(BYTE msb) { SetByte(0, static_cast<BYTE>((msb & 0xF0) | (StatusOf(m_value) & 0x0F))); }
    // Replaces the low nibble of the status, keeping the high one.
    void SetStatusLSB(BYTE lsb) { SetByte(0, static_cast<BYTE>((StatusOf(m_value) & 0xF0) | (lsb & 0x0F))); }
    BYTE GetDataByte1() const { return static_cast<BYTE>((m_value.value >> 8) & 0xFF); }
    void SetDataByte1(BYTE data) { SetByte(1, data); }
    BYTE GetDataByte2() const { return static_cast<BYTE>((m_value.value >> 16) & 0xFF); }
    void SetDataByte2(BYTE data) { SetByte(2, data); }

    MIDIWORD GetValue() const { return m_value; }
    void SetValue(MIDIWORD value) { m_value = value; }
    void SetValue(unsigned long value) { m_value.value = value; }

protected:
    static BYTE StatusOf(const MIDIWORD &w) { return static_cast<BYTE>(w.value & 0xFF); }
    void SetByte(int index, BYTE b)
    {
        const unsigned long shift = 8ul * static_cast<unsigned long>(index);
        m_value.value = (m_value.value & ~(0xFFul << shift)) | (static_cast<unsigned long>(b) << shift);
    }

    MIDIWORD m_value;
};
