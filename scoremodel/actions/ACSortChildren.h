// ACSortChildren: puts the children of events back in time order.
//
// At each visited event of the types (or at every event when there are none)
// the child list is sorted by MCEventList::Sort() before the walk enters it,
// so a whole subtree comes out sorted. Used after times were changed in
// place (ACDeltaTime does not move events in their lists).
//
//     ACSortChildren sort(1);
//     sort.AddEvtType(EVENT_ID_MEASURE);
//     sort.Apply(pStaff);
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/actions/ACBase.h>
#include <scoremodel/actions/ACEventTypes.h>

class SCOREMODEL_API ACSortChildren : public ACBase, public ACEventTypes
{
public:
    // `n` slots for types (see ACEventTypes); no types yet.
    explicit ACSortChildren(int n = 0);
    ~ACSortChildren() override;

    // -1 for null; sorts the event's children when it matches; 0.
    int DoAction(ECBase *e) override;
};
