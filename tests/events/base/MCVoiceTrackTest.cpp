// The voice/track word: both readings, and the setters' exact masking.
#include <scoremodel/events/base/MCVoiceTrack.h>

#include <gtest/gtest.h>

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

// A word is read either as voice and track or, once converted (bit 15), as
// device and channel; each reading hides the other.
TEST(MCVoiceTrackTest, BothReadingsOfTheWord)
{
    struct Case
    {
        const char *what;
        WORD value;
        bool converted;
        int voice, track, device, channel;
    };
    const Case cases[] = {
        {"the default word: no voice, no track, no device", 0x7FFF, false, 15, 0x7FF, 0xFF, 0x7F},
        {"voice 3, track 12", MCVoiceTrack(3, 12).GetValue(), false, 3, 12, 0xFF, 0x7F},
        {"converted keeps the low byte as device", 0x82C3, true, 15, 0x7FF, 0xC3, 2},
    };
    for (const Case &c : cases)
    {
        SCOPED_TRACE(c.what);
        MCVoiceTrack vt;
        vt.SetValue(c.value);
        EXPECT_EQ(vt.IsConverted() != 0, c.converted);
        EXPECT_EQ(vt.GetVoice(), c.voice);
        EXPECT_EQ(vt.GetTrack(), c.track);
        EXPECT_EQ(vt.GetDevice(), c.device);
        EXPECT_EQ(vt.GetChannel(), c.channel);
    }
    EXPECT_EQ(MCVoiceTrack().GetValue(), 0x7FFF);
    MCVoiceTrack vt(3, 12);
    vt.SetChannel(2);
    EXPECT_EQ(vt.GetValue(), 0x82C3) << "converting keeps the low byte of the old word";
}
