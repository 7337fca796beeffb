// ACFindEvents: the standard search, the walk nearly every lookup uses.
//
// Collects, in walk order, every event visited whose id is among the types
// (every visited event when there are none), up to a maximum count, after
// which the walk stops with result 2. The found list holds a reference on
// each event, so the events stay alive as long as the action does.
//
//     ACFindEvents find(1);
//     find.AddEvtType(EVENT_ID_NOTE);
//     find.Apply(pStaff);
//     for (POSITION pos = find.GetEvents().GetHeadPosition(); pos;)
//         Use(find.GetEvents().GetNext(pos));
//
// BeginAction clears the list and the count; without Reset a second Apply
// adds to the first one's list, and an event reached twice is listed twice.
//
// Threads: as ACBase.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/actions/ACEventTypes.h>
#include <scoremodel/actions/ACOffsetBase.h>
#include <scoremodel/events/base/MCEventList.h>

class SCOREMODEL_API ACFindEvents : public ACOffsetBase, public ACEventTypes
{
public:
    static constexpr int kNoMaxCount = 0x7FFFFFFF;

    // `n` slots for types (see ACEventTypes); no types yet.
    explicit ACFindEvents(int n = 0);
    ~ACFindEvents() override;

    // Clears the found list and count; returns the base's answer.
    int BeginAction() override;
    // -1 for null. An event of another type gives 0. Otherwise it is listed
    // and counted; 2 once the count reaches the maximum, else 0.
    int DoAction(ECBase *e) override;

    EventList &GetEvents() { return m_events; }
    int GetEventCount() const { return m_nEventCount; }
    // The count at which the walk stops; 0x7FFFFFFF by default.
    void SetMaxEventCount(int maxCount) { m_nMaxCount = maxCount; }
    int GetMaxEventCount() const { return m_nMaxCount; }

protected:
    // Lists and counts `e` without looking at the types or the maximum.
    void AddFound(ECBase *e);

    int m_nEventCount = 0;
    int m_nMaxCount = kNoMaxCount;
    EventList m_events;
};
