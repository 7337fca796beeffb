// Posted commands and lists gathered into one batch by the timer, notification
// brackets around such batches, and delivery on the document thread.
#include "CommandTestSupport.h"

#include <scoremodel/commands/MCCommandTimer.h>

#include <atomic>
#include <thread>

namespace
{
int CountBatch(ECBase *, int phase, void *list, void *user)
{
    if (phase == 0)
        static_cast<std::vector<int> *>(user)->push_back(static_cast<MCCommandMgr::CommandList *>(list)->GetCount());
    return 1;
}
} // namespace

using TimerBatching = CommandTest;

TEST_F(TimerBatching, PostedCommandsRunAsOneBatchWhenTheTimerFires)
{
    std::vector<int> batches;
    m_doc->AddCommandHandler(&CountBatch, &batches);
    m_doc->SetCommandRate(20);
    const int held = m_doc->GetRefCount();
    CString name(L"record");
    MCCommandMgr::BeginUndo(m_doc, name);
    for (const char *n : {"a", "b", "c"})
        Make(n, -1, 0)->Apply(m_doc);
    MCCommandMgr::EndUndo(m_doc);

    MCMessageLoop::ProcessPending(); // the posts reach the timer's queue
    EXPECT_TRUE(m_log.empty());
    ASSERT_NE(Mgr().GetTimer(), nullptr);
    EXPECT_EQ(Mgr().GetTimer()->GetQueuedCount(), 3);
    while (batches.empty())
        MCMessageLoop::RunFor(5);

    EXPECT_EQ(batches, std::vector<int>{3});
    EXPECT_EQ(m_log, (std::vector<std::string>{"Pa", "Pb", "Pc", "Ra", "Rb", "Rc", "Fa", "Fb", "Fc"}));
    EXPECT_EQ(m_doc->GetUndoCount(), 1);
    EXPECT_EQ(Codes(), std::vector<unsigned>{500});
    // Three Apply calls took three references and one batch gave one back;
    // the three new children hold their parent besides.
    EXPECT_EQ(m_doc->GetRefCount(), held + 3 + 2);
    m_doc->Unref(0);
    m_doc->Unref(0);
}

TEST_F(TimerBatching, RateZeroDeliversTheQueueAtOnce)
{
    std::vector<int> batches;
    m_doc->AddCommandHandler(&CountBatch, &batches);
    m_doc->SetCommandRate(60000);
    Make("a", -1, 0)->Apply(m_doc);
    Make("b", -1, 0)->Apply(m_doc);
    MCMessageLoop::ProcessPending();
    EXPECT_TRUE(batches.empty());
    m_doc->SetCommandRate(0);
    EXPECT_EQ(batches, std::vector<int>{2});
    EXPECT_EQ(Mgr().GetTimer(), nullptr);
    m_doc->Unref(0);

    Make("c", -1, 0)->Apply(m_doc);
    MCMessageLoop::ProcessPending();
    EXPECT_EQ(batches, (std::vector<int>{2, 1})) << "without a timer each post is its own batch";
}

TEST_F(TimerBatching, ALaterCommandDoesNotRestartTheClock)
{
    std::vector<int> batches;
    m_doc->AddCommandHandler(&CountBatch, &batches);
    m_doc->SetCommandRate(200);
    Make("a", -1, 0)->Apply(m_doc);
    MCMessageLoop::ProcessPending();
    const int delay = MCMessageLoop::GetNextTimerDelay();
    ASSERT_GE(delay, 0);
    while (MCMessageLoop::GetNextTimerDelay() >= delay - 10 && batches.empty())
        MCMessageLoop::RunFor(1);
    Make("b", -1, 0)->Apply(m_doc);
    MCMessageLoop::ProcessPending();
    EXPECT_LT(MCMessageLoop::GetNextTimerDelay(), delay - 9) << "the clock started again";
    while (batches.empty())
        MCMessageLoop::RunFor(5);
    EXPECT_EQ(batches.size(), 1u);
    m_doc->Unref(0);
}

TEST_F(TimerBatching, SynchronousApplyFromAnotherThreadRunsOnTheDocumentThread)
{
    TestCommand *cmd = Make("a");
    std::atomic<bool> returned{false};
    std::atomic<bool> ranBeforeReturn{false};
    std::thread other([&] {
        cmd->Apply(m_doc);
        ranBeforeReturn = cmd->GetThread() != 0;
        returned = true;
    });
    while (!returned)
        MCMessageLoop::RunFor(5);
    other.join();
    EXPECT_TRUE(ranBeforeReturn);
    EXPECT_EQ(cmd->GetThread(), GetCurrentThreadId());
    EXPECT_EQ(ChildCount(), 2);
}

// A notification bracket around a sent command and posted ones announces
// them all once, in one record, whether the bracket closes before the
// timer's batch runs or after: a bracket closed while commands wait must
// wait for them.
TEST_F(TimerBatching, NotifyBracketAnnouncesTheTimersBatchOnce)
{
    for (bool closeFirst : {true, false})
    {
        SCOPED_TRACE(closeFirst ? "closed before the batch" : "closed after the batch");
        m_states.clear();
        std::vector<int> batches;
        m_doc->RemoveCommandHandlers();
        m_doc->AddCommandHandler(&CountBatch, &batches);
        m_doc->SetCommandRate(20);
        MCCommandMgr::BeginNotify(m_doc);
        TestCommand *x = Make("x");
        x->Apply(m_doc);
        batches.clear(); // x ran at once, in a batch of its own
        TestCommand *a = Make("a", -1, 0);
        TestCommand *b = Make("b", -1, 0);
        a->Apply(m_doc);
        b->Apply(m_doc);
        if (closeFirst)
            MCCommandMgr::EndNotify(m_doc);
        EXPECT_TRUE(m_states.empty()) << "announced before the posted commands ran";
        EXPECT_EQ(Mgr().GetNotifyPending(), 2);
        MCMessageLoop::ProcessPending();
        ASSERT_EQ(Mgr().GetTimer()->GetQueuedCount(), 2);
        while (batches.empty())
            MCMessageLoop::RunFor(5);
        EXPECT_EQ(batches, std::vector<int>{2});
        if (!closeFirst)
        {
            EXPECT_TRUE(m_states.empty()) << "announced inside the open bracket";
            MCCommandMgr::EndNotify(m_doc);
        }
        ASSERT_EQ(Codes(), std::vector<unsigned>{SCCommand::CodeFinished});
        EXPECT_EQ(m_states[0].commands, (std::vector<CCBase *>{x, a, b}));
        EXPECT_EQ(Mgr().GetNotifyPending(), 0);
        EXPECT_EQ(Mgr().GetNotifyMode(), 0);
        EXPECT_EQ(Mgr().GetNotifyState(), nullptr);
        EXPECT_EQ(m_doc->GetUndoCount(), 0) << "a notification bracket files no undo step";
        m_doc->Unref(0); // two Apply calls, one batch
    }
}

// A posted list goes to the timer's queue as a posted command does, and
// joins the same batch.
TEST_F(TimerBatching, PostedListWaitsInTheTimerWithThePostedCommands)
{
    std::vector<int> batches;
    m_doc->AddCommandHandler(&CountBatch, &batches);
    m_doc->SetCommandRate(20);
    CTypedPtrList<MCCommandList, CCBase *> list;
    list.AddTail(Make("a", -1, 0));
    list.AddTail(Make("b"));
    EXPECT_EQ(list.Apply(m_doc), 1);
    MCMessageLoop::ProcessPending();
    EXPECT_TRUE(m_log.empty()) << "the list ran without waiting for the timer";
    EXPECT_EQ(Mgr().GetTimer()->GetQueuedCount(), 2);
    Make("c", -1, 0)->Apply(m_doc);
    MCMessageLoop::ProcessPending();
    EXPECT_EQ(Mgr().GetTimer()->GetQueuedCount(), 3);
    while (batches.empty())
        MCMessageLoop::RunFor(5);
    EXPECT_EQ(batches, std::vector<int>{3});
    EXPECT_EQ(m_log, (std::vector<std::string>{"Pa", "Pb", "Pc", "Ra", "Rb", "Rc", "Fa", "Fb", "Fc"}));
    m_doc->Unref(0); // two Apply calls, one batch
}
