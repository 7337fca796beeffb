// Command handlers at phases 0 and 1, and commands that refuse a phase.
#include "CommandTestSupport.h"

#include <functional>

namespace
{
// Answers through a function of (phase, call number within that phase).
struct ScriptedHandler
{
    std::function<int(int phase, int call)> answer;
    int calls[2] = {0, 0};
    size_t lastBatchSize = 0;

    static int Call(ECBase *, int phase, void *list, void *user)
    {
        auto *self = static_cast<ScriptedHandler *>(user);
        self->lastBatchSize = static_cast<size_t>(static_cast<MCCommandMgr::CommandList *>(list)->GetCount());
        return self->answer(phase, self->calls[phase]++);
    }
};
} // namespace

using Handlers = CommandTest;

TEST_F(Handlers, PhaseZeroRunsAnotherPassWhileAHandlerAsksForOne)
{
    ScriptedHandler first{[](int, int call) { return call == 0 ? 0 : 1; }};
    ScriptedHandler second{[](int, int) { return 7; }};
    m_doc->AddCommandHandler(&ScriptedHandler::Call, &first);
    m_doc->AddCommandHandler(&ScriptedHandler::Call, &second);
    Run("a");
    EXPECT_EQ(first.calls[0], 2);
    EXPECT_EQ(second.calls[0], 2) << "a further pass calls every handler";
    EXPECT_EQ(first.calls[1], 1);
    EXPECT_EQ(ChildCount(), 2);
}

TEST_F(Handlers, PhaseZeroCancelStopsBeforeProcessWithoutAbort)
{
    // Asks for more passes four times, then cancels: the batch never reaches
    // Process while a handler keeps asking.
    ScriptedHandler veto{[](int, int call) { return call < 4 ? 0 : -1; }};
    ScriptedHandler behind{[](int, int) { return 1; }};
    m_doc->AddCommandHandler(&ScriptedHandler::Call, &veto);
    m_doc->AddCommandHandler(&ScriptedHandler::Call, &behind);
    CString name(L"x");
    MCCommandMgr::BeginUndo(m_doc, name);
    Run("a");
    MCCommandMgr::EndUndo(m_doc);
    EXPECT_EQ(m_log, std::vector<std::string>{"Pa"});
    EXPECT_EQ(veto.calls[0], 5);
    EXPECT_EQ(behind.calls[0], 4) << "the cancelling pass stops at once";
    EXPECT_TRUE(m_states.empty());
    EXPECT_EQ(ChildCount(), 1);
}

TEST_F(Handlers, PhaseOneRefusalKeepsTheChangeWithoutStepOrNotification)
{
    ScriptedHandler refuse{[](int phase, int) { return phase == 1 ? 0 : 1; }};
    ScriptedHandler behind{[](int, int) { return 1; }};
    m_doc->AddCommandHandler(&ScriptedHandler::Call, &refuse);
    m_doc->AddCommandHandler(&ScriptedHandler::Call, &behind);
    CString name(L"x");
    MCCommandMgr::BeginUndo(m_doc, name);
    Run("a");
    MCCommandMgr::EndUndo(m_doc);
    EXPECT_EQ(behind.calls[1], 1) << "handlers behind a refusal still run";
    EXPECT_EQ(m_log, (std::vector<std::string>{"Pa", "Ra"}));
    EXPECT_EQ(ChildCount(), 2) << "no roll back";
    EXPECT_EQ(m_doc->GetUndoCount(), 0);
    EXPECT_TRUE(m_states.empty());
    // The counted command never finished: the step stays open for good.
    EXPECT_EQ(Mgr().GetUndoPending(), 1);
    EXPECT_EQ(m_doc->Undo(1), 0);
}

TEST_F(Handlers, HandlersSeeTheBatchRunInsertedBeforeTheirIndexOrAppendedAndGoWhenRemoved)
{
    static std::vector<intptr_t> s_order;
    s_order.clear();
    auto handler = [](ECBase *, int phase, void *, void *user) {
        if (phase == 0)
            s_order.push_back(reinterpret_cast<intptr_t>(user));
        return 1;
    };
    Mgr().AddCommandHandler(handler, reinterpret_cast<void *>(1), 5);
    Mgr().AddCommandHandler(handler, reinterpret_cast<void *>(2), 0);
    Mgr().AddCommandHandler(handler, reinterpret_cast<void *>(3), 1);
    ScriptedHandler seen{[](int, int) { return 1; }};
    m_doc->AddCommandHandler(&ScriptedHandler::Call, &seen);
    CTypedPtrList<MCCommandList, CCBase *> list;
    list.AddTail(Make("a"));
    list.AddTail(Make("b"));
    list.Apply(m_doc);
    EXPECT_EQ(s_order, (std::vector<intptr_t>{2, 3, 1}));
    EXPECT_EQ(seen.lastBatchSize, 2u);
    EXPECT_EQ(seen.calls[0], 1) << "the appended handler did not run last";
    m_doc->RemoveCommandHandlers();
    Run("c");
    EXPECT_EQ(seen.calls[0], 1);
    EXPECT_EQ(s_order.size(), 3u);
}

// ---- Refusals ----

TEST_F(Handlers, RefusedPhaseAbortsWithA502AndStopsTheBatchAndNoConductorRefusesAtPrepare)
{
    struct Case
    {
        int phase;
        std::vector<std::string> log;
        int children; // the conductor, and the event of a processed command
    };
    const Case cases[] = {
        {0, {"Pa", "Pb", "Ab"}, 1},
        {1, {"Pa", "Pb", "Pc", "Ra", "Rb", "Ab"}, 2},
        {2, {"Pa", "Pb", "Pc", "Ra", "Rb", "Rc", "Fa", "Fb", "Ab"}, 4},
    };
    for (const Case &c : cases)
    {
        SCOPED_TRACE(c.phase);
        m_log.clear();
        m_states.clear();
        ECBase *conductor = m_doc->GetChildren()->GetHead();
        while (ChildCount() > 1)
            m_doc->RemoveChild(m_doc->GetChildren()->GetTail(), 0);
        ASSERT_EQ(m_doc->GetChildren()->GetHead(), conductor);

        CString name(L"x");
        MCCommandMgr::BeginUndo(m_doc, name);
        CTypedPtrList<MCCommandList, CCBase *> list;
        list.AddTail(Make("a"));
        TestCommand *b = Make("b", c.phase);
        list.AddTail(b);
        list.AddTail(Make("c"));
        list.SetSynchronous(1);
        list.Apply(m_doc);
        MCCommandMgr::EndUndo(m_doc);

        EXPECT_EQ(m_log, c.log);
        EXPECT_EQ(ChildCount(), c.children);
        ASSERT_EQ(Codes(), std::vector<unsigned>{502});
        EXPECT_EQ(m_states[0].commands, std::vector<CCBase *>{b});
        EXPECT_EQ(b->GetCommandPhase(), static_cast<unsigned>(c.phase));
        EXPECT_EQ(m_doc->Undo(1), 0) << "the counters stay raised after a refusal";
    }

    // A document without a conductor refuses at Prepare.
    m_log.clear();
    ECPerformance *bare = new ECPerformance;
    bare->Ref();
    auto *cmd = Make("a");
    cmd->Apply(bare);
    EXPECT_EQ(m_log, (std::vector<std::string>{"Pa", "Aa"}));
    EXPECT_EQ(cmd->GetConductor(), nullptr);
    bare->Unref(1);
}
