// MCPitchUtils: interval and key arithmetic over spelled pitches.
//
// It measures the diatonic interval between two MCPitch values with its
// quality (C up to E flat is a minor third, B sharp up to the C of the same
// MIDI number a diminished second), finds the pitch an interval leads to,
// measures plain MIDI distances, reads key facts by sharps and flats and
// transposes keys.
//
//     MCPitchUtils utils;
//     MCPitch c(60, 0), eFlat(63, -1);
//     MCPitchUtils::INTERVAL third = utils.OrderedInterval(c, eFlat); // minor, size 2
//     MCPitch again = utils.GetPitchFromInterval(c, third);            // E flat
//
// A key is a pair of counts, sharps and flats, 0 to 7 each. When sharps are
// above 0 the flats are ignored; a count above 7 reads as no key in the
// tables (0).
//
// Intervals are read the way a staff shows them: a pair counts as descending
// when either the MIDI numbers or the staff positions fall, so a spelling
// that contradicts the sounding direction (B sharp 4 to C flat 5, which falls
// by a semitone while its letters rise) still reads as descending.
//
// The object has no state; copying it does nothing. The key and quality
// helpers are static, the interval operations need an instance. Everything
// is safe to call from any thread.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/pitch/MCPitch.h>
#include <scoremodel/platform/CString.h>

// The event list types belong to the event tree, which this value layer does
// not include: the two inert operations that name them only pass references.
template <class BASE_CLASS, class TYPE>
class CTypedPtrList;
class MCEventList;
class ECBase;

class SCOREMODEL_API MCPitchUtils
{
public:
    // Quality of an interval, by semitone offset from the perfect or the major
    // size of its step.
    enum Quality
    {
        QualityPerfect = 0,
        QualityMajor = 1,
        QualityMinor = 2,
        QualityAugmented = 3,
        QualityDiminished = 4,
        QualityDoublyAugmented = 5,
        QualityDoublyDiminished = 6,
        QualityTriplyAugmented = 7,
        QualityTriplyDiminished = 8,
    };

    // A diatonic interval in 16 bits.
    struct INTERVAL
    {
        unsigned short quality : 4;     // a Quality
        unsigned short size : 11;       // diatonic steps, absolute: 0 unison, 7 octave
        unsigned short descending : 1;  // the second pitch lies below the first
    };

    MCPitchUtils();
    MCPitchUtils(const MCPitchUtils &other);
    MCPitchUtils &operator=(const MCPitchUtils &other);
    virtual ~MCPitchUtils();

    // ---- Plain MIDI distances ---------------------------------------------------

    // b - a.
    int OrderedInterval(const unsigned char &a, const unsigned char &b) const;
    // |b - a|.
    int UnorderedInterval(const unsigned char &a, const unsigned char &b) const;
    // (b - a) modulo 12, 0 to 11.
    int OrderedPCInterval(const unsigned char &a, const unsigned char &b) const;
    // The smaller of the two ordered pitch class intervals, 0 to 6.
    int UnorderedPCInterval(const unsigned char &a, const unsigned char &b) const;

    // ---- Diatonic distances -----------------------------------------------------

    // Staff position of b minus that of a; a position is degree + octave * 7.
    int OrderedDiatonic(const MCPitch &a, const MCPitch &b) const;
    int UnorderedDiatonic(const MCPitch &a, const MCPitch &b) const;

    // ---- Spelled intervals -------------------------------------------------------

    // The interval from `first` to `second`, with its quality from both
    // spellings. Qualities beyond triply augmented or diminished have no value
    // and read as QualityPerfect.
    INTERVAL OrderedInterval(const MCPitch &first, const MCPitch &second) const;
    // OrderedInterval with the descending bit clear.
    INTERVAL UnorderedInterval(const MCPitch &first, const MCPitch &second) const;
    // The interval within one octave (size 0 to 6). A descending interval is
    // inverted (a falling third becomes a rising sixth: size 7 - size, major
    // <-> minor, augmented <-> diminished) but keeps its descending bit.
    INTERVAL OrderedPCInterval(const MCPitch &first, const MCPitch &second) const;
    // Between the tonics of two keys (GetKeyRefPitch), from the first key to
    // the second, or from the second to the first when `reverse` is non-zero.
    INTERVAL OrderedPCInterval(int sharps1, int flats1, int sharps2, int flats2, int reverse) const;
    // Both ordered pitch class intervals; the one from a to b if its size is
    // smaller, else the one from b to a (so b to a wins a tie).
    INTERVAL UnorderedPCInterval(const MCPitch &a, const MCPitch &b) const;
    // The pitch `interval` leads to from `pitch`: the staff position moves by
    // the size, up or down, and the alteration is whatever brings the quality
    // to the one asked. When that alteration lies outside double flat to double
    // sharp, the MIDI pitch is spelled afresh by SetPitch(midi, 0, 1), which
    // loses the asked spelling (C plus a triply augmented unison is D sharp).
    // A descending interval measured between contradicting spellings leads
    // downward, so it does not lead back to where it was measured. For the
    // same reason a second up from E or B double sharp, whose natural target
    // lies below it, comes out a semitone low (E double sharp up a major
    // second gives F double sharp); that is the answer callers get.
    // The result has show accidental set and dirty clear.
    MCPitch GetPitchFromInterval(const MCPitch &pitch, const INTERVAL &interval) const;

    // ---- Qualities ----------------------------------------------------------------

    // Quality for a semitone offset from the perfect size, -3 to 3; other
    // offsets give QualityPerfect.
    static int PerfectQuality(int offset);
    // Quality for a semitone offset from the major size, -4 to 3; other
    // offsets give QualityPerfect.
    static int MajMinQuality(int offset);
    // True for steps 0, 3 and 4 modulo 7 (unison, fourth, fifth).
    static bool IsPerfectStep(int step);
    // Semitones that turn `found` into `wanted`, both of wanted's size. A
    // triply diminished quality on a major-kind size counts as 0, so a triply
    // diminished third cannot be reached through GetPitchFromInterval.
    static int QualityDifference(const INTERVAL &wanted, const INTERVAL &found);

    // ---- Keys -----------------------------------------------------------------------

    // Moves a key by `semitones` to the one fixed key for the new tonic's pitch
    // class; at pitch class 6 the old key decides: 6 flats if it had a flat,
    // else 6 sharps. 0 does nothing, nor does a fall below MIDI 0 that leaves
    // a remainder (the tonic lies at MIDI 60 to 71, so only a fall of more than
    // five octaves gets there); a fall to a negative multiple of 12 lands on C.
    static void TransposeKey(int &sharps, int &flats, int semitones);
    // The tonic at MIDI 60 to 71 spelled with the key's own accidental.
    static MCPitch GetKeyRefPitch(int sharps, int flats);
    // Pitch class of the tonic.
    static int GetKeyDegreeChromatic(int sharps, int flats);
    // Degree of the tonic; one sharp reads 0, not 4 (G): callers rely on it.
    static int GetKeyDegree(int sharps, int flats);
    // Quality of the interval from C up to the tonic.
    static int GetKeyQuality(int sharps, int flats);

    // The staff shift, in diatonic steps (-6 to 6), of a transposition by
    // `semitones`: the steps from the flat-leaning spelling of 60 - semitones
    // up to middle C. A rise of 1 is 0 steps (59 spells C flat), of 2 is 1.
    // 60 - semitones is taken modulo 256, so shifts beyond about five octaves
    // wrap.
    static int GetTrackTranspositionDegree(int semitones);

    // ---- Kept for hosts that link against them; they do nothing ---------------

    // Returns an empty string.
    CString GetNumkeyFromPitch(int, int, int, int);
    // Returns octave * 12 + degree.
    int GetPitchFromNumkey(int sharps, int flats, int degree, int octave);
    // Does nothing.
    void NormalizeForm(CTypedPtrList<MCEventList, ECBase *> &, CTypedPtrList<MCEventList, ECBase *> &);
    // Returns 0.
    int SetCardinality(CTypedPtrList<MCEventList, ECBase *> &);

protected:
    // The alteration of a quality, as one accidental: -1 for minor and the
    // diminished family, 1 for the augmented family, 0 for perfect and major.
    static int QualityToAccidental(int quality);
};

static_assert(sizeof(MCPitchUtils::INTERVAL) == 2, "INTERVAL is a 16-bit record");
