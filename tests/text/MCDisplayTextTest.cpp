// Display text over the shipped English language file: every event id with a
// class has a name, keys follow the ids' names, and the file holds no event
// key that no id asks for.
#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/events/marks/ECFlowControl.h>
#include <scoremodel/text/MCDisplayText.h>

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <string>

TEST(MCDisplayText, EventKeysAreTheIdsNames)
{
    struct Case
    {
        int id;
        const wchar_t *key;
    } const cases[] = {
        {EVENT_ID_NOTE, L"IDS_DM_EVENT_NOTE"},
        {EVENT_ID_CHAN_PRESSURE_ENV, L"IDS_DM_EVENT_CHAN_PRESSURE_ENV"},
        {EVENT_ID_NRPN_ENV, L"IDS_DM_EVENT_NRPN_ENV"},
        {EVENT_ID_RPN_POINT, L"IDS_DM_EVENT_RPN_POINT"},
        {EVENT_ID_BANK_LSB, L"IDS_DM_EVENT_BANK_LSB"},
        {EVENT_ID_WITH_TIME_CHILD, L"IDS_DM_EVENT_WITH_TIME_CHILD"},
        {EVENT_ID_ENV_POINT, L"IDS_DM_EVENT_ENV_POINT"},
        {-1, L""},
        {63, L""},
        {EVENT_ID_COUNT, L""},
        {100000, L""},
    };
    for (const Case &c : cases)
        EXPECT_EQ(GetEventStringKey(c.id), CString(c.key)) << c.id;
}

TEST(MCDisplayText, EveryEventHasANameAndTheFileNoStrayOnes)
{
    std::set<std::string> asked;
    for (int id = 0; id < EVENT_ID_COUNT; ++id)
    {
        if (!GetEventClassName(id))
            continue;
        EXPECT_FALSE(GetEventString(id).IsEmpty()) << GetEventStringKey(id).ToUtf8();
        asked.insert(GetEventStringKey(id).ToUtf8());
    }
    std::ifstream file(std::string(SCOREMODEL_TEST_SOURCE_DIR) + "/data/languages/EN.lang");
    ASSERT_TRUE(file.good());
    std::string line;
    int found = 0;
    while (std::getline(file, line))
    {
        if (line.rfind("IDS_DM_EVENT_", 0) != 0)
            continue;
        ++found;
        const std::string key = line.substr(0, line.find('='));
        EXPECT_TRUE(asked.count(key)) << key << " is asked for by no event id";
    }
    EXPECT_EQ(found, static_cast<int>(asked.size()));
}

TEST(MCDisplayText, TextsComeFromTheDataModelSection)
{
    EXPECT_EQ(GetTextFromID(L"IDS_DM_TEMPO_LARGO"), CString(L"Largo"));
    EXPECT_EQ(GetTextFromID(L"IDS_NO_SUCH_KEY"), CString());
    EXPECT_EQ(GetTextFromID(nullptr), CString());
    EXPECT_EQ(GetTextFromID(L""), CString());
    EXPECT_EQ(GetEventString(EVENT_ID_NOTE), CString(L"Note"));
    EXPECT_EQ(GetEventString(static_cast<ECBase *>(nullptr)), CString());
    ECBase *text = CreateEventW(EVENT_ID_TEXT);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(GetEventString(text), CString(L"Text"));
    text->Ref();
    text->Unref(1);
}

TEST(MCDisplayText, EveryFlowKindHasWordsAndNothingElseHas)
{
    std::set<std::string> words;
    for (int kind = ECFlowControl::FlowSegno; kind <= ECFlowControl::FlowLast; ++kind)
    {
        const std::string text = GetFlowControlString(kind).ToUtf8();
        EXPECT_FALSE(text.empty()) << kind;
        EXPECT_TRUE(words.insert(text).second) << kind << " says what another kind says: " << text;
    }
    EXPECT_EQ(GetFlowControlString(ECFlowControl::FlowDalSegnoAlCoda), CString(L"D.S. al Coda"));
    for (int kind : {static_cast<int>(ECFlowControl::FlowNone), ECFlowControl::FlowLast + 1, -1, 1000})
        EXPECT_EQ(GetFlowControlString(kind), CString()) << kind;
}
