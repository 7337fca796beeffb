// The tool's MIDI commands end to end: info, import, export and the trip
// back, and one-line failures with exit code 1 for broken files.
#include "SmfTestFiles.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/wait.h>

namespace fs = std::filesystem;

namespace
{
std::string Slurp(const fs::path &path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

class MidiTool : public ::testing::Test
{
protected:
    struct Run
    {
        int code;
        std::string out, err;
    };

    void SetUp() override
    {
#ifndef SCOREMODEL_TOOL
        GTEST_SKIP() << "the tool is not built";
#endif
        m_dir = fs::path(SCOREMODEL_TEST_BINARY_DIR) / "midi-tool-test" /
                ::testing::UnitTest::GetInstance()->current_test_info()->name();
        fs::remove_all(m_dir);
        fs::create_directories(m_dir);
    }
    void TearDown() override { fs::remove_all(m_dir); }

    std::string Path(const char *name) const { return (m_dir / name).string(); }

    void WriteFile(const char *name, const std::vector<uint8_t> &bytes) const
    {
        std::ofstream(m_dir / name, std::ios::binary).write(reinterpret_cast<const char *>(bytes.data()), bytes.size());
    }

    Run Tool(const std::string &arguments)
    {
#ifdef SCOREMODEL_TOOL
        const std::string command = std::string("cd '") + m_dir.string() + "' && '" + SCOREMODEL_TOOL + "' " +
                                    arguments + " >out 2>err";
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Slurp(m_dir / "out"), Slurp(m_dir / "err")};
#else
        return {-1, arguments, ""};
#endif
    }

    fs::path m_dir;
};
} // namespace

TEST_F(MidiTool, InfoImportExportAndBack)
{
    WriteFile("song.mid", smf::Serialize(smftest::EveryEvent()));
    Run info = Tool("info song.mid");
    ASSERT_EQ(info.code, 0) << info.err;
    EXPECT_EQ(info.err, "");
    for (const char *line :
         {"song.mid: MIDI file, format 1, division 96, 3 tracks, 35 events, 5 notes on 3 staves, 2 bars; every time "
          "exact",
          "  tempo map: 2 changes\n    bar 1, beat 0.000 (0.000 s): 120.000 quarters per minute\n"
          "    bar 2, beat 4.000 (2.000 s): 150.000 quarters per minute\n",
          "  meter map: 2 changes\n    bar 1, beat 0.000: 4/4\n    bar 2, beat 4.000: 3/4\n",
          "  length: 2 bars, 3.200 s\n"})
        EXPECT_NE(info.out.find(line), std::string::npos) << line << "\n" << info.out;

    Run import = Tool("import song.mid song.smd");
    ASSERT_EQ(import.code, 0) << import.err;
    EXPECT_NE(import.out.find("saved song.smd"), std::string::npos) << import.out;
    Run dump = Tool("dump song.smd");
    ASSERT_EQ(dump.code, 0) << dump.err;
    EXPECT_NE(dump.out.find("ECTie"), std::string::npos);

    Run out = Tool("export song.smd back.mid");
    ASSERT_EQ(out.code, 0) << out.err;
    EXPECT_NE(out.out.find("back.mid: 4 tracks, 35 events"), std::string::npos) << out.out;
    const std::string bytes = Slurp(m_dir / "back.mid");
    const smf::File back = smf::Parse(reinterpret_cast<const uint8_t *>(bytes.data()), bytes.size());
    EXPECT_EQ(smftest::Flatten(back), smftest::Flatten(smftest::EveryEvent()));
}

TEST_F(MidiTool, FailuresAreOneLineAndExitOne)
{
    std::vector<uint8_t> broken = smf::Serialize(smftest::EveryEvent());
    broken[21] = 0xFF; // the first track's length, far past the end
    WriteFile("broken.mid", broken);
    WriteFile("notadoc.smd", {'M', 'T', 'h', 'd'});
    struct Case
    {
        const char *arguments;
        int code;
        const char *message;
    } cases[] = {
        {"import broken.mid out.smd", 1, "scoremodel: broken.mid: byte 18: chunk length"},
        {"info broken.mid", 1, "scoremodel: broken.mid: byte 18: chunk length"},
        {"import missing.mid out.smd", 1, "scoremodel: missing.mid: "},
        {"export missing.smd out.mid", 1, "scoremodel: "},
        {"export notadoc.smd out.mid", 1, "scoremodel: notadoc.smd: "},
        {"import broken.mid", 2, "scoremodel: wrong arguments for 'import'"},
        {"export a b c", 2, "scoremodel: wrong arguments for 'export'"},
    };
    for (const Case &c : cases)
    {
        SCOPED_TRACE(c.arguments);
        Run run = Tool(c.arguments);
        EXPECT_EQ(run.code, c.code);
        EXPECT_EQ(run.err.rfind(c.message, 0), 0u) << run.err;
        if (c.code == 1)
            EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << run.err;
        EXPECT_FALSE(fs::exists(m_dir / "out.smd"));
        EXPECT_FALSE(fs::exists(m_dir / "out.mid"));
    }
}
