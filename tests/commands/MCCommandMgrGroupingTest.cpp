// Undo steps merged into one user action by the host's marker in their names.
#include "CommandTestSupport.h"

#include <scoremodel/platform/MCLanguageManager.h>

namespace
{
class Grouping : public CommandTest
{
protected:
    void SetUp() override
    {
        CommandTest::SetUp();
        MCLanguageManager::SetText(L"InternalSystemData", L"ID_STRING_THE_SAME_ACTION", L"#same#");
    }
    void TearDown() override
    {
        MCLanguageManager::ClearHostTexts();
        CommandTest::TearDown();
    }
};
} // namespace

TEST_F(Grouping, MarkedStepsOfOneNameAreUndoneAndRedoneTogether)
{
    Step("plain");
    for (int i = 0; i < 3; ++i)
        Step("drag #same#");
    EXPECT_EQ(m_doc->Undo(1), 1);
    EXPECT_EQ(m_doc->GetUndoIndex(), 3);
    EXPECT_EQ(ChildCount(), 2);
    EXPECT_EQ(m_doc->Redo(1), 1);
    EXPECT_EQ(m_doc->GetUndoIndex(), 0);
    EXPECT_EQ(ChildCount(), 5);

    // Until the host sets its marker, nothing merges.
    MCLanguageManager::ClearHostTexts();
    EXPECT_EQ(m_doc->Undo(1), 1);
    EXPECT_EQ(m_doc->GetUndoIndex(), 1);
}

TEST_F(Grouping, OtherNamesMoveOneStepWhateverTheArgument)
{
    struct Case
    {
        const char *names[3];
    };
    const Case cases[] = {
        {{"drag", "drag", "drag"}},                // repeated, without the marker
        {{"a #same#", "b #same#", "a #same#"}},    // marked, but not alike
        {{"", "", "x"}},                           // unnamed steps are skipped, the named one counts
    };
    for (const Case &c : cases)
    {
        SCOPED_TRACE(c.names[0]);
        m_doc->ClearUndo();
        for (const char *name : c.names)
            Step(name);
        EXPECT_EQ(m_doc->Undo(3), 1);
        EXPECT_EQ(m_doc->GetUndoIndex(), 1);
    }
}

TEST_F(Grouping, SetUndoIndexMovesOneActionHoweverFarTheIndexLies)
{
    for (const char *name : {"1", "2", "3", "4"})
        Step(name);
    m_doc->SetUndoIndex(4);
    EXPECT_EQ(m_doc->GetUndoIndex(), 1);
    m_doc->SetUndoIndex(1);
    EXPECT_EQ(m_doc->GetUndoIndex(), 2) << "the current index still undoes one action";
    m_doc->SetUndoIndex(0);
    EXPECT_EQ(m_doc->GetUndoIndex(), 1);
}
