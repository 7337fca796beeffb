// MCTime: the one time value of the model.
//
// Every event position, every duration and every range handed to a command or
// an action is an MCTime. One object holds one of three kinds of time, told
// apart by a mode byte:
//
//   TimeModeNormalized (0)    a float, quarter notes from the start of the
//                             score (1.0 is one quarter, `ppq` ticks). Every
//                             stored event time is in this mode.
//   TimeModeBarPulseTick (2)  an owned heap BPTTime: bar, pulse and tick.
//   TimeModeClock (3)         a float, seconds of real time.
//
// MCTime knows no performance, meter or tempo: converting between normalized
// and bar/pulse/tick time is the meter envelope's job, and between normalized
// and clock time the tempo envelope's. Here only normalized time converts to
// ticks and milliseconds, at a resolution the caller passes.
//
// There is no "missing" flag: TimeNull(), the most negative finite float, is
// what the absence of a time means throughout the model.
//
// Cost: modes 0 and 3 hold no heap memory, one word and one byte. Only a
// bar/pulse/tick time owns a record, and copies of it are deep.
//
// Threads: no lock. The three named constants are made once, safely, on first
// use from any thread; everything else belongs to the thread holding the value.
//
// Errors: no operation reports one. Bad input is absorbed (a zero ppq or
// divisor does nothing or counts as 1, see each operation); only an allocation
// failure of a record escapes, as std::bad_alloc.
//
//   MCTime start(1.5f);                 // the second half of beat two
//   start.AddTicks(240, 480);           // now 2.0
//   long ticks = start.GetTicks(960);   // 1920
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/Types.h>

class CArchive;

// A position as bar, pulse inside the bar and tick inside the pulse, with the
// resolution the tick is counted in. All indices start at 0. A plain record:
// no operations, no range checks.
struct SCOREMODEL_API BPTTime
{
    int bar;
    int pulse;
    int tick;
    int ppq;
};

class SCOREMODEL_API MCTime
{
public:
    enum : BYTE
    {
        TimeModeNormalized = 0,
        TimeModeBarPulseTick = 2,
        TimeModeClock = 3
    };

    // The default tick resolution, shared by the whole process. Changing it
    // does not touch times already made.
    static long GlobalPPQ;

    // Stores ppq clamped to 10..1000 in GlobalPPQ. Always returns 1.
    static int SetGlobalPPQ(long ppq);

    // ---- Named values (static lifetime, made on first use) ----

    // The largest finite float, 3.4028235e+38, in mode 0.
    static const MCTime &TimeMax();
    // The most negative finite float, -3.4028235e+38, in mode 0: "no time".
    static const MCTime &TimeNull();
    // 0.0 in mode 0.
    static const MCTime &TimeZero();

    // ---- Construction and assignment ----

    // 0.0 in mode 0.
    MCTime();
    // The value in mode 0.
    MCTime(float value);
    // A bar/pulse/tick time; the fields are stored as given, unchecked.
    MCTime(int bar, int pulse, int tick, int ppq);
    // Deep: a bar/pulse/tick source gets a record of its own. The mode is
    // copied, so a clock time stays a clock time.
    MCTime(const MCTime &other);
    ~MCTime();

    // Takes the other's value and mode. A bar/pulse/tick destination reuses
    // its record for a bar/pulse/tick source, and frees it for any other.
    MCTime &operator=(const MCTime &other);
    // Mode 2 frees its record and falls to mode 0. Otherwise only the value
    // changes: a clock time given a float stays a clock time.
    MCTime &operator=(float value);

    // ---- Reading and setting ----

    // The stored word read as a float, whatever the mode: quarter notes in
    // mode 0 despite the name. A bar/pulse/tick time has no float and reads
    // as a quiet NaN; check GetMode first.
    float GetSeconds() const;
    // Mode 2 drops its record and becomes mode 0; mode 3 stays mode 3.
    void SetSeconds(float value);

    // value * 1000 + 0.5, truncated toward zero. Mode 2: 0. Saturates at the
    // limits of long (a NaN gives 0).
    long GetMSec() const;
    // Value becomes ms / 1000 in float. Mode 2 drops its record to mode 0.
    void SetMSec(long ms);

    // value * ppq + 0.49, truncated toward zero, so an exact half tick rounds
    // down and -0.5 ticks gives 0. Mode 2: 0. Saturates at the limits of long.
    long GetTicks(long ppq) const;
    // value * ppq without rounding. Mode 2: 0.0.
    float GetTicksPrecisely(long ppq) const;
    // Value becomes ticks / ppq; mode 2 drops to mode 0. A ppq of 0 changes
    // nothing at all, not even the mode.
    void SetTicks(float ticks, long ppq);
    // Adds ticks / ppq (a real quotient). A ppq of 0 or mode 2: nothing.
    void AddTicks(long ticks, long ppq);

    // The record of a bar/pulse/tick time; null in any other mode.
    BPTTime *GetBarPulseTick() const;
    // Becomes a bar/pulse/tick time (allocating a record if needed) and
    // copies the four fields.
    void SetBarPulseTick(const BPTTime &bpt);
    void SetBarPulseTick(int bar, int pulse, int tick, int ppq);
    // Re-expresses the tick of a bar/pulse/tick time at a new resolution:
    // tick = floor(newPPQ * tick / ppq). The tick is never carried into the
    // pulse. Nothing happens for newPPQ <= 0, outside mode 2, for a record ppq
    // <= 0 or when the resolution is already newPPQ. The product newPPQ * tick
    // wraps in 32 bits, as stored documents expect (0x7FFFFFFF doubled is -2).
    void SetPPQ(int newPPQ);

    BYTE GetMode() const { return m_mode; }
    // Relabels the value without converting it: leaving mode 2 frees the
    // record and leaves 0.0; entering mode 2 makes a zeroed record for the
    // caller to fill. Between the float modes the number is kept as it is,
    // which is exactly what the tempo map relies on to mark a converted time.
    void SetMode(BYTE mode);

    // The archive record: the mode byte, then 16 raw bytes (bar, pulse, tick,
    // ppq as little-endian int32) in mode 2 or a float otherwise. Storing
    // ignores `version`. Loading with version <= 0 reads a bare float (the
    // oldest layout); from version 1 on it reads the mode byte first. A mode
    // byte that no time can have raises CArchiveException.
    void Serialize(CArchive &ar, int version);

    // ---- Arithmetic ----
    //
    // Each guard looks only at the operand it names; the asymmetry is wanted.
    // There is no binary + or -.

    // Adds b's float to this value, keeping this mode. Nothing happens when
    // either side is a bar/pulse/tick time.
    MCTime &operator+=(const MCTime &b);
    MCTime &operator-=(const MCTime &b);
    // Nothing happens in mode 2.
    MCTime &operator*=(float f);
    // Nothing happens in mode 2 or for f == 0.0.
    MCTime &operator/=(float f);
    // A new mode-0 time (even from a clock time); a divisor of 0.0 counts as
    // 1.0. A bar/pulse/tick left side gives MCTime(0, 0, 0, GlobalPPQ).
    MCTime operator/(const MCTime &b) const;
    // a - d * floorf(a / d) in mode 0; guards as for operator/.
    MCTime operator%(const MCTime &b) const;
    // The negated value in mode 0; mode 2 gives MCTime(0, 0, 0, GlobalPPQ).
    MCTime operator-() const;

    // ---- Comparison (results 0 or 1) ----
    //
    // Modes 0 and 3 are never told apart. A bar/pulse/tick time compares with
    // another field by field (not lexicographically: (2, 0) is not >= (1, 3))
    // and with a float time only when that time is exactly 0.0. From the float
    // side, a bar/pulse/tick operand reads as NaN, so it is neither ==, >= nor
    // <= any float time. Between two resolutions, >= compares raw ticks when
    // this one's ppq is the larger and <= when it is the smaller, each scaling
    // otherwise: (1, 1, 120 @ 480) is both >= and <= (1, 1, 100 @ 240) and not
    // == to it.
    int operator==(const MCTime &b) const;
    int operator!=(const MCTime &b) const { return !(*this == b); }
    int operator>=(const MCTime &b) const;
    int operator<=(const MCTime &b) const;
    int operator>(const MCTime &b) const { return !(*this <= b); }
    int operator<(const MCTime &b) const { return !(*this >= b); }

private:
    // The stored word as a float; NaN for a bar/pulse/tick time, whose word
    // is a pointer.
    float WordAsFloat() const;
    // Frees the record of a bar/pulse/tick time and leaves 0.0 in mode 0.
    void DropRecord();

    union
    {
        float m_value;
        BPTTime *m_bpt;
    };
    BYTE m_mode;
};
