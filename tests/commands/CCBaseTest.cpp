// The command base: its discard list, its reference count, and the command
// list that finds or makes commands by id.
#include "CommandTestSupport.h"

#include <scoremodel/events/notes/ECMirror.h>

namespace
{
struct DiscardTree
{
    ECPerformance *doc = new ECPerformance;
    ECBase *a = CreateEventW(EVENT_ID_WITH_TIME_CHILD);
    ECBase *b = CreateEventW(EVENT_ID_WITH_TIME);
    ECBase *c = CreateEventW(EVENT_ID_WITH_TIME);
    ECBase *leaf = CreateEventW(EVENT_ID_WITH_TIME);

    DiscardTree()
    {
        doc->Ref();
        for (ECBase *e : {a, b, c})
            doc->AddChild(e, 0);
        a->AddChild(leaf, 0);
    }
    ~DiscardTree()
    {
        doc->RemoveChildren(1);
        doc->Unref(1);
    }
};

std::vector<ECBase *> Listed(CCBase::EventList *list)
{
    std::vector<ECBase *> out;
    for (POSITION pos = list ? list->GetHeadPosition() : nullptr; pos;)
        out.push_back(list->GetNext(pos));
    return out;
}
} // namespace

TEST(CCBaseDiscard, ListStopsAtTheFirstEventAlreadyListedAndProcessingDetachesThem)
{
    DiscardTree t;
    auto *cmd = new TestCommand(nullptr, "x");
    cmd->Ref();
    cmd->Discard(static_cast<ECBase *>(nullptr));
    EXPECT_EQ(cmd->GetDiscardList(), nullptr);
    cmd->Discard(t.b);
    cmd->Discard(t.b);
    CCBase::EventList more;
    for (ECBase *e : {t.a, t.b, t.c})
        more.AddTail(e);
    cmd->Discard(&more);
    EXPECT_EQ(Listed(cmd->GetDiscardList()), (std::vector<ECBase *>{t.b, t.a})) << "c stays off the list";
    more.RemoveAll();
    cmd->DiscardMirrors(t.c); // holds no mirrors
    EXPECT_EQ(cmd->GetDiscardList()->GetCount(), 2);

    // Processing detaches parents and children and drops the list.
    for (ECBase *e : {t.a, t.b})
        e->Ref(); // held, as a command holds what it takes out
    cmd->ProcessDiscardList();
    EXPECT_EQ(cmd->GetDiscardList(), nullptr);
    for (ECBase *e : {t.a, t.b})
    {
        EXPECT_TRUE(e->GetParents()->IsEmpty());
        EXPECT_TRUE(e->GetChildren() == nullptr || e->GetChildren()->IsEmpty());
        EXPECT_EQ(t.doc->GetChildren()->Find(e), nullptr);
        EXPECT_EQ(e->GetRefCount(), 1);
        e->Unref(1);
    }
    EXPECT_NE(t.doc->GetChildren()->Find(t.c), nullptr) << "an event off the list was taken out";
    cmd->Unref(1);
}

TEST(CCBaseDiscard, DiscardedMirrorLetsGoOfItsSourceBeforeTheSourceDies)
{
    DiscardTree t;
    auto *mirror = static_cast<ECMirror *>(CreateEventW(EVENT_ID_MIRROR));
    t.doc->AddChild(mirror, 0);
    mirror->SetMirrorEvent(t.b, 1);
    mirror->Ref(); // the undo history's hold
    auto *cmd = new TestCommand(nullptr, "x");
    cmd->Ref();
    cmd->Discard(mirror);
    cmd->Discard(t.b);
    cmd->ProcessDiscardList();
    // b has no holder left and is gone; the mirror must not point at it.
    EXPECT_EQ(mirror->GetMirrorEvent(), nullptr);
    EXPECT_TRUE(mirror->GetParents()->IsEmpty());
    mirror->Unref(1);
    cmd->Unref(1);
}

TEST(MCCommandListTest, GetCommandFindsByIdOrMakesOneOfTheClass)
{
    CTypedPtrList<MCCommandList, CCBase *> list;
    EXPECT_EQ(list.GetTarget(), nullptr);
    EXPECT_EQ(list.GetCommand(COMMAND_ID_BASE, nullptr), nullptr);
    CCBase *made = list.GetCommand(COMMAND_ID_BASE, RUNTIME_CLASS(CCBase));
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->GetRefCount(), 1) << "the list holds what it made";
    EXPECT_EQ(list.GetCommand(COMMAND_ID_BASE, RUNTIME_CLASS(CCBase)), made);
    EXPECT_EQ(list.GetCount(), 1);
    EXPECT_EQ(list.GetCommand(COMMAND_ID_ADD_TRACK, RUNTIME_CLASS(ECPerformance)), nullptr);
}

using ApplyCommands = CommandTest;

TEST_F(ApplyCommands, CallersListIsLeftAsItWas)
{
    CTypedPtrList<MCCommandList, CCBase *> list;
    list.AddTail(Make("a"));
    list.AddTail(Make("b", -1, 0)); // one posted command makes the whole list posted
    EXPECT_EQ(list.Apply(m_doc), 1);
    EXPECT_TRUE(m_log.empty());
    EXPECT_EQ(list.GetCount(), 2);
    MCMessageLoop::ProcessPending();
    EXPECT_EQ(m_log, (std::vector<std::string>{"Pa", "Pb", "Ra", "Rb", "Fa", "Fb"}));
    EXPECT_EQ(list.GetTarget(), m_doc);
    EXPECT_EQ(m_held[0]->GetRefCount(), 2) << "the fixture and the caller's list";
}
