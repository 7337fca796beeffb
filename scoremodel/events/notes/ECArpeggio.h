// ECArpeggio: an arpeggio sign on a chord.
//
// Archive record: that of ECBase.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECBase.h>

class SCOREMODEL_API ECArpeggio : public ECBase
{
    DECLARE_SERIAL(ECArpeggio)

public:
    CObject *Copy(CObject *src) override;
    // 2.
    int GetEventId() const override;
    // ECChord.
    int GetParentTypes(CArray<int, int> &types) override;

    ECArpeggio &operator=(const ECArpeggio &other)
    {
        ECBase::operator=(other);
        return *this;
    }
    int operator==(const ECArpeggio &other) const { return ECBase::operator==(other); }
    int operator!=(const ECArpeggio &other) const { return !(*this == other); }

protected:
    ~ECArpeggio() override;
};
