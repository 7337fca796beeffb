// ECTurn: a turn on a note or chord.
//
// One byte holds the accidentals shown with the turn: the one above in the
// low 4 bits and the one below in the high 4, kept in the spare byte of
// ECBase. operator= copies it; operator== compares it.
//
// Archive record: that of ECWithChild, then the byte raw. Documents below
// version 14 hold a turn type there instead, which PostSerialize turns into
// the accidentals it stood for:
//
//   old type   0     1     2     3     4     any other
//   above      0     2     0     1     0     0
//   below      0     0     2     0     1     0
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithChild.h>

class SCOREMODEL_API ECTurn : public ECWithChild
{
    DECLARE_SERIAL(ECTurn)

public:
    CObject *Copy(CObject *src) override;
    // 67.
    int GetEventId() const override;
    // ECNote, ECChord.
    int GetParentTypes(CArray<int, int> &types) override;
    void Serialize(CArchive &ar) override;
    void PostSerialize(CArchive &ar) override;

    void GetAccidentals(BYTE &above, BYTE &below) const;
    // Each takes its low 4 bits.
    void SetAccidentals(BYTE above, BYTE below);
    void SetAccidentalAbove(BYTE above);
    void SetAccidentalBelow(BYTE below);
    int HasAccidentals(BYTE above, BYTE below) const;

    ECTurn &operator=(const ECTurn &other)
    {
        ECWithChild::operator=(other);
        SetSpareByte(other.GetSpareByte());
        return *this;
    }
    int operator==(const ECTurn &other) const { return GetSpareByte() == other.GetSpareByte(); }
    int operator!=(const ECTurn &other) const { return !(*this == other); }

protected:
    ~ECTurn() override;

private:
    // Set by a load of an old record until PostSerialize has converted it.
    bool m_oldTypePending = false;
};
