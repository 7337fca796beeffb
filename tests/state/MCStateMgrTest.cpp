// Delivery of state records: handlers, the global handler, the main window,
// auto delete and the records that act on delivery.
#include <scoremodel/commands/MCCommandMgr.h>
#include <scoremodel/events/structure/ECPerformance.h>
#include <scoremodel/platform/MCMessageLoop.h>
#include <scoremodel/platform/Preferences.h>
#include <scoremodel/state/MCStateMgr.h>
#include <scoremodel/state/SCMode.h>
#include <scoremodel/state/SCPrefs.h>
#include <scoremodel/state/SCSelection.h>

#include <gtest/gtest.h>

#include <platform/CommonTestFolders.h>
#include <platform/RecordingWindow.h>

#include <string>
#include <vector>

namespace
{
// A record that says when it is deleted.
class TracedState : public SCBase
{
public:
    TracedState(unsigned code, bool *deleted) : SCBase(code), m_deleted(deleted) {}
    ~TracedState() override { *m_deleted = true; }

private:
    bool *m_deleted;
};

std::vector<std::string> *s_calls = nullptr;

int Handler(ECBase *, int code, void *state, void *user)
{
    s_calls->push_back(static_cast<const char *>(user) + std::to_string(static_cast<SCBase *>(state)->GetCode()) +
                       (code == 0 ? "" : "?"));
    return 0;
}

class StateDelivery : public ::testing::Test
{
protected:
    void SetUp() override
    {
        s_calls = &m_calls;
        m_doc = new ECPerformance;
        m_doc->Ref();
        m_doc->AddStateHandler(&Handler, const_cast<char *>("first:"));
        m_doc->AddStateHandler(&Handler, const_cast<char *>("second:"));
        MCStateMgr::SetGlobalHandler(&Handler, const_cast<char *>("global:"));
    }
    void TearDown() override
    {
        MCStateMgr::SetGlobalHandler(nullptr, nullptr);
        MCMessageLoop::SetMainWindow(nullptr);
        m_doc->Unref(1);
        s_calls = nullptr;
    }

    ECPerformance *m_doc = nullptr;
    std::vector<std::string> m_calls;
};
} // namespace

TEST_F(StateDelivery, HandlersRunInOrderBeforeTheGlobalHandlerAndTheRecordGoesUnlessToldToStay)
{
    for (int autoDelete : {1, 0})
    {
        SCOPED_TRACE(autoDelete);
        m_calls.clear();
        bool deleted = false;
        auto *state = new TracedState(7, &deleted);
        state->SetAutoDelete(autoDelete);
        state->SetSynchronous(1);
        state->Apply(m_doc);
        EXPECT_EQ(m_calls, (std::vector<std::string>{"first:7", "second:7", "global:7"}));
        EXPECT_EQ(deleted, autoDelete == 1);
        if (!deleted)
            delete state;
    }
}

TEST_F(StateDelivery, PostedRecordHoldsItsDocumentUntilDelivered)
{
    const int held = m_doc->GetRefCount();
    bool deleted = false;
    (new TracedState(8, &deleted))->Apply(m_doc);
    EXPECT_EQ(m_doc->GetRefCount(), held + 1);
    EXPECT_TRUE(m_calls.empty());
    MCMessageLoop::ProcessPending();
    EXPECT_EQ(m_calls.size(), 3u);
    EXPECT_EQ(m_doc->GetRefCount(), held);
    EXPECT_TRUE(deleted);
}

TEST_F(StateDelivery, RecordWithoutDocumentGoesToTheMainWindowOnly)
{
    RecordingWindow main;
    ASSERT_TRUE(MCMessageLoop::SetMainWindow(main.hWnd()));
    bool deleted = false;
    auto *state = new TracedState(9, &deleted);
    state->SetSynchronous(1);
    MCStateMgr::ApplyState(state, nullptr);
    EXPECT_TRUE(m_calls.empty());
    ASSERT_EQ(main.messages.size(), 1u);
    EXPECT_EQ(main.messages[0].msg, MCStateMgr::StateMessage);
    EXPECT_EQ(main.messages[0].lParam, reinterpret_cast<LPARAM>(state));
    EXPECT_TRUE(deleted);
}

TEST_F(StateDelivery, RecordAppliedAfterTheWindowIsGoneIsDeleted)
{
    ASSERT_TRUE(DestroyWindow(MCStateMgr::GetWindow()));
    bool deleted = false;
    const int held = m_doc->GetRefCount();
    MCStateMgr::ApplyState(new TracedState(11, &deleted), m_doc);
    EXPECT_TRUE(deleted);
    EXPECT_EQ(m_doc->GetRefCount(), held);
    EXPECT_TRUE(m_calls.empty());
    // The next start-up makes the window again.
    MCStateMgr::SetGlobalHandler(nullptr, nullptr);
    EXPECT_TRUE(IsWindow(MCStateMgr::GetWindow()));
}

// ---- Records that act on delivery ----

// A record is delivered only once the state window exists, which the first
// state manager or SetGlobalHandler makes; these tests have no document.
TEST(StateRecords, PreferencesRecordReadsUndoLevelsAndSelectionColour)
{
    // The preferences written here go to a folder of this test's own, never
    // to the user's, however the test is started.
    CommonTestFolders folders;
    MCStateMgr::SetGlobalHandler(nullptr, nullptr);
    const int levels = MCCommandMgr::GetUndoLevels();
    const COLORREF color = SCSelection::GetColor();
    ASSERT_TRUE(SaveIntPreference(L"Settings", L"UndoLevels", 17));
    ASSERT_TRUE(SaveIntPreference(L"Settings\\Color", L"Selection", 0x123456));
    auto *other = new SCPrefs(1601);
    other->SetSynchronous(1);
    other->Apply(nullptr);
    EXPECT_EQ(MCCommandMgr::GetUndoLevels(), levels) << "only code 1600 reads the preferences";

    auto *prefs = new SCPrefs;
    prefs->SetSynchronous(1);
    prefs->Apply(nullptr);
    EXPECT_EQ(MCCommandMgr::GetUndoLevels(), 17);
    EXPECT_EQ(SCSelection::GetColor(), 0x123456u);

    EXPECT_EQ(MCGetPreferencesPath().ToUtf8().rfind(folders.Root().string(), 0), 0u)
        << "the preferences went outside the test's folder";
    MCCommandMgr::SetUndoLevels(levels);
    SCSelection::SetColor(color);
}

TEST(StateRecords, ModeRecordSetsTheModeBeforeHandlersSeeIt)
{
    MCStateMgr::SetGlobalHandler(nullptr, nullptr);
    const int mode = SCMode::GetMode();
    auto *record = new SCMode(12, mode + 3);
    record->SetSynchronous(1);
    record->Apply(nullptr);
    EXPECT_EQ(SCMode::GetMode(), mode + 3);
    SCMode::SetMode(mode);
}
