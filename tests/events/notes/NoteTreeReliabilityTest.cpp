// Reference counting under notes that have several parents at once: a note
// is held by its measure, its beam and its tuplet (or its chord), and must
// come apart cleanly whichever holder lets go first, survive while anything
// else holds it, and die with its last holder. The test builds and tears down
// many such trees with extra references, checking after each step that every
// count equals the holders the test can see; the sanitizer build runs it for
// leaks and stale pointers. (Every order of three parents letting go is
// walked in ECOwnershipTest.)
#include "events/base/EventTestSupport.h"

#include <scoremodel/events/notes/ECAccent.h>
#include <scoremodel/events/notes/ECBeam.h>
#include <scoremodel/events/notes/ECChord.h>
#include <scoremodel/events/notes/ECNote.h>
#include <scoremodel/events/notes/ECTuplet.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace
{
std::set<ECBase *> &LiveEvents()
{
    static std::set<ECBase *> live;
    return live;
}

// An event class that reports its birth and death.
template <class Base>
class Live : public Base
{
public:
    Live() { LiveEvents().insert(this); }

protected:
    ~Live() override { LiveEvents().erase(this); }
};

// Measures are plain containers here: the structure classes have tests of
// their own, and only the counting is under test.
using Measure = Live<ECWithTimeChild>;

bool IsLive(ECBase *e)
{
    return LiveEvents().count(e) != 0;
}

int Occurrences(ECBase::EventList *list, ECBase *e)
{
    std::vector<ECBase *> all = Elements(list);
    return static_cast<int>(std::count(all.begin(), all.end(), e));
}

template <class T>
T *At(float time)
{
    T *e = new T;
    MCTime t(time);
    e->SetTime(&t);
    return e;
}

// The holders the test plays: the staff that holds each measure, and the
// commands that keep extra references.
struct Holders
{
    std::vector<ECBase *> roots;
    std::map<ECBase *, int> extra;

    int Held(ECBase *e) const
    {
        auto it = extra.find(e);
        return (it == extra.end() ? 0 : it->second) + static_cast<int>(std::count(roots.begin(), roots.end(), e));
    }
};

// Every live event's count is exactly its holders: the lists that hold it
// (child lists of its parents, parent lists of its children) and the test.
// Links are symmetric and lead only to live events, and every live event is
// reachable from something the test holds, so nothing leaks in a cycle.
void CheckInvariants(const Holders &holders)
{
    std::map<ECBase *, int> expected;
    for (ECBase *e : LiveEvents())
    {
        for (ECBase *child : Elements(e->GetChildren()))
        {
            ASSERT_TRUE(IsLive(child));
            EXPECT_EQ(Occurrences(child->GetParents(), e), 1) << "child lists its parent once";
            ++expected[child];
        }
        for (ECBase *parent : Elements(e->GetParents()))
        {
            ASSERT_TRUE(IsLive(parent));
            EXPECT_EQ(Occurrences(parent->GetChildren(), e), 1) << "parent lists its child once";
            ++expected[parent];
        }
    }
    std::set<ECBase *> reached;
    std::vector<ECBase *> todo;
    for (ECBase *e : LiveEvents())
    {
        EXPECT_EQ(e->GetRefCount(), expected[e] + holders.Held(e));
        if (holders.Held(e))
            todo.push_back(e);
    }
    while (!todo.empty())
    {
        ECBase *e = todo.back();
        todo.pop_back();
        if (!reached.insert(e).second)
            continue;
        for (ECBase *next : Elements(e->GetChildren()))
            todo.push_back(next);
        for (ECBase *next : Elements(e->GetParents()))
            todo.push_back(next);
    }
    EXPECT_EQ(reached.size(), LiveEvents().size()) << "an event nobody can reach is a leak";
}

void ReleaseRoot(Holders &holders, ECBase *root)
{
    holders.roots.erase(std::find(holders.roots.begin(), holders.roots.end(), root));
    root->RemoveChildren(1);
    root->Unref(1);
}

void ReleaseExtra(Holders &holders, ECBase *e)
{
    if (--holders.extra[e] == 0)
        holders.extra.erase(e);
    e->Unref(1);
}

// One to three measures, each with beams and tuplets; notes stand in the
// measure or in a chord, and the note or its chord joins a beam and a tuplet
// by chance. Some notes carry an accent, and some events an extra reference.
void BuildForest(std::mt19937 &rng, Holders &holders)
{
    auto chance = [&rng](int percent) { return static_cast<int>(rng() % 100) < percent; };
    const int measures = 1 + static_cast<int>(rng() % 3);
    for (int m = 0; m < measures; ++m)
    {
        ECBase *measure = At<Measure>(4.0f * m);
        measure->Ref();
        holders.roots.push_back(measure);
        std::vector<ECBase *> beams, tuplets;
        for (int i = 0; i < 2; ++i)
        {
            beams.push_back(At<Live<ECBeam>>(4.0f * m));
            tuplets.push_back(At<Live<ECTuplet>>(4.0f * m));
            measure->AddChild(beams.back(), 1);
            measure->AddChild(tuplets.back(), 1);
        }
        ECBase *chord = nullptr;
        const int notes = 2 + static_cast<int>(rng() % 7);
        for (int n = 0; n < notes; ++n)
        {
            const float time = 4.0f * m + 0.5f * n;
            ECBase *note = At<Live<ECNote>>(time);
            ECBase *member = note; // what joins the beam and the tuplet
            if (chance(30))
            {
                if (!chord)
                {
                    chord = At<Live<ECChord>>(time);
                    measure->AddChild(chord, 1);
                }
                chord->AddChild(note, 1);
                member = chord;
            }
            else
            {
                measure->AddChild(note, 1);
            }
            if (chance(60))
                beams[rng() % beams.size()]->AddChild(member, 1);
            if (chance(40))
                tuplets[rng() % tuplets.size()]->AddChild(member, 1);
            if (chance(30))
                note->AddChild(new Live<ECAccent>, 0);
        }
    }
    for (ECBase *e : LiveEvents())
        if (chance(20))
        {
            int refs = 1 + static_cast<int>(rng() % 2);
            for (int i = 0; i < refs; ++i)
                e->Ref();
            holders.extra[e] += refs;
        }
}

template <class T>
T Pick(std::mt19937 &rng, const std::vector<T> &from)
{
    return from[rng() % from.size()];
}

// One random step of a tear-down. Containers are always removed deeply: a
// container let go without its children would keep them, and they it, alive.
void TearDownStep(std::mt19937 &rng, Holders &holders)
{
    std::vector<ECBase *> live(LiveEvents().begin(), LiveEvents().end());
    std::vector<ECBase *> withParents, leavesWithParents, extra;
    for (ECBase *e : live)
    {
        if (e->GetParents()->IsEmpty())
            continue;
        withParents.push_back(e);
        if (!e->GetChildren() || e->GetChildren()->IsEmpty())
            leavesWithParents.push_back(e);
    }
    for (auto &[e, count] : holders.extra)
        extra.push_back(e);

    switch (rng() % 10)
    {
    case 0:
    case 1:
    case 2:
    case 3:
        if (!withParents.empty())
        {
            ECBase *child = Pick(rng, withParents);
            ECBase *parent = Pick(rng, Elements(child->GetParents()));
            const bool leaf = !child->GetChildren() || child->GetChildren()->IsEmpty();
            EXPECT_EQ(parent->RemoveChild(child, leaf ? static_cast<int>(rng() % 2) : 1), 1);
        }
        break;
    case 4:
    case 5:
        if (!leavesWithParents.empty())
        {
            EXPECT_EQ(Pick(rng, leavesWithParents)->RemoveFromParents(), 1);
        }
        break;
    case 6:
    case 7:
        if (!extra.empty())
            ReleaseExtra(holders, Pick(rng, extra));
        break;
    case 8:
        if (!live.empty())
        {
            ECBase *e = Pick(rng, live);
            e->Ref();
            ++holders.extra[e];
        }
        break;
    default:
        if (!holders.roots.empty())
            ReleaseRoot(holders, Pick(rng, holders.roots));
        break;
    }
}
} // namespace

TEST(NoteTreeReliabilityTest, RandomTreesComeApartWithoutLeaks)
{
    for (unsigned seed = 1; seed <= 300; ++seed)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 rng(seed);
        Holders holders;
        BuildForest(rng, holders);
        CheckInvariants(holders);
        // Every step can only take something away or add a reference that a
        // later step may drop, so the tear-down ends; the cap guards a fault.
        for (int step = 0; step < 10000 && (!holders.roots.empty() || !holders.extra.empty()); ++step)
        {
            TearDownStep(rng, holders);
            CheckInvariants(holders);
            if (HasFailure())
                return;
        }
        EXPECT_TRUE(holders.roots.empty() && holders.extra.empty());
        EXPECT_TRUE(LiveEvents().empty()) << LiveEvents().size() << " events outlived every holder";
        if (HasFailure())
            return;
    }
}
