// ACFindMirror: finds the mirrors (ECMirror, the staff-level images of a
// meter, key, clef, tempo or text) of one event, or all mirrors.
//
//     ACFindMirror find(pMeter);   // the mirrors of this meter
//     find.Apply(pPerformance);
//
// With no mirrored event set, every mirror is found.
//
// How a mirror gives the event it mirrors is registered by the mirror class
// through SetMirrorResolver, so that the actions need not know its layout.
// Until it is registered, a mirror counts as mirroring nothing, and only a
// search for all mirrors finds it.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/actions/ACFindEvents.h>

class SCOREMODEL_API ACFindMirror : public ACFindEvents
{
public:
    // Gives the event a mirror stands for, or null.
    typedef ECBase *(*MIRRORFUNC)(ECBase *mirror);

    // The type ECMirror is set; `mirrored` null finds every mirror.
    explicit ACFindMirror(ECBase *mirrored = nullptr);
    ~ACFindMirror() override;

    // -1 for null. 0 for an event that is not a mirror, and for a mirror of
    // another event when a mirrored event is set. Otherwise
    // ACFindEvents::DoAction.
    int DoAction(ECBase *e) override;

    void SetMirroredEvent(ECBase *mirrored) { m_pMirrored = mirrored; }
    ECBase *GetMirroredEvent() const { return m_pMirrored; }

    // Process-wide, set once at start by the mirror class; returns the
    // resolver installed before, so a caller can put it back.
    static MIRRORFUNC SetMirrorResolver(MIRRORFUNC resolver);
    // The event `mirror` stands for through the registered resolver; null
    // without one.
    static ECBase *ResolveMirror(ECBase *mirror);

protected:
    ECBase *m_pMirrored;
};
