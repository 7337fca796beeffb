#include <scoremodel/platform/CommonPaths.h>

#include "CommonTestFolders.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>

namespace
{
std::string Utf8(const CString &s)
{
    return s.ToUtf8();
}
} // namespace

TEST(CommonPaths, TheUserFolderFollowsTheRedirectThenXdgThenHome)
{
    struct Case
    {
        const char *what;
        std::optional<std::string> userDir;
        std::optional<std::string> xdgConfigHome;
        std::optional<std::string> home;
        std::string expected;
    };
    const Case cases[] = {
        {"redirect wins", "/r/user", "/x/config", "/h", "/r/user"},
        {"redirect's trailing slash dropped", "/r/user/", std::nullopt, "/h", "/r/user"},
        {"empty redirect ignored", "", "/x/config", "/h", "/x/config/scoremodel"},
        {"XDG config home", std::nullopt, "/x/config", "/h", "/x/config/scoremodel"},
        {"relative XDG ignored", std::nullopt, "relative/config", "/h", "/h/.config/scoremodel"},
        {"home", std::nullopt, std::nullopt, "/h", "/h/.config/scoremodel"},
        {"home with trailing slash", std::nullopt, "", "/h/", "/h/.config/scoremodel"},
    };
    for (const Case &c : cases)
    {
        CommonTestFolders folders;
        folders.Set("SCOREMODEL_USER_DIR", c.userDir);
        folders.Set("XDG_CONFIG_HOME", c.xdgConfigHome);
        folders.Set("HOME", c.home);
        EXPECT_EQ(Utf8(MCGetUserFolder()), c.expected) << c.what;
        EXPECT_EQ(Utf8(MCGetUserTabInstrumentsPath()), c.expected + "/TabInstruments.xml") << c.what;
    }
}

TEST(CommonPaths, TheDataFolderFollowsTheRedirect)
{
    CommonTestFolders folders;
    folders.Set("SCOREMODEL_DATA_DIR", "/somewhere/data/");
    EXPECT_EQ(Utf8(MCGetDataFolder()), "/somewhere/data");
    EXPECT_EQ(Utf8(MCGetInstrumentPath()), "/somewhere/data/instruments");
    EXPECT_EQ(Utf8(MCGetAppTabInstrumentsPath()), "/somewhere/data/instruments/TabInstruments.xml");
}

TEST(CommonPaths, AnInstalledLibraryFindsTheDataOfItsPrefix)
{
    CommonTestFolders folders;
    const std::filesystem::path prefix = folders.Root() / "prefix";
    std::filesystem::create_directories(prefix / "share/scoremodel/languages");
    std::filesystem::create_directories(prefix / "lib/x86_64-linux-gnu");
    const std::string data = std::filesystem::canonical(prefix / "share/scoremodel").string();

    EXPECT_EQ(Utf8(MCGetDataFolderBeside(CString((prefix / "lib/libscoremodel.so.0").string().c_str()))), data);
    EXPECT_EQ(Utf8(MCGetDataFolderBeside(CString((prefix / "lib/x86_64-linux-gnu/libscoremodel.so").string().c_str()))),
              data);
    EXPECT_EQ(Utf8(MCGetDataFolderBeside(CString((folders.Root() / "elsewhere/lib/libscoremodel.so").string().c_str()))),
              "");
    EXPECT_EQ(Utf8(MCGetDataFolderBeside(CString(L"libscoremodel.so"))), "");
}

TEST(CommonPaths, NoDataFolderGivesEmptyPathsNotPathsAtTheRoot)
{
    CommonTestFolders folders;
    folders.Set("SCOREMODEL_DATA_DIR", std::nullopt);
    // In the build tree there is no installed data beside the library.
    if (!MCGetDataFolder().IsEmpty())
        GTEST_SKIP() << "the library found installed data beside itself";
    EXPECT_TRUE(MCGetInstrumentPath().IsEmpty());
    EXPECT_TRUE(MCGetAppTabInstrumentsPath().IsEmpty());
}

TEST(CommonPaths, FileExistsOnlyForRegularFilesWhateverTheirNames)
{
    CommonTestFolders folders;
    const std::filesystem::path file = folders.WriteFile("a/file.xml", "<x/>");
    std::filesystem::create_symlink(file, folders.Root() / "link.xml");
    std::filesystem::create_symlink(folders.Root() / "missing.xml", folders.Root() / "dangling.xml");
    EXPECT_TRUE(MCFileExists(CString(file.string().c_str())));
    EXPECT_TRUE(MCFileExists(CString((folders.Root() / "link.xml").string().c_str())));
    EXPECT_FALSE(MCFileExists(CString((folders.Root() / "dangling.xml").string().c_str())));
    EXPECT_FALSE(MCFileExists(CString((folders.Root() / "a").string().c_str())));
    EXPECT_FALSE(MCFileExists(CString((folders.Root() / "missing.xml").string().c_str())));
    EXPECT_FALSE(MCFileExists(CString()));
    const std::filesystem::path nonAscii = folders.WriteFile("Gr\xC3\xB6\xC3\x9F" "e.xml", "<x/>");
    EXPECT_TRUE(MCFileExists(CString::FromUtf8(nonAscii.string().c_str())));
}

TEST(CommonPaths, CreateFolderMakesMissingParents)
{
    CommonTestFolders folders;
    const std::filesystem::path deep = folders.Root() / "one/two/three";
    EXPECT_TRUE(MCCreateFolder(CString(deep.string().c_str())));
    EXPECT_TRUE(std::filesystem::is_directory(deep));
    EXPECT_TRUE(MCCreateFolder(CString((deep.string() + "/").c_str()))); // already there
    folders.WriteFile("blocker", "x");
    EXPECT_FALSE(MCCreateFolder(CString((folders.Root() / "blocker/sub").string().c_str())));
    EXPECT_FALSE(MCCreateFolder(CString()));
}
