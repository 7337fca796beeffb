// The command base: its discard list, its reference count, and the command
// list that finds or makes commands by id.
#include "CommandTestSupport.h"

#include <scoremodel/events/base/ECWithTimeChild.h>
#include <scoremodel/events/media/ECText.h>
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

// An event that counts the living instances of its class.
class CountedEvent : public ECWithTimeChild
{
public:
    static inline int s_live = 0;
    CountedEvent() { ++s_live; }
    int GetEventId() const override { return EVENT_ID_WITH_TIME_CHILD; }

protected:
    ~CountedEvent() override { --s_live; }
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

TEST(CCBaseDiscard, TheMirrorsOfASignatureOrMirrorTextGoWithIt)
{
    for (int id : {EVENT_ID_CLEF, EVENT_ID_KEY, EVENT_ID_METER, EVENT_ID_TEMPO, EVENT_ID_TEXT})
    {
        SCOPED_TRACE(id);
        ECBase *source = CreateEventW(id);
        source->Ref();
        if (id == EVENT_ID_TEXT)
            static_cast<ECText *>(source)->SetTextType(ECText::kMirrorTextFirst);
        ECBase *holder = CreateEventW(EVENT_ID_MEASURE);
        holder->Ref();
        ECMirror *mirrors[2] = {new ECMirror, new ECMirror};
        for (ECMirror *m : mirrors)
        {
            holder->AddChild(m, 0);
            m->SetMirrorEvent(source, 1);
        }
        auto *cmd = new TestCommand(nullptr, "x");
        cmd->Ref();
        cmd->DiscardMirrors(source);
        EXPECT_EQ(Listed(cmd->GetDiscardList()), (std::vector<ECBase *>{mirrors[0], mirrors[1]}));
        cmd->ProcessDiscardList();
        EXPECT_TRUE(holder->GetChildren()->IsEmpty()) << "the mirrors left the tree";
        cmd->Unref(1);
        holder->Unref(1);
        source->Unref(1);
    }
}

TEST(CCBaseDiscard, ChildrenOfADiscardedEventAreFreedUnlessHeldAndAHeldOneKeepsItsSubtree)
{
    // discarded -> child -> grandchild, and discarded -> beam -> child, a
    // child with two parents as a note has with its measure and its beam.
    const struct
    {
        const char *what;
        bool beam, holdDiscarded, holdChild;
        int liveAfter;
    } rows[] = {
        {"nothing held", false, false, false, 0},
        {"discarded event held for undo", false, true, false, 1},
        {"child held", false, false, true, 2},
        {"child also under a beam", true, false, false, 0},
        {"child under a beam, held", true, false, true, 2},
    };
    for (const auto &row : rows)
    {
        SCOPED_TRACE(row.what);
        const int before = CountedEvent::s_live;
        ECBase *root = new CountedEvent;
        root->Ref();
        ECBase *discarded = new CountedEvent, *child = new CountedEvent, *grandchild = new CountedEvent;
        root->AddChild(discarded, 0);
        if (row.beam)
        {
            ECBase *beam = new CountedEvent;
            discarded->AddChild(beam, 0);
            beam->AddChild(child, 0);
        }
        discarded->AddChild(child, 0);
        child->AddChild(grandchild, 0);
        if (row.holdDiscarded)
            discarded->Ref();
        if (row.holdChild)
            child->Ref();

        auto *cmd = new TestCommand(nullptr, "x");
        cmd->Ref();
        cmd->Discard(discarded);
        cmd->ProcessDiscardList();
        cmd->Unref(1);
        root->RemoveChildren(1);
        root->Unref(1);
        EXPECT_EQ(CountedEvent::s_live - before, row.liveAfter);

        if (row.holdDiscarded)
        {
            EXPECT_TRUE(discarded->GetChildren() == nullptr || discarded->GetChildren()->IsEmpty());
            discarded->Unref(1);
        }
        if (row.holdChild)
        {
            EXPECT_TRUE(child->GetParents()->IsEmpty());
            EXPECT_EQ(Listed(child->GetChildren()), std::vector<ECBase *>{grandchild}) << "detached, not deeply";
            child->RemoveChildren(1);
            child->Unref(1);
        }
        EXPECT_EQ(CountedEvent::s_live, before);
    }
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

// Unref(0) is how a holder lets go of a command it does not own the death
// of: the command must live on at zero, and zero stays zero.
TEST(CCBaseRefCount, UnrefWithoutDeleteNeverDeletes)
{
    const int live = TestCommand::s_live;
    auto *cmd = new TestCommand(nullptr, "x");
    cmd->Ref();
    cmd->Ref();
    EXPECT_EQ(cmd->Unref(0), 1);
    EXPECT_EQ(cmd->Unref(0), 0);
    EXPECT_EQ(TestCommand::s_live, live + 1) << "deleted at zero without being asked";
    EXPECT_EQ(cmd->Unref(0), 0) << "the count wrapped below zero";
    EXPECT_EQ(TestCommand::s_live, live + 1);
    cmd->Ref();
    cmd->Ref();
    EXPECT_EQ(cmd->Unref(1), 1);
    EXPECT_EQ(TestCommand::s_live, live + 1) << "deleted while still held";
    EXPECT_EQ(cmd->Unref(1), 0);
    EXPECT_EQ(TestCommand::s_live, live);
}

// A list holds each command once: putting the same command back at its own
// place keeps it alive, another command takes the place and the hold.
TEST(MCCommandListTest, SetAtHoldsTheNewCommandBeforeItReleasesTheOld)
{
    const int live = TestCommand::s_live;
    CTypedPtrList<MCCommandList, CCBase *> list;
    auto *a = new TestCommand(nullptr, "a");
    auto *b = new TestCommand(nullptr, "b");
    b->Ref(); // the caller's
    POSITION pos = list.AddTail(a);
    list.SetAt(pos, a);
    EXPECT_EQ(TestCommand::s_live, live + 2) << "a command set over itself died";
    EXPECT_EQ(a->GetRefCount(), 1);
    EXPECT_EQ(list.GetAt(pos), a);

    list.SetAt(pos, b);
    EXPECT_EQ(TestCommand::s_live, live + 1) << "only the list held a";
    EXPECT_EQ(b->GetRefCount(), 2);
    list.SetAt(pos, nullptr);
    EXPECT_EQ(b->GetRefCount(), 1);
    list.RemoveAll();
    EXPECT_EQ(b->Unref(1), 0);
    EXPECT_EQ(TestCommand::s_live, live);
}

using ApplyCommands = CommandTest;

// One posted command anywhere in the list makes the whole list posted; the
// caller's list is left as it was.
TEST_F(ApplyCommands, OnePostedCommandAnywherePostsTheListAndTheCallersListIsLeftAsItWas)
{
    const struct
    {
        const char *what;
        int aSynchronous, bSynchronous;
    } rows[] = {
        {"posted last", 1, 0},
        {"posted first", 0, 1},
        {"all posted", 0, 0},
    };
    for (const auto &row : rows)
    {
        SCOPED_TRACE(row.what);
        m_log.clear();
        CTypedPtrList<MCCommandList, CCBase *> list;
        TestCommand *a = Make("a", -1, row.aSynchronous);
        list.AddTail(a);
        list.AddTail(Make("b", -1, row.bSynchronous));
        EXPECT_EQ(list.Apply(m_doc), 1);
        EXPECT_TRUE(m_log.empty()) << "sent at once";
        EXPECT_EQ(list.GetCount(), 2);
        MCMessageLoop::ProcessPending();
        EXPECT_EQ(m_log, (std::vector<std::string>{"Pa", "Pb", "Ra", "Rb", "Fa", "Fb"}));
        EXPECT_EQ(list.GetTarget(), m_doc);
        EXPECT_EQ(a->GetRefCount(), 2) << "the fixture and the caller's list";
    }

    // A list of synchronous commands only runs before Apply returns.
    m_log.clear();
    CTypedPtrList<MCCommandList, CCBase *> list;
    list.AddTail(Make("c"));
    list.AddTail(Make("d"));
    EXPECT_EQ(list.Apply(m_doc), 1);
    EXPECT_EQ(m_log, (std::vector<std::string>{"Pc", "Pd", "Rc", "Rd", "Fc", "Fd"}));
}
