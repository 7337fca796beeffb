// ECTuplet: a tuplet: a group in a measure that rescales the time of its
// notes ("three in the time of two, in eighths").
//
// A tuplet holds an irregular count, a normal count and a unit code (kept in
// the spare byte of ECBase); a new one is 3, 2 and 3. The unit codes, as
// GetUnitsAsTime gives them in quarter notes:
//
//   code   -1   0    1    2    3    4     5      6       7
//   length 0.0  4.0  2.0  1.0  0.5  0.25  0.125  0.0625  0.03125
//
// and any other code 0.0. The values are stored as given; the arithmetic
// below copes with any of them.
//
// The equivalent tuplet brings the two counts within one octave of each
// other and pays in the unit: 5 in the time of 2 eighths is 5 in the time of
// 4 sixteenths. A count of 0 has no octave to reach, so a ratio with a count
// of 0 is its own equivalent (no doubling happens), and every loop of the
// tuplet arithmetic ends. ScaleDuration of a ratio with no irregular count is
// TimeNull.
//
// The tuplet answers how much of a measure it covers by building a borrowed
// meter (SetupBorrowedMeter): a list meter in which the tuplet's beats
// replace the beats it covers. GetTupletRange walks that meter's beats to the
// one holding the tuplet's time, and IsValid says whether the range stays in
// the measure (0, the good answer), passes its end (1) or cannot be found (2).
//
// A tuplet that leaves its parents hands back to its measure the children
// that the measure does not hold.
//
// operator= copies the time part and the ratio; operator== compares both.
//
// Archive record: that of ECWithTimeChild, the irregular count, the normal
// count and the unit code, one byte each. The unit code is read only when the
// object schema is 2 or more; an older tuplet is in eighths (3).
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/base/ECWithTimeChild.h>
#include <scoremodel/platform/CArray.h>

class ECMeasure;
class ECMeter;

class SCOREMODEL_API ECTuplet : public ECWithTimeChild
{
    DECLARE_SERIAL(ECTuplet)

public:
    ECTuplet();
    ECTuplet(BYTE irregular, BYTE normal, BYTE units);

    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 66.
    int GetEventId() const override;
    // ECMeasure.
    int GetParentTypes(CArray<int, int> &types) override;

    // ---- The ratio ----

    void SetTuplet(BYTE irregular, BYTE normal, BYTE units);
    BYTE GetIrregular() const { return m_irregular; }
    BYTE GetNormal() const { return m_normal; }
    BYTE GetUnits() const { return GetSpareByte(); }

    static MCTime GetUnitsAsTime(int units);
    // The ratio with its counts within an octave of each other, the unit
    // adjusted to match (255 when the adjusted length has no code; 0.03125
    // has none here, unlike in GetUnitsAsTime).
    static void GetEquivalentTuplet(int irregular, int normal, BYTE units, int &outIrregular, int &outNormal,
                                    BYTE &outUnits);
    // The unit code of the equivalent tuplet, widened: 255, never -1, for a
    // unit without a code.
    static int CalcIrregularUnits(int irregular, int normal, BYTE units);
    int GetIrregularUnits();

    // `*duration` scaled by the equivalent normal over irregular count, in
    // float; TimeNull for an irregular count of 0 or a null duration.
    MCTime ScaleDuration(MCTime *duration);

    // ---- The tuplet in its measure ----

    // 0 when the range stays inside the measure, 1 when it passes the end, 2
    // when there is no range.
    int IsValid(ECMeasure *measure, ECMeter *meter);
    // Fills `borrowed` with `meter`'s beats, those the tuplet covers replaced
    // by its own; 0 for a unit of no length, no fit, or a meter SetMeter
    // refuses.
    int SetupBorrowedMeter(ECMeter *meter, ECMeter *borrowed);
    // The stretch of `measure` the tuplet covers, relative to the measure's
    // time: in sounding time, or in written time with `flag` 1. 0 when the
    // tuplet and its children have no time or no borrowed meter can be made.
    int GetTupletRange(ECMeasure *measure, ECMeter *meter, MCTime &start, MCTime &end, int flag);

    // Hands the children the measure does not hold to it, then leaves.
    int RemoveFromParents() override;

    ECTuplet &operator=(const ECTuplet &other);
    int operator==(const ECTuplet &other) const;
    int operator!=(const ECTuplet &other) const { return !(*this == other); }

protected:
    ~ECTuplet() override;

    // Searches the meter's subdivision levels 0 to 3 for `length`: mode 0 a
    // level whose every entry equals it (an empty level at once), mode 1 the
    // first level holding it, any other mode, from level 3 down, the first
    // entry longer than it. Stores the level and the index where the scan
    // stopped and returns 1, or stores -1 twice and returns 0.
    int FindFit(ECMeter *meter, float length, int &level, int &index, int mode);
    // Writes the tuplet's beats from `index` on while they fit in
    // `remaining`, then what is left as plain beats of the meter's pulse (or
    // the largest halving of it that divides the rest). Inserts with
    // `insert` 1 (and moves `index` past what it wrote), overwrites
    // otherwise. Always 1.
    int FitInside(ECMeter *meter, CByteArray &numerators, CByteArray &denominators, float unit, float remaining,
                  int &index, int insert);
    // The denominator that writes the tuplet's beat: 4 over the unit length,
    // with the doublings of the equivalent tuplet.
    int GetAdjustedDenominator();

private:
    BYTE m_irregular = 3;
    BYTE m_normal = 2;
};
