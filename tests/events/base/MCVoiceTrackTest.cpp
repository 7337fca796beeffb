// The voice/track word: both readings, and the setters' exact masking.
#include <scoremodel/events/base/MCVoiceTrack.h>

#include <gtest/gtest.h>

TEST(MCVoiceTrackTest, DefaultMeansNoVoiceAndNoTrack)
{
    MCVoiceTrack vt;
    EXPECT_EQ(vt.GetValue(), 0x7FFF);
    EXPECT_EQ(vt.GetVoice(), 15);
    EXPECT_EQ(vt.GetTrack(), 0x7FF);
    EXPECT_FALSE(vt.IsConverted());
    EXPECT_EQ(vt.GetDevice(), 0xFF) << "no device before conversion";
    EXPECT_EQ(vt.GetChannel(), 0x7F);
}

TEST(MCVoiceTrackTest, SettersStoreTheDocumentedWords)
{
    struct Case
    {
        const char *what;
        WORD start;
        void (*apply)(MCVoiceTrack &);
        WORD expected;
    };
    const Case cases[] = {
        {"voice keeps the track", 0x0123, [](MCVoiceTrack &v) { v.SetVoice(5); }, 0x0125},
        {"voice clears bit 15", 0x8123, [](MCVoiceTrack &v) { v.SetVoice(5); }, 0x0125},
        {"track keeps the voice", 0x0123, [](MCVoiceTrack &v) { v.SetTrack(7); }, 0x0073},
        {"track clears bit 15", 0xFFFF, [](MCVoiceTrack &v) { v.SetTrack(1); }, 0x001F},
        {"a track of 0x800 reaches bit 15", 0x0003, [](MCVoiceTrack &v) { v.SetTrack(0x800); }, 0x8003},
        {"device keeps the channel", 0x8500, [](MCVoiceTrack &v) { v.SetDevice(0x42); }, 0x8542},
        {"device sets bit 15", 0x0123, [](MCVoiceTrack &v) { v.SetDevice(0x42); }, 0x8142},
        {"channel keeps the device", 0x80AB, [](MCVoiceTrack &v) { v.SetChannel(9); }, 0x89AB},
        {"channel sets bit 15", 0x0012, [](MCVoiceTrack &v) { v.SetChannel(0x7F); }, 0xFF12},
    };
    for (const Case &c : cases)
    {
        MCVoiceTrack vt;
        vt.SetValue(c.start);
        c.apply(vt);
        EXPECT_EQ(vt.GetValue(), c.expected) << c.what;
    }
}

TEST(MCVoiceTrackTest, ConvertedWordHidesVoiceAndTrack)
{
    MCVoiceTrack vt(3, 12);
    EXPECT_EQ(vt.GetVoice(), 3);
    EXPECT_EQ(vt.GetTrack(), 12);
    vt.SetChannel(2);
    EXPECT_TRUE(vt.IsConverted());
    EXPECT_EQ(vt.GetVoice(), 15);
    EXPECT_EQ(vt.GetTrack(), 0x7FF);
    EXPECT_EQ(vt.GetChannel(), 2);
    EXPECT_EQ(vt.GetDevice(), 0xC3) << "the low byte stays from the old word";
}
