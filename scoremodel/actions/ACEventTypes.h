// ACEventTypes: the list of event ids that a searching action looks for.
//
// Shared by ACFindEvents (and its family), ACCount, ACFindFirstEvent and
// ACSortChildren, which all offer this same interface. An empty list means
// every event matches.
//
// The array is made with a number of slots filled with -1, and a separate
// count says how many of them are types: AddEvtType writes at the count, so
// the first slots are used before the array grows. Slots past the count hold
// -1, which no event has, so GetEventTypes may show them harmlessly.
//
//     ACCount count(2);
//     count.AddEvtType(EVENT_ID_NOTE);
//     count.AddEvtType(EVENT_ID_REST);   // notes and rests
//
// Matching scans the types in use: searches look for one to three ids.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CArray.h>

class SCOREMODEL_API ACEventTypes
{
public:
    // `nSlots` slots of -1 (none for a negative value); no types yet.
    explicit ACEventTypes(int nSlots);

    // Appends `id`, without checking for doubles.
    void AddEvtType(int id);
    // Appends every entry of `ids` in order.
    void AddEvtTypes(CArray<int, int> &ids);
    // Takes out the first match; nothing when absent.
    void RemoveEvtType(int id);
    // Empties the list: every event matches again.
    void RemoveEvtTypes();

    // The array; its first GetEventTypeCount() entries are the types.
    CArray<int, int> &GetEventTypes() { return m_types; }
    int GetEventTypeCount() const { return m_nTypeCount; }

    // True when the list is empty or holds `id`.
    bool MatchesType(int id) const
    {
        if (m_nTypeCount == 0)
            return true;
        const int *types = m_types.GetData();
        for (int i = 0; i < m_nTypeCount; ++i)
            if (types[i] == id)
                return true;
        return false;
    }

protected:
    int m_nTypeCount = 0;
    CArray<int, int> m_types;
};
