// The command-line tool run end to end: a demo document saved, then dumped
// and summarized from its file; broken files and wrong command lines.
#include "midifile/SmfTestFiles.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/wait.h>

namespace fs = std::filesystem;

namespace
{
struct ToolRun
{
    int code;
    std::string out;
    std::string err;
};

std::string Slurp(const fs::path &path)
{
    std::ifstream in(path);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

class ScoremodelToolTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
#ifndef SCOREMODEL_TOOL
        GTEST_SKIP() << "the tool is not built";
#endif
        // CTest runs each test in its own process, in parallel: every test
        // needs a folder of its own, or one test's clean-up removes another's files.
        m_dir = fs::path(SCOREMODEL_TEST_BINARY_DIR) / "tool-test" /
                ::testing::UnitTest::GetInstance()->current_test_info()->name();
        fs::remove_all(m_dir);
        fs::create_directories(m_dir);
    }
    void TearDown() override { fs::remove_all(m_dir); }

    ToolRun Tool(const std::string &arguments)
    {
#ifdef SCOREMODEL_TOOL
        const std::string command = std::string("'") + SCOREMODEL_TOOL + "' " + arguments + " >'" +
                                    (m_dir / "out").string() + "' 2>'" + (m_dir / "err").string() + "'";
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Slurp(m_dir / "out"), Slurp(m_dir / "err")};
#else
        return {-1, arguments, ""};
#endif
    }

    fs::path m_dir;
};
} // namespace

TEST_F(ScoremodelToolTest, DemoDocumentIsSavedAndReadsBackThroughDumpAndInfo)
{
    const std::string file = (m_dir / "demo.smd").string();
    ToolRun demo = Tool("demo '" + file + "'");
    ASSERT_EQ(demo.code, 0) << demo.err;
    EXPECT_NE(demo.out.find("undo 3, redo 2, undo 3"), std::string::npos) << demo.out;
    EXPECT_NE(demo.out.find("the same tree"), std::string::npos) << demo.out;

    ToolRun dump = Tool("dump '" + file + "'");
    ASSERT_EQ(dump.code, 0) << dump.err;
    EXPECT_EQ(dump.out.rfind("ECPerformance id=44", 0), 0u) << dump.out;
    // Staves show their fields, the conductor staff its matrix and groups.
    EXPECT_NE(dump.out.find("\n    ECConductorStaff id=17 time=0 voice=14 track=0 staves=3 measures=5 end=15 "
                            "pickup=0/1 groups=0+0\n"),
              std::string::npos);
    EXPECT_NE(dump.out.find("\n    ECStaff id=55 time=0 voice=14 track=3 type=0 empty=1 size=32 lines=5 perc=0x0d0 "
                            "pitch=35 cache=0\n"),
              std::string::npos)
        << dump.out;
    // The envelopes show their points: tempi with their place on the clock.
    EXPECT_NE(dump.out.find("ECTempo id=57 time=8 voice=14 track=0 type=1 bpm=90 style=1 clock=4s\n"),
              std::string::npos)
        << dump.out;
    EXPECT_NE(dump.out.find("ECControlChange id=18 time=4 voice=15 track=2047 value=80 style=1\n"), std::string::npos)
        << dump.out;
    EXPECT_NE(dump.out.find("ECClef id=14 time=0 voice=15 track=2047 clef=2 hand=0\n"), std::string::npos) << dump.out;
    EXPECT_NE(dump.out.find("ECKey id=29 time=0 voice=15 track=2047 sharps=0 flats=3 mode=0 hand=0\n"),
              std::string::npos)
        << dump.out;
    EXPECT_NE(dump.out.find("ECChordSymbol id=13 time=0 voice=15 track=2047 root=6 bass=18 flavor=5 style=1 "
                            "custom-flavor='-7'\n"),
              std::string::npos)
        << dump.out;
    // Meters show their shape, role, stresses and start position.
    EXPECT_NE(dump.out.find("ECMeter id=33 time=9 voice=14 track=0 meter=3/4 type=2 role=0 pulse=256 "
                            "stresses=768/3 at=3.0.0/480\n"),
              std::string::npos)
        << dump.out;
    // The piece: a beam, a chord, a slur and a tie over the bar line, a
    // triplet, rests, on the staves' own tracks.
    for (const char *line : {"ECBeam id=7 time=2 voice=0 track=1 group=0x00\n", "ECChord id=12 time=3 voice=0 track=1\n",
                             "ECSlur id=54 time=1 voice=0 track=1 group=0x00\n",
                             "ECTie id=60 time=4 voice=0 track=1 group=0x00\n",
                             "ECTuplet id=66 time=6 voice=0 track=1 tuplet=3:2 units=3\n",
                             "ECNote id=37 time=6.33333 voice=0 track=1 duration=0.5 string=-1 fret=-1 notation=0x00\n",
                             "ECRest id=51 time=12 voice=0 track=3 rest=0\n"})
        EXPECT_NE(dump.out.find(line), std::string::npos) << line << dump.out;
    EXPECT_NE(dump.out.find("meter=7/8 type=6 role=0 pulse=128 stresses=384/3,512/2 parts=3/8+2/4 at=5.0.0/480\n"),
              std::string::npos)
        << dump.out;
    // The first staff's tablature instrument, an attachment, with its fields.
    EXPECT_NE(dump.out.find(" instrument=\"7-String Guitar\" description=\"standard tuning with a low B\" strings=7 "
                            "frets=24 distance=4 tunes=64,59,55,50,45,40,35 initialized=1\n"),
              std::string::npos)
        << dump.out;

    ToolRun info = Tool("info '" + file + "'");
    ASSERT_EQ(info.code, 0) << info.err;
    EXPECT_NE(info.out.find("document version 20"), std::string::npos) << info.out;
    EXPECT_NE(info.out.find("staves: 3"), std::string::npos) << info.out;

    // Cut short, the same file is refused with the reason and nothing on stdout.
    fs::resize_file(file, fs::file_size(file) / 2);
    ToolRun cut = Tool("dump '" + file + "'");
    EXPECT_EQ(cut.code, 1);
    EXPECT_TRUE(cut.out.empty()) << cut.out;
    EXPECT_NE(cut.err.find("truncated"), std::string::npos) << cut.err;
}

TEST_F(ScoremodelToolTest, WrongCommandLinesAndMissingFilesFail)
{
    const struct
    {
        const char *arguments;
        int code;
    } cases[] = {{"", 2}, {"frobnicate", 2}, {"dump", 2}, {"info a b", 2}, {"info /no/such/file", 1}};
    for (const auto &c : cases)
    {
        ToolRun run = Tool(c.arguments);
        EXPECT_EQ(run.code, c.code) << c.arguments;
        EXPECT_FALSE(run.err.empty()) << c.arguments;
    }
    EXPECT_EQ(Tool("--help").code, 0);
}

TEST_F(ScoremodelToolTest, EveryKindOfInputIsReadTheSameWay)
{
    const std::string file = (m_dir / "demo.smd").string();
    ASSERT_EQ(Tool("demo '" + file + "'").code, 0);
    const std::string padded = (m_dir / "padded.smd").string();
    fs::copy_file(file, padded);
    std::ofstream(padded, std::ios::app) << "tail";

    const struct
    {
        std::string arguments;
        int code;
        const char *needle; // in stdout on success, in stderr on failure
    } cases[] = {
        {"info '" + file + "'", 0, "document version 20"},
        {"info - <'" + file + "'", 0, "standard input: document version 20"},
        {"info /dev/stdin <'" + file + "'", 0, "document version 20"},
        {"info - < /dev/null", 1, "standard input"},
        {"info '" + padded + "'", 1, "padded.smd"},
        {"info - <'" + padded + "'", 1, "standard input"},
        {"dump /dev/stdin <'" + padded + "'", 1, "/dev/stdin"},
        {"info '" + m_dir.string() + "'", 1, "directory"},
    };
    for (const auto &c : cases)
    {
        ToolRun run = Tool(c.arguments);
        EXPECT_EQ(run.code, c.code) << c.arguments << "\n" << run.err;
        EXPECT_NE((c.code ? run.err : run.out).find(c.needle), std::string::npos) << c.arguments << "\n" << run.err;
        if (c.code)
            EXPECT_TRUE(run.out.empty()) << c.arguments;
    }
}

TEST_F(ScoremodelToolTest, PipedInputsAreReadAsFilesAre)
{
    const std::string file = (m_dir / "demo.smd").string();
    ASSERT_EQ(Tool("demo '" + file + "'").code, 0);
#ifdef SCOREMODEL_TOOL
    const std::string tool = std::string("'") + SCOREMODEL_TOOL + "'";
    const std::string out = (m_dir / "out").string();
    // A pipe holding the document, then the document with bytes behind it.
    EXPECT_EQ(std::system(("cat '" + file + "' | " + tool + " info - >'" + out + "' 2>&1").c_str()), 0) << Slurp(out);
    EXPECT_NE(std::system(("(cat '" + file + "'; echo tail) | " + tool + " info /dev/stdin >'" + out + "' 2>&1").c_str()),
              0);
    EXPECT_NE(Slurp(out).find("/dev/stdin"), std::string::npos) << Slurp(out);
#endif
}

TEST_F(ScoremodelToolTest, FailedWritesAndSavesSayWhatFailed)
{
    const std::string file = (m_dir / "demo.smd").string();
    ASSERT_EQ(Tool("demo '" + file + "'").code, 0);
    if (fs::exists("/dev/full"))
    {
#ifdef SCOREMODEL_TOOL
        const std::string err = (m_dir / "err").string();
        for (const std::string command : {"dump", "info"})
        {
            const int status = std::system((std::string("'") + SCOREMODEL_TOOL + "' " + command + " '" + file +
                                            "' >/dev/full 2>'" + err + "'")
                                               .c_str());
            EXPECT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : -1, 1) << command;
            EXPECT_NE(Slurp(err).find("cannot write the output"), std::string::npos) << Slurp(err);
        }
#endif
    }
    // A save into a missing folder names the file asked for, not its
    // temporary neighbour.
    const std::string target = (m_dir / "missing" / "x.smd").string();
    ToolRun save = Tool("demo '" + target + "'");
    EXPECT_EQ(save.code, 1);
    EXPECT_NE(save.err.find("'" + target + "'"), std::string::npos) << save.err;
    EXPECT_EQ(save.err.find(".tmp-"), std::string::npos) << save.err;

    ToolRun help = Tool("--help");
    EXPECT_EQ(help.code, 0);
    for (const char *word : {"Exit codes", "SCOREMODEL_DATA_DIR", "SCOREMODEL_USER_DIR", "SCOREMODEL_NODE_POOL"})
        EXPECT_NE(help.out.find(word), std::string::npos) << word;
}

TEST_F(ScoremodelToolTest, DumpShowsTheFieldsOfTextsFramesDrawingsAudioFlowMarksAndSystemMessages)
{
    struct Case
    {
        const char *file;
        const char *line;
    } const cases[] = {
        {"fields_59.smd", "ECText id=59 time=none voice=15 track=2047 text=\"Allegro ma non troppo\" type=21\n"},
        {"fields_30.smd", "ECLyric id=30 time=none voice=15 track=2047 text=\"la-\" type=4\n"},
        {"fields_25.smd", "ECFrame id=25 time=none voice=15 track=2047 frame=10,20,300,400 valid=1\n"},
        {"fields_71.smd", "ECWave id=71 time=none voice=15 track=2047 file=\"take3.wav\" offset=44100 length=88200\n"},
        {"fields_77.smd", "ECDrawing id=77 shape=1 bounds=5,6,70,80\n"},
        {"fields_24.smd", "ECFlowControl id=24 time=none voice=15 track=2047 flow=9\n"},
        {"fields_56.smd", "ECSystemMessage id=56 time=none voice=15 track=2047 sysex=\"f0 43 10 4c 00 00 7e 00 f7 \"\n"},
    };
    for (const Case &c : cases)
    {
        const std::string path = std::string(SCOREMODEL_TEST_SOURCE_DIR) + "/fuzz/corpus/load_document/" + c.file;
        ToolRun dump = Tool("dump '" + path + "'");
        ASSERT_EQ(dump.code, 0) << c.file << ": " << dump.err;
        EXPECT_NE(dump.out.find(c.line), std::string::npos) << dump.out;
    }
}

// ---- MIDI files, through the midifile plug-in beside the library ----

namespace
{
void WriteBytes(const fs::path &path, const std::vector<uint8_t> &bytes)
{
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char *>(bytes.data()), bytes.size());
}
} // namespace

TEST_F(ScoremodelToolTest, MidiInfoImportExportAndBack)
{
    const std::string song = (m_dir / "song.mid").string(), doc = (m_dir / "song.smd").string(),
                      back = (m_dir / "back.mid").string();
    WriteBytes(song, smf::Serialize(smftest::EveryEvent()));
    ToolRun info = Tool("info '" + song + "'");
    ASSERT_EQ(info.code, 0) << info.err;
    EXPECT_EQ(info.err, "");
    for (const std::string &line :
         {song + ": MIDI file, format 1, division 96, 3 tracks, 36 events, 5 notes on 3 staves, 2 bars; every time exact",
          std::string("  tempo map: 2 changes\n    bar 1, beat 0.000 (0.000 s): 120.000 quarters per minute\n"
                      "    bar 2, beat 4.000 (2.000 s): 150.000 quarters per minute\n"),
          std::string("  meter map: 2 changes\n    bar 1, beat 0.000: 4/4\n    bar 2, beat 4.000: 3/4\n"),
          std::string("  length: 2 bars, 3.200 s\n")})
        EXPECT_NE(info.out.find(line), std::string::npos) << line << "\n" << info.out;

    ToolRun import = Tool("import '" + song + "' '" + doc + "'");
    ASSERT_EQ(import.code, 0) << import.err;
    EXPECT_NE(import.out.find("saved " + doc), std::string::npos) << import.out;
    ToolRun dump = Tool("dump '" + doc + "'");
    ASSERT_EQ(dump.code, 0) << dump.err;
    EXPECT_NE(dump.out.find("ECTie"), std::string::npos);

    ToolRun out = Tool("export '" + doc + "' '" + back + "'");
    ASSERT_EQ(out.code, 0) << out.err;
    EXPECT_NE(out.out.find(back + ": 4 tracks, 36 events"), std::string::npos) << out.out;
    const std::string bytes = Slurp(back);
    const smf::File read = smf::Parse(reinterpret_cast<const uint8_t *>(bytes.data()), bytes.size());
    EXPECT_EQ(smftest::Flatten(read), smftest::Flatten(smftest::EveryEvent()));
}

TEST_F(ScoremodelToolTest, MidiFailuresAreOneLineAndExitOne)
{
    std::vector<uint8_t> broken = smf::Serialize(smftest::EveryEvent());
    broken[21] = 0xFF; // the first track's length, far past the end
    WriteBytes(m_dir / "broken.mid", broken);
    WriteBytes(m_dir / "notadoc.smd", {'M', 'T', 'h', 'd'});
    const std::string dir = m_dir.string() + "/";
    struct Case
    {
        std::string arguments;
        int code;
        std::string message;
    } cases[] = {
        {"import broken.mid out.smd", 1, "scoremodel: " + dir + "broken.mid: byte 18: chunk length"},
        {"info broken.mid", 1, "scoremodel: " + dir + "broken.mid: byte 18: chunk length"},
        {"import missing.mid out.smd", 1, "scoremodel: " + dir + "missing.mid: "},
        {"export missing.smd out.mid", 1, "scoremodel: "},
        {"export notadoc.smd out.mid", 1, "scoremodel: " + dir + "notadoc.smd: "},
        {"import broken.mid", 2, "scoremodel: wrong arguments for 'import'"},
        {"export a b c", 2, "scoremodel: wrong arguments for 'export'"},
    };
    for (const Case &c : cases)
    {
        SCOPED_TRACE(c.arguments);
        // Every file name is taken inside the test's folder.
        std::string arguments;
        std::istringstream words(c.arguments);
        for (std::string word; words >> word;)
            arguments += (arguments.empty() ? word : " '" + dir + word + "'");
        ToolRun run = Tool(arguments);
        EXPECT_EQ(run.code, c.code);
        EXPECT_EQ(run.err.rfind(c.message, 0), 0u) << run.err;
        if (c.code == 1)
        {
            EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << run.err;
        }
        EXPECT_FALSE(fs::exists(m_dir / "out.smd"));
        EXPECT_FALSE(fs::exists(m_dir / "out.mid"));
    }
}
