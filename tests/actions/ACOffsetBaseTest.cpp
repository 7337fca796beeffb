#include "ACTestTree.h"

#include <scoremodel/actions/ACFindEvents.h>
#include <scoremodel/actions/ACOffsetBase.h>
#include <scoremodel/pitch/MCJianpu.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

namespace
{
// Records the Jianpu mode and pair of each visit; adds one to the pair's
// first word at the events in `bump`.
class JianpuRecorder : public ACOffsetBase
{
public:
    int DoAction(ECBase *e) override
    {
        visits.push_back({e, GetJianpuInfo().GetMode(), GetJianpuInfo().GetPair().first});
        if (std::find(bump.begin(), bump.end(), e) != bump.end())
            GetJianpuInfo().SetPair(GetJianpuInfo().GetPair().first + 1, 0);
        return ResultContinue;
    }
    std::vector<std::tuple<ECBase *, int, int>> visits;
    std::vector<ECBase *> bump;
};

TEST(ACOffsetBaseTest, ModeThreeWalksOffsetObjectsForBothModesFromTheSamePair)
{
    TestTree tree(new TestTimed(EVENT_ID_STAFF));
    ECBase *staff = tree.Root();
    ECBase *measure = tree.Timed(staff, EVENT_ID_MEASURE);
    ECBase *note = tree.Timed(measure, EVENT_ID_NOTE);
    ECBase *chord = tree.Timed(staff, EVENT_ID_CHORD);
    JianpuRecorder action;
    action.bump = {measure, note};
    MCJianpu info(MCJianpu::ModeBoth, {5, 0});
    action.SetJianpuInfo(info);
    action.Apply(staff);
    const std::vector<std::tuple<ECBase *, int, int>> expected = {
        {staff, 3, 5}, {measure, 0, 5}, {note, 0, 6}, {measure, 2, 5}, {note, 2, 6}, {chord, 3, 5}};
    EXPECT_EQ(action.visits, expected);
    EXPECT_EQ(action.GetJianpuInfo(), info);

    ACFindEvents find(1);
    find.AddEvtType(EVENT_ID_NOTE);
    find.SetJianpuInfo(info);
    find.Apply(staff);
    EXPECT_EQ(find.GetEventCount(), 2);
    // In the other modes everything is walked once; an unknown mode is refused.
    for (int mode : {0, 1, 2, 4})
    {
        ACFindEvents once(1);
        once.AddEvtType(EVENT_ID_NOTE);
        MCJianpu plain(mode, {});
        once.SetJianpuInfo(plain);
        once.Apply(staff);
        EXPECT_EQ(once.GetEventCount(), 1) << mode;
        EXPECT_EQ(once.GetJianpuInfo().GetMode(), mode == 4 ? 0 : mode);
    }
}

} // namespace
