#include <scoremodel/platform/MCLanguageManager.h>

#include "CommonTestFolders.h"

#include <gtest/gtest.h>

#include <cctype>
#include <string>
#include <vector>

namespace
{
// Each test starts and ends in English with no host texts, whatever it did.
class MCLanguageManagerTest : public ::testing::Test
{
protected:
    void SetUp() override { Restore(); }
    void TearDown() override { Restore(); }

    void Restore()
    {
        MCLanguageManager::ClearHostTexts();
        MCLanguageManager::SetLanguageFolder(CString());
        MCLanguageManager::LoadLanguage(L"EN");
    }

    CommonTestFolders m_folders;
};

// Tempo words the model shows, each under IDS_DM_TEMPO_ and its name in capitals.
const char *const s_tempoWords[] = {
    "Larghissimo", "Adagissimo", "Lentissimo", "Largo",       "Adagio",       "Lento",       "Larghetto",
    "Adagietto",   "Andante",    "Andantino",  "Moderato",    "Allegretto",   "Allegro",     "Vivace",
    "Vivo",        "Presto",     "Allegrissimo", "Vivacissimo", "Prestissimo", "Accelerando", "Rallentando",
    "Ritardando",  "Rubato"};

struct KnownKey
{
    std::string section;
    std::string key;
    std::string text; // the required English text, or empty when any text will do
};

// Every key the library looks up, with the texts the model depends on.
std::vector<KnownKey> KnownKeys()
{
    std::vector<KnownKey> keys = {
        {"DataModel", "IDS_DM_PAUSE_GP", "G.P."},
        {"DataModel", "IDS_DM_PAUSE_LP", "L.P."},
        {"DataModel", "IDS_DM_TEMPO_ATEMPO", "a tempo"},
        {"DataModel", "IDS_MSG_REMOVE_FIRST_TEMPO", ""},
        {"DataModel", "IDS_MSG_REMOVE_FIRST_PROGRAMCHANGE", ""},
        {"TuDataModel_Misc_XMLInstrumentParser", "IDD_DM_MB_TEXT15", ""},
        {"TuDataModel_Misc_XMLInstrumentParser", "IDD_DM_MB_TEXT16", ""},
        {"Util", "ERROR_SAVE_FILE_F", ""},
    };
    for (int i = 1; i <= 3; ++i)
        keys.push_back({"TuDataModel_Plugins_CPlugins", "IDD_DM_MB_TEXT" + std::to_string(i), ""});
    // The chord flavour texts; ECChordSymbolTest holds their exact wording.
    for (int id = 12010; id <= 12037; ++id)
        keys.push_back({"DataModel", "IDS_DM_CHORD_" + std::to_string(id), ""});
    for (std::string word : s_tempoWords)
    {
        std::string key = "IDS_DM_TEMPO_";
        for (char c : word)
            key += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        keys.push_back({"DataModel", key, word});
    }
    return keys;
}

CString Text(const char *section, const char *key)
{
    return MCLanguageManager::GetText(CString(section), CString(key));
}
} // namespace

TEST_F(MCLanguageManagerTest, EveryShippedLanguageHasATextForEveryKeyTheLibraryLooksUp)
{
    ASSERT_EQ(MCLanguageManager::GetLanguageId(), CString(L"EN"));
    const std::vector<KnownKey> keys = KnownKeys();
    for (const KnownKey &k : keys)
    {
        if (!k.text.empty())
        {
            EXPECT_EQ(Text(k.section.c_str(), k.key.c_str()).ToUtf8(), k.text) << k.section << " " << k.key;
        }
    }
    for (const char *id : {"EN", "DE"})
    {
        ASSERT_TRUE(MCLanguageManager::LoadLanguage(CString(id))) << id;
        for (const KnownKey &k : keys)
            EXPECT_FALSE(Text(k.section.c_str(), k.key.c_str()).IsEmpty()) << id << " " << k.section << " " << k.key;
        CString message;
        message.Format(Text("Util", "ERROR_SAVE_FILE_F"), L"/tmp/x.xml");
        EXPECT_NE(message.Find(L"/tmp/x.xml"), -1) << id << ": one place for the file name in " << message.ToUtf8();
    }
}

TEST_F(MCLanguageManagerTest, NamesMatchWhateverTheirCaseAndUnknownOnesGiveAnEmptyText)
{
    EXPECT_EQ(Text("datamodel", "ids_dm_tempo_largo"), CString(L"Largo"));
    EXPECT_TRUE(Text("DataModel", "IDS_NO_SUCH_KEY").IsEmpty());
    EXPECT_TRUE(Text("NoSuchSection", "IDS_DM_TEMPO_LARGO").IsEmpty());
    EXPECT_TRUE(MCLanguageManager::GetText(L"Data\nModel", L"IDS_DM_TEMPO_LARGO").IsEmpty());
}

TEST_F(MCLanguageManagerTest, TheUndoMergeMarkerShipsEmptyUntilTheHostSetsIt)
{
    for (const char *id : {"EN", "DE"})
    {
        ASSERT_TRUE(MCLanguageManager::LoadLanguage(CString(id)));
        EXPECT_TRUE(Text("InternalSystemData", "ID_STRING_THE_SAME_ACTION").IsEmpty()) << id;
    }
    MCLanguageManager::SetText(L"InternalSystemData", L"ID_STRING_THE_SAME_ACTION", L"\u2261");
    EXPECT_EQ(Text("InternalSystemData", "ID_STRING_THE_SAME_ACTION"), CString(L"\u2261"));
    // The host's text stays through a change of language.
    ASSERT_TRUE(MCLanguageManager::LoadLanguage(L"EN"));
    EXPECT_EQ(Text("InternalSystemData", "ID_STRING_THE_SAME_ACTION"), CString(L"\u2261"));
    MCLanguageManager::ClearHostTexts();
    EXPECT_TRUE(Text("InternalSystemData", "ID_STRING_THE_SAME_ACTION").IsEmpty());
}

TEST_F(MCLanguageManagerTest, SwitchingLanguageByIdChangesTheTexts)
{
    const CString english = Text("DataModel", "IDS_MSG_REMOVE_FIRST_TEMPO");
    ASSERT_TRUE(MCLanguageManager::LoadLanguage(L"de"));
    EXPECT_EQ(MCLanguageManager::GetLanguageId(), CString(L"DE"));
    const CString german = Text("DataModel", "IDS_MSG_REMOVE_FIRST_TEMPO");
    EXPECT_NE(german, english);
    EXPECT_NE(german.Find(L"St\u00FCck"), -1) << german.ToUtf8(); // UTF-8 decoded

    // A missing or invalid language keeps the current one.
    for (const wchar_t *id : {L"XX", L"", L"../languages/EN", L"EN.lang", L"/etc/passwd"})
    {
        EXPECT_FALSE(MCLanguageManager::LoadLanguage(id)) << CString(id).ToUtf8();
        EXPECT_EQ(MCLanguageManager::GetLanguageId(), CString(L"DE"));
        EXPECT_EQ(Text("DataModel", "IDS_MSG_REMOVE_FIRST_TEMPO"), german);
    }
}

TEST_F(MCLanguageManagerTest, KeysALanguageLacksFallBackToEnglishAndAHostsFolderComesFirst)
{
    m_folders.WriteFile("data/languages/EN.lang", "[S]\nBOTH=english both\nONLY_EN=english only\n");
    m_folders.WriteFile("data/languages/FR.lang", "[S]\nBOTH=fran\xC3\xA7" "ais\n");
    m_folders.Set("SCOREMODEL_DATA_DIR", (m_folders.Root() / "data").string());
    EXPECT_EQ(Text("S", "BOTH"), CString(L"english both")) << "a changed data folder is reread";
    ASSERT_TRUE(MCLanguageManager::LoadLanguage(L"fr"));
    EXPECT_EQ(Text("S", "BOTH"), CString(L"fran\u00E7ais"));
    EXPECT_EQ(Text("S", "ONLY_EN"), CString(L"english only"));
    EXPECT_TRUE(Text("S", "NEITHER").IsEmpty());

    m_folders.WriteFile("host/FR.lang", "[S]\nBOTH=h\xC3\xB4te\n");
    MCLanguageManager::SetLanguageFolder(CString((m_folders.Root() / "host").string().c_str()));
    EXPECT_EQ(Text("S", "BOTH"), CString(L"h\u00F4te"));
    MCLanguageManager::SetLanguageFolder(CString());
    EXPECT_EQ(Text("S", "BOTH"), CString(L"fran\u00E7ais"));
}

TEST_F(MCLanguageManagerTest, MissingOrGarbledFilesGiveEmptyTextsNotACrash)
{
    std::string noise;
    for (int i = 0; i < 8192; ++i)
        noise += static_cast<char>((i * 197 + 11) % 256);
    struct Case
    {
        const char *what;
        const char *file; // null: no file at all
        std::string bytes;
    };
    const Case cases[] = {
        {"no language file", nullptr, ""},
        {"binary noise", "EN.lang", noise},
        {"empty file", "EN.lang", ""},
        {"invalid UTF-8 in the text", "EN.lang", "[DataModel]\nIDS_DM_TEMPO_LARGO=La\xFFrgo\n"},
        {"header cut short", "EN.lang", "[DataModel\nIDS_DM_TEMPO_LARGO=Largo\n"},
        {"a folder in place of the file", "EN.lang/x", "folder"},
    };
    for (const Case &c : cases)
    {
        CommonTestFolders folders;
        if (c.file)
            folders.WriteFile(std::string("data/languages/") + c.file, c.bytes);
        folders.Set("SCOREMODEL_DATA_DIR", (folders.Root() / "data").string());
        EXPECT_TRUE(Text("DataModel", "IDS_DM_TEMPO_LARGO").IsEmpty()) << c.what;
        EXPECT_EQ(MCLanguageManager::GetLanguageId(), CString(L"EN")) << c.what;
    }
    // Back on the shipped data, the texts are there again.
    EXPECT_EQ(Text("DataModel", "IDS_DM_TEMPO_LARGO"), CString(L"Largo"));
}
