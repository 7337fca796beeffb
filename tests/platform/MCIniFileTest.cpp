#include <scoremodel/platform/MCIniFile.h>

#include <gtest/gtest.h>

#include <string>

TEST(MCIniFile, TextsSurviveWritingAndReadingWhateverCharactersTheyHold)
{
    const std::string texts[] = {
        "",
        "plain",
        "two\nlines",
        "crlf\r\nline",
        "tab\there",
        " leading and trailing blanks ",
        "  ",
        "C:\\path\\n not a newline",
        "ends in a backslash\\",
        "\\s literally",
        "Gr\xC3\xB6\xC3\x9F" "e \xE2\x99\xAF",
        "a = b = c",
        "; not a comment",
    };
    MCIniFile file;
    for (size_t i = 0; i < std::size(texts); ++i)
        ASSERT_TRUE(file.Set("Section", "KEY" + std::to_string(i), texts[i])) << i;

    MCIniFile reread;
    reread.Parse(file.Serialize());
    for (size_t i = 0; i < std::size(texts); ++i)
    {
        const std::string *text = reread.Find("Section", "KEY" + std::to_string(i));
        ASSERT_NE(text, nullptr) << i;
        EXPECT_EQ(*text, texts[i]) << i;
    }
}

TEST(MCIniFile, HandWrittenFilesReadAsTheirAuthorMeantThem)
{
    struct Case
    {
        const char *what;
        std::string text;
        const char *section;
        const char *key;
        const char *expected; // null: absent
    };
    const Case cases[] = {
        {"windows line ends", "[S]\r\nK=v\r\n", "S", "K", "v"},
        {"byte order mark", "\xEF\xBB\xBF[S]\nK=v\n", "S", "K", "v"},
        {"blanks around names and text", "  [ S ]  \n  K  =  v  \n", "S", "K", "v"},
        {"section case", "[Settings]\nK=v\n", "SETTINGS", "K", "v"},
        {"key case", "[S]\nUndoLevels=5\n", "S", "undolevels", "5"},
        {"backslashes in a section", "[Settings\\Tempo\\Largo]\nBPM=50\n", "settings\\tempo\\largo", "BPM", "50"},
        {"bracket inside a section", "[a]b]\nK=v\n", "a]b", "K", "v"},
        {"first equals splits", "[S]\nK=a=b\n", "S", "K", "a=b"},
        {"later duplicate wins", "[S]\nK=1\nK=2\n", "S", "K", "2"},
        {"sections merge", "[S]\nA=1\n[T]\nB=2\n[s]\nC=3\n", "S", "C", "3"},
        {"empty text", "[S]\nK=\n", "S", "K", ""},
        {"escapes", "[S]\nK=a\\nb\\tc\\\\d\n", "S", "K", "a\nb\tc\\d"},
        {"unknown escape kept", "[S]\nK=C:\\x\n", "S", "K", "C:\\x"},
        {"comments", "; c\n# c\n[S]\n;K=1\nK=2\n", "S", "K", "2"},
        {"no final line end", "[S]\nK=v", "S", "K", "v"},
        {"key before any section", "K=v\n[S]\n", "S", "K", nullptr},
        {"key without equals", "[S]\nK\n", "S", "K", nullptr},
        {"unknown section", "[S]\nK=v\n", "T", "K", nullptr},
        {"bad header hides its keys", "[S]\nK=1\n[\xFF]\nK=2\n", "S", "K", "1"},
        {"unclosed header hides its keys", "[S]\nK=1\n[T\nK=2\n", "S", "K", "1"},
        {"invalid UTF-8 line skipped", "[S]\nK=1\nK=\xC0\xAF\n", "S", "K", "1"},
        {"NUL in a line skipped", std::string("[S]\nK=1\nK=2\0x\n", 14), "S", "K", "1"},
    };
    for (const Case &c : cases)
    {
        MCIniFile file;
        file.Parse(c.text);
        const std::string *text = file.Find(c.section, c.key);
        if (c.expected == nullptr)
            EXPECT_EQ(text, nullptr) << c.what;
        else if (text == nullptr)
            ADD_FAILURE() << c.what << ": key not found";
        else
            EXPECT_EQ(*text, c.expected) << c.what;
    }
}

TEST(MCIniFile, NamesThatCouldNotBeReadBackAreRefused)
{
    const std::pair<std::string, std::string> names[] = {{"", "K"},   {"  ", "K"},  {"a\nb", "K"}, {"S", ""},
                                                         {"S", "a=b"}, {"S", "[K"}, {"S", ";K"},   {"S", "#K"}};
    MCIniFile file;
    for (const auto &[section, key] : names)
        EXPECT_FALSE(file.Set(section, key, "v")) << section << "/" << key;
    EXPECT_FALSE(file.Set("S", "K", "bad \xFF utf-8"));
    EXPECT_FALSE(file.Set("S", "K", std::string("nul\0", 4)));
    EXPECT_EQ(file.Serialize(), "");
}

TEST(MCIniFile, RewritingKeepsTheOrderAndSpellingOfNames)
{
    MCIniFile file;
    file.Parse("[Zeta]\nB=1\nA=2\n[Alpha]\nC=3\n");
    ASSERT_TRUE(file.Set("zeta", "b", "9"));
    ASSERT_TRUE(file.Set("Beta", "D", "4"));
    EXPECT_EQ(file.Serialize(), "[Zeta]\nB=9\nA=2\n\n[Alpha]\nC=3\n\n[Beta]\nD=4\n");
}

TEST(MCIniFile, MissingFileIsNotFoundAndAFolderIsUnreadable)
{
    MCIniFile file;
    EXPECT_EQ(file.Load("/nonexistent-scoremodel-folder/file.ini"), MCIniFile::notFound);
    EXPECT_EQ(file.Load(""), MCIniFile::notFound);
    EXPECT_EQ(file.Load("/"), MCIniFile::unreadable);
    EXPECT_TRUE(file.IsEmpty());
}
