// ECRest: a rest in a measure, beam or tuplet.
//
// A rest has a type, which names its written length (the table below, in
// quarter notes; type 0 names none), and an after-split mark that the add
// command sets on a rest it made by splitting another, so that undoing the
// add can clean it up.
//
//   type  length    type  length     type  length     type  length
//    1    8.0        7    3.5        13    0.875      19    0.21875
//    2    4.0        8    1.0        14    0.25       20    0.0625
//    3    6.0        9    1.5        15    0.375      21    0.09375
//    4    7.0       10    1.75       16    0.4375     22    0.03125
//    5    2.0       11    0.5        17    0.125
//    6    3.0       12    0.75       18    0.1875
//
// Each plain length of types 2 to 17 in steps of 3 is followed by its dotted
// and double-dotted forms; type 20 has a dotted form only, 1 and 22 none.
//
// operator= copies the time part, the type and the after-split mark;
// operator== compares the time part and the type.
//
// Archive record: that of ECWithTimeChild. The type and the after-split mark
// are in no record.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/base/ECWithTimeChild.h>

class SCOREMODEL_API ECRest : public ECWithTimeChild
{
    DECLARE_SERIAL(ECRest)

public:
    CObject *Copy(CObject *src) override;
    // 51.
    int GetEventId() const override;
    // ECMeasure, ECBeam, ECTuplet.
    int GetParentTypes(CArray<int, int> &types) override;

    virtual BYTE GetRestType() const { return GetSpareByte(); }
    virtual void SetRestType(BYTE type) { SetSpareByte(type); }

    // The type of `baseType` with `dots` dots: the base itself with none; for
    // the plain types 2, 5, 8, 11, 14 and 17 the next type with one dot and
    // the one after with more; 21 for type 20 with any dots; any other base
    // has no dotted form and stays.
    static int GetRestType(BYTE baseType, BYTE dots);
    // The length of `type` (first given its dots through GetRestType), in a
    // new time; TimeNull for type 0 and above 22.
    static MCTime GetRestDuration(BYTE type, BYTE dots);
    // The first type whose length equals ticks / 256 quarter notes exactly,
    // 0 for none. The rate is fixed at 256 ticks to the quarter, whatever the
    // document's resolution.
    static int GetRestTypeByTickDuration(float ticks);

    // A dot among the children.
    int HasDot();

    void SetAfterSplit(int afterSplit) { m_afterSplit = afterSplit; }
    int IsAfterSplit() const { return m_afterSplit; }

    ECRest &operator=(const ECRest &other);
    int operator==(const ECRest &other) const
    {
        return ECWithTimeChild::operator==(other) && GetRestType() == other.GetRestType();
    }
    int operator!=(const ECRest &other) const { return !(*this == other); }

protected:
    ~ECRest() override;

private:
    int m_afterSplit = 0;
};
