// ACFindObjects: tells whether a walk meets any of a set of events.
//
// Stops at the first event of the set (result 2) and sets the found flag.
// Used to ask whether an event lies beneath another one, or whether a
// selection touches a subtree.
//
//     ACFindObjects find(pNote);
//     find.Apply(pMeasure);
//     if (find.ObjectsFound()) ...
//
// The object list holds a reference on each event. Membership is O(1) for a
// long list (the list keeps an index), so a large set costs no more per
// visited event than a small one.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/actions/ACBase.h>
#include <scoremodel/events/base/MCEventList.h>

class SCOREMODEL_API ACFindObjects : public ACBase
{
public:
    // The set holds `object` (nothing for null).
    explicit ACFindObjects(ECBase *object = nullptr);
    // The set holds the events of `objects` (nothing for null).
    explicit ACFindObjects(EventList *objects);
    ~ACFindObjects() override;

    // Clears the found flag.
    int BeginAction() override;
    // -1 for null; 2 with the flag set when `e` is in the set; else 0.
    int DoAction(ECBase *e) override;

    // Adds to the set (nothing for null).
    void AddObject(ECBase *object);
    void AddObjects(EventList *objects);
    // Takes the first occurrence out of the set.
    void RemoveObject(ECBase *object);
    // Empties the set.
    void RemoveObjects();
    EventList &GetObjects() { return m_objects; }
    // 1 when the last walk met an event of the set.
    int ObjectsFound() const { return m_bFound; }

protected:
    unsigned m_bFound : 1;
    EventList m_objects;
};
