// ECTrack: the base of everything that runs the length of a score.
//
// Staves (ECStaff, ECConductorStaff) and wave tracks (ECWaveTrack) are
// tracks; the conductor holds them side by side. A track is a structural
// object: its voice is 14, and its time is zero from construction.
//
// Ownership. A holder outside the tree (a command that took a track out, the
// conductor keeping its chord staff) gives its reference back with
// ReleaseHold rather than Unref: a track out of the tree is kept alive by
// its own children too (each lists it as parent), so the last outside hold
// takes the subtree down.
//
// Archive record: that of ECWithTimeChild.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTimeChild.h>

class SCOREMODEL_API ECTrack : public ECWithTimeChild
{
    DECLARE_SERIAL(ECTrack)

public:
    // Time zero, voice 14, track 0x7FF.
    ECTrack();

    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 61.
    int GetEventId() const override;
    // ECConductor.
    int GetParentTypes(CArray<int, int> &types) override;

    // Gives back one reference taken by a holder outside the tree. When the
    // track then stands outside the tree (no parents) and nothing but its own
    // children's back references keeps it, its subtree is removed so the
    // whole track dies. Returns the count that remains (0 when it died).
    int ReleaseHold();

    ECTrack &operator=(const ECTrack &other);
    int operator==(const ECTrack &other) const { return ECWithTimeChild::operator==(other); }
    int operator!=(const ECTrack &other) const { return !(*this == other); }

protected:
    ECTrack(const ECTrack &other);
    ~ECTrack() override;
};
