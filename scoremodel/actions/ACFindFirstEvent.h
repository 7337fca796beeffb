// ACFindFirstEvent: finds the first event of some types (or the first event
// at all) that a walk meets, and stops there.
//
// The walk behind ECBase::GetAncestor and GetDescendant: with one type,
// BypassNone and, walking up, SetReverse(1) and ClipNone.
//
//     ACFindFirstEvent find(1);
//     find.AddEvtType(EVENT_ID_MEASURE);
//     find.SetReverse(1);
//     find.ClipNone();
//     find.BypassNone();
//     find.Apply(pNote);
//     ECBase *pMeasure = find.GetEvent();   // null when none
//
// BeginAction clears the event. Without Reset, a second Apply starts with the
// event of the first one still held.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/actions/ACBase.h>
#include <scoremodel/actions/ACEventTypes.h>

class SCOREMODEL_API ACFindFirstEvent : public ACBase, public ACEventTypes
{
public:
    // `n` slots for types (see ACEventTypes); no types yet.
    explicit ACFindFirstEvent(int n = 0);
    ~ACFindFirstEvent() override;

    int BeginAction() override;
    // -1 for null; 0 for an event of another type; otherwise keeps the event
    // and stops the walk (2).
    int DoAction(ECBase *e) override;

    // The event found, or null. Holds no reference.
    ECBase *GetEvent() const { return m_pEvent; }

protected:
    ECBase *m_pEvent = nullptr;
};
