// FCMidiSysEx: a typed field holding one system exclusive message, and the
// standard system messages it can build and recognise.
//
//   FCMidiSysEx reset;
//   reset.SetGMSystemOn(0x10);      // F0 7E 10 09 01 F7 for device 0x10
//   reset.IsGMSystemOnMsg();        // 1, whatever the device
//   CString text = reset.ConvertToString();   // "f0 7e 10 09 01 f7 "
//
// Ownership: the object owns its buffer (allocated with new[]) and frees it
// when it is replaced or destroyed. Copies are deep; no two objects ever share
// a buffer.
//
// The length lives in the flag word above the four flag bits, so HasData is
// true when that word is above 15. Setting an empty buffer drops the buffer
// but leaves the word, and so the length and HasData, as they were; every
// reader of the bytes therefore checks the buffer, not the length.
//
// As a MIDI message it always reads as system exclusive: status 0xF0, IsSysMsg
// and IsSysExMsg 1, every other test of FCMidi 0.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/FCMidi.h>
#include <scoremodel/platform/CString.h>

class SCOREMODEL_API FCMidiSysEx : public FCMidi
{
public:
    FCMidiSysEx();
    FCMidiSysEx(const FCMidiSysEx &other);
    FCMidiSysEx &operator=(const FCMidiSysEx &other);
    ~FCMidiSysEx() override;

    // ---- Classification ----

    BYTE GetStatusByte() const override;  // 0xF0
    BYTE GetStatusMSB() const override;   // 0xF0
    // The flag word is above 15, i.e. a length has been set.
    int HasData() const override;
    int IsNote() const override;
    int IsNoteOn() const override;
    int IsNoteOff() const override;
    int IsPolyPressureMsg() const override;
    int IsControllerMsg() const override;
    int IsProgramMsg() const override;
    int IsChanPressureMsg() const override;
    int IsPitchBendMsg() const override;
    int IsVolumeMsg() const override;
    int IsPedalDown() const override;
    int IsPedalUp() const override;
    int IsControllerType(unsigned int controller) const override;
    int IsChannelMsg() const override;
    int IsChannelModeMsg() const override;
    int IsChannelVoiceMsg() const override;
    int IsSysMsg() const override;        // 1
    int IsSysCommonMsg() const override;
    int IsSysRealtimeMsg() const override;
    int IsSysExMsg() const override;      // 1

    // The standard messages, recognised by their template with the device
    // byte (index 2) ignored. Master volume and balance compare their value
    // bytes too, so they match only at value 0.
    virtual int IsGMSystemOnMsg() const;
    virtual int IsGMSystemOffMsg() const;
    virtual int IsGSSystemOnMsg() const;
    virtual int IsXGSystemOnMsg() const;
    virtual int IsMasterVolumeMsg() const;
    virtual int IsMasterBalanceMsg() const;

    // ---- The buffer ----

    // The length last set (see the header comment for an emptied buffer).
    unsigned int GetSysExBufLength() const { return static_cast<unsigned int>(m_flags >> 4); }
    // The bytes, or null when there are none.
    BYTE *GetSysExBuf() const { return m_buffer; }
    // Frees the buffer held, then takes `length` bytes from `buffer`: copied
    // when `copy` is non-zero, otherwise adopted (it must come from new[] and
    // now belongs to this object). A null buffer or a length of 0 leaves no
    // buffer and the length as it was. Passing this object's own buffer is
    // safe: the bytes stay and the length shrinks to `length` (never grows).
    // A pointer into the middle of it is copied whatever `copy` says, and
    // `length` is cut to the bytes that follow it.
    void SetSysExBuf(BYTE *buffer, unsigned int length, int copy);

    // Compares the bytes with `pattern` over the pattern's length, ignoring
    // indices skipFrom .. skipFrom + skipCount - 1. Bytes beyond the pattern
    // are not looked at; a buffer shorter than the pattern, or none, does not
    // match.
    int SysExCompare(const BYTE *pattern, unsigned int length, unsigned int skipFrom, unsigned int skipCount) const;

    // ---- The standard messages ----

    // F0 7E dd 09 01 F7, dd the device masked with 0x7F.
    void SetGMSystemOn(BYTE device);
    // F0 7E dd 09 02 F7.
    void SetGMSystemOff(BYTE device);
    // F0 41 dd 42 12 40 00 7F 00 41 F7.
    void SetGSSystemOn(BYTE device);
    // F0 43 dd 4C 00 00 7E 00 F7.
    void SetXGSystemOn(BYTE device);
    // F0 7F 7F 04 01 ll mm F7: ll the low 7 bits of value, mm the next 7.
    void SetMasterVolume(unsigned long value);
    // F0 7F 7F 04 02 ll mm F7.
    void SetMasterBalance(unsigned long value);

    // ---- Text form ----

    // Each byte as two lower-case hex digits and a blank ("f0 7e ... f7 "), so
    // the text ends in a blank. Empty when there is no buffer.
    CString ConvertToString() const;
    // Reads hex bytes divided by blanks or commas ("f0 7e,7f 09"; a "0x" prefix
    // is allowed) and sets them as the buffer. Returns 1 on success. Text with
    // no byte in it, a token that is not hex, or a value above 0xFF returns 0
    // and changes nothing.
    int ConvertFromString(const CString &text);

private:
    void SetTemplate(const BYTE *pattern, unsigned int length);
    // The bytes every reader may touch: the length set, but never more than
    // the buffer holds (a buffer handed back shorter keeps its allocation).
    unsigned int HeldLength() const;

    BYTE *m_buffer;
    unsigned int m_size; // bytes allocated in m_buffer
};
