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

struct Template
{
    const char *name;
    std::function<void(FCMidiSysEx &)> set;
    std::vector<BYTE> bytes;
    const char *recognised;
};

// The standard messages at device or value 0 (the master messages match only there).
const std::vector<Template> &Templates()
{
    static const std::vector<Template> t = {
        {"GM on", [](FCMidiSysEx &m) { m.SetGMSystemOn(0x7F); }, {0xF0, 0x7E, 0x7F, 0x09, 0x01, 0xF7}, "100000"},
        {"GM off", [](FCMidiSysEx &m) { m.SetGMSystemOff(0x7F); }, {0xF0, 0x7E, 0x7F, 0x09, 0x02, 0xF7}, "010000"},
        {"GS on",
         [](FCMidiSysEx &m) { m.SetGSSystemOn(0x10); },
         {0xF0, 0x41, 0x10, 0x42, 0x12, 0x40, 0x00, 0x7F, 0x00, 0x41, 0xF7},
         "001000"},
        {"XG on",
         [](FCMidiSysEx &m) { m.SetXGSystemOn(0x10); },
         {0xF0, 0x43, 0x10, 0x4C, 0x00, 0x00, 0x7E, 0x00, 0xF7},
         "000100"},
        {"master volume",
         [](FCMidiSysEx &m) { m.SetMasterVolume(0); },
         {0xF0, 0x7F, 0x7F, 0x04, 0x01, 0x00, 0x00, 0xF7},
         "000010"},
        {"master balance",
         [](FCMidiSysEx &m) { m.SetMasterBalance(0); },
         {0xF0, 0x7F, 0x7F, 0x04, 0x02, 0x00, 0x00, 0xF7},
         "000001"},
    };
    return t;
}
} // namespace

TEST(FCMidiSysEx, TemplatesAreWrittenByteForByteAndRecognisedAlone)
{
    for (const Template &t : Templates())
    {
        SCOPED_TRACE(t.name);
        FCMidiSysEx m;
        t.set(m);
        EXPECT_EQ(Bytes(m), t.bytes);
        EXPECT_EQ(m.GetSysExBufLength(), t.bytes.size());
        EXPECT_EQ(Recognised(m), t.recognised);
        EXPECT_TRUE(m.HasData());
    }
}

TEST(FCMidiSysEx, OnlyTheDeviceByteIsIgnoredWhenRecognising)
{
    for (const Template &t : Templates())
    {
        for (size_t i = 0; i < t.bytes.size(); ++i)
        {
            SCOPED_TRACE(std::string(t.name) + " byte " + std::to_string(i));
            std::vector<BYTE> changed = t.bytes;
            changed[i] ^= 0x01;
            FCMidiSysEx m;
            m.SetSysExBuf(changed.data(), static_cast<unsigned int>(changed.size()), 1);
            EXPECT_EQ(Recognised(m), i == 2 ? std::string(t.recognised) : std::string("000000"));
        }
    }
}

TEST(FCMidiSysEx, DeviceAndValueBytesAreMaskedToSevenBits)
{
    FCMidiSysEx m;
    m.SetGMSystemOn(0x90);
    EXPECT_EQ(m.GetSysExBuf()[2], 0x10);
    EXPECT_TRUE(m.IsGMSystemOnMsg());
    m.SetGSSystemOn(0xFF);
    EXPECT_EQ(m.GetSysExBuf()[2], 0x7F);
    EXPECT_TRUE(m.IsGSSystemOnMsg());
    m.SetXGSystemOn(0x05);
    EXPECT_EQ(m.GetSysExBuf()[2], 0x05);
    m.SetGMSystemOff(0x80);
    EXPECT_EQ(m.GetSysExBuf()[2], 0x00);

    struct Row
    {
        unsigned long value;
        BYTE low, high;
        bool recognised; // value bytes are compared too
    } rows[] = {{0x3FFF, 0x7F, 0x7F, false}, {0x81, 0x01, 0x01, false}, {0x2000, 0x00, 0x40, false},
                {0x4000, 0x00, 0x00, true},  {0, 0x00, 0x00, true},       {0x7F, 0x7F, 0x00, false}};
    for (const Row &r : rows)
    {
        m.SetMasterVolume(r.value);
        EXPECT_EQ(m.GetSysExBuf()[5], r.low) << std::hex << r.value;
        EXPECT_EQ(m.GetSysExBuf()[6], r.high) << std::hex << r.value;
        EXPECT_EQ(m.IsMasterVolumeMsg(), r.recognised ? 1 : 0) << std::hex << r.value;
        m.SetMasterBalance(r.value);
        EXPECT_EQ(m.GetSysExBuf()[5], r.low);
        EXPECT_EQ(m.GetSysExBuf()[6], r.high);
        EXPECT_EQ(m.IsMasterBalanceMsg(), r.recognised ? 1 : 0);
    }
}

TEST(FCMidiSysEx, ALongerBufferMatchesByItsHeadAndAShorterOneNever)
{
    std::vector<BYTE> longer = {0xF0, 0x7E, 0x00, 0x09, 0x01, 0xF7, 0x55, 0x66};
    FCMidiSysEx m;
    m.SetSysExBuf(longer.data(), static_cast<unsigned int>(longer.size()), 1);
    EXPECT_TRUE(m.IsGMSystemOnMsg());

    std::vector<BYTE> shorter = {0xF0, 0x7E, 0x00, 0x09, 0x01};
    m.SetSysExBuf(shorter.data(), static_cast<unsigned int>(shorter.size()), 1);
    EXPECT_EQ(Recognised(m), "000000");

    FCMidiSysEx empty;
    EXPECT_EQ(Recognised(empty), "000000");
    const BYTE pattern[] = {0xF0, 0x01, 0x02, 0x03};
    m.SetSysExBuf(const_cast<BYTE *>(pattern), 4, 1);
    EXPECT_TRUE(m.SysExCompare(pattern, 4, 0, 0));
    const BYTE headChanged[] = {0x00, 0x00, 0x02, 0x03};
    EXPECT_TRUE(m.SysExCompare(headChanged, 4, 0, 2));
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
    for (int r : {asMidi.IsNote(), asMidi.IsNoteOn(), asMidi.IsNoteOff(), asMidi.IsPolyPressureMsg(),
                  asMidi.IsControllerMsg(), asMidi.IsProgramMsg(), asMidi.IsChanPressureMsg(), asMidi.IsPitchBendMsg(),
                  asMidi.IsVolumeMsg(), asMidi.IsPedalDown(), asMidi.IsPedalUp(), asMidi.IsControllerType(0x7F),
                  asMidi.IsChannelMsg(), asMidi.IsChannelModeMsg(), asMidi.IsChannelVoiceMsg(),
                  asMidi.IsSysCommonMsg(), asMidi.IsSysRealtimeMsg()})
        EXPECT_EQ(r, 0);
}

TEST(FCMidiSysEx, HasDataFollowsTheLengthInTheFlagWord)
{
    FCMidiSysEx m;
    EXPECT_FALSE(m.HasData());
    m.SetDirty();
    m.SetOverride();
    EXPECT_FALSE(m.HasData()) << "flags alone are not data";
    m.SetGMSystemOn(0);
    EXPECT_TRUE(m.HasData());
    EXPECT_TRUE(m.IsDirty() && m.IsOverride()) << "setting a buffer keeps the flags";

    m.SetSysExBuf(nullptr, 5, 1);
    EXPECT_EQ(m.GetSysExBuf(), nullptr);
    EXPECT_TRUE(m.HasData()) << "an emptied buffer leaves the flag word as it was";
    EXPECT_EQ(m.GetSysExBufLength(), 6u);
    EXPECT_EQ(Recognised(m), "000000");
    EXPECT_EQ(m.ConvertToString(), CString());
    FCMidiSysEx copy(m);
    EXPECT_EQ(copy.GetSysExBuf(), nullptr);

    BYTE one = 0xF0;
    FCMidiSysEx fresh;
    fresh.SetSysExBuf(&one, 0, 1);
    EXPECT_FALSE(fresh.HasData());
    EXPECT_EQ(fresh.GetSysExBuf(), nullptr);
}

TEST(FCMidiSysEx, CopiesNeverShareOrLeakTheBuffer)
{
    FCMidiSysEx a;
    a.SetGSSystemOn(0x10);
    a.SetDirty();

    FCMidiSysEx b(a);
    ASSERT_NE(b.GetSysExBuf(), a.GetSysExBuf());
    EXPECT_EQ(Bytes(b), Bytes(a));
    EXPECT_TRUE(b.IsDirty());
    b.GetSysExBuf()[1] = 0x00;
    EXPECT_EQ(a.GetSysExBuf()[1], 0x41);

    FCMidiSysEx c;
    c.SetXGSystemOn(1);
    c = a;
    ASSERT_NE(c.GetSysExBuf(), a.GetSysExBuf());
    EXPECT_EQ(Bytes(c), Bytes(a));
    c = c;
    EXPECT_EQ(Bytes(c), Bytes(a));

    FCMidiSysEx empty;
    c = empty;
    EXPECT_EQ(c.GetSysExBuf(), nullptr);
    EXPECT_FALSE(c.HasData());

    FCMidi *asBase = new FCMidiSysEx(a);
    delete asBase; // frees the buffer through the virtual destructor
}

TEST(FCMidiSysEx, AdoptedAndOwnBuffersAreHandledWithoutDoubleFree)
{
    FCMidiSysEx m;
    BYTE *owned = new BYTE[3]{0xF0, 0x01, 0xF7};
    m.SetSysExBuf(owned, 3, 0);
    EXPECT_EQ(m.GetSysExBuf(), owned) << "without copy the caller's buffer is adopted";

    m.SetSysExBuf(m.GetSysExBuf(), 2, 1);
    EXPECT_EQ(Bytes(m), (std::vector<BYTE>{0xF0, 0x01}));
    m.SetSysExBuf(m.GetSysExBuf(), 50, 0);
    EXPECT_EQ(m.GetSysExBufLength(), 2u) << "a buffer handed back cannot grow";
    m.SetSysExBuf(m.GetSysExBuf(), 0, 0);
    EXPECT_EQ(m.GetSysExBuf(), nullptr);
}

TEST(FCMidiSysEx, TextRoundTrip)
{
    FCMidiSysEx m;
    m.SetGMSystemOn(0x10);
    EXPECT_EQ(m.ConvertToString(), CString(L"f0 7e 10 09 01 f7 "));

    FCMidiSysEx back;
    ASSERT_EQ(back.ConvertFromString(m.ConvertToString()), 1);
    EXPECT_EQ(Bytes(back), Bytes(m));
    EXPECT_TRUE(back.IsGMSystemOnMsg());

    struct Row
    {
        const wchar_t *text;
        std::vector<BYTE> bytes;
    } rows[] = {
        {L"F0,43,10 4C", {0xF0, 0x43, 0x10, 0x4C}},
        {L"  f0 ,, 7\t0x7f\r\n", {0xF0, 0x07, 0x7F}},
        {L"0", {0x00}},
        {L"ff", {0xFF}},
        {L"0XaB", {0xAB}},
    };
    for (const Row &r : rows)
    {
        FCMidiSysEx p;
        EXPECT_EQ(p.ConvertFromString(CString(r.text)), 1) << CStringA(r.text).GetString();
        EXPECT_EQ(Bytes(p), r.bytes) << CStringA(r.text).GetString();
    }
}

TEST(FCMidiSysEx, MalformedTextFailsAndChangesNothing)
{
    const wchar_t *bad[] = {L"", L"   ", L" , ,", L"zz", L"f0 1g", L"100", L"f0 -1", L"0x", L"f0;7e", L"f0 7e 0x100"};
    for (const wchar_t *text : bad)
    {
        FCMidiSysEx m;
        m.SetGMSystemOff(3);
        const std::vector<BYTE> before = Bytes(m);
        EXPECT_EQ(m.ConvertFromString(CString(text)), 0) << CStringA(text).GetString();
        EXPECT_EQ(Bytes(m), before) << CStringA(text).GetString();
    }
}
