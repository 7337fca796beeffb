// ECWaveTrack: a track of audio clips (ECWave) that runs beside the staves.
//
// The conductor numbers wave tracks from 1 in its wave track array; the
// number is also stored as the track's track number, and the array is
// rebuilt from it after loading.
//
// Archive record: that of ECTrack.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/structure/ECTrack.h>

class SCOREMODEL_API ECWaveTrack : public ECTrack
{
    DECLARE_SERIAL(ECWaveTrack)

public:
    ECWaveTrack();

    CObject *Copy(CObject *src) override;
    // 72.
    int GetEventId() const override;
    // ECConductor.
    int GetParentTypes(CArray<int, int> &types) override;

    ECWaveTrack &operator=(const ECWaveTrack &other);
    int operator==(const ECWaveTrack &other) const { return ECTrack::operator==(other); }
    int operator!=(const ECWaveTrack &other) const { return !(*this == other); }

protected:
    ~ECWaveTrack() override;
};
