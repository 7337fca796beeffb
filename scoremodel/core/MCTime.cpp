#include <scoremodel/core/MCTime.h>

#include <scoremodel/platform/CArchive.h>
#include <scoremodel/platform/Exceptions.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

long MCTime::GlobalPPQ = 480;

namespace
{
// Truncates toward zero like a cast, but pins values beyond the range of long
// to its limits (and NaN to 0) instead of leaving the result undefined: the
// "no time" constant times a resolution is a real input.
long TruncateToLong(double x)
{
    if (std::isnan(x))
        return 0;
    if (x >= 9223372036854775808.0)
        return LONG_MAX;
    if (x <= -9223372036854775808.0)
        return LONG_MIN;
    return static_cast<long>(x);
}

// The record of a bar/pulse/tick time is four little-endian int32, whatever
// the host's byte order.
void PutInt32(BYTE *out, int value)
{
    const auto u = static_cast<std::uint32_t>(value);
    out[0] = static_cast<BYTE>(u);
    out[1] = static_cast<BYTE>(u >> 8);
    out[2] = static_cast<BYTE>(u >> 16);
    out[3] = static_cast<BYTE>(u >> 24);
}

int GetInt32(const BYTE *in)
{
    return static_cast<int>(static_cast<std::uint32_t>(in[0]) | (static_cast<std::uint32_t>(in[1]) << 8) |
                            (static_cast<std::uint32_t>(in[2]) << 16) | (static_cast<std::uint32_t>(in[3]) << 24));
}

// tick / ppq as the bar/pulse/tick comparisons scale it.
double TickFraction(const BPTTime &t)
{
    return static_cast<double>(t.tick) / static_cast<double>(t.ppq);
}
} // namespace

int MCTime::SetGlobalPPQ(long ppq)
{
    if (ppq < 10)
        ppq = 10;
    else if (ppq > 1000)
        ppq = 1000;
    GlobalPPQ = ppq;
    return 1;
}

const MCTime &MCTime::TimeMax()
{
    static const MCTime s_max(std::numeric_limits<float>::max());
    return s_max;
}

const MCTime &MCTime::TimeNull()
{
    static const MCTime s_null(-std::numeric_limits<float>::max());
    return s_null;
}

const MCTime &MCTime::TimeZero()
{
    static const MCTime s_zero(0.0f);
    return s_zero;
}

MCTime::MCTime() : m_bpt(nullptr), m_mode(TimeModeNormalized)
{
    m_value = 0.0f;
}

MCTime::MCTime(float value) : m_bpt(nullptr), m_mode(TimeModeNormalized)
{
    m_value = value;
}

MCTime::MCTime(int bar, int pulse, int tick, int ppq)
    : m_bpt(new BPTTime{bar, pulse, tick, ppq}), m_mode(TimeModeBarPulseTick)
{
}

MCTime::MCTime(const MCTime &other) : m_bpt(nullptr), m_mode(other.m_mode)
{
    if (other.m_mode == TimeModeBarPulseTick)
        m_bpt = new BPTTime(*other.m_bpt);
    else
        m_value = other.m_value;
}

MCTime::~MCTime()
{
    if (m_mode == TimeModeBarPulseTick)
    {
        delete m_bpt;
        m_bpt = nullptr;
    }
}

void MCTime::DropRecord()
{
    if (m_mode == TimeModeBarPulseTick)
    {
        delete m_bpt;
        m_bpt = nullptr;
        m_value = 0.0f;
        m_mode = TimeModeNormalized;
    }
}

MCTime &MCTime::operator=(const MCTime &other)
{
    if (this == &other)
        return *this;
    if (other.m_mode == TimeModeBarPulseTick)
    {
        if (m_mode != TimeModeBarPulseTick)
        {
            m_bpt = new BPTTime(*other.m_bpt);
            m_mode = TimeModeBarPulseTick;
        }
        else
            *m_bpt = *other.m_bpt;
    }
    else
    {
        DropRecord();
        m_value = other.m_value;
    }
    m_mode = other.m_mode;
    return *this;
}

MCTime &MCTime::operator=(float value)
{
    DropRecord();
    m_value = value;
    return *this;
}

float MCTime::WordAsFloat() const
{
    if (m_mode == TimeModeBarPulseTick)
        return std::numeric_limits<float>::quiet_NaN();
    return m_value;
}

float MCTime::GetSeconds() const
{
    return WordAsFloat();
}

void MCTime::SetSeconds(float value)
{
    DropRecord();
    m_value = value;
}

long MCTime::GetMSec() const
{
    if (m_mode == TimeModeBarPulseTick)
        return 0;
    return TruncateToLong(static_cast<double>(m_value) * 1000.0 + 0.5);
}

void MCTime::SetMSec(long ms)
{
    DropRecord();
    m_value = static_cast<float>(ms) / 1000.0f;
}

long MCTime::GetTicks(long ppq) const
{
    if (m_mode == TimeModeBarPulseTick)
        return 0;
    // 0.49 rather than 0.5: an exact half tick belongs to the earlier tick.
    return TruncateToLong(static_cast<double>(m_value) * static_cast<double>(ppq) + 0.49);
}

float MCTime::GetTicksPrecisely(long ppq) const
{
    if (m_mode == TimeModeBarPulseTick)
        return 0.0f;
    return static_cast<float>(static_cast<double>(m_value) * static_cast<double>(ppq));
}

void MCTime::SetTicks(float ticks, long ppq)
{
    if (ppq == 0)
        return;
    DropRecord();
    m_value = static_cast<float>(static_cast<double>(ticks) / static_cast<double>(ppq));
}

void MCTime::AddTicks(long ticks, long ppq)
{
    if (ppq == 0 || m_mode == TimeModeBarPulseTick)
        return;
    m_value = static_cast<float>(static_cast<double>(m_value) +
                                 static_cast<double>(ticks) / static_cast<double>(ppq));
}

BPTTime *MCTime::GetBarPulseTick() const
{
    return m_mode == TimeModeBarPulseTick ? m_bpt : nullptr;
}

void MCTime::SetBarPulseTick(const BPTTime &bpt)
{
    SetBarPulseTick(bpt.bar, bpt.pulse, bpt.tick, bpt.ppq);
}

void MCTime::SetBarPulseTick(int bar, int pulse, int tick, int ppq)
{
    if (m_mode != TimeModeBarPulseTick)
    {
        m_bpt = new BPTTime{};
        m_mode = TimeModeBarPulseTick;
    }
    *m_bpt = BPTTime{bar, pulse, tick, ppq};
}

void MCTime::SetPPQ(int newPPQ)
{
    if (newPPQ <= 0 || m_mode != TimeModeBarPulseTick || m_bpt == nullptr || m_bpt->ppq <= 0 ||
        m_bpt->ppq == newPPQ)
        return;
    // The product wraps in 32 bits, as the stored fields are 32-bit ints; only
    // the division is done in double.
    const auto product = static_cast<std::int32_t>(static_cast<std::int64_t>(newPPQ) * m_bpt->tick);
    m_bpt->tick = static_cast<int>(std::floor(static_cast<double>(product) / static_cast<double>(m_bpt->ppq)));
    m_bpt->ppq = newPPQ;
}

void MCTime::SetMode(BYTE mode)
{
    if (m_mode == TimeModeBarPulseTick && mode != TimeModeBarPulseTick)
        DropRecord();
    else if (m_mode != TimeModeBarPulseTick && mode == TimeModeBarPulseTick)
        m_bpt = new BPTTime{};
    m_mode = mode;
}

MCTime &MCTime::operator+=(const MCTime &b)
{
    if (b.m_mode == TimeModeBarPulseTick || m_mode == TimeModeBarPulseTick)
        return *this;
    m_value = static_cast<float>(static_cast<double>(m_value) + static_cast<double>(b.m_value));
    return *this;
}

MCTime &MCTime::operator-=(const MCTime &b)
{
    if (b.m_mode == TimeModeBarPulseTick || m_mode == TimeModeBarPulseTick)
        return *this;
    m_value = static_cast<float>(static_cast<double>(m_value) - static_cast<double>(b.m_value));
    return *this;
}

MCTime &MCTime::operator*=(float f)
{
    if (m_mode == TimeModeBarPulseTick)
        return *this;
    m_value *= f;
    return *this;
}

MCTime &MCTime::operator/=(float f)
{
    if (m_mode == TimeModeBarPulseTick || f == 0.0f)
        return *this;
    m_value /= f;
    return *this;
}

MCTime MCTime::operator/(const MCTime &b) const
{
    if (m_mode == TimeModeBarPulseTick)
        return MCTime(0, 0, 0, static_cast<int>(GlobalPPQ));
    float d = b.WordAsFloat();
    if (d == 0.0f)
        d = 1.0f;
    return MCTime(m_value / d);
}

MCTime MCTime::operator%(const MCTime &b) const
{
    if (m_mode == TimeModeBarPulseTick)
        return MCTime(0, 0, 0, static_cast<int>(GlobalPPQ));
    float d = b.WordAsFloat();
    if (d == 0.0f)
        d = 1.0f;
    const float whole = std::floor(m_value / d);
    return MCTime(static_cast<float>(static_cast<double>(m_value) - static_cast<double>(d) * whole));
}

MCTime MCTime::operator-() const
{
    if (m_mode == TimeModeBarPulseTick)
        return MCTime(0, 0, 0, static_cast<int>(GlobalPPQ));
    return MCTime(-m_value);
}

int MCTime::operator==(const MCTime &b) const
{
    if (m_mode != TimeModeBarPulseTick)
        return m_value == b.WordAsFloat();
    if (b.m_mode != TimeModeBarPulseTick)
        return 0;
    const BPTTime &x = *m_bpt;
    const BPTTime &y = *b.m_bpt;
    if (x.bar != y.bar || x.pulse != y.pulse)
        return 0;
    if (x.ppq == y.ppq)
        return x.tick == y.tick;
    if (x.ppq <= 0 || y.ppq <= 0)
        return 0;
    return TickFraction(x) == TickFraction(y);
}

int MCTime::operator>=(const MCTime &b) const
{
    if (m_mode != TimeModeBarPulseTick)
        return m_value >= b.WordAsFloat();
    const BPTTime &x = *m_bpt;
    if (b.m_mode != TimeModeBarPulseTick)
    {
        // A bar/pulse/tick time orders only against zero.
        if (b.m_value != 0.0f)
            return 0;
        return x.bar >= 0 && x.pulse >= 0 && x.tick >= 0;
    }
    const BPTTime &y = *b.m_bpt;
    // Field by field, not lexicographic: a later bar with an earlier pulse is
    // not >=. Callers depend on that.
    if (x.bar < y.bar || x.pulse < y.pulse)
        return 0;
    if (x.ppq >= y.ppq)
        return x.tick >= y.tick;
    if (x.ppq <= 0 || y.ppq <= 0)
        return 0;
    return TickFraction(x) >= TickFraction(y);
}

int MCTime::operator<=(const MCTime &b) const
{
    if (m_mode != TimeModeBarPulseTick)
        return m_value <= b.WordAsFloat();
    const BPTTime &x = *m_bpt;
    if (b.m_mode != TimeModeBarPulseTick)
    {
        if (b.m_value != 0.0f)
            return 0;
        return x.bar <= 0 && x.pulse <= 0 && x.tick <= 0;
    }
    const BPTTime &y = *b.m_bpt;
    if (x.bar > y.bar || x.pulse > y.pulse)
        return 0;
    if (x.ppq <= y.ppq)
        return x.tick <= y.tick;
    if (x.ppq <= 0 || y.ppq <= 0)
        return 0;
    return TickFraction(x) <= TickFraction(y);
}

void MCTime::Serialize(CArchive &ar, int version)
{
    if (ar.IsStoring())
    {
        // Always the newest layout: the version only matters for loading.
        ar << m_mode;
        if (m_mode == TimeModeBarPulseTick)
        {
            BYTE raw[16];
            PutInt32(raw, m_bpt->bar);
            PutInt32(raw + 4, m_bpt->pulse);
            PutInt32(raw + 8, m_bpt->tick);
            PutInt32(raw + 12, m_bpt->ppq);
            ar.Write(raw, sizeof raw);
        }
        else
            ar << m_value;
        return;
    }

    if (version <= 0)
    {
        // The oldest documents hold a bare float and no mode byte. The mode
        // stays, except that a bar/pulse/tick time has no float to take it
        // and becomes normalized.
        float value;
        ar >> value;
        DropRecord();
        m_value = value;
        return;
    }

    // Everything is read before the object changes further, so a stream that
    // ends half-way leaves a valid 0.0 behind rather than a dangling record.
    DropRecord();
    m_value = 0.0f;
    m_mode = TimeModeNormalized;
    BYTE mode;
    ar >> mode;
    if (mode == TimeModeBarPulseTick)
    {
        BYTE raw[16];
        ar.Read(raw, sizeof raw);
        m_bpt = new BPTTime{GetInt32(raw), GetInt32(raw + 4), GetInt32(raw + 8), GetInt32(raw + 12)};
        m_mode = TimeModeBarPulseTick;
    }
    else
    {
        // SetMode labels a value with any byte and the record keeps it, so
        // every mode but 2 reads back as a float under the mode it was saved with.
        float value;
        ar >> value;
        m_value = value;
        m_mode = mode;
    }
}
