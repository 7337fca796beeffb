// The event list collapses a selection to its topmost events without the
// traversal actions; on any graph without cycles its answer must be exactly
// what the actions give. (The searches up and down are held to the actions
// by the actions' own tests.)
#include "events/base/EventTestSupport.h"

#include <scoremodel/actions/ACFindEvents.h>
#include <scoremodel/events/base/MCEventList.h>

#include <gtest/gtest.h>

#include <random>

namespace
{
// Ids that exercise the walks' lists: plain, clipped walking down (beam,
// slur, tie, glissando) and looked through (envelope containers).
const int kIds[] = {EVENT_ID_NOTE, EVENT_ID_MEASURE, EVENT_ID_BEAM, EVENT_ID_SLUR, EVENT_ID_TIE,
                    EVENT_ID_GLISSANDO, EVENT_ID_ENVELOPE, EVENT_ID_TEMPO_ENV, EVENT_ID_CHORD};

// What CollapseToAncestors is defined to do, spelled out with the action.
std::vector<ECBase *> ActionCollapse(const std::vector<ECBase *> &list)
{
    CTypedPtrList<MCEventList, ECBase *> result, beneath;
    for (ECBase *e : list)
        result.AddTail(e);
    for (ECBase *e : list)
    {
        ACFindEvents find;
        find.ClipNone();
        find.Apply(e);
        find.GetEvents().RemoveEvent(e);
        beneath.AddTail(&find.GetEvents());
    }
    beneath.RemoveDuplicates();
    result.RemoveEvents(&beneath);
    return Elements(result);
}
} // namespace

TEST(MCEventWalkTest, CollapseToAncestorsAgreesWithTheActionsOnRandomGraphs)
{
    std::mt19937 rng(99);
    for (int round = 0; round < 60; ++round)
    {
        // A layered graph: each node may get several parents among the
        // nodes made before it, as notes get measures, beams and tuplets.
        std::vector<TestNode *> nodes;
        int n = std::uniform_int_distribution<int>(2, 30)(rng);
        for (int i = 0; i < n; ++i)
        {
            TestNode *node = TestNode::Make(static_cast<float>(rng() % 4));
            node->SetId(kIds[rng() % std::size(kIds)]);
            node->Ref();
            int parents = i == 0 ? 0 : std::uniform_int_distribution<int>(1, 3)(rng);
            for (int p = 0; p < parents; ++p)
                nodes[rng() % i]->AddChild(node, static_cast<int>(rng() % 2));
            nodes.push_back(node);
        }

        for (int q = 0; q < 5; ++q)
        {
            std::vector<ECBase *> selection;
            for (int k = 0; k < 8; ++k)
                selection.push_back(nodes[rng() % n]);
            CTypedPtrList<MCEventList, ECBase *> list;
            for (ECBase *e : selection)
                list.AddTail(e);
            list.CollapseToAncestors(nullptr);
            ASSERT_EQ(Elements(list), ActionCollapse(selection)) << "round " << round;
        }

        for (TestNode *node : nodes)
            node->RemoveChildren(0);
        for (TestNode *node : nodes)
            node->Unref(1);
    }
}
