// ACCount: counts the events a walk visits, of some types or of all.
//
//     ACCount count(1);
//     count.AddEvtType(EVENT_ID_MEASURE);
//     count.Apply(pStaff);
//     int nMeasures = count.GetEventCount();
//
// BeginAction clears the count; without Reset a second Apply adds to it.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/actions/ACBase.h>
#include <scoremodel/actions/ACEventTypes.h>

class SCOREMODEL_API ACCount : public ACBase, public ACEventTypes
{
public:
    // `n` slots for types (see ACEventTypes); no types yet.
    explicit ACCount(int n = 0);
    ~ACCount() override;

    int BeginAction() override;
    // -1 for null; counts the event when it matches the types; 0.
    int DoAction(ECBase *e) override;

    int GetEventCount() const { return m_nEventCount; }

protected:
    int m_nEventCount = 0;
};
