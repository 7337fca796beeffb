#include <scoremodel/core/FCMidi.h>
#include <scoremodel/core/FCMidiSysEx.h>

FCMidi::FCMidi()
{
    m_value.value = 0;
}

FCMidi::FCMidi(unsigned long value)
{
    m_value.value = value;
}

FCMidi::~FCMidi() = default;

FCMidi &FCMidi::operator=(const FCMidi &other)
{
    if (this == &other)
        return *this;
    // FCMidiSysEx is the one member whose state goes beyond the word; handing
    // it only the word would leave its length and its bytes disagreeing.
    if (auto *sysEx = dynamic_cast<FCMidiSysEx *>(this))
        if (auto *source = dynamic_cast<const FCMidiSysEx *>(&other))
            return *sysEx = *source;
    FCBase::operator=(other);
    m_value = other.m_value;
    return *this;
}

const FCMidi &FCMidi::MidiNull()
{
    static const FCMidi s_null;
    return s_null;
}

BYTE FCMidi::GetStatusByte() const
{
    return StatusOf(m_value);
}

BYTE FCMidi::GetStatusMSB() const
{
    return static_cast<BYTE>(GetStatusByte() & 0xF0);
}

int FCMidi::HasData() const
{
    return GetStatusByte() != 0;
}

int FCMidi::IsNote() const
{
    const BYTE msb = GetStatusMSB();
    return msb == 0x80 || msb == 0x90;
}

int FCMidi::IsNoteOn() const
{
    return GetStatusMSB() == 0x90 && GetDataByte2() != 0;
}

int FCMidi::IsNoteOff() const
{
    const BYTE msb = GetStatusMSB();
    // A note on at velocity 0 is the running-status way of saying note off.
    return msb == 0x80 || (msb == 0x90 && GetDataByte2() == 0);
}

int FCMidi::IsPolyPressureMsg() const
{
    return GetStatusMSB() == 0xA0;
}

int FCMidi::IsControllerMsg() const
{
    return GetStatusMSB() == 0xB0;
}

int FCMidi::IsProgramMsg() const
{
    return GetStatusMSB() == 0xC0;
}

int FCMidi::IsChanPressureMsg() const
{
    return GetStatusMSB() == 0xD0;
}

int FCMidi::IsPitchBendMsg() const
{
    return GetStatusMSB() == 0xE0;
}

int FCMidi::IsVolumeMsg() const
{
    return IsControllerType(7);
}

int FCMidi::IsPedalDown() const
{
    return IsControllerType(0x40) && GetDataByte2() >= 0x40;
}

int FCMidi::IsPedalUp() const
{
    return IsControllerType(0x40) && GetDataByte2() < 0x40;
}

int FCMidi::IsControllerType(unsigned int controller) const
{
    return GetStatusMSB() == 0xB0 && GetDataByte1() == controller;
}

int FCMidi::IsChannelMsg() const
{
    const BYTE status = GetStatusByte();
    return status >= 0x80 && status <= 0xEF;
}

int FCMidi::IsChannelModeMsg() const
{
    return GetStatusMSB() == 0xB0 && GetDataByte1() >= 0x78;
}

int FCMidi::IsChannelVoiceMsg() const
{
    return IsChannelMsg() && !IsChannelModeMsg();
}

int FCMidi::IsSysMsg() const
{
    return GetStatusByte() >= 0xF1;
}

int FCMidi::IsSysCommonMsg() const
{
    const BYTE status = GetStatusByte();
    return status >= 0xF1 && status <= 0xF7;
}

int FCMidi::IsSysRealtimeMsg() const
{
    return GetStatusByte() >= 0xF8;
}

int FCMidi::IsSysExMsg() const
{
    return 0;
}
