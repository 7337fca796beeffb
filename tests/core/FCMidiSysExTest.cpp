#include <scoremodel/core/FCMidiSysEx.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace
{
std::vector<BYTE> Bytes(const FCMidiSysEx &m)
{
    if (m.GetSysExBuf() == nullptr)
        return {};
    return std::vector<BYTE>(m.GetSysExBuf(), m.GetSysExBuf() + m.GetSysExBufLength());
}

// Which of the six standard tests answer, as six characters:
// GM on, GM off, GS on, XG on, master volume, master balance.
std::string Recognised(const FCMidiSysEx &m)
{
    std::string s;
    for (int r : {m.IsGMSystemOnMsg(), m.IsGMSystemOffMsg(), m.IsGSSystemOnMsg(), m.IsXGSystemOnMsg(),
                  m.IsMasterVolumeMsg(), m.IsMasterBalanceMsg()})
        s += r ? '1' : '0';
    return s;
}

// The standard messages, in the order of Recognised, at device or value 0
// (the master messages match only there).
const std::pair<std::function<void(FCMidiSysEx &)>, std::vector<BYTE>> kTemplates[] = {
    {[](FCMidiSysEx &m) { m.SetGMSystemOn(0x7F); }, {0xF0, 0x7E, 0x7F, 0x09, 0x01, 0xF7}},
    {[](FCMidiSysEx &m) { m.SetGMSystemOff(0x7F); }, {0xF0, 0x7E, 0x7F, 0x09, 0x02, 0xF7}},
    {[](FCMidiSysEx &m) { m.SetGSSystemOn(0x10); }, {0xF0, 0x41, 0x10, 0x42, 0x12, 0x40, 0x00, 0x7F, 0x00, 0x41, 0xF7}},
    {[](FCMidiSysEx &m) { m.SetXGSystemOn(0x10); }, {0xF0, 0x43, 0x10, 0x4C, 0x00, 0x00, 0x7E, 0x00, 0xF7}},
    {[](FCMidiSysEx &m) { m.SetMasterVolume(0); }, {0xF0, 0x7F, 0x7F, 0x04, 0x01, 0x00, 0x00, 0xF7}},
    {[](FCMidiSysEx &m) { m.SetMasterBalance(0); }, {0xF0, 0x7F, 0x7F, 0x04, 0x02, 0x00, 0x00, 0xF7}},
};
} // namespace

TEST(FCMidiSysEx, TemplatesAreWrittenByteForByteAndRecognisedAloneWhateverTheDeviceByte)
{
    for (size_t which = 0; which < std::size(kTemplates); ++which)
    {
        const auto &[set, bytes] = kTemplates[which];
        std::string recognised(6, '0');
        recognised[which] = '1';
        FCMidiSysEx m;
        set(m);
        EXPECT_EQ(Bytes(m), bytes) << which;
        EXPECT_EQ(Recognised(m), recognised) << which;
        EXPECT_TRUE(m.HasData());
        for (size_t i = 0; i < bytes.size(); ++i)
        {
            std::vector<BYTE> changed = bytes;
            changed[i] ^= 0x01;
            m.SetSysExBuf(changed.data(), static_cast<unsigned int>(changed.size()), 1);
            EXPECT_EQ(Recognised(m), i == 2 ? recognised : std::string(6, '0')) << which << " byte " << i;
        }
    }
}

TEST(FCMidiSysEx, DeviceAndValueBytesAreMaskedToSevenBitsAndValuesAreCompared)
{
    FCMidiSysEx m;
    m.SetGMSystemOn(0x90);
    EXPECT_EQ(m.GetSysExBuf()[2], 0x10);
    EXPECT_TRUE(m.IsGMSystemOnMsg());
    const struct
    {
        unsigned long value;
        BYTE low, high;
    } rows[] = {{0x3FFF, 0x7F, 0x7F}, {0x81, 0x01, 0x01}, {0x2000, 0x00, 0x40}, {0x4000, 0x00, 0x00}};
    for (const auto &r : rows)
    {
        for (bool volume : {true, false})
        {
            volume ? m.SetMasterVolume(r.value) : m.SetMasterBalance(r.value);
            EXPECT_EQ(m.GetSysExBuf()[5], r.low) << std::hex << r.value;
            EXPECT_EQ(m.GetSysExBuf()[6], r.high) << std::hex << r.value;
            // The value bytes are compared too: only a value of 0 is recognised.
            EXPECT_EQ(volume ? m.IsMasterVolumeMsg() : m.IsMasterBalanceMsg(), r.low == 0 && r.high == 0);
        }
    }
}

TEST(FCMidiSysEx, TheTemplateDecidesTheLengthCompared)
{
    const std::vector<BYTE> longer = {0xF0, 0x7E, 0x00, 0x09, 0x01, 0xF7, 0x55, 0x66};
    FCMidiSysEx m;
    m.SetSysExBuf(const_cast<BYTE *>(longer.data()), static_cast<unsigned int>(longer.size()), 1);
    EXPECT_TRUE(m.IsGMSystemOnMsg());
    m.SetSysExBuf(const_cast<BYTE *>(longer.data()), 5, 1);
    EXPECT_EQ(Recognised(m), "000000") << "a shorter buffer is never read past its end";
    EXPECT_EQ(Recognised(FCMidiSysEx()), "000000");
    const BYTE headChanged[] = {0x00, 0x00, 0x00, 0x09};
    EXPECT_TRUE(m.SysExCompare(headChanged, 4, 0, 3));
    EXPECT_FALSE(m.SysExCompare(headChanged, 4, 1, 2)) << "the skip ends before skipFrom + skipCount";
    EXPECT_FALSE(m.SysExCompare(nullptr, 4, 0, 0));
}

TEST(FCMidiSysEx, AlwaysClassifiesAsSystemExclusive)
{
    FCMidiSysEx m;
    m.SetValue(0x00407F90ul); // a note on underneath must not show through
    EXPECT_EQ(m.GetStatusByte(), 0xF0);
    EXPECT_EQ(m.GetStatusMSB(), 0xF0);
    EXPECT_EQ(m.IsSysMsg(), 1);
    EXPECT_EQ(m.IsSysExMsg(), 1);
    const FCMidi &asMidi = m;
    for (int r : {asMidi.IsNote(), asMidi.IsNoteOn(), asMidi.IsControllerMsg(), asMidi.IsPedalUp(),
                  asMidi.IsControllerType(0x7F), asMidi.IsChannelMsg(), asMidi.IsChannelVoiceMsg(),
                  asMidi.IsSysCommonMsg(), asMidi.IsSysRealtimeMsg()})
        EXPECT_EQ(r, 0);
}

TEST(FCMidiSysEx, HasDataFollowsTheLengthInTheFlagWord)
{
    FCMidiSysEx m;
    m.SetDirty();
    m.SetOverride();
    EXPECT_FALSE(m.HasData()) << "flags alone are not data";
    m.SetGMSystemOn(0);
    EXPECT_TRUE(m.IsDirty() && m.IsOverride()) << "setting a buffer keeps the flags";
    m.SetSysExBuf(nullptr, 5, 1);
    EXPECT_EQ(m.GetSysExBuf(), nullptr);
    EXPECT_TRUE(m.HasData()) << "an emptied buffer leaves the flag word as it was";
    EXPECT_EQ(Recognised(m), "000000");
    EXPECT_EQ(m.ConvertToString(), CString());
    EXPECT_EQ(FCMidiSysEx(m).GetSysExBuf(), nullptr);

    BYTE one = 0xF0;
    FCMidiSysEx fresh;
    fresh.SetSysExBuf(&one, 0, 1);
    EXPECT_FALSE(fresh.HasData());
}

TEST(FCMidiSysEx, CopiesNeverShareTheBufferAndAdoptedBuffersAreFreedOnce)
{
    FCMidiSysEx a;
    a.SetGSSystemOn(0x10);
    FCMidiSysEx b(a), c;
    c.SetXGSystemOn(1);
    c = a;
    c = c;
    for (FCMidiSysEx *copy : {&b, &c})
    {
        ASSERT_NE(copy->GetSysExBuf(), a.GetSysExBuf());
        EXPECT_EQ(Bytes(*copy), Bytes(a));
    }
    c = FCMidiSysEx();
    EXPECT_EQ(c.GetSysExBuf(), nullptr);
    FCMidi *asBase = new FCMidiSysEx(a);
    delete asBase; // frees the buffer through the virtual destructor

    FCMidiSysEx m;
    BYTE *owned = new BYTE[3]{0xF0, 0x01, 0xF7};
    m.SetSysExBuf(owned, 3, 0);
    EXPECT_EQ(m.GetSysExBuf(), owned) << "without copy the caller's buffer is adopted";
    m.SetSysExBuf(m.GetSysExBuf(), 2, 1);
    EXPECT_EQ(Bytes(m), (std::vector<BYTE>{0xF0, 0x01}));
    m.SetSysExBuf(m.GetSysExBuf(), 50, 0);
    EXPECT_EQ(m.GetSysExBufLength(), 2u) << "a buffer handed back cannot grow";

    // A tail of its own bytes, even when told to adopt it, is copied before
    // the old buffer goes, and cut to what follows.
    FCMidiSysEx tail;
    tail.SetGMSystemOn(0x10);
    tail.SetSysExBuf(tail.GetSysExBuf() + 3, 50, 0);
    EXPECT_EQ(Bytes(tail), (std::vector<BYTE>{0x09, 0x01, 0xF7}));
}

TEST(FCMidiSysEx, AssignmentThroughABaseReferenceKeepsTheLengthWithItsBytes)
{
    const std::vector<BYTE> gmOn = {0xF0, 0x7E, 0x00, 0x09, 0x01, 0xF7};
    const std::vector<BYTE> gsOn = {0xF0, 0x41, 0x00, 0x42, 0x12, 0x40, 0x00, 0x7F, 0x00, 0x41, 0xF7};
    FCMidiSysEx longMessage;
    longMessage.SetGSSystemOn(0);
    longMessage.SetDirty();
    FCMidi noteOn(0x00407F90ul);
    noteOn.SetOverride();

    // Each row assigns to a short GM message through a reference of another
    // static type; the length must always describe the bytes held.
    const struct
    {
        const char *what;
        std::function<void(FCMidiSysEx &)> assign;
        std::vector<BYTE> bytes;
        bool dirty, override;
    } rows[] = {
        {"FCMidi& from a longer message", [&](FCMidiSysEx &m) { static_cast<FCMidi &>(m) = longMessage; }, gsOn,
         true, false},
        {"FCMidi& from a plain message", [&](FCMidiSysEx &m) { static_cast<FCMidi &>(m) = noteOn; }, gmOn, false,
         true},
        {"FCBase& from a longer message", [&](FCMidiSysEx &m) { static_cast<FCBase &>(m) = longMessage; }, gmOn,
         true, false},
    };
    for (const auto &row : rows)
    {
        SCOPED_TRACE(row.what);
        FCMidiSysEx m;
        m.SetGMSystemOn(0);
        row.assign(m);
        EXPECT_EQ(m.GetSysExBufLength(), row.bytes.size());
        EXPECT_EQ(Bytes(m), row.bytes);
        EXPECT_EQ(m.IsDirty(), row.dirty ? 1 : 0);
        EXPECT_EQ(m.IsOverride(), row.override ? 1 : 0);
    }
    EXPECT_NE(longMessage.GetSysExBuf(), nullptr) << "the source keeps its own bytes";

    // A plain message given a system exclusive one takes the word and flags
    // and no length: a plain copy of it then copies back nothing stray.
    FCMidi plain;
    plain = longMessage;
    FCMidiSysEx back;
    static_cast<FCMidi &>(back) = plain;
    EXPECT_FALSE(back.HasData());
    EXPECT_EQ(back.GetSysExBufLength(), 0u);
}

TEST(FCMidiSysEx, TextRoundTripAndTheFormsOfTextAcceptedOrRefused)
{
    FCMidiSysEx m, back;
    m.SetGMSystemOn(0x10);
    EXPECT_EQ(m.ConvertToString(), CString(L"f0 7e 10 09 01 f7 "));
    ASSERT_EQ(back.ConvertFromString(m.ConvertToString()), 1);
    EXPECT_EQ(Bytes(back), Bytes(m));

    // Refused text (no bytes) fails and leaves the message as it was.
    const std::pair<const wchar_t *, std::vector<BYTE>> rows[] = {
        {L"F0,43,10 4C", {0xF0, 0x43, 0x10, 0x4C}}, {L"  f0 ,, 7\t0x7f\r\n", {0xF0, 0x07, 0x7F}}, {L"0XaB", {0xAB}},
        {L"", {}}, {L" , ,", {}}, {L"zz", {}}, {L"f0 1g", {}}, {L"100", {}}, {L"f0 -1", {}}, {L"0x", {}},
        {L"f0;7e", {}}, {L"f0 7e 0x100", {}}};
    for (const auto &[text, bytes] : rows)
    {
        SCOPED_TRACE(CStringA(text).GetString());
        FCMidiSysEx p;
        p.SetGMSystemOff(3);
        const std::vector<BYTE> before = Bytes(p);
        EXPECT_EQ(p.ConvertFromString(CString(text)), bytes.empty() ? 0 : 1);
        EXPECT_EQ(Bytes(p), bytes.empty() ? before : bytes);
    }
}
