// The midifile plug-in as a host meets it: loaded from the library's plug-in
// folder, asked for by file type, reading into a new performance and writing
// it back. The score it builds is checked piece by piece, the trip through
// the score event by event, and broken or hostile files end in a reason.
#include "SmfTestFiles.h"

#include <SmfFileType.h>

#include <scoremodel/document/MCDocumentFile.h>
#include <scoremodel/document/MCDocumentOwner.h>
#include <scoremodel/document/MCFileReader.h>
#include <scoremodel/document/MCFileWriter.h>
#include <scoremodel/events/chords/ECChordSymbol.h>
#include <scoremodel/events/envelopes/ECControllerEnvelopes.h>
#include <scoremodel/events/envelopes/ECTempo.h>
#include <scoremodel/events/envelopes/ECTempoEnv.h>
#include <scoremodel/events/marks/ECSystemMessage.h>
#include <scoremodel/events/media/ECLyric.h>
#include <scoremodel/events/notes/ECNote.h>
#include <scoremodel/events/notes/ECTie.h>
#include <scoremodel/events/signatures/ECKey.h>
#include <scoremodel/events/signatures/ECMeter.h>
#include <scoremodel/events/signatures/ECMeterEnv.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECConductorMeasure.h>
#include <scoremodel/events/structure/ECConductorStaff.h>
#include <scoremodel/events/structure/ECMeasure.h>
#include <scoremodel/events/structure/ECPerformance.h>
#include <scoremodel/events/structure/ECStaff.h>
#include <scoremodel/platform/CArchive.h>
#include <scoremodel/platform/CFile.h>
#include <scoremodel/plugins/CPlugin.h>
#include <scoremodel/plugins/CPluginFileReader.h>
#include <scoremodel/plugins/CPluginFileWriter.h>
#include <scoremodel/plugins/PluginFolder.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>

namespace fs = std::filesystem;

namespace
{
using smftest::ChildrenOf;

class MidiFilePlugin : public ::testing::Test
{
protected:
    // The plug-in is loaded once per process, from the folder beside the
    // library, as the tool finds it.
    static void SetUpTestSuite()
    {
        static bool loaded = false;
        if (loaded)
            return;
        loaded = true;
        const std::string folder = std::string(SCOREMODEL_TEST_BINARY_DIR) + "/scoremodel/PlugIns";
        MCSetPluginFolderOverride(CString::FromUtf8(folder.c_str()));
        CPlugin::Initialize();
        MCSetPluginFolderOverride(CString());
    }

    void SetUp() override
    {
        m_dir = fs::path(SCOREMODEL_TEST_BINARY_DIR) / "midifile-test" /
                ::testing::UnitTest::GetInstance()->current_test_info()->name();
        fs::remove_all(m_dir);
        fs::create_directories(m_dir);
    }
    void TearDown() override { fs::remove_all(m_dir); }

    std::string Write(const std::vector<uint8_t> &bytes, const char *name = "in.mid")
    {
        const fs::path path = m_dir / name;
        std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char *>(bytes.data()), bytes.size());
        return path.string();
    }

    // Reads the bytes into a new document; `status` gets the reader's line.
    MCDocumentOwner Import(const std::vector<uint8_t> &bytes, std::string *status = nullptr, int *result = nullptr)
    {
        std::unique_ptr<MCFileReader> reader(CPluginFileReader::CreateReader(kFileTypeStandardMidi));
        EXPECT_NE(reader, nullptr);
        MCDocumentOwner doc = MCDocumentOwner::Make();
        if (!reader)
            return doc;
        const int ok = reader->LoadFile(CString::FromUtf8(Write(bytes).c_str()), SmfDocumentOf(doc.Get()));
        if (status)
            *status = reader->GetStatusMsg().ToUtf8();
        if (result)
            *result = ok;
        else
            EXPECT_EQ(ok, 1) << reader->GetStatusMsg().ToUtf8();
        return doc;
    }

    static std::vector<uint8_t> ExportBytes(ECPerformance *doc)
    {
        std::unique_ptr<MCFileWriter> writer(CPluginFileWriter::CreateWriter(kFileTypeStandardMidi));
        EXPECT_NE(writer, nullptr);
        if (!writer)
            return {};
        CMemFile memory;
        {
            CArchive ar(&memory, CArchive::store);
            EXPECT_EQ(writer->SaveFile(ar, SmfDocumentOf(doc)), 1) << writer->GetStatusMsg().ToUtf8();
            ar.Close();
        }
        const size_t size = static_cast<size_t>(memory.GetLength());
        BYTE *block = memory.Detach();
        std::vector<uint8_t> bytes(block, block + size);
        std::free(block);
        return bytes;
    }

    static ECConductorStaff *Conductor(ECPerformance *doc) { return doc->GetConductor()->GetConductorStaff(); }

    fs::path m_dir;
};
} // namespace

TEST_F(MidiFilePlugin, EveryEventSurvivesTheTripThroughTheScore)
{
    const smf::File original = smftest::EveryEvent();
    MCDocumentOwner doc = Import(smf::Serialize(original));
    const smf::File back = smf::Parse(ExportBytes(doc.Get()));
    EXPECT_EQ(back.division, 96);
    EXPECT_EQ(back.format, 1);
    // The conductor track, then one track per staff: piano, and the band's
    // two channels.
    EXPECT_EQ(back.tracks.size(), 4u);
    EXPECT_EQ(smftest::Flatten(back), smftest::Flatten(original));
}

TEST_F(MidiFilePlugin, ImportBuildsTheScore)
{
    std::string status;
    MCDocumentOwner doc = Import(smf::Serialize(smftest::EveryEvent()), &status);
    EXPECT_NE(status.find("3 tracks"), std::string::npos) << status;
    EXPECT_NE(status.find("every time exact"), std::string::npos) << status;
    ECConductorStaff *cs = Conductor(doc.Get());

    // Tempo map: 120 and 150 quarters per minute, the second at beat 4.
    std::vector<ECTempo *> tempi = ChildrenOf<ECTempo>(cs->FindTempoEnv());
    ASSERT_EQ(tempi.size(), 2u);
    EXPECT_FLOAT_EQ(tempi[0]->GetTempo(1.0f), 120.0f);
    EXPECT_FLOAT_EQ(tempi[1]->GetTempo(1.0f), 150.0f);
    EXPECT_FLOAT_EQ(tempi[1]->GetTime()->GetSeconds(), 4.0f);
    // Meters, and the measures cut under them: 4/4, then 3/4 bars.
    std::vector<ECMeter *> meters = ChildrenOf<ECMeter>(cs->FindMeterEnv());
    ASSERT_EQ(meters.size(), 2u);
    EXPECT_EQ(meters[1]->GetNumerator(), 3);
    EXPECT_EQ(meters[1]->GetDenominator(), 4);
    // The last note ends on beat 5: two bars.
    ASSERT_EQ(cs->GetMaxMeasureNumber(), 1);
    EXPECT_FLOAT_EQ(cs->GetConductorMeasures()[1]->GetTime()->GetSeconds(), 4.0f);
    EXPECT_FLOAT_EQ(cs->GetMaxMeasureEndTime().GetSeconds(), 7.0f);

    // Staves: piano (channel 0), then the band's channels 1 and 9.
    ASSERT_EQ(cs->GetMaxStaffNumber(), 3);
    ECMeasure *first = cs->GetMeasure(1, 1);
    ECMeasure *second = cs->GetMeasure(1, 2);
    std::vector<ECNote *> notes = ChildrenOf<ECNote>(first);
    ASSERT_EQ(notes.size(), 3u);
    EXPECT_EQ(notes[0]->GetMidiPitch(), 60);
    EXPECT_FLOAT_EQ(notes[1]->GetTime()->GetSeconds(), 1.0f);
    EXPECT_FLOAT_EQ(notes[1]->GetDuration()->GetSeconds(), 1.0f);
    // The note over the bar line: half a beat in each bar, under one tie.
    EXPECT_FLOAT_EQ(notes[2]->GetTime()->GetSeconds(), 3.5f);
    EXPECT_FLOAT_EQ(notes[2]->GetDuration()->GetSeconds(), 0.5f);
    std::vector<ECNote *> after = ChildrenOf<ECNote>(second);
    ASSERT_EQ(after.size(), 1u);
    EXPECT_FLOAT_EQ(after[0]->GetDuration()->GetSeconds(), 0.5f);
    EXPECT_TRUE(notes[2]->HasTie());
    EXPECT_TRUE(after[0]->HasTie());
    std::vector<ECTie *> ties = ChildrenOf<ECTie>(cs->GetStaff(1, 0));
    ASSERT_EQ(ties.size(), 1u);
    EXPECT_EQ(ChildrenOf<ECNote>(ties[0]), (std::vector<ECNote *>{notes[2], after[0]}));
    // The band's bass note lasts 5 beats: pieces in bars 1 and 2.
    EXPECT_EQ(ChildrenOf<ECNote>(cs->GetMeasure(2, 1)).size(), 1u);
    EXPECT_EQ(ChildrenOf<ECNote>(cs->GetMeasure(2, 2)).size(), 1u);

    // Keys stand in every staff: two sharps, then three flats in minor.
    for (int staff = 1; staff <= 3; ++staff)
    {
        std::vector<ECKey *> a = ChildrenOf<ECKey>(cs->GetMeasure(staff, 1));
        std::vector<ECKey *> b = ChildrenOf<ECKey>(cs->GetMeasure(staff, 2));
        ASSERT_EQ(a.size(), 1u);
        ASSERT_EQ(b.size(), 1u);
        EXPECT_EQ(a[0]->GetNumSharps(), 2);
        EXPECT_EQ(b[0]->GetNumFlats(), 3);
        EXPECT_EQ(b[0]->GetMode(), 1);
    }
    // Lyric and chord symbols in the piano's measures: C minor, then
    // E flat 7 over A.
    EXPECT_EQ(ChildrenOf<ECLyric>(first).size(), 1u);
    std::vector<ECChordSymbol *> chords = ChildrenOf<ECChordSymbol>(first);
    ASSERT_EQ(chords.size(), 2u);
    EXPECT_EQ(chords[0]->GetChordRoot(), 1);
    EXPECT_EQ(chords[0]->GetChordFlavor(), 1);
    EXPECT_EQ(chords[0]->GetChordBass(), 0);
    EXPECT_EQ(chords[1]->GetChordRoot(), 6);
    EXPECT_EQ(chords[1]->GetChordFlavor(), 8);
    EXPECT_EQ(chords[1]->GetChordBass(), 16);
    // Envelopes of the piano staff: program, two controllers, bend and both
    // pressures.
    ECStaff *piano = cs->GetStaff(1, 0);
    EXPECT_EQ(ChildrenOf<ECPatchEnv>(piano).size(), 1u);
    EXPECT_EQ(ChildrenOf<ECControllerEnv>(piano).size(), 3u);
    ASSERT_EQ(ChildrenOf<ECPitchBendEnv>(piano).size(), 1u);
    EXPECT_EQ(ChildrenOf<ECEnvPoint>(ChildrenOf<ECPitchBendEnv>(piano)[0]).size(), 2u);
    EXPECT_EQ(ChildrenOf<ECChanPressureEnv>(piano).size(), 1u);
    EXPECT_EQ(ChildrenOf<ECPolyPressureEnv>(piano).size(), 1u);
    // System messages on the conductor staff, the GM one with its F0.
    std::vector<ECSystemMessage *> messages = ChildrenOf<ECSystemMessage>(cs);
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[0]->GetMessage().GetSysExBufLength(), 6u);
    EXPECT_TRUE(messages[0]->GetMessage().IsGMSystemOnMsg());
}

// The second trip gives the bytes of the first, also after the document
// went through its own archive (the MIDI values ride in attachments).
TEST_F(MidiFilePlugin, SecondTripGivesTheSameFile)
{
    MCDocumentOwner doc = Import(smf::Serialize(smftest::EveryEvent()));
    const std::vector<uint8_t> first = ExportBytes(doc.Get());
    MCDocumentOwner again = Import(first);
    EXPECT_EQ(ExportBytes(again.Get()), first);

    const std::string saved = (m_dir / "doc.smd").string();
    MCDocumentFile::Save(again.Get(), saved.c_str());
    CFile in(saved.c_str(), CFile::modeRead);
    MCDocumentOwner loaded(MCDocumentFile::Read(in));
    EXPECT_EQ(ExportBytes(loaded.Get()), first);
}

// Pairing of notes: the first open note of a pitch ends first; a note left
// open ends with its track, a note off without a note is counted.
TEST_F(MidiFilePlugin, OverlappingAndUnfinishedNotes)
{
    smf::File f;
    f.division = 4;
    smf::Track &t = f.tracks.emplace_back();
    smftest::Channel(t, 0, 0x90, 60, 10);
    smftest::Channel(t, 1, 0x90, 60, 20);
    smftest::Channel(t, 2, 0x80, 60, 0);
    smftest::Channel(t, 3, 0x80, 60, 0);
    smftest::Channel(t, 3, 0x80, 61, 0);
    smftest::Channel(t, 3, 0x90, 62, 30);
    t.endTick = 8;
    std::string status;
    MCDocumentOwner doc = Import(smf::Serialize(f), &status);
    EXPECT_NE(status.find("1 note offs without a note"), std::string::npos) << status;
    EXPECT_NE(status.find("1 notes ended at the end of their track"), std::string::npos) << status;
    const smf::File back = smf::Parse(ExportBytes(doc.Get()));
    ASSERT_EQ(back.tracks.size(), 2u);
    std::vector<std::tuple<uint32_t, int, int>> ons, offs;
    for (const smf::Event &e : back.tracks[1].events)
        (e.IsNoteOn() ? ons : offs).emplace_back(e.tick, e.data1, e.IsNoteOn() ? e.data2 : 0);
    EXPECT_EQ(ons, (std::vector<std::tuple<uint32_t, int, int>>{{0, 60, 10}, {1, 60, 20}, {3, 62, 30}}));
    EXPECT_EQ(offs, (std::vector<std::tuple<uint32_t, int, int>>{{2, 60, 0}, {3, 60, 0}, {8, 62, 0}}));
}

// Ticks that a float of quarter notes cannot hold at division 480 come out
// at the nearest tick, and the report says how many.
TEST_F(MidiFilePlugin, TimesBeyondTheFloatAreRoundedAndCounted)
{
    smf::File f;
    f.division = 480;
    smf::Track &t = f.tracks.emplace_back();
    const uint32_t far = 480u * 40000u + 1u;
    smftest::Channel(t, far, 0x90, 60, 10);
    smftest::Channel(t, far + 7, 0x80, 60, 0);
    t.endTick = far + 7;
    std::string status;
    MCDocumentOwner doc = Import(smf::Serialize(f), &status);
    EXPECT_NE(status.find("rounded to the nearest tick"), std::string::npos) << status;
    const smf::File back = smf::Parse(ExportBytes(doc.Get()));
    ASSERT_EQ(back.tracks.size(), 2u);
    ASSERT_EQ(back.tracks[1].events.size(), 2u);
    EXPECT_NEAR(static_cast<double>(back.tracks[1].events[0].tick), far, 1.0);
}

TEST_F(MidiFilePlugin, BrokenAndHostileFilesEndInAReason)
{
    auto manyStaves = [] {
        smf::File f;
        for (int track = 0; track < 70; ++track)
        {
            smf::Track &t = f.tracks.emplace_back();
            for (uint8_t channel = 0; channel < 16; ++channel)
                smftest::Channel(t, 0, static_cast<uint8_t>(0xB0 | channel), 7, 1);
        }
        return smf::Serialize(f);
    };
    auto farNote = [] {
        smf::File f;
        f.division = 1;
        smftest::Channel(f.tracks.emplace_back(), 0x0FFFFFFF, 0x90, 60, 1);
        return smf::Serialize(f);
    };
    auto truncated = [] {
        std::vector<uint8_t> bytes = smf::Serialize(smftest::EveryEvent());
        bytes.resize(bytes.size() - 10);
        return bytes;
    };
    struct Case
    {
        const char *name;
        std::vector<uint8_t> bytes;
        const char *reason;
    } cases[] = {
        {"not a MIDI file", {'a', 'b', 'c'}, "byte 0: not a MIDI file"},
        {"truncated", truncated(), "runs past the end of the file"},
        {"1120 staves", manyStaves(), "more than 1024"},
        {"a note two hundred million beats away", farNote(), "bars"},
    };
    for (const Case &c : cases)
    {
        SCOPED_TRACE(c.name);
        std::string status;
        int result = -1;
        Import(c.bytes, &status, &result);
        EXPECT_EQ(result, 0);
        EXPECT_NE(status.find(c.reason), std::string::npos) << status;
    }
    std::unique_ptr<MCFileReader> reader(CPluginFileReader::CreateReader(kFileTypeStandardMidi));
    ASSERT_NE(reader, nullptr);
    MCDocumentOwner doc = MCDocumentOwner::Make();
    EXPECT_EQ(reader->LoadFile(CString::FromUtf8((m_dir / "missing.mid").string().c_str()), SmfDocumentOf(doc.Get())), 0);
    EXPECT_NE(reader->GetStatusMsg().ToUtf8().find("No such file"), std::string::npos);
}

// A note held for thousands of bars is cut at each bar line and comes back
// as one note.
TEST_F(MidiFilePlugin, ANoteOverThousandsOfBarsComesBackWhole)
{
    smf::File f;
    f.division = 2;
    smf::Track &t = f.tracks.emplace_back();
    smftest::Channel(t, 1, 0x90, 60, 10);
    smftest::Channel(t, 8 * 3000 + 1, 0x80, 60, 0);
    t.endTick = 8 * 3000 + 1;
    MCDocumentOwner doc = Import(smf::Serialize(f));
    ECConductorStaff *cs = Conductor(doc.Get());
    ASSERT_EQ(cs->GetMaxMeasureNumber(), 3000);
    std::vector<ECTie *> ties = ChildrenOf<ECTie>(cs->GetStaff(1, 0));
    ASSERT_EQ(ties.size(), 1u);
    EXPECT_EQ(ChildrenOf<ECNote>(ties[0]).size(), 3001u);
    const smf::File back = smf::Parse(ExportBytes(doc.Get()));
    ASSERT_EQ(back.tracks.size(), 2u);
    ASSERT_EQ(back.tracks[1].events.size(), 2u);
    EXPECT_EQ(back.tracks[1].events[0].tick, 1u);
    EXPECT_EQ(back.tracks[1].events[1].tick, 8u * 3000 + 1);
}

// A tempo ramp leaves as a tempo per sixteenth that keeps the clock: the
// file read back reaches each beat at the time the ramp did.
TEST_F(MidiFilePlugin, TempoRampIsWrittenAsStepsThatKeepTheClock)
{
    MCDocumentOwner doc = Import(smf::Serialize(smftest::EveryEvent()));
    ECTempoEnv *tempi = Conductor(doc.Get())->FindTempoEnv();
    std::vector<ECTempo *> points = ChildrenOf<ECTempo>(tempi);
    ASSERT_EQ(points.size(), 2u);
    points[0]->SetStyle(1);
    tempi->RecalculateClockTimes();
    const smf::File file = smf::Parse(ExportBytes(doc.Get()));
    int steps = 0;
    for (const smf::Event &e : file.tracks[0].events)
        steps += e.status == smf::kStatusMeta && e.meta == smf::kMetaTempo;
    EXPECT_EQ(steps, 4 * 4 + 1);
    MCDocumentOwner back = Import(smf::Serialize(file));
    ECTempoEnv *read = Conductor(back.Get())->FindTempoEnv();
    for (float beat : {0.5f, 1.0f, 2.75f, 4.0f, 5.0f})
    {
        MCTime a(beat), b(beat);
        tempi->GetClockTime(a);
        read->GetClockTime(b);
        EXPECT_NEAR(a.GetSeconds(), b.GetSeconds(), 1e-4) << "beat " << beat;
    }
}

// Texts: UTF-8 stays as it is, bytes that are not UTF-8 read as Latin-1 and
// leave as UTF-8, a zero byte does not cut a text short; the second trip
// gives the first one's bytes.
TEST_F(MidiFilePlugin, TextsKeepEveryCharacter)
{
    const struct
    {
        std::string in, out;
    } cases[] = {
        {"plain", "plain"},
        {"caf\xC3\xA9 \xE2\x99\xAF", "caf\xC3\xA9 \xE2\x99\xAF"},
        {"caf\xE9", "caf\xC3\xA9"},
        {std::string("a\0b", 3), std::string("a\0b", 3)},
        {"\xFF\xFE", "\xC3\xBF\xC3\xBE"},
    };
    smf::File f;
    f.division = 96;
    f.tracks.resize(2);
    smf::Track &t = f.tracks[0], &lyrics = f.tracks[1];
    for (const auto &c : cases)
    {
        smftest::MetaText(f, t, 0, smf::kMetaMarker, c.in);
        smftest::MetaText(f, lyrics, 0, smf::kMetaLyric, c.in);
    }
    MCDocumentOwner doc = Import(smf::Serialize(f));
    const std::vector<uint8_t> first = ExportBytes(doc.Get());
    const smf::File back = smf::Parse(first);
    std::vector<std::string> markers, words;
    for (const smf::Track &track : back.tracks)
        for (const smf::Event &e : track.events)
            if (e.meta == smf::kMetaMarker || e.meta == smf::kMetaLyric)
                (e.meta == smf::kMetaMarker ? markers : words).push_back(back.PayloadText(e));
    std::vector<std::string> expected;
    for (const auto &c : cases)
        expected.push_back(c.out);
    EXPECT_EQ(markers, expected);
    EXPECT_EQ(words, expected);
    MCDocumentOwner again = Import(first);
    EXPECT_EQ(ExportBytes(again.Get()), first);
}
