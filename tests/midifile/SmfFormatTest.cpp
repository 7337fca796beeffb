// The file format layer alone: every event kind written and read back,
// running status, and corrupt or hostile files refused with the offset of
// the byte at fault, never a crash or a runaway allocation.
#include "SmfTestFiles.h"

#include <gtest/gtest.h>

#include <random>

using namespace smf;

namespace
{
// A header for `tracks` tracks at 96 ticks per quarter, then the chunks.
std::vector<uint8_t> FileOf(std::initializer_list<std::vector<uint8_t>> tracks, int format = 1)
{
    std::vector<uint8_t> out = {'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, static_cast<uint8_t>(format), 0,
                                static_cast<uint8_t>(tracks.size()), 0, 96};
    for (const auto &body : tracks)
    {
        const uint32_t n = static_cast<uint32_t>(body.size());
        out.insert(out.end(), {'M', 'T', 'r', 'k', static_cast<uint8_t>(n >> 24), static_cast<uint8_t>(n >> 16),
                               static_cast<uint8_t>(n >> 8), static_cast<uint8_t>(n)});
        out.insert(out.end(), body.begin(), body.end());
    }
    return out;
}

const std::vector<uint8_t> kEnd = {0x00, 0xFF, 0x2F, 0x00};

std::vector<uint8_t> Body(std::vector<uint8_t> body)
{
    body.insert(body.end(), kEnd.begin(), kEnd.end());
    return body;
}
} // namespace

TEST(SmfFormat, EveryEventKindSurvivesWriteAndRead)
{
    const File original = smftest::EveryEvent();
    const std::vector<uint8_t> bytes = Serialize(original);
    const File back = Parse(bytes);
    EXPECT_EQ(back.format, 1);
    EXPECT_EQ(back.division, 96);
    ASSERT_EQ(back.tracks.size(), original.tracks.size());
    EXPECT_TRUE(back.warnings.empty());
    for (size_t t = 0; t < original.tracks.size(); ++t)
    {
        ASSERT_EQ(back.tracks[t].events.size(), original.tracks[t].events.size()) << "track " << t;
        EXPECT_EQ(back.tracks[t].endTick, original.tracks[t].endTick);
    }
    EXPECT_EQ(smftest::Flatten(back), smftest::Flatten(original));
    // Written again, the same bytes.
    EXPECT_EQ(Serialize(back), bytes);
}

TEST(SmfFormat, RunningStatusIsWrittenAndRead)
{
    File f;
    f.division = 480;
    Track &t = f.tracks.emplace_back();
    for (uint32_t i = 0; i < 4; ++i)
        smftest::Channel(t, i * 10, 0x90, static_cast<uint8_t>(60 + i), 100);
    smftest::Channel(t, 40, 0xC0, 3);
    smftest::Channel(t, 50, 0xC0, 4);
    t.endTick = 50;
    const std::vector<uint8_t> bytes = Serialize(f);
    // Header 14, chunk header 8; then 0 90 3C 64, 3 x (0A 3D 64), 0A C0 03,
    // 0A 04, and the end of track 00 FF 2F 00.
    const std::vector<uint8_t> body(bytes.begin() + 22, bytes.end());
    EXPECT_EQ(body, (std::vector<uint8_t>{0x00, 0x90, 60, 100, 10, 61, 100, 10, 62, 100, 10, 63, 100, 10, 0xC0, 3,
                                          10, 4, 0x00, 0xFF, 0x2F, 0x00}));
    const File back = Parse(bytes);
    ASSERT_EQ(back.tracks[0].events.size(), 6u);
    EXPECT_EQ(back.tracks[0].events[3].status, 0x90);
    EXPECT_EQ(back.tracks[0].events[3].data1, 63);
    EXPECT_EQ(back.tracks[0].events[5].data1, 4);
    // A meta event in between makes the writer repeat the status.
    smftest::MetaText(f, t, 50, kMetaMarker, "m");
    smftest::Channel(t, 60, 0xC0, 5);
    const std::vector<uint8_t> again = Serialize(f);
    EXPECT_EQ(std::vector<uint8_t>(again.end() - 7, again.end()),
              (std::vector<uint8_t>{10, 0xC0, 5, 0x00, 0xFF, 0x2F, 0x00}));
}

TEST(SmfFormat, VariableLengthQuantitiesAtTheirLimits)
{
    for (uint32_t value : {0u, 0x7Fu, 0x80u, 0x3FFFu, 0x4000u, 0x1FFFFFu, 0x200000u, 0x0FFFFFFFu})
    {
        File f;
        Track &t = f.tracks.emplace_back();
        smftest::Channel(t, value, 0x90, 1, 1);
        t.endTick = value;
        const File back = Parse(Serialize(f));
        EXPECT_EQ(back.tracks[0].events[0].tick, value);
    }
}

TEST(SmfFormat, DeparturesFromTheRulesAreReadWithWarnings)
{
    struct Case
    {
        const char *name;
        std::vector<uint8_t> bytes;
        const char *warning;
        int format;
    } cases[] = {
        {"format 2", FileOf({Body({0x00, 0x90, 60, 1})}, 2), "format 2", 1},
        {"no end of track", FileOf({{0x00, 0x90, 60, 1}}), "no end of track", 1},
        {"bytes after the end", FileOf({{0x00, 0xFF, 0x2F, 0x00, 0x00, 0x90}}), "after the end of track", 1},
        {"unknown chunk", [] {
             auto b = FileOf({Body({})});
             b.insert(b.end(), {'X', 'Y', 'Z', 'W', 0, 0, 0, 1, 0});
             return b;
         }(),
         "unknown kind", 1},
        {"more tracks than announced", [] {
             auto b = FileOf({Body({}), Body({})});
             b[11] = 1;
             return b;
         }(),
         "announces 1 tracks, the file holds 2", 1},
        {"format 0 with two tracks", FileOf({Body({}), Body({})}, 0), "format 0 with 2 tracks", 1},
    };
    for (const Case &c : cases)
    {
        SCOPED_TRACE(c.name);
        const File f = Parse(c.bytes);
        EXPECT_EQ(f.format, c.format);
        ASSERT_FALSE(f.warnings.empty());
        EXPECT_NE(f.warnings.front().find(c.warning), std::string::npos) << f.warnings.front();
    }
    // A running status survives a meta event when reading, as many writers
    // expect.
    const File f = Parse(FileOf({Body({0x00, 0x90, 60, 1, 0x00, 0xFF, 0x01, 0x01, 'x', 0x00, 61, 2})}));
    ASSERT_EQ(f.tracks[0].events.size(), 3u);
    EXPECT_EQ(f.tracks[0].events[2].status, 0x90);
}

TEST(SmfFormat, CorruptFilesAreRefusedWithTheOffsetAtFault)
{
    struct Case
    {
        const char *name;
        std::vector<uint8_t> bytes;
        size_t offset;
        const char *reason;
    } cases[] = {
        {"empty", {}, 0, "not a MIDI file"},
        {"other magic", {'R', 'I', 'F', 'F', 0, 0, 0, 6}, 0, "not a MIDI file"},
        {"header cut", {'M', 'T', 'h', 'd', 0, 0}, 4, "ends inside the header"},
        {"header length 5", {'M', 'T', 'h', 'd', 0, 0, 0, 5, 0, 1, 0, 0, 0}, 4, "below 6"},
        {"header past the end", {'M', 'T', 'h', 'd', 0, 0, 0, 9, 0, 1, 0, 0, 0, 96}, 4, "past the end"},
        {"format 3", FileOf({}, 3), 8, "format 3"},
        {"time code division", [] {
             auto b = FileOf({});
             b[12] = 0xE7;
             return b;
         }(),
         12, "time code"},
        {"division 0", [] {
             auto b = FileOf({});
             b[13] = 0;
             return b;
         }(),
         12, "division of 0"},
        {"truncated chunk header", [] {
             auto b = FileOf({Body({})});
             b.insert(b.end(), {'M', 'T', 'r'});
             return b;
         }(),
         26, "truncated chunk header"},
        {"chunk length past the end", [] {
             auto b = FileOf({Body({})});
             b[21] = 9;
             return b;
         }(),
         18, "runs past the end of the file (4 bytes left)"},
        {"a billion-byte track", [] {
             auto b = FileOf({Body({})});
             b[18] = 0x3B, b[19] = 0x9A, b[20] = 0xCA, b[21] = 0x00;
             return b;
         }(),
         18, "chunk length 1000000000"},
        {"announced track missing", [] {
             auto b = FileOf({Body({})});
             b[11] = 2;
             return b;
         }(),
         26, "announces 2 tracks, the file holds 1"},
        {"running status without a status", FileOf({Body({0x00, 60, 100})}), 23, "no running status"},
        {"delta of five bytes", FileOf({Body({0x81, 0x82, 0x83, 0x84, 0x05, 0x90, 60, 1})}), 22, "more than four bytes"},
        {"status where data belongs", FileOf({Body({0x00, 0x90, 60, 0x91})}), 25, "status byte 0x91"},
        {"channel message cut", FileOf({{0x00, 0x90, 60}}), 25, "ends inside a channel message"},
        {"track ends after a delta", FileOf({{0x00, 0x90, 60, 1, 0x05}}), 27, "ends after a delta time"},
        {"meta length past the track", FileOf({{0x00, 0xFF, 0x01, 0x10, 'a', 'b'}}), 25, "event length 16"},
        {"sysex length of five bytes", FileOf({{0x00, 0xF0, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F}}), 24, "more than four bytes"},
        {"meta type above 0x7F", FileOf({{0x00, 0xFF, 0x85, 0x00}}), 24, "meta type 0x85"},
        {"live status in a file", FileOf({Body({0x00, 0xF8})}), 23, "status 0xF8"},
        {"65536 tracks", [] {
             auto b = FileOf({Body({})});
             b[10] = 0xFF, b[11] = 0xFF;
             const std::vector<uint8_t> track(b.begin() + 14, b.end());
             for (int i = 1; i < 65536; ++i)
                 b.insert(b.end(), track.begin(), track.end());
             return b;
         }(),
         14 + 65535 * 12, "more than 65535 tracks"},
        {"time past the limit", [] {
             // Nine of the longest deltas: the ninth passes 2^31 - 1.
             std::vector<uint8_t> body;
             for (int i = 0; i < 9; ++i)
                 body.insert(body.end(), {0xFF, 0xFF, 0xFF, 0x7F, 0x90, 1, 1});
             return FileOf({Body(body)});
         }(),
         22 + 8 * 7 + 4, "time past"},
    };
    for (const Case &c : cases)
    {
        SCOPED_TRACE(c.name);
        try
        {
            Parse(c.bytes);
            ADD_FAILURE() << "accepted";
        }
        catch (const SmfError &e)
        {
            EXPECT_EQ(e.Offset(), c.offset) << e.what();
            EXPECT_NE(std::string(e.what()).find(c.reason), std::string::npos) << e.what();
            EXPECT_EQ(std::string(e.what()).rfind("byte " + std::to_string(c.offset) + ": ", 0), 0u) << e.what();
        }
    }
}

// Every prefix and thousands of mutations of a good file: each one is read
// or refused with an offset inside the file, and what is read writes again.
TEST(SmfFormat, TruncatedAndMutatedFilesNeverEscapeTheRules)
{
    const std::vector<uint8_t> good = Serialize(smftest::EveryEvent());
    auto check = [](const std::vector<uint8_t> &bytes) {
        try
        {
            const File f = Parse(bytes);
            EXPECT_LE(f.pool.size(), bytes.size());
            Serialize(f);
        }
        catch (const SmfError &e)
        {
            EXPECT_LE(e.Offset(), bytes.size());
        }
        catch (const std::invalid_argument &)
        {
            // A mutation may read as a division the writer refuses.
        }
    };
    for (size_t n = 0; n < good.size(); ++n)
        check(std::vector<uint8_t>(good.begin(), good.begin() + n));
    std::mt19937 random(23);
    for (int i = 0; i < 20000; ++i)
    {
        std::vector<uint8_t> bytes = good;
        const int edits = 1 + static_cast<int>(random() % 4);
        for (int k = 0; k < edits; ++k)
            bytes[random() % bytes.size()] = static_cast<uint8_t>(random());
        check(bytes);
    }
}

TEST(SmfFormat, WriterRefusesWhatNoFileCanHold)
{
    auto refused = [](File f) {
        EXPECT_THROW(Serialize(f), std::invalid_argument);
    };
    File data;
    smftest::Channel(data.tracks.emplace_back(), 0, 0x90, 0x80, 1);
    refused(data);
    File order;
    Track &t = order.tracks.emplace_back();
    smftest::Channel(t, 10, 0x90, 1, 1);
    smftest::Channel(t, 5, 0x90, 1, 1);
    refused(order);
    File division;
    division.division = 0x8000;
    refused(division);
    File status;
    smftest::Channel(status.tracks.emplace_back(), 0, 0xF8, 0);
    refused(status);
}
