#include <scoremodel/core/FCMidiSysEx.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace
{
const BYTE kGMSystemOn[] = {0xF0, 0x7E, 0x7F, 0x09, 0x01, 0xF7};
const BYTE kGMSystemOff[] = {0xF0, 0x7E, 0x7F, 0x09, 0x02, 0xF7};
const BYTE kGSSystemOn[] = {0xF0, 0x41, 0x10, 0x42, 0x12, 0x40, 0x00, 0x7F, 0x00, 0x41, 0xF7};
const BYTE kXGSystemOn[] = {0xF0, 0x43, 0x10, 0x4C, 0x00, 0x00, 0x7E, 0x00, 0xF7};
const BYTE kMasterVolume[] = {0xF0, 0x7F, 0x7F, 0x04, 0x01, 0x00, 0x00, 0xF7};
const BYTE kMasterBalance[] = {0xF0, 0x7F, 0x7F, 0x04, 0x02, 0x00, 0x00, 0xF7};

// Index of the device byte in every template.
const unsigned int kDeviceIndex = 2;

int HexDigit(wchar_t c)
{
    if (c >= L'0' && c <= L'9')
        return c - L'0';
    if (c >= L'a' && c <= L'f')
        return c - L'a' + 10;
    if (c >= L'A' && c <= L'F')
        return c - L'A' + 10;
    return -1;
}

bool IsSeparator(wchar_t c)
{
    return c == L' ' || c == L'\t' || c == L'\r' || c == L'\n' || c == L',';
}
} // namespace

FCMidiSysEx::FCMidiSysEx() : m_buffer(nullptr), m_size(0)
{
}

FCMidiSysEx::FCMidiSysEx(const FCMidiSysEx &other) : FCMidi(other), m_buffer(nullptr), m_size(0)
{
    if (other.m_buffer != nullptr)
    {
        m_size = other.HeldLength();
        m_buffer = new BYTE[m_size];
        std::memcpy(m_buffer, other.m_buffer, m_size);
    }
}

unsigned int FCMidiSysEx::HeldLength() const
{
    return m_buffer != nullptr ? std::min(GetSysExBufLength(), m_size) : 0;
}

FCMidiSysEx &FCMidiSysEx::operator=(const FCMidiSysEx &other)
{
    if (this == &other)
        return *this;
    BYTE *copy = nullptr;
    const unsigned int length = other.HeldLength();
    if (other.m_buffer != nullptr)
    {
        // Allocate before freeing, so a failed allocation leaves this object whole.
        copy = new BYTE[length];
        std::memcpy(copy, other.m_buffer, length);
    }
    delete[] m_buffer;
    m_buffer = copy;
    m_size = length;
    // The whole flag word, length included: an emptied source keeps reporting
    // its length, and so does the copy. Not through FCMidi::operator=, which
    // hands a pair of FCMidiSysEx back here.
    m_flags = other.m_flags;
    m_value = other.m_value;
    return *this;
}

FCMidiSysEx::~FCMidiSysEx()
{
    delete[] m_buffer;
}

BYTE FCMidiSysEx::GetStatusByte() const
{
    return 0xF0;
}

BYTE FCMidiSysEx::GetStatusMSB() const
{
    return 0xF0;
}

int FCMidiSysEx::HasData() const
{
    return m_flags > FlagMask;
}

int FCMidiSysEx::IsNote() const { return 0; }
int FCMidiSysEx::IsNoteOn() const { return 0; }
int FCMidiSysEx::IsNoteOff() const { return 0; }
int FCMidiSysEx::IsPolyPressureMsg() const { return 0; }
int FCMidiSysEx::IsControllerMsg() const { return 0; }
int FCMidiSysEx::IsProgramMsg() const { return 0; }
int FCMidiSysEx::IsChanPressureMsg() const { return 0; }
int FCMidiSysEx::IsPitchBendMsg() const { return 0; }
int FCMidiSysEx::IsVolumeMsg() const { return 0; }
int FCMidiSysEx::IsPedalDown() const { return 0; }
int FCMidiSysEx::IsPedalUp() const { return 0; }
int FCMidiSysEx::IsControllerType(unsigned int) const { return 0; }
int FCMidiSysEx::IsChannelMsg() const { return 0; }
int FCMidiSysEx::IsChannelModeMsg() const { return 0; }
int FCMidiSysEx::IsChannelVoiceMsg() const { return 0; }
int FCMidiSysEx::IsSysMsg() const { return 1; }
int FCMidiSysEx::IsSysCommonMsg() const { return 0; }
int FCMidiSysEx::IsSysRealtimeMsg() const { return 0; }
int FCMidiSysEx::IsSysExMsg() const { return 1; }

int FCMidiSysEx::IsGMSystemOnMsg() const
{
    return SysExCompare(kGMSystemOn, sizeof kGMSystemOn, kDeviceIndex, 1);
}

int FCMidiSysEx::IsGMSystemOffMsg() const
{
    return SysExCompare(kGMSystemOff, sizeof kGMSystemOff, kDeviceIndex, 1);
}

int FCMidiSysEx::IsGSSystemOnMsg() const
{
    return SysExCompare(kGSSystemOn, sizeof kGSSystemOn, kDeviceIndex, 1);
}

int FCMidiSysEx::IsXGSystemOnMsg() const
{
    return SysExCompare(kXGSystemOn, sizeof kXGSystemOn, kDeviceIndex, 1);
}

// Only the device byte is skipped, so the value bytes must be 0 to match;
// that is the long-standing answer and callers rely on it.
int FCMidiSysEx::IsMasterVolumeMsg() const
{
    return SysExCompare(kMasterVolume, sizeof kMasterVolume, kDeviceIndex, 1);
}

int FCMidiSysEx::IsMasterBalanceMsg() const
{
    return SysExCompare(kMasterBalance, sizeof kMasterBalance, kDeviceIndex, 1);
}

void FCMidiSysEx::SetSysExBuf(BYTE *buffer, unsigned int length, int copy)
{
    if (buffer != nullptr && buffer == m_buffer)
    {
        // Our own bytes handed back: freeing them first would lose them. They
        // cannot grow, so the length is at most what we hold.
        if (length == 0)
        {
            delete[] m_buffer;
            m_buffer = nullptr;
            m_size = 0;
            return;
        }
        if (length > HeldLength())
            length = HeldLength();
        m_flags = (m_flags & FlagMask) | (static_cast<unsigned long>(length) << 4);
        return;
    }
    // Bytes from the middle of our own buffer must be copied before it goes.
    const bool inside = buffer != nullptr && m_buffer != nullptr && buffer > m_buffer && buffer < m_buffer + m_size;
    if (inside)
    {
        length = std::min(length, static_cast<unsigned int>(m_buffer + m_size - buffer));
        copy = 1;
    }
    BYTE *held = nullptr;
    if (buffer != nullptr && length != 0)
    {
        if (copy)
        {
            held = new BYTE[length];
            std::memcpy(held, buffer, length);
        }
        else
            held = buffer;
    }
    delete[] m_buffer;
    m_buffer = held;
    m_size = held != nullptr ? length : 0;
    if (held == nullptr)
        return;
    m_flags = (m_flags & FlagMask) | (static_cast<unsigned long>(length) << 4);
}

int FCMidiSysEx::SysExCompare(const BYTE *pattern, unsigned int length, unsigned int skipFrom,
                              unsigned int skipCount) const
{
    if (pattern == nullptr)
        return 0;
    if (m_buffer == nullptr || HeldLength() < length)
        return 0;
    for (unsigned int i = 0; i < length; ++i)
    {
        if (i >= skipFrom && i - skipFrom < skipCount)
            continue;
        if (m_buffer[i] != pattern[i])
            return 0;
    }
    return 1;
}

void FCMidiSysEx::SetTemplate(const BYTE *pattern, unsigned int length)
{
    SetSysExBuf(const_cast<BYTE *>(pattern), length, 1);
}

void FCMidiSysEx::SetGMSystemOn(BYTE device)
{
    SetTemplate(kGMSystemOn, sizeof kGMSystemOn);
    m_buffer[kDeviceIndex] = device & 0x7F;
}

void FCMidiSysEx::SetGMSystemOff(BYTE device)
{
    SetTemplate(kGMSystemOff, sizeof kGMSystemOff);
    m_buffer[kDeviceIndex] = device & 0x7F;
}

void FCMidiSysEx::SetGSSystemOn(BYTE device)
{
    SetTemplate(kGSSystemOn, sizeof kGSSystemOn);
    m_buffer[kDeviceIndex] = device & 0x7F;
}

void FCMidiSysEx::SetXGSystemOn(BYTE device)
{
    SetTemplate(kXGSystemOn, sizeof kXGSystemOn);
    m_buffer[kDeviceIndex] = device & 0x7F;
}

void FCMidiSysEx::SetMasterVolume(unsigned long value)
{
    SetTemplate(kMasterVolume, sizeof kMasterVolume);
    m_buffer[5] = static_cast<BYTE>(value & 0x7F);
    m_buffer[6] = static_cast<BYTE>((value >> 7) & 0x7F);
}

void FCMidiSysEx::SetMasterBalance(unsigned long value)
{
    SetTemplate(kMasterBalance, sizeof kMasterBalance);
    m_buffer[5] = static_cast<BYTE>(value & 0x7F);
    m_buffer[6] = static_cast<BYTE>((value >> 7) & 0x7F);
}

CString FCMidiSysEx::ConvertToString() const
{
    static const wchar_t kDigits[] = L"0123456789abcdef";
    std::wstring text;
    if (m_buffer != nullptr)
    {
        const unsigned int length = HeldLength();
        text.reserve(static_cast<size_t>(length) * 3);
        for (unsigned int i = 0; i < length; ++i)
        {
            text.push_back(kDigits[m_buffer[i] >> 4]);
            text.push_back(kDigits[m_buffer[i] & 0x0F]);
            text.push_back(L' ');
        }
    }
    return CString(text.c_str(), static_cast<int>(text.size()));
}

int FCMidiSysEx::ConvertFromString(const CString &text)
{
    std::vector<BYTE> bytes;
    const wchar_t *p = text.GetString();
    const wchar_t *end = p + text.GetLength();
    while (p < end)
    {
        if (IsSeparator(*p))
        {
            ++p;
            continue;
        }
        const wchar_t *token = p;
        while (p < end && !IsSeparator(*p))
            ++p;
        const wchar_t *digits = token;
        if (p - digits > 2 && digits[0] == L'0' && (digits[1] == L'x' || digits[1] == L'X'))
            digits += 2;
        if (digits == p)
            return 0;
        unsigned int value = 0;
        for (const wchar_t *d = digits; d < p; ++d)
        {
            const int digit = HexDigit(*d);
            if (digit < 0)
                return 0;
            value = value * 16 + static_cast<unsigned int>(digit);
            if (value > 0xFF)
                return 0;
        }
        bytes.push_back(static_cast<BYTE>(value));
    }
    if (bytes.empty())
        return 0;
    SetSysExBuf(bytes.data(), static_cast<unsigned int>(bytes.size()), 1);
    return 1;
}
