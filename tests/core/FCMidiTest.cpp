#include <scoremodel/core/FCMidi.h>

#include <gtest/gtest.h>

#include <string>

namespace
{
// The answers of every classification test, one character each, in this order.
const char *const kTests[] = {"HasData",          "IsNote",           "IsNoteOn",          "IsNoteOff",
                              "IsPolyPressureMsg", "IsControllerMsg",  "IsProgramMsg",      "IsChanPressureMsg",
                              "IsPitchBendMsg",   "IsVolumeMsg",      "IsPedalDown",       "IsPedalUp",
                              "IsChannelMsg",     "IsChannelModeMsg", "IsChannelVoiceMsg", "IsSysMsg",
                              "IsSysCommonMsg",   "IsSysRealtimeMsg", "IsSysExMsg"};

std::string Answers(const FCMidi &m)
{
    const int results[] = {m.HasData(),          m.IsNote(),           m.IsNoteOn(),          m.IsNoteOff(),
                           m.IsPolyPressureMsg(), m.IsControllerMsg(),  m.IsProgramMsg(),      m.IsChanPressureMsg(),
                           m.IsPitchBendMsg(),   m.IsVolumeMsg(),      m.IsPedalDown(),       m.IsPedalUp(),
                           m.IsChannelMsg(),     m.IsChannelModeMsg(), m.IsChannelVoiceMsg(), m.IsSysMsg(),
                           m.IsSysCommonMsg(),   m.IsSysRealtimeMsg(), m.IsSysExMsg()};
    std::string s;
    for (int r : results)
    {
        EXPECT_TRUE(r == 0 || r == 1) << "a test answered " << r;
        s += r ? '1' : '0';
    }
    return s;
}

FCMidi Message(BYTE status, BYTE data1, BYTE data2)
{
    FCMidi m;
    m.SetStatusByte(status);
    m.SetDataByte1(data1);
    m.SetDataByte2(data2);
    return m;
}
} // namespace

TEST(FCMidi, EveryClassificationMatchesItsTable)
{
    struct Row
    {
        const char *name;
        BYTE status, data1, data2;
        //                 HNnfPCGDBVduMmvSsrX
        const char *answers;
    } rows[] = {
        {"empty", 0x00, 0x00, 0x00, "0000000000000000000"},
        {"data byte as status", 0x7F, 0x40, 0x40, "1000000000000000000"},
        {"note off", 0x80, 60, 64, "1101000000001010000"},
        {"note on", 0x90, 60, 1, "1110000000001010000"},
        {"note on velocity 0", 0x90, 60, 0, "1101000000001010000"},
        {"note on ch16", 0x9F, 60, 127, "1110000000001010000"},
        {"poly pressure", 0xA0, 60, 10, "1000100000001010000"},
        {"controller 1", 0xB0, 1, 10, "1000010000001010000"},
        {"volume", 0xB3, 7, 100, "1000010001001010000"},
        {"pedal up at 63", 0xB0, 0x40, 0x3F, "1000010000011010000"},
        {"pedal down at 64", 0xB0, 0x40, 0x40, "1000010000101010000"},
        {"pedal down at 127", 0xB0, 0x40, 0x7F, "1000010000101010000"},
        {"last voice controller", 0xB0, 0x77, 0, "1000010000001010000"},
        {"all sound off", 0xB0, 0x78, 0, "1000010000001100000"},
        {"poly on", 0xBF, 0x7F, 0, "1000010000001100000"},
        {"program with data 7", 0xC0, 7, 0, "1000001000001010000"},
        {"channel pressure", 0xD0, 5, 0, "1000000100001010000"},
        {"pitch bend", 0xE0, 0, 0x40, "1000000010001010000"},
        {"sysex in a plain message", 0xF0, 0, 0, "1000000000000000000"},
        {"time code", 0xF1, 0, 0, "1000000000000001100"},
        {"end of exclusive", 0xF7, 0, 0, "1000000000000001100"},
        {"clock", 0xF8, 0, 0, "1000000000000001010"},
        {"reset", 0xFF, 0, 0, "1000000000000001010"},
    };
    for (const Row &r : rows)
    {
        SCOPED_TRACE(r.name);
        const std::string got = Answers(Message(r.status, r.data1, r.data2));
        ASSERT_EQ(got.size(), std::string(r.answers).size());
        for (size_t i = 0; i < got.size(); ++i)
            EXPECT_EQ(got[i], r.answers[i]) << kTests[i];
    }
}

TEST(FCMidi, BytesSitInTheLowThreeBytesOfTheWordAndNibbleSettersTakeTheirNibble)
{
    FCMidi m(0x003F0BB3ul);
    EXPECT_EQ(m.GetStatusLSB(), 0x03);
    EXPECT_EQ(m.GetDataByte1(), 0x0B);
    EXPECT_EQ(m.GetDataByte2(), 0x3F);
    EXPECT_TRUE(m.IsControllerType(11));
    EXPECT_FALSE(m.IsControllerType(11 + 256));
    m.SetStatusMSB(0x9F);
    m.SetStatusLSB(0xFA);
    m.SetDataByte2(0);
    EXPECT_EQ(m.GetValue().value, 0x00000B9Aul);
    EXPECT_FALSE(m.IsControllerType(11));
    EXPECT_EQ(&FCMidi::MidiNull(), &FCMidi::MidiNull());
    EXPECT_EQ(FCMidi::MidiNull().GetValue().value, 0ul);
}
