// ECMeter: a time signature on the conductor staff, a point of the meter
// envelope (ECMeterEnv).
//
// Besides numerator and denominator a meter keeps a precomputed stress
// pattern: how a measure divides into strong groups (stresses), beats and
// pulses. Notation asks it for beat lengths and subdivisions when it groups
// notes; the envelope turns plain times into bar, pulse and tick with it.
//
//     ECMeter *m = new ECMeter(6, 8, 255);   // 255: work the type out
//     m->GetMeterType();                     // 3, a triple meter
//     m->GetBeatsPerMeasure();               // 2 beats ...
//     m->GetPulsesPerBeat(0);                // ... of three eighths
//
// The grid. Every length inside a meter counts ticks of one fixed grid, 256
// to the quarter note (1024 to the whole), whatever MCTime::GlobalPPQ says.
// Float lengths are quarter notes, as MCTime values are. Another resolution
// is reached with ConvertResolution, which rounds to nearest: that rounding
// is what tells the tick forms from the float forms.
//
// Meter types: 0 and 1 are given by the caller and kept for the host (the
// model treats them as 2); 2 perfect, 3 triple, 4 imperfect and 5 combined
// are computed from the numerator (CalculateMeterType); 6 is a list meter
// made by the array form of SetMeter. Each type has its stress rule:
//   0, 1, 2  one stress for the measure when d >= 8 or 4 with n <= 3; n
//            stresses of one pulse for odd n; else two halves.
//   3        n / 3 stresses of three pulses.
//   4        n divisible by 3: three equal stresses; 5 is 2+3, 7 is 4+3,
//            other odd n give no stress at all; even n is c stresses of
//            its odd part m, c growing by 2 per halving.
//   5        n / 3 stresses of three pulses and a closing stress of n mod 3
//            pulses, a real entry even when it is zero.
// Kept oddities, wanted as they are: 25/4 and 35/4 have no stress and no
// beat; 40/8 gets 6 stresses of five pulses, a pattern that no longer fills
// the measure; 33/8 ends in a zero-length stress counted as a beat; 3/4 has
// one stress while 3/2 has three.
//
// Lengths wrap at 16 bits: a measure of 65536 ticks or more at the asked
// resolution wraps, and GetMeasureLength inherits it, so 64/1 reads 0.
//
// The stress arrays grow in steps of five, so their size may exceed the
// stress count. An index inside the size reads (0 past the count); an index
// at or past the size throws CInvalidArgException.
//
// Pickup role: the low four bits of the flags. 0 ordinary, 1 the meter a
// document is really in when it opens with a pickup, 2 the pickup measure's
// meter, 3 the meter of the closing measure that completes the pickup.
//
// Copying (copy constructor, operator=, Copy): the pattern is recomputed
// from the source's arguments, never copied: a list meter is rebuilt with
// the array form and flag 0, so one built with flag 1 loses that shape.
// Then the pickup role is copied. Position and mirrors never copy.
// operator== compares type, numerator, denominator, stress count, pulse, the
// compound arrays and the stress arrays, not role, time or position.
//
// Threads: none of its own; a meter belongs to the document thread.
//
// Archive record, behind ECEnvPoint: BYTE type, BYTE numerator, BYTE
// denominator, WORD stress count, WORD pulse, WORD flags (read only from
// version 9 on), the stress lengths and the pulses per stress (each a count
// in the archive's count form, then WORDs), and for a type above 3 the two
// compound byte arrays (count, then bytes). Loading restores the pattern as
// stored, even one these rules would not make.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/envelopes/ECEnvPoint.h>
#include <scoremodel/platform/CArray.h>

class ECMirror;

class SCOREMODEL_API ECMeter : public ECEnvPoint
{
    DECLARE_SERIAL(ECMeter)

public:
    enum MeterType : unsigned char
    {
        MeterTypeGiven0 = 0,
        MeterTypeGiven1 = 1,
        MeterTypePerfect = 2,
        MeterTypeTriple = 3,
        MeterTypeImperfect = 4,
        MeterTypeCombined = 5,
        MeterTypeList = 6
    };

    // 4/4 of type 0, at bar, pulse, tick 0 with resolution GlobalPPQ, role 0.
    ECMeter();
    // SetMeter(numerator, denominator, type); a refused argument leaves the
    // 4/4 of type 0.
    ECMeter(unsigned char numerator, unsigned char denominator, unsigned char type);
    ECMeter(const ECMeter &other);

    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 33.
    int GetEventId() const override;
    // ECConductorStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    // ---- Setting the meter ----

    // 0, changing nothing, for a numerator 0 or a denominator that is no
    // power of two (1 is one, 0 is not). A type above 1 (pass 255) asks for
    // CalculateMeterType; 0 and 1 are stored as given. Rebuilds the pattern
    // and returns 1.
    int SetMeter(unsigned char numerator, unsigned char denominator, unsigned char type);
    // A list meter (type 6) of components numerators[i] / denominators[i],
    // or all over the one denominator given. One entry each with flag 0 is
    // the simple form with type 255. 0, changing nothing, for an empty array,
    // several denominators not matching the numerators in count, a numerator
    // 0 or a denominator that is no power of two. With flag 1 (or one shared
    // denominator) each component is one stress; otherwise each gets the
    // stresses of its own computed type. Numerator and denominator become
    // the total on the largest denominator (the total wraps at 8 bits).
    int SetMeter(CByteArray const &numerators, CByteArray const &denominators, int singleStress);
    // Always 0 and changes nothing: the type is set through SetMeter only.
    int SetMeterType(unsigned char type);

    // The type for a numerator (the second argument is not looked at): 2
    // below 5 or for a power of two, 4 when divisible by 5 or 7, 5 when not
    // divisible by 3, else 3 when n / 3 is divisible by 3 or even, else 5.
    static unsigned char CalculateMeterType(unsigned char numerator, unsigned char denominator);
    // (value * newResolution + oldResolution / 2) / oldResolution in
    // integers; 0 for an oldResolution 0.
    static int ConvertResolution(int value, int newResolution, int oldResolution);

    // ---- Plain readers ----

    unsigned char GetMeterType() const { return m_meterType; }
    unsigned char GetNumerator() const { return m_numerator; }
    unsigned char GetDenominator() const { return m_denominator; }
    CByteArray &GetCompoundNumerator() { return m_compoundNumerator; }
    CByteArray &GetCompoundDenominator() { return m_compoundDenominator; }
    WORD GetFlags() const { return m_flags; }

    // ---- Pickup role ----

    unsigned char GetPickupRole() const { return static_cast<unsigned char>(m_flags & 0x0F); }
    // A value above 15 is ignored; the other flag bits stay.
    void SetPickupRole(unsigned char role);

    // ---- Position (derived: ECMeterEnv::RecalculateBPTTimes sets it) ----

    BPTTime &GetBarPulseTick() { return m_barPulseTick; }
    void SetBarPulseTick(int bar, int pulse, int tick, int resolution);
    void SetBarPulseTick(BPTTime &bpt);

    // ---- Lengths (resolution in ticks per quarter; 256 is exact) ----

    unsigned short GetPulseTicks(unsigned short resolution);
    // Numerator times GetPulseTicks, cut to 16 bits.
    unsigned short GetTicksPerMeasure(unsigned short resolution);
    // GetTicksPerMeasure(256) in quarter notes; inherits the 16-bit wrap.
    float GetMeasureLength();
    float GetPulse();
    unsigned short GetStressPulsesPerMeasure() { return m_stressCount; }
    // The next three throw CInvalidArgException for an index at or past the
    // array's size.
    float GetStress(unsigned short index);
    unsigned short GetStressTicks(unsigned short index, unsigned short resolution);
    unsigned short GetPulsesPerStress(unsigned short index);

    // ---- Beats: the pulse for types 0 to 2, the first stress for 3, the
    // stress for 4 to 6, 0 for any other type value ----

    float GetBeat(unsigned short index);
    unsigned short GetBeatTicks(unsigned short index, unsigned short resolution);
    // Numerator for types 0 to 2, the stress count for 3 to 6.
    unsigned short GetBeatsPerMeasure();
    unsigned short GetPulsesPerBeat(unsigned short index);

    // One level of the measure's metric tree, in ticks (integer division) or
    // in quarter notes. Level 0 the measure; 1 the stresses (types 0 to 2) or
    // the beats (3 to 6); 2 the beats (0 to 2) or the pulses (3 to 6); level
    // 3 and deeper with f = 2 << (level - 3): beats (0 to 2) or pulses (3 to
    // 6) times f equal entries of the first beat or pulse over f. For another
    // type value, a negative level or a level above 18 (whose entries would
    // all be below one tick at any 16-bit resolution), `out` is left as it
    // was.
    void GetSubdivision(int level, CArray<unsigned short, unsigned short> &out, unsigned short resolution);
    void GetSubdivision(int level, CArray<float, float> &out);

    // What must close a piece whose pickup took part of the last measure:
    // main minus pickup, appended to the arrays as bytes (a short pickup
    // against a long remainder gives a big regular part and the rest). 0 for
    // a null meter or a pickup not shorter than the main meter, else 1.
    static int CalcEndMeter(ECMeter *main, ECMeter *pickup, CByteArray &numerators, CByteArray &denominators);

    // ---- Mirrors (staff-level images of this meter; not owned) ----

    void AddMirror(ECMirror *mirror);
    void RemoveMirror(ECMirror *mirror);
    void RemoveMirrors();
    CTypedPtrList<MCEventList, ECBase *> &GetMirrors() { return m_mirrors; }

    ECMeter &operator=(const ECMeter &other);
    int operator==(const ECMeter &other) const;
    int operator!=(const ECMeter &other) const { return !(*this == other); }

protected:
    ~ECMeter() override;

    // ---- The stress rules: each appends behind the stress count and does
    // nothing for a denominator 0 ----

    void CalculateStress(unsigned char numerator, unsigned char denominator);
    void SetPerfectStress(unsigned char numerator, unsigned char denominator);
    void SetImperfectStress(unsigned char numerator, unsigned char denominator);
    void SetCombinedStress(unsigned char numerator, unsigned char denominator);
    void SetSingleStress(unsigned char numerator, unsigned char denominator);
    // Writes one stress at the stress count, growing both arrays by five
    // when full, and counts it.
    void AppendStress(unsigned int length, unsigned int pulses);
    void ClearStress();
    // The ECMeterEnv parents drop their fast position lookup.
    void PositionChanged();

    BYTE m_meterType = MeterTypeGiven0;
    WORD m_flags = 0;
    BYTE m_numerator = 4;
    BYTE m_denominator = 4;
    CByteArray m_compoundNumerator;
    CByteArray m_compoundDenominator;
    WORD m_stressCount = 0;
    WORD m_pulse = 256;
    CArray<unsigned short, unsigned short> m_stress;
    CArray<unsigned short, unsigned short> m_pulsesPerStress;
    BPTTime m_barPulseTick = {0, 0, 0, 0};
    EventList m_mirrors;
};
