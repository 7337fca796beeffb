// Groups live by their type bits: a closed group keeps its children, a group
// that follows its parents closes while it has none, and the bits that tie
// the group's life to its last parent or its last child take it down then.
// A random run checks those rules and every reference count after each step.
#include "events/ArchiveTestSupport.h"
#include "events/base/EventTestSupport.h"

#include <scoremodel/events/notes/ECBeam.h>
#include <scoremodel/events/notes/ECChord.h>
#include <scoremodel/events/notes/ECGlissando.h>
#include <scoremodel/events/notes/ECGroup.h>
#include <scoremodel/events/notes/ECNote.h>
#include <scoremodel/events/notes/ECSlur.h>
#include <scoremodel/events/notes/ECTie.h>
#include <scoremodel/events/notes/ECTuplet.h>
#include <scoremodel/events/structure/ECMeasure.h>

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <vector>

namespace
{
template <class T>
T *Held(BYTE type = 0)
{
    T *event = new T;
    event->Ref();
    if constexpr (std::is_base_of_v<ECGroup, T>)
        event->SetGroupType(type);
    return event;
}

// A group under a parent with two notes, all held by the test too.
struct GroupUnderParent
{
    TestNode *parent = TestNode::Make();
    ECGroup *group;
    ECNote *notes[2] = {Held<ECNote>(), Held<ECNote>()};

    explicit GroupUnderParent(ECGroup *g) : group(g)
    {
        parent->Ref();
        group->Ref();
        parent->AddChild(group, 0);
        for (ECNote *n : notes)
            group->AddChild(n, 0);
    }
    ~GroupUnderParent()
    {
        parent->RemoveChildren(0);
        parent->Unref(1);
        group->RemoveGroupType(ECGroup::Closed | ECGroup::ClosedWhileParentless);
        group->RemoveChildren(0);
        group->Unref(1);
        for (ECNote *n : notes)
            n->Unref(1);
    }
    int Children() const { return group->GetChildren()->GetCount(); }
};
} // namespace

TEST(ECGroupTest, AClosedGroupRefusesToLetGo)
{
    GroupUnderParent s(new ECGroup(ECGroup::Closed));
    EXPECT_EQ(s.group->RemoveChild(s.notes[0], 0), 0);
    EXPECT_EQ(s.group->RemoveChildren(0), 0);
    EXPECT_EQ(s.Children(), 2);
    EXPECT_EQ(s.notes[0]->GetParents()->GetCount(), 1);
    s.group->RemoveGroupType(ECGroup::Closed);
    EXPECT_EQ(s.group->RemoveChild(s.notes[0], 0), 1);
    EXPECT_EQ(s.Children(), 1);
}

TEST(ECGroupTest, ATreeTakenDownFreesAClosedGroupAndItsNotes)
{
    // The notes hold the group as a parent and the group holds them: only
    // the deep removal can break that ring, whatever the type bits say.
    for (BYTE type : {BYTE(ECGroup::Closed), BYTE(0xFF)})
    {
        GroupUnderParent s(new ECGroup(type));
        for (ECNote *n : s.notes)
            s.parent->AddChild(n, 0);
        s.parent->RemoveChildren(1);
        EXPECT_EQ(s.Children(), 0);
        EXPECT_EQ(s.group->GetRefCount(), 1) << "held by the test only";
        for (ECNote *n : s.notes)
            EXPECT_EQ(n->GetRefCount(), 1);
    }
}

TEST(ECGroupTest, TheLifeRulesOfEachBit)
{
    struct Case
    {
        const char *what;
        BYTE type;
        // 0: the parent lets go; 1: the group leaves its parents; 2: all
        // children removed at once; 3: the children one by one.
        int action;
        int children;  // what the group holds afterwards
        bool parented; // whether it still has its parent
        bool closed;   // bit 0x08 afterwards
    };
    const Case cases[] = {
        {"no bits: the parent lets go", 0x00, 0, 2, false, false},
        {"0x01: the children go with the last parent", 0x01, 0, 0, false, false},
        {"0x01 by leaving", 0x01, 1, 0, false, false},
        {"0x04: closed while parentless, children kept", 0x05, 0, 2, false, true},
        {"0x04 by leaving", 0x04, 1, 2, false, true},
        {"0x02: the group leaves with its last child", 0x02, 2, 0, false, false},
        {"0x02 needs the whole clearing, not the last single removal", 0x02, 3, 0, true, false},
        {"no bits: cleared, the group stays", 0x00, 2, 0, true, false},
    };
    for (const Case &c : cases)
    {
        SCOPED_TRACE(c.what);
        GroupUnderParent s(new ECGroup(c.type));
        switch (c.action)
        {
        case 0:
            s.parent->RemoveChild(s.group, 0);
            break;
        case 1:
            s.group->RemoveFromParents();
            break;
        case 2:
            EXPECT_EQ(s.group->RemoveChildren(0), 1);
            break;
        case 3:
            for (ECNote *n : s.notes)
                EXPECT_EQ(s.group->RemoveChild(n, 0), 1);
            break;
        }
        EXPECT_EQ(s.Children(), c.children);
        EXPECT_EQ(Holds(s.parent->GetChildren(), s.group), c.parented);
        EXPECT_EQ(s.group->HasType(ECGroup::Closed) != 0, c.closed);
        for (ECNote *n : s.notes)
            EXPECT_EQ(n->GetRefCount(), 1 + (c.children ? 1 : 0));
    }
}

TEST(ECGroupTest, AParentlessGroupThatFollowsItsParentsOpensWhenOneComes)
{
    ECGroup *group = Held<ECGroup>(ECGroup::ClosedWhileParentless | ECGroup::Closed);
    TestNode *parent = TestNode::Make();
    parent->Ref();
    parent->AddChild(group, 0);
    EXPECT_FALSE(group->HasType(ECGroup::Closed));
    TestNode *second = TestNode::Make();
    second->Ref();
    second->AddChild(group, 0);
    parent->RemoveChild(group, 0);
    EXPECT_FALSE(group->HasType(ECGroup::Closed)) << "one parent is left";
    second->RemoveChild(group, 0);
    EXPECT_TRUE(group->HasType(ECGroup::Closed));
    for (ECBase *e : {static_cast<ECBase *>(group), static_cast<ECBase *>(parent), static_cast<ECBase *>(second)})
        e->Unref(1);
}

TEST(ECGroupTest, TiesSlursAndGlissandiKeepNothingOnceTheLastNoteGoes)
{
    for (ECGroup *group : {static_cast<ECGroup *>(Held<ECTie>()), static_cast<ECGroup *>(Held<ECSlur>()),
                           static_cast<ECGroup *>(Held<ECGlissando>()), static_cast<ECGroup *>(Held<ECBeam>())})
    {
        const bool beam = group->GetEventId() == EVENT_ID_BEAM;
        SCOPED_TRACE(group->GetRuntimeClass()->m_lpszClassName);
        ECNote *note = Held<ECNote>();
        ECChord *chord = Held<ECChord>();
        group->AddChild(note, 0);
        group->AddChild(chord, 0);
        EXPECT_EQ(group->RemoveChild(note, 0), 1);
        EXPECT_EQ(group->GetChildren()->GetCount(), beam ? 1 : 0) << "a beam keeps the chord";
        EXPECT_EQ(group->RemoveChild(note, 0), 0);
        group->RemoveChildren(0);
        for (ECBase *e : {static_cast<ECBase *>(note), static_cast<ECBase *>(chord), static_cast<ECBase *>(group)})
            e->Unref(1);
    }
}

TEST(ECGroupTest, TheTypeIsInTheRecordFromVersionThree)
{
    ECTie *tie = Held<ECTie>(0x05);
    tie->SetRepeatTie(1);
    const Bytes now = Store([&](CArchive &ar) { ar << tie; });
    EXPECT_EQ(now.back(), 0x05);
    for (int version : {ArchiveVersionPackedMarks - 1, int(ArchiveVersionPackedMarks)})
    {
        SCOPED_TRACE(version);
        Bytes bytes = now;
        if (version < ArchiveVersionPackedMarks)
            bytes.pop_back();
        DocumentVersion scope(version);
        ECTie *loaded = nullptr;
        EXPECT_EQ(LoadBytes(bytes, [&](CArchive &ar) { ar >> loaded; }), bytes.size());
        ASSERT_NE(loaded, nullptr);
        loaded->Ref();
        EXPECT_EQ(loaded->GetGroupType(), version < ArchiveVersionPackedMarks ? 0 : 0x05);
        EXPECT_EQ(loaded->IsRepeatTie(), 0);
        loaded->Unref(1);
    }
    tie->Unref(1);
}

// Groups of random life bits and tuplets over random notes in one measure;
// notes join and leave groups, groups and notes leave the measure, in random
// order. After every step: links agree on both ends, each count is the lists
// that hold the event plus the test's own hold, the life rules hold, and a
// tuplet that left gave its notes to the measure.
TEST(ECGroupTest, RandomEditsKeepTheLifeRulesAndTheCounts)
{
    std::mt19937 rng(20261125);
    for (int round = 0; round < 40; ++round)
    {
        ECMeasure *parent = Held<ECMeasure>();
        std::vector<ECBase *> notes, groups;
        for (int i = 0; i < 12; ++i)
        {
            ECBase *note = (rng() % 4) ? static_cast<ECBase *>(Held<ECNote>()) : Held<ECChord>();
            parent->AddChild(note, 0);
            notes.push_back(note);
        }
        const BYTE bits[] = {0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06};
        for (int i = 0; i < 5; ++i)
        {
            ECBase *group = nullptr;
            switch (rng() % 5)
            {
            case 4:
                group = Held<ECTuplet>();
                break;
            case 0:
                group = Held<ECTie>();
                break;
            case 1:
                group = Held<ECSlur>();
                break;
            case 2:
                group = Held<ECBeam>();
                break;
            default:
                group = Held<ECGroup>();
            }
            if (auto *g = dynamic_cast<ECGroup *>(group))
                g->SetGroupType(bits[rng() % 7]);
            parent->AddChild(group, 0);
            groups.push_back(group);
        }

        for (int step = 0; step < 120; ++step)
        {
            ECBase *group = groups[rng() % groups.size()];
            ECBase *note = notes[rng() % notes.size()];
            switch (rng() % 6)
            {
            case 0:
            case 1:
                group->AddChild(note, 0);
                break;
            case 2:
                group->RemoveChild(note, 0);
                break;
            case 3:
                group->RemoveChildren(0);
                break;
            case 4:
                if (rng() % 2)
                {
                    const bool held = Holds(parent->GetChildren(), group);
                    const std::vector<ECBase *> children = Elements(group->GetChildren());
                    if (group->GetEventId() == EVENT_ID_TUPLET)
                    {
                        group->RemoveFromParents();
                        for (ECBase *child : children)
                            ASSERT_TRUE(!held || Holds(parent->GetChildren(), child)) << "handed to the measure";
                        break;
                    }
                    parent->RemoveChild(group, 0);
                    auto *g = static_cast<ECGroup *>(group);
                    const bool rule = held && g->HasType(ECGroup::RemoveChildrenWithLastParent) &&
                                      !g->HasType(ECGroup::ClosedWhileParentless);
                    ASSERT_TRUE(!rule || group->GetChildren()->IsEmpty()) << "the children go with the last parent";
                }
                else
                    parent->AddChild(group, 0);
                break;
            default:
                if (!note->GetParents()->IsEmpty() && note->GetEventId() == EVENT_ID_NOTE)
                    note->RemoveFromParents();
                break;
            }

            // A child list holds each child, and each child's parent list
            // holds its parent.
            std::map<ECBase *, int> holders;
            std::vector<ECBase *> all = notes;
            all.insert(all.end(), groups.begin(), groups.end());
            all.push_back(parent);
            for (ECBase *e : all)
            {
                for (ECBase *child : Elements(e->GetChildren()))
                {
                    ++holders[child];
                    ASSERT_TRUE(Holds(child->GetParents(), e)) << "step " << step;
                }
                for (ECBase *p : Elements(e->GetParents()))
                {
                    ++holders[p];
                    ASSERT_TRUE(Holds(p->GetChildren(), e)) << "step " << step;
                }
            }
            for (ECBase *e : all)
                ASSERT_EQ(e->GetRefCount(), 1 + holders[e]) << "step " << step;
            for (ECBase *g : groups)
            {
                auto *group = dynamic_cast<ECGroup *>(g);
                const bool parentless = g->GetParents()->IsEmpty();
                ASSERT_TRUE(!group || !group->HasType(ECGroup::ClosedWhileParentless) ||
                            (group->HasType(ECGroup::Closed) != 0) == parentless)
                    << "step " << step;
            }
        }

        for (ECBase *g : groups)
            if (auto *group = dynamic_cast<ECGroup *>(g))
                group->SetGroupType(0);
        parent->RemoveChildren(0);
        parent->Unref(1);
        for (ECBase *g : groups)
        {
            g->RemoveChildren(0);
            EXPECT_EQ(g->Unref(1), 0);
        }
        for (ECBase *n : notes)
            EXPECT_EQ(n->Unref(1), 0) << "nothing else holds a note at the end";
    }
}
