// ACRelativesFirst: a walker that visits an event after its children (or its
// parents, walking in reverse): the order for work that must finish a
// subtree before its root, such as removing or recomputing from the leaves.
//
// Derive and override DoAction. Differences from ACBase, all wanted:
//   - a bypassed event still gets DoAction; bypassing only keeps it from
//     counting as a level of depth;
//   - a clipped event's children are walked anyway (they come first); the
//     clip only turns a result of 0 into 1 for the caller;
//   - past the depth limit the list is skipped, and DoAction still runs;
//   - a child's -1 or 2 ends the walk without DoAction; a child's 3 drops the
//     remaining siblings and DoAction runs;
//   - EndAction runs at the end of every event, at any depth, as long as the
//     list Apply has never run.
// BeginAction runs as in ACBase, before anything else. A null event gives -1
// once the action has begun.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/actions/ACBase.h>

class SCOREMODEL_API ACRelativesFirst : public ACBase
{
public:
    explicit ACRelativesFirst(int bReverse = 0);
    ~ACRelativesFirst() override;

    using ACBase::Apply;
    // See the header.
    int Apply(ECBase *e) override;
};
