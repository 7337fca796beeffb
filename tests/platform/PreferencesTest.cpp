#include <scoremodel/platform/Preferences.h>

#include "CommonTestFolders.h"

#include <gtest/gtest.h>

#include <climits>
#include <tuple>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <spawn.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char **environ;

namespace
{
std::string PreferencesFile()
{
    return MCGetPreferencesPath().ToUtf8();
}

// Runs this test program again with a filter and extra variables, and gives
// its exit status.
int RunSelf(const std::string &filter, const std::vector<std::string> &extraEnvironment)
{
    std::vector<std::string> environment;
    for (char **e = environ; *e; ++e)
        environment.emplace_back(*e);
    environment.insert(environment.end(), extraEnvironment.begin(), extraEnvironment.end());
    std::vector<char *> envp;
    for (std::string &e : environment)
        envp.push_back(e.data());
    envp.push_back(nullptr);

    std::string program = "/proc/self/exe";
    std::string filterArgument = "--gtest_filter=" + filter;
    char *argv[] = {program.data(), filterArgument.data(), nullptr};
    pid_t pid = 0;
    if (::posix_spawn(&pid, program.c_str(), nullptr, nullptr, argv, envp.data()) != 0)
        return -1;
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0)
    {
        if (errno != EINTR)
            return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void KillDuringSave(const char *)
{
    ::raise(SIGKILL);
}
} // namespace

TEST(Preferences, SavedValuesReadBackExactlyWhateverTheCaseOfTheirNames)
{
    CommonTestFolders folders;
    const std::tuple<const wchar_t *, const wchar_t *, int> cases[] = {
        {L"Settings", L"Smallest", INT_MIN},
        {L"Settings", L"Largest", INT_MAX},
        {L"Settings\\Notation", L"NoteNamePattern", 2},
        {L"Settings\\Tempo\\Gr\u00F6\u00DFer \u266F", L"BPM", 99},
    };
    for (const auto &[section, key, value] : cases)
        ASSERT_TRUE(SaveIntPreference(section, key, value)) << CString(section).ToUtf8();
    for (const auto &[section, key, value] : cases)
        EXPECT_EQ(LoadIntPreference(section, key, 12345), value) << CString(section).ToUtf8();
    EXPECT_EQ(LoadIntPreference(L"SETTINGS\\notation", L"notenamepattern", 0), 2);
    ASSERT_TRUE(SaveIntPreference(L"settings\\NOTATION", L"NOTENAMEPATTERN", 4));
    EXPECT_EQ(LoadIntPreference(L"Settings\\Notation", L"NoteNamePattern", 0), 4);
    EXPECT_EQ(LoadIntPreference(L"Settings", L"UndoLevels", 250), 250) << "absent: the default";
    EXPECT_EQ(LoadIntPreference(L"Elsewhere", L"Largest", -7), -7);
}

TEST(Preferences, UnstorableNamesAreRefusedAndTheFileIsLeftAlone)
{
    CommonTestFolders folders;
    ASSERT_TRUE(SaveIntPreference(L"Settings", L"UndoLevels", 100));
    const std::string before = CommonTestFolders::ReadFile(PreferencesFile());
    EXPECT_FALSE(SaveIntPreference(L"", L"Key", 1));
    EXPECT_FALSE(SaveIntPreference(L"Two\nLines", L"Key", 1));
    EXPECT_FALSE(SaveIntPreference(L"Settings", L"", 1));
    EXPECT_FALSE(SaveIntPreference(L"Settings", L"a=b", 1));
    EXPECT_FALSE(SaveIntPreference(L"Settings", L"[Key", 1));
    EXPECT_EQ(CommonTestFolders::ReadFile(PreferencesFile()), before);
    EXPECT_EQ(LoadIntPreference(L"Settings", L"UndoLevels", 0), 100);
}

TEST(Preferences, GarbledFilesGiveDefaultsAndCanBeSavedOver)
{
    struct Case
    {
        const char *what;
        std::string bytes;
    };
    std::string binary;
    for (int i = 0; i < 4096; ++i)
        binary += static_cast<char>((i * 131 + 7) % 256);
    const Case cases[] = {
        {"binary noise", binary},
        {"not a number", "[Settings]\nUndoLevels=many\n"},
        {"number with trailing junk", "[Settings]\nUndoLevels=12abc\n"},
        {"number too large for int", "[Settings]\nUndoLevels=99999999999\n"},
        {"truncated header", "[Settings\nUndoLevels=5\n"},
        {"invalid UTF-8 in the line", "[Settings]\nUndoLevels=5\xFF\n"},
        {"key outside any section", "UndoLevels=5\n"},
    };
    for (const Case &c : cases)
    {
        CommonTestFolders folders;
        folders.WriteFile("user/preferences.ini", c.bytes);
        EXPECT_EQ(LoadIntPreference(L"Settings", L"UndoLevels", 250), 250) << c.what;
        EXPECT_TRUE(SaveIntPreference(L"Settings", L"UndoLevels", 9)) << c.what;
        EXPECT_EQ(LoadIntPreference(L"Settings", L"UndoLevels", 250), 9) << c.what;
    }
}

TEST(Preferences, ValuesNextToGarbageAreStillRead)
{
    CommonTestFolders folders;
    folders.WriteFile("user/preferences.ini",
                      "\x01\x02 noise\n[Settings]\nUndoLevels=42\nbroken line\n\xFE\xFF\n[Other]\nX=1\n");
    EXPECT_EQ(LoadIntPreference(L"Settings", L"UndoLevels", 250), 42);
    EXPECT_EQ(LoadIntPreference(L"Other", L"X", 0), 1);
}

TEST(Preferences, AFolderOrPipeInPlaceOfTheFileGivesDefaultsNeitherHangsNorIsReplaced)
{
    for (bool pipe : {false, true})
    {
        CommonTestFolders folders;
        const std::filesystem::path file = folders.UserFolder() / "preferences.ini";
        std::filesystem::create_directories(pipe ? folders.UserFolder() : file);
        if (pipe)
        {
            ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
        }
        EXPECT_EQ(LoadIntPreference(L"Settings", L"UndoLevels", 250), 250);
        EXPECT_FALSE(SaveIntPreference(L"Settings", L"UndoLevels", 5));
        EXPECT_EQ(std::filesystem::status(file).type(),
                  pipe ? std::filesystem::file_type::fifo : std::filesystem::file_type::directory);
    }
}

TEST(Preferences, AFileTheUserCannotReadIsNotOverwritten)
{
    if (::geteuid() == 0)
        GTEST_SKIP() << "permissions do not bind the super-user";
    CommonTestFolders folders;
    ASSERT_TRUE(SaveIntPreference(L"Settings", L"UndoLevels", 100));
    ::chmod(PreferencesFile().c_str(), 0);
    EXPECT_EQ(LoadIntPreference(L"Settings", L"UndoLevels", 250), 250);
    EXPECT_FALSE(SaveIntPreference(L"Settings", L"Other", 1));
    ::chmod(PreferencesFile().c_str(), 0600);
    EXPECT_EQ(LoadIntPreference(L"Settings", L"UndoLevels", 250), 100);
}

TEST(Preferences, SavingKeepsThePermissionsTheUserGaveTheFile)
{
    CommonTestFolders folders;
    ASSERT_TRUE(SaveIntPreference(L"Settings", L"UndoLevels", 1));
    ASSERT_EQ(::chmod(PreferencesFile().c_str(), 0600), 0);
    // A temporary file left open to everyone by a crashed save must not lend
    // its permissions to the next one.
    const std::string leftover = PreferencesFile() + ".tmp";
    std::ofstream(leftover) << "[Settings]\n";
    ASSERT_EQ(::chmod(leftover.c_str(), 0666), 0);
    ASSERT_TRUE(SaveIntPreference(L"Settings", L"UndoLevels", 2));
    struct stat st;
    ASSERT_EQ(::stat(PreferencesFile().c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0600u);
}

TEST(Preferences, AProcessKilledInTheMiddleOfASaveLeavesTheOldFileReadable)
{
    CommonTestFolders folders;
    ASSERT_TRUE(SaveIntPreference(L"Settings", L"UndoLevels", 100));
    ASSERT_TRUE(SaveIntPreference(L"Settings\\Tempo\\Largo", L"BPM", 50));
    const std::string before = CommonTestFolders::ReadFile(PreferencesFile());

    // The child dies after the new file is complete on disk but before it
    // takes the old one's place.
    EXPECT_EXIT(
        {
            MCSetPreferenceSaveFault(&KillDuringSave);
            SaveIntPreference(L"Settings", L"UndoLevels", 999);
            std::_Exit(0);
        },
        ::testing::KilledBySignal(SIGKILL), "");

    EXPECT_EQ(CommonTestFolders::ReadFile(PreferencesFile()), before);
    EXPECT_EQ(LoadIntPreference(L"Settings", L"UndoLevels", 250), 100);
    EXPECT_EQ(LoadIntPreference(L"Settings\\Tempo\\Largo", L"BPM", 0), 50);

    // The leftover of the crash does not get in the way of the next save.
    ASSERT_TRUE(SaveIntPreference(L"Settings", L"UndoLevels", 300));
    EXPECT_EQ(LoadIntPreference(L"Settings", L"UndoLevels", 250), 300);
    EXPECT_EQ(LoadIntPreference(L"Settings\\Tempo\\Largo", L"BPM", 0), 50);
}

TEST(Preferences, SavesFromSeveralProcessesAtOnceLoseNothing)
{
    CommonTestFolders folders;
    const int processes = 4;
    const int keysEach = 20;
    std::vector<pid_t> children;
    for (int p = 0; p < processes; ++p)
    {
        const pid_t pid = ::fork();
        ASSERT_GE(pid, 0);
        if (pid == 0)
        {
            bool ok = true;
            for (int k = 0; k < keysEach; ++k)
                ok = SaveIntPreference(L"Race", CString(("P" + std::to_string(p) + "K" + std::to_string(k)).c_str()),
                                       p * 100 + k) &&
                     ok;
            std::_Exit(ok ? 0 : 1);
        }
        children.push_back(pid);
    }
    for (pid_t pid : children)
    {
        int status = 0;
        ASSERT_EQ(::waitpid(pid, &status, 0), pid);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    for (int p = 0; p < processes; ++p)
        for (int k = 0; k < keysEach; ++k)
            EXPECT_EQ(LoadIntPreference(L"Race", CString(("P" + std::to_string(p) + "K" + std::to_string(k)).c_str()), -1),
                      p * 100 + k);
}

TEST(Preferences, ValuesSurviveARestartOfTheProcess)
{
    CommonTestFolders folders;
    ASSERT_TRUE(SaveIntPreference(L"Settings", L"UndoLevels", 777));
    // A second run of this program reads what we saved and saves a value of
    // its own; see PreferencesSecondProcess below.
    EXPECT_EQ(RunSelf("PreferencesSecondProcess.*", {"SCOREMODEL_TEST_SECOND_PROCESS=1"}), 0);
    EXPECT_EQ(LoadIntPreference(L"Settings\\Tempo\\Largo", L"BPM", -1), 51);
    EXPECT_EQ(LoadIntPreference(L"Settings", L"UndoLevels", -1), 777);
}

// The second process of ValuesSurviveARestartOfTheProcess; does nothing when
// run on its own.
TEST(PreferencesSecondProcess, ReadsWhatTheFirstSavedAndSavesForIt)
{
    if (std::getenv("SCOREMODEL_TEST_SECOND_PROCESS") == nullptr)
        GTEST_SKIP() << "runs only as the second process of ValuesSurviveARestartOfTheProcess";
    ASSERT_EQ(LoadIntPreference(L"Settings", L"UndoLevels", -1), 777);
    ASSERT_TRUE(SaveIntPreference(L"Settings\\Tempo\\Largo", L"BPM", 51));
}

TEST(Preferences, UserFilesGoOnlyIntoTheRedirectedFolderAndFollowItAtOnce)
{
    CommonTestFolders folders;
    folders.Set("SCOREMODEL_USER_DIR", (folders.Root() / "deep/nested/user").string());
    ASSERT_TRUE(SaveIntPreference(L"Settings", L"UndoLevels", 1));
    EXPECT_EQ(PreferencesFile(), (folders.Root() / "deep/nested/user/preferences.ini").string());
    EXPECT_TRUE(std::filesystem::is_regular_file(PreferencesFile()));
    EXPECT_FALSE(std::filesystem::exists(folders.HomeFolder()));
    folders.Set("SCOREMODEL_USER_DIR", (folders.Root() / "second").string());
    EXPECT_EQ(LoadIntPreference(L"Settings", L"UndoLevels", 250), 250);
    ASSERT_TRUE(SaveIntPreference(L"Settings", L"UndoLevels", 2));
    folders.Set("SCOREMODEL_USER_DIR", (folders.Root() / "deep/nested/user").string());
    EXPECT_EQ(LoadIntPreference(L"Settings", L"UndoLevels", 250), 1);
}

TEST(Preferences, AnEditByHandIsSeenWithoutARestart)
{
    CommonTestFolders folders;
    ASSERT_TRUE(SaveIntPreference(L"Settings", L"UndoLevels", 1));
    EXPECT_EQ(LoadIntPreference(L"Settings", L"UndoLevels", 250), 1);
    // Another program replaces the file, as an editor would.
    folders.WriteFile("user/preferences.ini.new", "[Settings]\nUndoLevels=2000\n");
    std::filesystem::rename(folders.UserFolder() / "preferences.ini.new", folders.UserFolder() / "preferences.ini");
    EXPECT_EQ(LoadIntPreference(L"Settings", L"UndoLevels", 250), 2000);
}
