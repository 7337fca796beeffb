// Undo and notification brackets, the history and its limit.
#include "CommandTestSupport.h"

using Brackets = CommandTest;

TEST_F(Brackets, StepIsFiledAndAnnouncedOnceWhenTheBracketClosesAndUndoRedoRestoreTheSameObjects)
{
    CString name(L"Add");
    MCCommandMgr::BeginUndo(m_doc, name);
    TestCommand *a = Run("a");
    TestCommand *b = Run("b");
    EXPECT_TRUE(m_states.empty()) << "announced before the bracket closed";
    MCCommandMgr::EndUndo(m_doc);

    EXPECT_EQ(m_log, (std::vector<std::string>{"Pa", "Ra", "Fa", "Pb", "Rb", "Fb"}));
    ASSERT_EQ(Codes(), std::vector<unsigned>{500});
    EXPECT_EQ(m_states[0].commands, (std::vector<CCBase *>{a, b}));
    EXPECT_EQ(m_doc->GetUndoCount(), 1);
    EXPECT_EQ(m_doc->GetUndoIndex(), 0);
    CString s;
    EXPECT_EQ(m_doc->GetUndoString(s, -1), 1);
    EXPECT_EQ(s, CString(L"Add"));

    // Undo and redo take out and put back the same objects, announced each time.
    ECBase *added = b->GetEvent();
    EXPECT_EQ(m_doc->Undo(1), 1);
    EXPECT_EQ(ChildCount(), 1);
    EXPECT_EQ(m_doc->Undo(1), 0) << "nothing left to undo";
    EXPECT_EQ(m_doc->Redo(1), 1);
    EXPECT_EQ(m_doc->GetChildren()->GetTail(), added);
    EXPECT_EQ(m_doc->Redo(1), 0);
    EXPECT_EQ(Codes(), (std::vector<unsigned>{500, 501, 500}));
    EXPECT_EQ(m_log, (std::vector<std::string>{"Pa", "Ra", "Fa", "Pb", "Rb", "Fb", "Ub", "Ua", "Pa", "Pb", "Ra", "Rb",
                                               "Fa", "Fb"}));
}

TEST_F(Brackets, CommandThatCannotUndoIsAnnouncedButNotFiled)
{
    CString name(L"x");
    MCCommandMgr::BeginUndo(m_doc, name);
    Make("a")->SetCanUndo(0);
    m_held.back()->Apply(m_doc);
    MCCommandMgr::EndUndo(m_doc);
    EXPECT_EQ(Codes(), std::vector<unsigned>{500});
    EXPECT_EQ(m_doc->GetUndoCount(), 0);
    EXPECT_EQ(MCCommandMgr::GetTrashCount(), 1) << "the empty step goes to the trash";
}

TEST_F(Brackets, EmptyBracketResetsTheUndoIndexAndLeavesTheUndoneSteps)
{
    Step("one");
    Step("two");
    ASSERT_EQ(m_doc->Undo(1), 1);
    ASSERT_EQ(m_doc->GetUndoIndex(), 1);
    CString name(L"empty");
    MCCommandMgr::BeginUndo(m_doc, name);
    MCCommandMgr::EndUndo(m_doc);
    EXPECT_EQ(m_doc->GetUndoIndex(), 0);
    EXPECT_EQ(m_doc->GetUndoCount(), 2);
}

TEST_F(Brackets, PostedCommandsCloseTheStepAfterEndUndo)
{
    CString name(L"posted");
    MCCommandMgr::BeginUndo(m_doc, name);
    Make("a", -1, 0)->Apply(m_doc);
    Make("b", -1, 0)->Apply(m_doc);
    MCCommandMgr::EndUndo(m_doc);
    EXPECT_EQ(m_doc->GetUndoCount(), 0);
    EXPECT_EQ(m_doc->Undo(1), 0) << "undo while commands of the step are pending";

    MCMessageLoop::ProcessPending();
    EXPECT_EQ(m_doc->GetUndoCount(), 1);
    EXPECT_EQ(m_doc->GetUndoIndex(), 0);
    EXPECT_EQ(Codes(), std::vector<unsigned>{500});
}

TEST_F(Brackets, NewStepDropsTheRedoBranch)
{
    for (const char *name : {"1", "2", "3", "4"})
        Step(name);
    m_doc->Undo(1);
    m_doc->Undo(1);
    ASSERT_EQ(m_doc->GetUndoIndex(), 2);
    const int trashed = MCCommandMgr::GetTrashCount();
    Step("5");
    EXPECT_EQ(m_doc->GetUndoCount(), 3);
    EXPECT_EQ(MCCommandMgr::GetTrashCount(), trashed + 2);
    CString s;
    m_doc->GetRedoString(s, -1);
    EXPECT_TRUE(s.IsEmpty());
    m_doc->GetUndoString(s, 1);
    EXPECT_EQ(s, CString(L"2"));
}

TEST_F(Brackets, WithoutABracketNothingIsFiledAndAnEmptyOrClearedHistoryRefusesUndoAndStrings)
{
    Run("a"); // changes the tree silently
    EXPECT_EQ(ChildCount(), 2);
    EXPECT_TRUE(m_states.empty());
    EXPECT_EQ(m_doc->GetUndoCount(), 0);
    EXPECT_EQ(m_doc->GetUndoIndex(), -1);
    CString s(L"stale");
    EXPECT_EQ(m_doc->GetUndoString(s, -1), 0);
    EXPECT_TRUE(s.IsEmpty());
    Step("b");
    EXPECT_EQ(m_doc->ClearUndo(), 1);
    EXPECT_EQ(m_doc->GetUndoIndex(), -1);
    EXPECT_EQ(m_doc->Undo(1), 0);
    EXPECT_EQ(m_doc->Redo(1), 0);
}

TEST_F(Brackets, ApplyingAnEmptyListOrNothingIsRefused)
{
    CTypedPtrList<MCCommandList, CCBase *> empty;
    EXPECT_EQ(empty.IsSynchronous(), 1);
    EXPECT_EQ(empty.Apply(m_doc), 0);
    EXPECT_EQ(MCCommandMgr::ApplyCommand(nullptr, m_doc), 0);
    EXPECT_EQ(Make("a")->Apply(nullptr), 0);
    EXPECT_EQ(m_held.back()->GetRefCount(), 1) << "a refused command was counted";
}

// ---- Limits ----

TEST_F(Brackets, LevelsAreClampedAndPastThemTheOldestStepGoesToTheTrash)
{
    const std::pair<int, int> cases[] = {{-5, 0}, {0, 0}, {10000000, 10000000}, {10000001, 10000000}, {77, 77}};
    for (const auto &[given, kept] : cases)
    {
        MCCommandMgr::SetUndoLevels(given);
        EXPECT_EQ(MCCommandMgr::GetUndoLevels(), kept) << given;
    }
    MCCommandMgr::SetUndoLevels(0); // each step is trashed at once
    Step("a");
    EXPECT_EQ(m_doc->GetUndoCount(), 0);
    EXPECT_EQ(m_doc->GetUndoIndex(), 0);
    EXPECT_EQ(m_doc->Undo(1), 0);

    MCCommandMgr::SetUndoLevels(MCCommandMgr::DefaultUndoLevels);
    for (int i = 0; i < 251; ++i)
        Step(std::to_string(i));
    EXPECT_EQ(m_doc->GetUndoCount(), 250);
    CString oldest;
    m_doc->GetUndoString(oldest, 249);
    EXPECT_EQ(oldest, CString(L"1"));
    EXPECT_GE(MCCommandMgr::GetTrashCount(), 1);
}

// ---- The trash ----

TEST_F(Brackets, TrashedStepsKeepTheirCommandsUntilOnIdle)
{
    MCCommandMgr::OnIdle();
    // Steps whose only holder is the history, unlike the fixture's commands.
    auto step = [this](const wchar_t *name) {
        CString undoName(name);
        MCCommandMgr::BeginUndo(m_doc, undoName);
        auto *cmd = new TestCommand(&m_log, "x");
        cmd->SetSynchronous(1);
        cmd->Apply(m_doc);
        MCCommandMgr::EndUndo(m_doc);
    };
    MCCommandMgr::SetUndoLevels(2);
    step(L"1");
    step(L"2");
    ASSERT_EQ(m_doc->Undo(1), 1);
    step(L"3"); // drops "2", the redo branch
    step(L"4"); // pushes "1" past the limit
    EXPECT_EQ(m_doc->GetUndoCount(), 2);
    EXPECT_EQ(MCCommandMgr::GetTrashCount(), 2);
    EXPECT_EQ(TestCommand::s_live, 4) << "a trashed step's command died before OnIdle";

    MCCommandMgr::OnIdle();
    EXPECT_EQ(MCCommandMgr::GetTrashCount(), 0);
    EXPECT_EQ(TestCommand::s_live, 2) << "OnIdle left a trashed step's command alive";
    MCCommandMgr::OnIdle();
    EXPECT_EQ(TestCommand::s_live, 2) << "OnIdle reached the steps still in the history";

    // ClearUndo deletes the history's own steps at once.
    m_doc->ClearUndo();
    EXPECT_EQ(TestCommand::s_live, 0);
    EXPECT_EQ(MCCommandMgr::GetTrashCount(), 0);
}
