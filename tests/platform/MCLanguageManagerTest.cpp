#include <scoremodel/platform/MCLanguageManager.h>

#include "CommonTestFolders.h"

#include <gtest/gtest.h>

#include <string>

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

struct KnownKey
{
    const char *section;
    const char *key;
    const char *text; // the required English text, or null when any text will do
};

// Every key the library looks up, with the texts the model depends on.
const KnownKey s_knownKeys[] = {
    {"DataModel", "IDS_DM_TEMPO_LARGHISSIMO", "Larghissimo"},
    {"DataModel", "IDS_DM_TEMPO_ADAGISSIMO", "Adagissimo"},
    {"DataModel", "IDS_DM_TEMPO_LENTISSIMO", "Lentissimo"},
    {"DataModel", "IDS_DM_TEMPO_LARGO", "Largo"},
    {"DataModel", "IDS_DM_TEMPO_ADAGIO", "Adagio"},
    {"DataModel", "IDS_DM_TEMPO_LENTO", "Lento"},
    {"DataModel", "IDS_DM_TEMPO_LARGHETTO", "Larghetto"},
    {"DataModel", "IDS_DM_TEMPO_ADAGIETTO", "Adagietto"},
    {"DataModel", "IDS_DM_TEMPO_ANDANTE", "Andante"},
    {"DataModel", "IDS_DM_TEMPO_ANDANTINO", "Andantino"},
    {"DataModel", "IDS_DM_TEMPO_MODERATO", "Moderato"},
    {"DataModel", "IDS_DM_TEMPO_ALLEGRETTO", "Allegretto"},
    {"DataModel", "IDS_DM_TEMPO_ALLEGRO", "Allegro"},
    {"DataModel", "IDS_DM_TEMPO_VIVACE", "Vivace"},
    {"DataModel", "IDS_DM_TEMPO_VIVO", "Vivo"},
    {"DataModel", "IDS_DM_TEMPO_PRESTO", "Presto"},
    {"DataModel", "IDS_DM_TEMPO_ALLEGRISSIMO", "Allegrissimo"},
    {"DataModel", "IDS_DM_TEMPO_VIVACISSIMO", "Vivacissimo"},
    {"DataModel", "IDS_DM_TEMPO_PRESTISSIMO", "Prestissimo"},
    {"DataModel", "IDS_DM_TEMPO_ACCELERANDO", "Accelerando"},
    {"DataModel", "IDS_DM_TEMPO_RALLENTANDO", "Rallentando"},
    {"DataModel", "IDS_DM_TEMPO_RITARDANDO", "Ritardando"},
    {"DataModel", "IDS_DM_PAUSE_GP", "G.P."},
    {"DataModel", "IDS_DM_PAUSE_LP", "L.P."},
    {"DataModel", "IDS_DM_TEMPO_ATEMPO", "a tempo"},
    {"DataModel", "IDS_DM_TEMPO_RUBATO", "Rubato"},
    {"DataModel", "IDS_MSG_REMOVE_FIRST_TEMPO", nullptr},
    {"DataModel", "IDS_MSG_REMOVE_FIRST_PROGRAMCHANGE", nullptr},
    {"TuDataModel_Misc_XMLInstrumentParser", "IDD_DM_MB_TEXT15", nullptr},
    {"TuDataModel_Misc_XMLInstrumentParser", "IDD_DM_MB_TEXT16", nullptr},
    {"Util", "ERROR_SAVE_FILE_F", nullptr},
    {"TuDataModel_Plugins_CPlugins", "IDD_DM_MB_TEXT1", nullptr},
    {"TuDataModel_Plugins_CPlugins", "IDD_DM_MB_TEXT2", nullptr},
    {"TuDataModel_Plugins_CPlugins", "IDD_DM_MB_TEXT3", nullptr},
};

CString Text(const char *section, const char *key)
{
    return MCLanguageManager::GetText(CString(section), CString(key));
}
} // namespace

TEST_F(MCLanguageManagerTest, EveryShippedLanguageHasATextForEveryKeyTheLibraryLooksUp)
{
    ASSERT_EQ(MCLanguageManager::GetLanguageId(), CString(L"EN"));
    for (const KnownKey &k : s_knownKeys)
    {
        if (k.text)
        {
            EXPECT_EQ(Text(k.section, k.key).ToUtf8(), k.text) << k.section << " " << k.key;
        }
    }
    for (const char *id : {"EN", "DE"})
    {
        ASSERT_TRUE(MCLanguageManager::LoadLanguage(CString(id))) << id;
        for (const KnownKey &k : s_knownKeys)
            EXPECT_FALSE(Text(k.section, k.key).IsEmpty()) << id << " " << k.section << " " << k.key;
    }
}

TEST_F(MCLanguageManagerTest, TheSaveErrorTextHasOnePlaceForTheFileName)
{
    const CString format = Text("Util", "ERROR_SAVE_FILE_F");
    CString message;
    message.Format(format, L"/tmp/x.xml");
    EXPECT_NE(message.Find(L"/tmp/x.xml"), -1) << message.ToUtf8();
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

TEST_F(MCLanguageManagerTest, NamesMatchWhateverTheirCaseAndUnknownOnesGiveAnEmptyText)
{
    EXPECT_EQ(Text("datamodel", "ids_dm_tempo_largo"), CString(L"Largo"));
    EXPECT_TRUE(Text("DataModel", "IDS_NO_SUCH_KEY").IsEmpty());
    EXPECT_TRUE(Text("NoSuchSection", "IDS_DM_TEMPO_LARGO").IsEmpty());
    EXPECT_TRUE(MCLanguageManager::GetText(L"Data\nModel", L"IDS_DM_TEMPO_LARGO").IsEmpty());
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

TEST_F(MCLanguageManagerTest, KeysALanguageLacksFallBackToEnglish)
{
    m_folders.WriteFile("data/languages/EN.lang", "[S]\nBOTH=english both\nONLY_EN=english only\n");
    m_folders.WriteFile("data/languages/FR.lang", "[S]\nBOTH=fran\xC3\xA7" "ais\n");
    m_folders.Set("SCOREMODEL_DATA_DIR", (m_folders.Root() / "data").string());
    ASSERT_TRUE(MCLanguageManager::LoadLanguage(L"fr"));
    EXPECT_EQ(Text("S", "BOTH"), CString(L"fran\u00E7ais"));
    EXPECT_EQ(Text("S", "ONLY_EN"), CString(L"english only"));
    EXPECT_TRUE(Text("S", "NEITHER").IsEmpty());
}

TEST_F(MCLanguageManagerTest, ChangingTheDataFolderOrTheHostsFolderRereadsTheTexts)
{
    m_folders.WriteFile("data/languages/EN.lang", "[DataModel]\nIDS_DM_TEMPO_LARGO=Broad\n");
    m_folders.Set("SCOREMODEL_DATA_DIR", (m_folders.Root() / "data").string());
    EXPECT_EQ(Text("DataModel", "IDS_DM_TEMPO_LARGO"), CString(L"Broad"));
    m_folders.WriteFile("host/EN.lang", "[DataModel]\nIDS_DM_TEMPO_LARGO=Host largo\n");
    MCLanguageManager::SetLanguageFolder(CString((m_folders.Root() / "host").string().c_str()));
    EXPECT_EQ(Text("DataModel", "IDS_DM_TEMPO_LARGO"), CString(L"Host largo"));
    MCLanguageManager::SetLanguageFolder(CString());
    EXPECT_EQ(Text("DataModel", "IDS_DM_TEMPO_LARGO"), CString(L"Broad"));
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
