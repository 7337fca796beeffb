#include <scoremodel/events/signatures/ECMeterEnv.h>

#include <scoremodel/events/envelopes/EnvelopeNodes.h>
#include <scoremodel/events/signatures/ECMeter.h>
#include <scoremodel/platform/CArchive.h>
#include <scoremodel/platform/Exceptions.h>

#include <climits>

IMPLEMENT_SERIAL(ECMeterEnv, ECEnvelope, VERSIONABLE_SCHEMA | 2)

namespace
{
using envelope_nodes::Next;
using envelope_nodes::Prev;

inline ECMeter *MeterOf(POSITION pos)
{
    return envelope_nodes::ItemAt<ECMeter>(pos);
}
// Every child is a meter: the time is read without a virtual call.
inline float TimeOf(ECMeter *meter)
{
    return meter->ECWithTime::GetTime()->GetSeconds();
}

// Float to int as the processor truncates: a NaN or a value out of range
// gives the indefinite integer 0x80000000 instead of undefined behaviour.
inline int Truncate(float value)
{
    if (!(value >= -2147483648.0f && value < 2147483648.0f))
        return INT_MIN;
    return static_cast<int>(value);
}
// Two's complement sum: positions from an absurd time wrap, as stored
// documents expect of 32-bit fields.
inline int Wrap(long long value)
{
    return static_cast<int>(static_cast<unsigned int>(static_cast<unsigned long long>(value)));
}
} // namespace

ECMeterEnv::ECMeterEnv() = default;

ECMeterEnv::~ECMeterEnv() = default;

CObject *ECMeterEnv::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECMeterEnv)))
        *this = *static_cast<ECMeterEnv *>(src);
    return this;
}

int ECMeterEnv::GetEventId() const
{
    return EVENT_ID_METER_ENV;
}

int ECMeterEnv::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CONDUCTOR_STAFF);
    return 1;
}

// ---- Children ----

int ECMeterEnv::AddChild(ECBase *child, int sorted)
{
    // The envelope runs UpdateChildren, and with it RecalculateBPTTimes.
    return AddChildOfKind(child, sorted, RUNTIME_CLASS(ECMeter));
}

int ECMeterEnv::RemoveChild(ECBase *child, int deep)
{
    return ECEnvelope::RemoveChild(child, deep);
}

int ECMeterEnv::RemoveChildren(int deep)
{
    return ECEnvelope::RemoveChildren(deep);
}

void ECMeterEnv::UpdateChildren()
{
    CSingleLock lock(&m_lock, TRUE);
    ECEnvelope::UpdateChildren();
    m_bptPos = nullptr;
    RecalculateBPTTimes();
}

// ---- Positions ----

void ECMeterEnv::RecalculateBPTTimes()
{
    CSingleLock lock(&m_lock, TRUE);
    POSITION pos = m_children.GetHeadPosition();
    ECMeter *previous = pos ? MeterOf(pos) : nullptr;
    // Positions count from a first meter at time 0; with none there the
    // stored positions stay as they were.
    if (previous && TimeOf(previous) == 0.0f)
    {
        const int ppq = static_cast<int>(MCTime::GlobalPPQ);
        previous->SetBarPulseTick(0, 0, 0, ppq);
        for (pos = Next(pos); pos; pos = Next(pos))
        {
            ECMeter *meter = MeterOf(pos);
            int bar = 0;
            int pulse = 0;
            int tick = 0;
            _GetBPTFromMeter(previous, *meter->ECWithTime::GetTime(), bar, pulse, tick, ppq);
            meter->SetBarPulseTick(bar, pulse, tick, ppq);
            previous = meter;
        }
    }
    // The cursor of GetNormalizedTime needs bars that never fall.
    bool ordered = true;
    int lastBar = INT_MIN;
    for (pos = m_children.GetHeadPosition(); pos && ordered; pos = Next(pos))
    {
        const int bar = MeterOf(pos)->GetBarPulseTick().bar;
        ordered = bar >= lastBar;
        lastBar = bar;
    }
    m_bptOrdered = ordered;
}

void ECMeterEnv::_GetBPTFromMeter(ECMeter *meter, MCTime &time, int &bar, int &pulse, int &tick, int resolution)
{
    const float length = meter->GetMeasureLength();
    const float pulseLength = meter->GetPulse();
    const int numerator = meter->GetNumerator();
    if (length == 0.0f || pulseLength == 0.0f || numerator == 0)
    {
        bar = 0;
        pulse = 0;
        tick = 0;
    }
    const float measures = (time.GetSeconds() - TimeOf(meter)) / length;
    const int b = Truncate(measures);
    const float rest = (measures - static_cast<float>(b)) * length;
    const int q = Truncate(rest / pulseLength);
    const float res = static_cast<float>(resolution);
    const int t = Truncate((rest - static_cast<float>(q) * pulseLength) * res + 0.5f);
    const int ticksPerPulse = Truncate(pulseLength * res + 0.5f);

    const BPTTime &start = meter->GetBarPulseTick();
    tick = Wrap(static_cast<long long>(t) + start.tick);
    pulse = Wrap(static_cast<long long>(q) + start.pulse);
    bar = Wrap(static_cast<long long>(b) + start.bar);
    // One carry each: the start position is itself normalised.
    if (tick >= ticksPerPulse)
    {
        tick = Wrap(static_cast<long long>(tick) - ticksPerPulse);
        pulse = Wrap(static_cast<long long>(pulse) + 1);
    }
    if (pulse >= numerator)
    {
        pulse = Wrap(static_cast<long long>(pulse) - numerator);
        bar = Wrap(static_cast<long long>(bar) + 1);
    }
}

void ECMeterEnv::_GetTimeFromMeter(ECMeter *meter, MCTime &time, int bar, int pulse, int tick, int resolution)
{
    const float length = meter->GetMeasureLength();
    const float pulseLength = meter->GetPulse();
    const BPTTime &start = meter->GetBarPulseTick();
    const float bars = static_cast<float>(static_cast<long long>(bar) - start.bar);
    const float asked = static_cast<float>(pulse) * pulseLength + static_cast<float>(tick) / resolution;
    // A start position of resolution 0 was never set by the envelope; its
    // tick then counts for nothing rather than for infinity.
    const float own = static_cast<float>(start.pulse) * pulseLength +
                      (start.ppq ? static_cast<float>(start.tick) / start.ppq : 0.0f);
    time = TimeOf(meter) + length * bars + (asked - own);
}

void ECMeterEnv::GetBarPulseTick(MCTime &time, int resolution)
{
    if (time.GetMode() != MCTime::TimeModeNormalized)
        return;
    CSingleLock lock(&m_lock, TRUE);
    ECEnvPoint *point = GetPointBeforeEqual(time);
    if (!point)
    {
        time.SetBarPulseTick(0, 0, 0, resolution);
        return;
    }
    ECMeter *meter = static_cast<ECMeter *>(point);
    if (TimeOf(meter) == time.GetSeconds())
    {
        // The stored position whole, with its own resolution.
        time.SetBarPulseTick(meter->GetBarPulseTick());
        return;
    }
    int bar = 0;
    int pulse = 0;
    int tick = 0;
    _GetBPTFromMeter(meter, time, bar, pulse, tick, resolution);
    time.SetBarPulseTick(bar, pulse, tick, resolution);
}

void ECMeterEnv::GetNormalizedTime(MCTime &time)
{
    if (time.GetMode() != MCTime::TimeModeBarPulseTick)
        return;
    const BPTTime asked = *time.GetBarPulseTick();
    if (asked.ppq <= 0)
        return;
    CSingleLock lock(&m_lock, TRUE);
    POSITION head = m_children.GetHeadPosition();
    if (!head)
        return;
    auto matches = [&asked](ECMeter *meter) {
        const BPTTime &at = meter->GetBarPulseTick();
        return at.bar <= asked.bar && at.pulse <= asked.pulse && at.tick <= asked.tick;
    };

    // The walk goes from the last meter backward. While bars never fall
    // along the list, every meter behind the last one with a bar at most the
    // asked one fails, so the walk may start there, found from the cursor.
    POSITION pos = m_children.GetTailPosition();
    if (m_bptOrdered)
    {
        pos = m_bptPos ? m_bptPos : head;
        while (pos && MeterOf(pos)->GetBarPulseTick().bar > asked.bar)
            pos = Prev(pos);
        if (pos)
            while (Next(pos) && MeterOf(Next(pos))->GetBarPulseTick().bar <= asked.bar)
                pos = Next(pos);
        m_bptPos = pos ? pos : head;
    }
    while (pos && !matches(MeterOf(pos)))
        pos = Prev(pos);

    ECMeter *meter = MeterOf(pos ? pos : head);
    if (pos)
    {
        const BPTTime &at = meter->GetBarPulseTick();
        if (at.bar == asked.bar && at.pulse == asked.pulse && at.tick == asked.tick)
        {
            time = *meter->ECWithTime::GetTime();
            return;
        }
    }
    _GetTimeFromMeter(meter, time, asked.bar, asked.pulse, asked.tick, asked.ppq);
}

// ---- Archive ----

void ECMeterEnv::Serialize(CArchive &ar)
{
    ECEnvelope::Serialize(ar);
    if (ar.IsStoring())
        return;
    CheckChildrenOfKind(RUNTIME_CLASS(ECMeter), "a meter map child that is not a meter");
    m_bptPos = nullptr;
    RecalculateBPTTimes();
}
