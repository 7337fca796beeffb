// ACFindTime: finds the events whose time lies in a range.
//
// Children lists are in time order, so the first event past the end gives
// result 3: the rest of that list is dropped and the walk goes on in the next
// parent. Events without a time (and those out of range) are passed over but
// their children are searched. Events in range are matched against the types
// and listed.
//
//     ACFindTime find(MCTime(4.0f), MCTime(8.0f), ACRangeOpenEnd);  // [4, 8)
//     find.AddEvtType(EVENT_ID_NOTE);
//     find.Apply(pStaff);
//
// Wanted: the maximum count is not consulted and GetEventCount stays as it
// was (0 after BeginAction); the found list is the result, so read its
// GetCount().
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/actions/ACFindEvents.h>
#include <scoremodel/actions/ACTimeRange.h>
#include <scoremodel/core/MCTime.h>

class SCOREMODEL_API ACFindTime : public ACFindEvents
{
public:
    // One type slot; a mode outside 0..3 gives mode 0.
    ACFindTime(const MCTime &start, const MCTime &end, int mode = ACRangeClosed);
    ~ACFindTime() override;

    // -1 for null. 0 for an event without a time; 3 for one past the end;
    // an event in range matching the types is listed; 0 otherwise.
    int DoAction(ECBase *e) override;

    void SetTimeRange(const MCTime &start, const MCTime &end);
    // A mode outside 0..3 changes nothing.
    void SetTimeRange(const MCTime &start, const MCTime &end, int mode);
    void SetRangeMode(int mode);
    int GetRangeMode() const { return m_nRangeMode; }
    const MCTime &GetStartTime() const { return m_start; }
    const MCTime &GetEndTime() const { return m_end; }

protected:
    MCTime m_start;
    MCTime m_end;
    int m_nRangeMode = ACRangeClosed;
};
