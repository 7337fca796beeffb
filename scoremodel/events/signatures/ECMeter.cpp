#include <scoremodel/events/signatures/ECMeter.h>

#include <scoremodel/core/MCFraction.h>
#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/events/notes/MirrorLinks.h>
#include <scoremodel/events/signatures/ECMeterEnv.h>
#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECMeter, ECEnvPoint, VERSIONABLE_SCHEMA | 2)

namespace
{
// Ticks of the meter grid to quarter notes.
constexpr float kQuarterPerTick = 0.00390625f;

bool IsPowerOfTwo(unsigned char value)
{
    return value != 0 && (value & (value - 1)) == 0;
}

// A length of the 256 grid at another resolution, cut to 16 bits.
unsigned short AtResolution(unsigned short ticks, unsigned short resolution)
{
    if (resolution == 256)
        return ticks;
    return static_cast<unsigned short>(ECMeter::ConvertResolution(ticks, resolution, 256));
}
} // namespace

ECMeter::ECMeter()
{
    SetMeter(4, 4, MeterTypeGiven0);
    SetBarPulseTick(0, 0, 0, static_cast<int>(MCTime::GlobalPPQ));
    SetPickupRole(0);
}

ECMeter::ECMeter(unsigned char numerator, unsigned char denominator, unsigned char type) : ECMeter()
{
    SetMeter(numerator, denominator, type);
}

ECMeter::ECMeter(const ECMeter &other) : ECEnvPoint(other)
{
    SetMeter(4, 4, MeterTypeGiven0);
    SetBarPulseTick(0, 0, 0, static_cast<int>(MCTime::GlobalPPQ));
    *this = other;
}

ECMeter::~ECMeter()
{
    RemoveMirrors();
}

ECMeter &ECMeter::operator=(const ECMeter &other)
{
    if (this == &other)
        return *this;
    ECEnvPoint::operator=(other);
    // The pattern follows from the arguments; it is rebuilt, never copied.
    if (other.m_meterType == MeterTypeList)
        SetMeter(other.m_compoundNumerator, other.m_compoundDenominator, 0);
    else
        SetMeter(other.m_numerator, other.m_denominator, other.m_meterType);
    SetPickupRole(other.GetPickupRole());
    return *this;
}

int ECMeter::operator==(const ECMeter &other) const
{
    if (m_meterType != other.m_meterType || m_numerator != other.m_numerator ||
        m_denominator != other.m_denominator || m_stressCount != other.m_stressCount || m_pulse != other.m_pulse)
        return 0;
    auto same = [](const auto &a, const auto &b) {
        if (a.GetSize() != b.GetSize())
            return false;
        for (INT_PTR i = 0; i < a.GetSize(); ++i)
            if (a[i] != b[i])
                return false;
        return true;
    };
    return same(m_compoundNumerator, other.m_compoundNumerator) &&
           same(m_compoundDenominator, other.m_compoundDenominator) && same(m_stress, other.m_stress) &&
           same(m_pulsesPerStress, other.m_pulsesPerStress);
}

CObject *ECMeter::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECMeter)))
        *this = *static_cast<ECMeter *>(src);
    return this;
}

int ECMeter::GetEventId() const
{
    return EVENT_ID_METER;
}

int ECMeter::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CONDUCTOR_STAFF);
    return 1;
}

// ---- Setting the meter ----

int ECMeter::SetMeter(unsigned char numerator, unsigned char denominator, unsigned char type)
{
    if (numerator == 0 || !IsPowerOfTwo(denominator))
        return 0;
    if (m_meterType == MeterTypeList)
    {
        m_compoundNumerator.RemoveAll();
        m_compoundDenominator.RemoveAll();
    }
    ClearStress();
    m_numerator = numerator;
    m_denominator = denominator;
    m_meterType = type > MeterTypeGiven1 ? CalculateMeterType(numerator, type) : type;
    CalculateStress(numerator, denominator);
    m_pulse = static_cast<WORD>(1024 / denominator);
    return 1;
}

int ECMeter::SetMeter(CByteArray const &numerators, CByteArray const &denominators, int singleStress)
{
    if (numerators.GetSize() == 1 && denominators.GetSize() == 1 && singleStress == 0)
        return SetMeter(numerators[0], denominators[0], 255);
    if (numerators.IsEmpty() || denominators.IsEmpty())
        return 0;
    if (denominators.GetSize() > 1 && denominators.GetSize() != numerators.GetSize())
        return 0;
    for (BYTE n : numerators)
        if (n == 0)
            return 0;
    for (BYTE d : denominators)
        if (!IsPowerOfTwo(d))
            return 0;

    // The arguments may be this meter's own arrays: copy before replacing.
    CByteArray nums;
    CByteArray dens;
    nums.Copy(numerators);
    dens.Copy(denominators);
    ClearStress();
    if (dens.GetSize() == 1)
    {
        const BYTE d = dens[0];
        BYTE total = 0;
        for (BYTE n : nums)
            total = static_cast<BYTE>(total + n);
        m_denominator = d;
        m_numerator = total;
        for (BYTE n : nums)
            SetSingleStress(n, d);
        m_pulse = static_cast<WORD>(1024 / d);
    }
    else
    {
        BYTE largest = 0;
        for (BYTE d : dens)
            largest = d > largest ? d : largest;
        BYTE total = 0;
        for (INT_PTR i = 0; i < nums.GetSize(); ++i)
            total = static_cast<BYTE>(total + (largest / dens[i]) * nums[i]);
        m_denominator = largest;
        m_numerator = total;
        m_pulse = static_cast<WORD>(1024 / largest);
        for (INT_PTR i = 0; i < nums.GetSize(); ++i)
        {
            if (singleStress == 1)
            {
                SetSingleStress(nums[i], dens[i]);
                continue;
            }
            // Each component gets the inner stresses of its own type, on
            // its own denominator, so the lengths stay right on the grid.
            m_meterType = CalculateMeterType(nums[i], dens[i]);
            CalculateStress(nums[i], dens[i]);
        }
    }
    m_compoundNumerator.Copy(nums);
    m_compoundDenominator.Copy(dens);
    m_meterType = MeterTypeList;
    return 1;
}

int ECMeter::SetMeterType(unsigned char)
{
    return 0;
}

unsigned char ECMeter::CalculateMeterType(unsigned char numerator, unsigned char)
{
    const unsigned n = numerator;
    if (n < 5 || (n & (n - 1)) == 0)
        return MeterTypePerfect;
    if (n % 5 == 0 || n % 7 == 0)
        return MeterTypeImperfect;
    if (n % 3 != 0)
        return MeterTypeCombined;
    const unsigned q = n / 3;
    if (q % 3 == 0 || q % 2 == 0)
        return MeterTypeTriple;
    return MeterTypeCombined;
}

int ECMeter::ConvertResolution(int value, int newResolution, int oldResolution)
{
    if (oldResolution == 0)
        return 0;
    // 64 bits: a 16-bit value at a 32-bit resolution must not overflow.
    const long long product = static_cast<long long>(value) * newResolution + oldResolution / 2;
    return static_cast<int>(product / oldResolution);
}

// ---- Stress rules ----

void ECMeter::ClearStress()
{
    m_stress.RemoveAll();
    m_pulsesPerStress.RemoveAll();
    m_stressCount = 0;
}

void ECMeter::AppendStress(unsigned int length, unsigned int pulses)
{
    const INT_PTR index = m_stressCount;
    // Grows by five, so a size past the count reads zeros.
    while (index >= m_stress.GetSize())
        m_stress.SetSize(m_stress.GetSize() + 5);
    while (index >= m_pulsesPerStress.GetSize())
        m_pulsesPerStress.SetSize(m_pulsesPerStress.GetSize() + 5);
    m_stress[index] = static_cast<unsigned short>(length);
    m_pulsesPerStress[index] = static_cast<unsigned short>(pulses);
    ++m_stressCount;
}

void ECMeter::CalculateStress(unsigned char numerator, unsigned char denominator)
{
    if (m_meterType <= MeterTypeTriple)
        SetPerfectStress(numerator, denominator);
    else if (m_meterType == MeterTypeImperfect)
        SetImperfectStress(numerator, denominator);
    else if (m_meterType == MeterTypeCombined)
        SetCombinedStress(numerator, denominator);
}

void ECMeter::SetPerfectStress(unsigned char numerator, unsigned char denominator)
{
    if (denominator == 0)
        return;
    const unsigned n = numerator;
    const unsigned unit = 1024u / denominator;
    if (m_meterType <= MeterTypePerfect)
    {
        if (denominator >= 8 || (denominator == 4 && n <= 3))
            AppendStress(unit * n, n);
        else if (n % 2 == 1)
            for (unsigned i = 0; i < n; ++i)
                AppendStress(unit, 1);
        else
            for (int i = 0; i < 2; ++i)
                AppendStress((unit * n) / 2, n / 2);
    }
    else if (m_meterType == MeterTypeTriple)
    {
        for (unsigned i = 0; i < n / 3; ++i)
            AppendStress(3 * unit, 3);
    }
}

void ECMeter::SetImperfectStress(unsigned char numerator, unsigned char denominator)
{
    if (denominator == 0)
        return;
    const unsigned n = numerator;
    const unsigned unit = 1024u / denominator;
    if (n % 3 == 0)
    {
        for (int i = 0; i < 3; ++i)
            AppendStress(n / 3 * unit, n / 3);
    }
    else if (n % 2 == 1)
    {
        // Only 5 and 7 have a pattern; other odd numerators get no stress.
        if (n == 5)
        {
            AppendStress(2 * unit, 2);
            AppendStress(3 * unit, 3);
        }
        else if (n == 7)
        {
            AppendStress(4 * unit, 4);
            AppendStress(3 * unit, 3);
        }
    }
    else
    {
        // The count grows by 2 per halving and does not double, so from 40
        // on the pattern no longer fills the measure. Kept as it is.
        unsigned m = n;
        unsigned c = 0;
        while (m % 2 == 0)
        {
            m /= 2;
            c += 2;
        }
        for (unsigned i = 0; i < c; ++i)
            AppendStress(m * unit, m);
    }
}

void ECMeter::SetCombinedStress(unsigned char numerator, unsigned char denominator)
{
    if (denominator == 0)
        return;
    const unsigned n = numerator;
    const unsigned unit = 1024u / denominator;
    for (unsigned i = 0; i < n / 3; ++i)
        AppendStress(3 * unit, 3);
    // Always written, even for a remainder 0: it counts as a beat.
    AppendStress((n % 3) * unit, n % 3);
}

void ECMeter::SetSingleStress(unsigned char numerator, unsigned char denominator)
{
    if (denominator == 0)
        return;
    AppendStress(1024u / denominator * numerator, numerator);
}

// ---- Pickup role and position ----

void ECMeter::SetPickupRole(unsigned char role)
{
    if (role > 15)
        return;
    m_flags = static_cast<WORD>((m_flags & ~0x0Fu) | role);
}

void ECMeter::SetBarPulseTick(int bar, int pulse, int tick, int resolution)
{
    m_barPulseTick.bar = bar;
    m_barPulseTick.pulse = pulse;
    m_barPulseTick.tick = tick;
    m_barPulseTick.ppq = resolution;
    PositionChanged();
}

void ECMeter::SetBarPulseTick(BPTTime &bpt)
{
    SetBarPulseTick(bpt.bar, bpt.pulse, bpt.tick, bpt.ppq);
}

void ECMeter::PositionChanged()
{
    EventList *parents = GetParents();
    for (POSITION pos = parents ? parents->GetHeadPosition() : nullptr; pos;)
    {
        ECBase *parent = parents->GetNext(pos);
        if (parent && parent->IsKindOf(RUNTIME_CLASS(ECMeterEnv)))
            static_cast<ECMeterEnv *>(parent)->m_bptOrdered = false;
    }
}

// ---- Lengths ----

unsigned short ECMeter::GetPulseTicks(unsigned short resolution)
{
    return AtResolution(m_pulse, resolution);
}

unsigned short ECMeter::GetTicksPerMeasure(unsigned short resolution)
{
    return static_cast<unsigned short>(m_numerator * GetPulseTicks(resolution));
}

float ECMeter::GetMeasureLength()
{
    return GetTicksPerMeasure(256) * kQuarterPerTick;
}

float ECMeter::GetPulse()
{
    return m_pulse * kQuarterPerTick;
}

float ECMeter::GetStress(unsigned short index)
{
    return m_stress.GetAt(index) * kQuarterPerTick;
}

unsigned short ECMeter::GetStressTicks(unsigned short index, unsigned short resolution)
{
    return AtResolution(m_stress.GetAt(index), resolution);
}

unsigned short ECMeter::GetPulsesPerStress(unsigned short index)
{
    return m_pulsesPerStress.GetAt(index);
}

// ---- Beats ----

float ECMeter::GetBeat(unsigned short index)
{
    if (m_meterType <= MeterTypePerfect)
        return GetPulse();
    if (m_meterType == MeterTypeTriple)
        return GetStress(0);
    if (m_meterType <= MeterTypeList)
        return GetStress(index);
    return 0.0f;
}

unsigned short ECMeter::GetBeatTicks(unsigned short index, unsigned short resolution)
{
    if (m_meterType <= MeterTypePerfect)
        return GetPulseTicks(resolution);
    if (m_meterType == MeterTypeTriple)
        return GetStressTicks(0, resolution);
    if (m_meterType <= MeterTypeList)
        return GetStressTicks(index, resolution);
    return 0;
}

unsigned short ECMeter::GetBeatsPerMeasure()
{
    if (m_meterType <= MeterTypePerfect)
        return m_numerator;
    if (m_meterType <= MeterTypeList)
        return m_stressCount;
    return 0;
}

unsigned short ECMeter::GetPulsesPerBeat(unsigned short index)
{
    if (m_meterType <= MeterTypePerfect)
        return 1;
    if (m_meterType == MeterTypeTriple)
        return GetPulsesPerStress(0);
    if (m_meterType <= MeterTypeList)
        return GetPulsesPerStress(index);
    return 0;
}

// ---- Subdivision ----

namespace
{
// The deepest level whose entries can still be a tick long: f = 2 << 15
// exceeds every 16-bit length.
constexpr int kDeepestLevel = 18;

// Fills `out` for one level; `measure`, `part(i)` (stress or beat i of level
// 1), `pulse` and `first` (the first beat) are the lengths in the unit of
// the array, `divide` splits one by f.
template <typename T, typename Part, typename Divide>
void FillSubdivision(ECMeter &meter, int level, CArray<T, T> &out, T measure, Part part, T pulse, Divide divide)
{
    const unsigned char type = meter.GetMeterType();
    if (type > ECMeter::MeterTypeList || level < 0 || level > kDeepestLevel)
        return;
    const bool simple = type <= ECMeter::MeterTypePerfect;
    if (level == 0)
    {
        out.SetSize(1);
        out[0] = measure;
        return;
    }
    if (level == 1)
    {
        const INT_PTR count = simple ? meter.GetStressPulsesPerMeasure() : meter.GetBeatsPerMeasure();
        out.SetSize(count);
        for (INT_PTR i = 0; i < count; ++i)
            out[i] = part(static_cast<unsigned short>(i), simple);
        return;
    }
    if (level == 2)
    {
        // Types 0 to 2 count a beat per pulse: both columns are pulses.
        const INT_PTR count = meter.GetNumerator();
        out.SetSize(count);
        for (INT_PTR i = 0; i < count; ++i)
            out[i] = pulse;
        return;
    }
    const INT_PTR f = INT_PTR(2) << (level - 3);
    const INT_PTR count = (simple ? meter.GetBeatsPerMeasure() : meter.GetNumerator()) * f;
    // The first beat of a simple meter is its pulse.
    const T entry = divide(pulse, f);
    out.SetSize(count);
    for (INT_PTR i = 0; i < count; ++i)
        out[i] = entry;
}
} // namespace

void ECMeter::GetSubdivision(int level, CArray<unsigned short, unsigned short> &out, unsigned short resolution)
{
    FillSubdivision<unsigned short>(
        *this, level, out, GetTicksPerMeasure(resolution),
        [&](unsigned short i, bool simple) {
            return simple ? GetStressTicks(i, resolution) : GetBeatTicks(i, resolution);
        },
        GetPulseTicks(resolution),
        [](unsigned short length, INT_PTR f) { return static_cast<unsigned short>(length / f); });
}

void ECMeter::GetSubdivision(int level, CArray<float, float> &out)
{
    FillSubdivision<float>(
        *this, level, out, GetMeasureLength(),
        [&](unsigned short i, bool simple) { return simple ? GetStress(i) : GetBeat(i); }, GetPulse(),
        [](float length, INT_PTR f) { return length / static_cast<float>(f); });
}

// ---- End meter ----

int ECMeter::CalcEndMeter(ECMeter *main, ECMeter *pickup, CByteArray &numerators, CByteArray &denominators)
{
    if (!main || !pickup)
        return 0;
    const MCFraction pickupLength(pickup->m_numerator, pickup->m_denominator);
    const MCFraction diff = MCFraction(main->m_numerator, main->m_denominator) - pickupLength;
    if (diff.GetNum() <= 0)
        return 0;
    if (diff.GetResult() > 0.25f && pickupLength.GetResult() < 0.25f)
    {
        // A short upbeat against a long remainder: a big regular part on
        // at least quarters, then what is left.
        const unsigned den = main->m_denominator < 4 ? 4u : main->m_denominator;
        MCFraction unit(1, den);
        const int k = static_cast<int>((diff / unit).GetResult());
        unit = unit * k;
        numerators.Add(static_cast<BYTE>(unit.GetNum()));
        denominators.Add(static_cast<BYTE>(unit.GetDen()));
        const MCFraction rest = diff - unit;
        if (rest.GetResult() > 0.0f)
        {
            numerators.Add(static_cast<BYTE>(rest.GetNum()));
            denominators.Add(static_cast<BYTE>(rest.GetDen()));
        }
        return 1;
    }
    numerators.Add(static_cast<BYTE>(diff.GetNum()));
    denominators.Add(static_cast<BYTE>(diff.GetDen()));
    return 1;
}

// ---- Mirrors ----

void ECMeter::AddMirror(ECMirror *mirror)
{
    mirror_links::Add(m_mirrors, mirror, this);
}

void ECMeter::RemoveMirror(ECMirror *mirror)
{
    mirror_links::Remove(m_mirrors, mirror);
}

void ECMeter::RemoveMirrors()
{
    mirror_links::RemoveAll(m_mirrors);
}

// ---- Archive ----

void ECMeter::Serialize(CArchive &ar)
{
    ECEnvPoint::Serialize(ar);
    if (ar.IsStoring())
    {
        ar << m_meterType << m_numerator << m_denominator << m_stressCount << m_pulse << m_flags;
        m_stress.Serialize(ar);
        m_pulsesPerStress.Serialize(ar);
        if (m_meterType > MeterTypeTriple)
        {
            m_compoundNumerator.Serialize(ar);
            m_compoundDenominator.Serialize(ar);
        }
        return;
    }
    ar >> m_meterType >> m_numerator >> m_denominator >> m_stressCount >> m_pulse;
    // Before version 9 the record had no flags: the constructed role stays.
    if (ActiveArchiveVersion() > 8)
        ar >> m_flags;
    m_stress.Serialize(ar);
    m_pulsesPerStress.Serialize(ar);
    m_compoundNumerator.RemoveAll();
    m_compoundDenominator.RemoveAll();
    if (m_meterType > MeterTypeTriple)
    {
        m_compoundNumerator.Serialize(ar);
        m_compoundDenominator.Serialize(ar);
    }
}
