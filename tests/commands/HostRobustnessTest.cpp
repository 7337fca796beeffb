// What real hosts do to the road of an edit: close a document while its edit
// waits in the batch timer, pump the loop from a handler, destroy and make
// again the main window, throw from handlers, close one view from another's
// handler, and touch the library first from a worker thread.
#include "CommandTestSupport.h"

#include <scoremodel/commands/MCCommandTimer.h>
#include <scoremodel/platform/CWnd.h>
#include <scoremodel/platform/MessageBox.h>

#include <functional>
#include <stdexcept>
#include <thread>

namespace
{
int g_liveDocuments = 0;

class CountedPerformance : public ECPerformance
{
public:
    CountedPerformance() { ++g_liveDocuments; }

protected:
    ~CountedPerformance() override { --g_liveDocuments; }
};

struct HostError : std::runtime_error
{
    HostError() : std::runtime_error("host handler failed") {}
};

// A state handler that throws on one state code.
int ThrowOnCode(ECBase *, int, void *state, void *user)
{
    if (static_cast<SCBase *>(state)->GetCode() == *static_cast<unsigned *>(user))
        throw HostError();
    return 0;
}

int ThrowAtPhase0(ECBase *, int phase, void *, void *)
{
    if (phase == 0)
        throw HostError();
    return 1;
}

// Pumps until the timer of the document has delivered its queue. Only
// called while a clock runs, so it never waits for nothing.
void PumpTimer(ECPerformance *doc)
{
    MCCommandTimer *timer = doc->GetCommandMgr()->GetTimer();
    while (timer->GetQueuedCount() > 0)
    {
        ASSERT_GE(MCMessageLoop::GetNextTimerDelay(), 0) << "commands wait for a clock that does not run";
        MCMessageLoop::RunFor(5);
    }
}
} // namespace

using HostRobustness = CommandTest;

TEST(HostRobustnessClose, DocumentClosedWhileItsEditWaitsInTheTimerDiesAfterTheBatch)
{
    auto *doc = new CountedPerformance;
    doc->Ref();
    doc->AddChild(new ECConductor, 0);
    doc->SetCommandRate(10);
    std::vector<std::string> log;
    auto *cmd = new TestCommand(&log, "a");
    cmd->SetSynchronous(0);
    cmd->Apply(doc);
    MCMessageLoop::ProcessPending(); // into the timer's queue
    ASSERT_EQ(doc->GetCommandMgr()->GetTimer()->GetQueuedCount(), 1);

    doc->RemoveChildren(1); // the host closes the document
    doc->Unref(1);
    EXPECT_EQ(g_liveDocuments, 1) << "the waiting edit holds the document";
    while (g_liveDocuments > 0)
    {
        ASSERT_GE(MCMessageLoop::GetNextTimerDelay(), 0);
        MCMessageLoop::RunFor(5);
    }
    EXPECT_EQ(log, (std::vector<std::string>{"Pa", "Aa"})) << "without a conductor the edit is refused";
    EXPECT_EQ(TestCommand::s_live, 0);
    EXPECT_EQ(MCMessageLoop::GetNextTimerDelay(), -1) << "no clock of the dead timer is left";
}

// A modal dialog in a handler: the handler posts a follow-up edit and pumps
// the loop long enough for the timer to fire inside.
TEST_F(HostRobustness, EditPostedByAHandlerThatPumpsRunsOnceInALaterBatch)
{
    struct Dialog
    {
        std::function<void()> post;
        std::vector<int> batches;
        bool posted = false;
    } dialog{[this] { Make("b", -1, 0)->Apply(m_doc); }};
    m_doc->AddCommandHandler(
        [](ECBase *, int phase, void *list, void *user) {
            auto *d = static_cast<Dialog *>(user);
            if (phase == 0)
                d->batches.push_back(static_cast<MCCommandMgr::CommandList *>(list)->GetCount());
            if (phase == 1 && !d->posted)
            {
                d->posted = true;
                d->post();
                MCMessageLoop::RunFor(60);
            }
            return 1;
        },
        &dialog);
    m_doc->SetCommandRate(10);
    Make("a", -1, 0)->Apply(m_doc);
    MCMessageLoop::ProcessPending();
    PumpTimer(m_doc);
    PumpTimer(m_doc);

    EXPECT_EQ(m_log, (std::vector<std::string>{"Pa", "Ra", "Fa", "Pb", "Rb", "Fb"}));
    EXPECT_EQ(dialog.batches, (std::vector<int>{1, 1}));
}

TEST_F(HostRobustness, PostedEditsStillRunAfterTheMainWindowIsMadeAgain)
{
    auto main = std::make_unique<CWnd>();
    ASSERT_TRUE(main->CreateEx(0, nullptr, nullptr, 0, 0, 0, 0, 0, nullptr, 0));
    MCMessageLoop::SetMainWindow(main->m_hWnd);
    m_doc->SetCommandRate(10);
    CString name(L"edit");
    MCCommandMgr::BeginUndo(m_doc, name);
    Make("a", -1, 0)->Apply(m_doc);
    MCCommandMgr::EndUndo(m_doc);
    MCMessageLoop::ProcessPending(); // waits in the timer, a child of the main window

    main = std::make_unique<CWnd>(); // the host re-creates its main window
    ASSERT_TRUE(main->CreateEx(0, nullptr, nullptr, 0, 0, 0, 0, 0, nullptr, 0));
    MCMessageLoop::SetMainWindow(main->m_hWnd);
    PumpTimer(m_doc);
    EXPECT_EQ(m_log, (std::vector<std::string>{"Pa", "Ra", "Fa"}));
    EXPECT_EQ(m_doc->GetUndoCount(), 1);

    MCCommandMgr::BeginUndo(m_doc, name); // and the next edit after it
    Make("b", -1, 0)->Apply(m_doc);
    MCCommandMgr::EndUndo(m_doc);
    MCMessageLoop::ProcessPending();
    PumpTimer(m_doc);
    EXPECT_EQ(m_doc->GetUndoCount(), 2);
    EXPECT_EQ(m_doc->Undo(1), 1) << "the history is not stuck";
    MCMessageLoop::SetMainWindow(nullptr);
    main.reset();
}

// A state handler that throws: the exception reaches the host, and the
// record, the document's reference and the brackets are as after a
// notification that completed.
TEST_F(HostRobustness, StateHandlerThatThrowsOnAFinishedBatchLeaksNothing)
{
    for (int posted : {0, 1})
    {
        SCOPED_TRACE(posted ? "posted" : "sent");
        unsigned code = SCCommand::CodeFinished;
        m_doc->AddStateHandler(&ThrowOnCode, &code);
        const int refs = m_doc->GetRefCount();
        CString name(L"edit");
        MCCommandMgr::BeginUndo(m_doc, name);
        TestCommand *cmd = Make("a", -1, posted ? 0 : 1);
        cmd->Apply(m_doc);
        if (posted)
        {
            MCCommandMgr::EndUndo(m_doc);
            EXPECT_THROW(MCMessageLoop::ProcessPending(), HostError);
        }
        else
            EXPECT_THROW(MCCommandMgr::EndUndo(m_doc), HostError);

        EXPECT_EQ(m_doc->GetRefCount(), refs + 1) << "only the new child holds the document";
        EXPECT_EQ(cmd->GetRefCount(), 2) << "the test and the undo step hold the command, no record";
        EXPECT_EQ(Mgr().GetNotifyMode(), 0);
        EXPECT_EQ(Mgr().GetNotifyPending(), 0);
        EXPECT_EQ(Mgr().GetNotifyState(), nullptr);
        EXPECT_EQ(Mgr().GetUndoPending(), 0);
        m_doc->RemoveStateHandlers();
        m_doc->AddStateHandler(&CommandTest::OnState, this);
        m_doc->ClearUndo();
        m_doc->RemoveChild(cmd->GetEvent(), 0);
    }
}

TEST_F(HostRobustness, StateHandlerThatThrowsOnUndoStillMovesTheUndoIndex)
{
    Step("one");
    Step("two");
    unsigned code = SCCommand::CodeUndone;
    m_doc->AddStateHandler(&ThrowOnCode, &code);
    const int refs = m_doc->GetRefCount();
    EXPECT_THROW(m_doc->Undo(1), HostError);
    EXPECT_EQ(m_doc->GetUndoIndex(), 1);
    EXPECT_EQ(Mgr().GetNotifyMode(), 0);
    EXPECT_EQ(m_doc->GetRefCount(), refs - 1) << "the undone child let go of the document, and nothing else holds it";
    EXPECT_THROW(m_doc->Undo(1), HostError);
    EXPECT_EQ(m_doc->GetUndoIndex(), 2);
    EXPECT_EQ(m_log, (std::vector<std::string>{"Pone", "Rone", "Fone", "Ptwo", "Rtwo", "Ftwo", "Utwo", "Uone"}))
        << "the second Undo goes on to the older step";
    EXPECT_EQ(ChildCount(), 1) << "only the conductor is left";
}

TEST_F(HostRobustness, CommandHandlerThatThrowsDuringASentListReleasesTheBatch)
{
    m_doc->AddCommandHandler(&ThrowAtPhase0, nullptr);
    const int refs = m_doc->GetRefCount();
    MCCommandList list;
    TestCommand *a = Make("a");
    TestCommand *b = Make("b");
    list.AddTail(a);
    list.AddTail(b);
    EXPECT_THROW(list.Apply(m_doc), HostError);
    EXPECT_EQ(m_doc->GetRefCount(), refs);
    EXPECT_EQ(a->GetRefCount(), 2) << "the test and its list";
    EXPECT_EQ(b->GetRefCount(), 2);
    EXPECT_EQ(m_log, (std::vector<std::string>{"Pa", "Pb"}));
}

// A view that closes another view from its handler: the closed view is not
// called any more, in the same pass, with its freed data.
TEST_F(HostRobustness, HandlerRemovedByAnotherDuringThePassIsNotCalled)
{
    struct Views
    {
        ECPerformance *doc;
        std::vector<std::string> calls;
    } views{m_doc, {}};
    auto closer = [](ECBase *, int phase, void *, void *user) {
        auto *v = static_cast<Views *>(user);
        v->calls.push_back("closer" + std::to_string(phase));
        v->doc->RemoveCommandHandlers();
        v->doc->RemoveStateHandlers();
        return 1;
    };
    auto closed = [](ECBase *, int phase, void *, void *user) {
        static_cast<Views *>(user)->calls.push_back("closed" + std::to_string(phase));
        return 1;
    };
    m_doc->AddCommandHandler(closer, &views);
    m_doc->AddCommandHandler(closed, &views);
    Run("a");
    EXPECT_EQ(views.calls, std::vector<std::string>{"closer0"});

    views.calls.clear();
    m_doc->RemoveStateHandlers();
    m_doc->AddStateHandler(closer, &views);
    m_doc->AddStateHandler(closed, &views);
    CString name(L"edit");
    MCCommandMgr::BeginUndo(m_doc, name);
    Run("b");
    MCCommandMgr::EndUndo(m_doc);
    EXPECT_EQ(views.calls, std::vector<std::string>{"closer0"});
}

// The host's first library call happened on a worker that has ended since:
// an edit then cannot be delivered, and says so, until the host names its
// document thread.
TEST_F(HostRobustness, EditThatCannotBeDeliveredFailsVisibly)
{
    static std::vector<std::string> s_messages;
    s_messages.clear();
    MCMessageBoxHandler old = MCSetMessageBoxHandler([](const CString &text, unsigned) {
        s_messages.push_back(CStringA(text).GetString());
        return IDOK;
    });
    std::thread([] { MCCommandMgr::SetDocumentThread(); }).join();

    const int refs = m_doc->GetRefCount();
    CString name(L"edit");
    MCCommandMgr::BeginUndo(m_doc, name);
    TestCommand *sent = Make("sent");
    TestCommand *posted = Make("posted", -1, 0);
    EXPECT_EQ(sent->Apply(m_doc), 0);
    EXPECT_EQ(posted->Apply(m_doc), 0);
    MCCommandList list;
    list.AddTail(Make("listed"));
    EXPECT_EQ(list.Apply(m_doc), 0);
    MCCommandMgr::EndUndo(m_doc);
    EXPECT_EQ(Mgr().GetUndoPending(), 0) << "the brackets do not wait for what never comes";
    EXPECT_EQ(m_doc->GetRefCount(), refs);
    EXPECT_EQ(sent->GetRefCount(), 1);
    EXPECT_EQ(posted->GetRefCount(), 1);
    ASSERT_EQ(s_messages.size(), 3u);
    EXPECT_NE(s_messages[0].find("document thread"), std::string::npos) << s_messages[0];

    ASSERT_EQ(MCCommandMgr::SetDocumentThread(), 1);
    MCCommandMgr::BeginUndo(m_doc, name);
    EXPECT_EQ(sent->Apply(m_doc), 1);
    MCCommandMgr::EndUndo(m_doc);
    EXPECT_EQ(m_log, (std::vector<std::string>{"Psent", "Rsent", "Fsent"}));
    EXPECT_EQ(m_doc->GetUndoCount(), 1);
    EXPECT_EQ(s_messages.size(), 3u);
    MCSetMessageBoxHandler(old);
}
