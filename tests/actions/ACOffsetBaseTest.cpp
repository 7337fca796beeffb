#include "ACTestTree.h"

#include <scoremodel/actions/ACFindEvents.h>
#include <scoremodel/actions/ACOffsetBase.h>
#include <scoremodel/pitch/MCJianpu.h>

#include <gtest/gtest.h>

namespace
{
// Records, at each event, the Jianpu mode and pair it was visited with; at
// events listed in `bump` it adds one to the pair's first word.
class JianpuRecorder : public ACOffsetBase
{
public:
    struct Visit
    {
        ECBase *event;
        int mode;
        MCJianpu::Pair pair;
    };

    int DoAction(ECBase *e) override
    {
        visits.push_back({e, GetJianpuInfo().GetMode(), GetJianpuInfo().GetPair()});
        for (ECBase *b : bump)
            if (b == e)
            {
                MCJianpu::Pair p = GetJianpuInfo().GetPair();
                GetJianpuInfo().SetPair(p.first + 1, p.second);
            }
        return ResultContinue;
    }

    std::vector<Visit> visits;
    std::vector<ECBase *> bump;
};

TEST(ACOffsetBaseTest, OffsetObjectsAreWalkedForBothModesInModeThree)
{
    TestTree tree(new TestTimed(EVENT_ID_STAFF));
    ECBase *measure = tree.Timed(tree.Root(), EVENT_ID_MEASURE);
    ECBase *note = tree.Timed(measure, EVENT_ID_NOTE);
    ECBase *chord = tree.Timed(tree.Root(), EVENT_ID_CHORD);

    JianpuRecorder action;
    MCJianpu info(MCJianpu::ModeBoth, {7, 8});
    action.SetJianpuInfo(info);
    action.Apply(tree.Root());

    const std::vector<std::pair<ECBase *, int>> expected = {
        {tree.Root(), 3}, {measure, 0}, {note, 0}, {measure, 2}, {note, 2}, {chord, 3}};
    ASSERT_EQ(action.visits.size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i)
    {
        EXPECT_EQ(action.visits[i].event, expected[i].first) << i;
        EXPECT_EQ(action.visits[i].mode, expected[i].second) << i;
    }
    EXPECT_EQ(action.GetJianpuInfo(), info);
}

TEST(ACOffsetBaseTest, ModeThreeSearchFindsAnOffsetSubtreeTwice)
{
    TestTree tree(new TestTimed(EVENT_ID_STAFF));
    ECBase *measure = tree.Timed(tree.Root(), EVENT_ID_MEASURE);
    ECBase *note = tree.Timed(measure, EVENT_ID_NOTE);
    ACFindEvents find(1);
    find.AddEvtType(EVENT_ID_NOTE);
    MCJianpu info;
    info.SetMode(MCJianpu::ModeBoth);
    find.SetJianpuInfo(info);
    find.Apply(tree.Root());
    EXPECT_EQ(ListOf(find.GetEvents()), (std::vector<ECBase *>{note, note}));

    for (int mode : {0, 1, 2})
    {
        ACFindEvents once(1);
        once.AddEvtType(EVENT_ID_NOTE);
        MCJianpu plain(mode, {});
        once.SetJianpuInfo(plain);
        once.Apply(tree.Root());
        EXPECT_EQ(once.GetEventCount(), 1) << mode;
    }
}

TEST(ACOffsetBaseTest, PairChangesReachTheSubtreeAndAreUndoneAfterIt)
{
    TestTree tree(new TestTimed(EVENT_ID_STAFF));
    ECBase *m1 = tree.Timed(tree.Root(), EVENT_ID_MEASURE);
    ECBase *n1 = tree.Timed(m1, EVENT_ID_NOTE);
    ECBase *m2 = tree.Timed(tree.Root(), EVENT_ID_MEASURE);

    JianpuRecorder action;
    action.bump = {m1, n1};
    action.Apply(tree.Root());
    ASSERT_EQ(action.visits.size(), 4u);
    EXPECT_EQ(action.visits[1].pair.first, 0); // m1 as entered
    EXPECT_EQ(action.visits[2].pair.first, 1); // n1 sees m1's change
    EXPECT_EQ(action.visits[3].pair.first, 0); // m2 does not
    EXPECT_EQ(action.GetJianpuInfo().GetPair().first, 0);
}

TEST(ACOffsetBaseTest, SecondRunOfAnOffsetObjectStartsFromTheSamePair)
{
    TestTree tree(new TestTimed(EVENT_ID_MEASURE));
    JianpuRecorder action;
    action.bump = {tree.Root()};
    MCJianpu info(MCJianpu::ModeBoth, {5, 0});
    action.SetJianpuInfo(info);
    action.Apply(tree.Root());
    ASSERT_EQ(action.visits.size(), 2u);
    EXPECT_EQ(action.visits[0].pair.first, 5);
    EXPECT_EQ(action.visits[1].pair.first, 5);
    EXPECT_EQ(action.GetJianpuInfo().GetPair().first, 5);
}

TEST(ACOffsetBaseTest, OffsetObjectsAreTheEventsPlacedByAnOffset)
{
    ACOffsetBase action;
    for (int id = -1; id <= EVENT_ID_COUNT; ++id)
    {
        TestTree tree(new TestTimed(id));
        bool expected = id == EVENT_ID_CONDUCTOR_MEASURE || id == EVENT_ID_MEASURE || id == EVENT_ID_SLUR ||
                        id == EVENT_ID_TEMPO || id == EVENT_ID_TEXT || id == EVENT_ID_TIE;
        EXPECT_EQ(action.IsCheckOffsetObj(tree.Root()), expected ? 1 : 0) << id;
    }
    EXPECT_EQ(action.IsCheckOffsetObj(nullptr), 0);
    EXPECT_EQ(action.Apply(static_cast<ECBase *>(nullptr)), ACBase::ResultFailed);
}

TEST(MCJianpuTest, ModeOutsideTheFourIsIgnored)
{
    MCJianpu info;
    info.SetMode(MCJianpu::ModeSecond);
    info.SetMode(4);
    info.SetMode(-1);
    EXPECT_EQ(info.GetMode(), MCJianpu::ModeSecond);
    MCJianpu bad(9, {1, 2});
    EXPECT_EQ(bad.GetMode(), MCJianpu::ModeFirst);
    EXPECT_EQ(bad.GetPair(), (MCJianpu::Pair{1, 2}));
}
} // namespace
