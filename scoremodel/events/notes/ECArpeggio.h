// ECArpeggio: an arpeggio sign on a chord.
//
// Its one value is a type byte (0 for a new one), kept in the spare byte of
// ECBase. operator= copies it, and operator== compares it.
//
// Archive record: that of ECBase, then the type as one raw byte.
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
    void Serialize(CArchive &ar) override;

    // The kind of the arpeggio; what each value looks like is the host's.
    BYTE GetArpeggioType() const { return GetSpareByte(); }
    void SetArpeggioType(BYTE type) { SetSpareByte(type); }

    ECArpeggio &operator=(const ECArpeggio &other)
    {
        ECBase::operator=(other);
        SetSpareByte(other.GetSpareByte());
        return *this;
    }
    int operator==(const ECArpeggio &other) const { return GetSpareByte() == other.GetSpareByte(); }
    int operator!=(const ECArpeggio &other) const { return !(*this == other); }

protected:
    ~ECArpeggio() override;
};
