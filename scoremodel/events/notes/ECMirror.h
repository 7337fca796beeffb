// ECMirror: the image of an event shown at a second place: a clef, key,
// meter, tempo or text of the conductor staff repeated on a staff.
//
// The mirror holds a plain pointer to the mirrored event and no reference:
// the link belongs to the mirrored event, which keeps the list of its own
// mirrors (clef, key, meter, tempo and text have such a list). Whoever takes
// a mirrored event away takes its mirrors with it.
//
// The event lists (MCEventList::ReplaceMirrors) and the mirror search
// (ACFindMirror) read the mirrored event through a resolver that this class
// installs when the library loads.
//
// operator= copies the time part only, not the link: a copy mirrors nothing
// until SetMirrorEvent. operator== compares the time part and the link.
//
// Archive record: that of ECWithTime. The link is a late one, written in the
// archive's second section once every object exists.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTime.h>

class SCOREMODEL_API ECMirror : public ECWithTime
{
    DECLARE_SERIAL(ECMirror)

public:
    CObject *Copy(CObject *src) override;
    // 35.
    int GetEventId() const override;
    // ECConductorStaff, ECMeasure.
    int GetParentTypes(CArray<int, int> &types) override;

    // ---- The mirrored event ----

    // Null for a new mirror.
    ECBase *GetMirrorEvent() const { return m_pMirrorEvent; }
    // Stores `event` (null unlinks). A non-zero `update` also asks the old
    // and the new mirrored event to drop and to add this mirror in their
    // lists of mirrors (clefs, keys, meters, tempi and texts keep one); an
    // event of any other class is passed over.
    void SetMirrorEvent(ECBase *event, int update);

    // The time part only.
    ECMirror &operator=(const ECMirror &other);
    int operator==(const ECMirror &other) const;
    int operator!=(const ECMirror &other) const { return !(*this == other); }

protected:
    ~ECMirror() override;

private:
    ECBase *m_pMirrorEvent = nullptr;
};
