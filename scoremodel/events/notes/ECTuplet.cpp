#include <scoremodel/events/notes/ECTuplet.h>

#include <scoremodel/events/signatures/ECMeter.h>
#include <scoremodel/events/structure/ECMeasure.h>
#include <scoremodel/platform/CArchive.h>

#include <cmath>

IMPLEMENT_SERIAL(ECTuplet, ECWithTimeChild, VERSIONABLE_SCHEMA | 2)

namespace
{
// A count converted for a meter's byte arrays; out-of-range values saturate
// instead of wrapping through an undefined conversion.
BYTE ToByte(float value)
{
    if (!(value > 0.0f))
        return 0;
    return value >= 255.0f ? 255 : static_cast<BYTE>(value);
}

// The subdivision level of `meter` in quarter notes, empty for a type the
// meter has no rule for.
CArray<float, float> Level(ECMeter *meter, int level)
{
    CArray<float, float> entries;
    meter->GetSubdivision(level, entries);
    return entries;
}

long Ticks(float quarters)
{
    return MCTime(quarters).GetTicks(MCTime::GlobalPPQ);
}
} // namespace

ECTuplet::ECTuplet()
{
    SetSpareByte(3);
}

ECTuplet::ECTuplet(BYTE irregular, BYTE normal, BYTE units) : m_irregular(irregular), m_normal(normal)
{
    SetSpareByte(units);
}

ECTuplet::~ECTuplet() = default;

ECTuplet &ECTuplet::operator=(const ECTuplet &other)
{
    if (this != &other)
    {
        ECWithTimeChild::operator=(other);
        SetTuplet(other.m_irregular, other.m_normal, other.GetUnits());
    }
    return *this;
}

int ECTuplet::operator==(const ECTuplet &other) const
{
    return ECWithTimeChild::operator==(other) && m_irregular == other.m_irregular && m_normal == other.m_normal &&
           GetUnits() == other.GetUnits();
}

CObject *ECTuplet::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECTuplet)))
        *this = *static_cast<ECTuplet *>(src);
    return this;
}

int ECTuplet::GetEventId() const
{
    return EVENT_ID_TUPLET;
}

int ECTuplet::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_MEASURE);
    return 1;
}

void ECTuplet::SetTuplet(BYTE irregular, BYTE normal, BYTE units)
{
    m_irregular = irregular;
    m_normal = normal;
    SetSpareByte(units);
}

// ---- Ratio arithmetic ----

MCTime ECTuplet::GetUnitsAsTime(int units)
{
    static const float kLengths[] = {4.0f, 2.0f, 1.0f, 0.5f, 0.25f, 0.125f, 0.0625f, 0.03125f};
    if (units < 0 || units > 7)
        return MCTime(0.0f);
    return MCTime(kLengths[units]);
}

void ECTuplet::GetEquivalentTuplet(int irregular, int normal, BYTE units, int &outIrregular, int &outNormal,
                                   BYTE &outUnits)
{
    auto ticks = static_cast<unsigned short>(GetUnitsAsTime(units).GetTicks(MCTime::GlobalPPQ));
    // Doubling a count of 0 (or below) never reaches the other: such a ratio
    // is left as it is.
    if (irregular > 0 && normal > 0)
    {
        if (irregular < 2 * normal)
        {
            while (2 * irregular <= normal)
            {
                irregular *= 2;
                ticks = static_cast<unsigned short>(ticks * 2);
            }
        }
        else
        {
            while (2 * normal <= irregular)
            {
                normal *= 2;
                ticks = static_cast<unsigned short>(ticks / 2);
            }
        }
    }
    outIrregular = irregular;
    outNormal = normal;
    MCTime length;
    length.SetTicks(static_cast<float>(ticks), MCTime::GlobalPPQ);
    static const float kCoded[] = {4.0f, 2.0f, 1.0f, 0.5f, 0.25f, 0.125f, 0.0625f};
    outUnits = 255;
    for (BYTE code = 0; code < sizeof(kCoded) / sizeof(kCoded[0]); ++code)
        if (length.GetSeconds() == kCoded[code])
            outUnits = code;
}

int ECTuplet::CalcIrregularUnits(int irregular, int normal, BYTE units)
{
    int outIrregular = 0, outNormal = 0;
    BYTE outUnits = 0;
    GetEquivalentTuplet(irregular, normal, units, outIrregular, outNormal, outUnits);
    return outUnits;
}

int ECTuplet::GetIrregularUnits()
{
    return CalcIrregularUnits(m_irregular, m_normal, GetUnits());
}

MCTime ECTuplet::ScaleDuration(MCTime *duration)
{
    if (m_irregular == 0 || !duration)
        return MCTime::TimeNull();
    int irregular = 0, normal = 0;
    BYTE units = 0;
    GetEquivalentTuplet(m_irregular, m_normal, GetUnits(), irregular, normal, units);
    return MCTime(duration->GetSeconds() * static_cast<float>(normal) / static_cast<float>(irregular));
}

int ECTuplet::GetAdjustedDenominator()
{
    const float unit = GetUnitsAsTime(GetUnits()).GetSeconds();
    if (unit == 0.0f)
        return 4;
    auto result = static_cast<int>(4.0f / unit);
    int irregular = m_irregular, normal = m_normal;
    if (irregular == 0 || normal == 0) // no octave to reach, as in GetEquivalentTuplet
        return result;
    if (2 * normal <= irregular)
    {
        while (2 * normal <= irregular)
        {
            normal *= 2;
            result *= 2;
        }
    }
    else
    {
        while (2 * irregular <= normal)
        {
            irregular *= 2;
            result /= 2;
        }
    }
    return result;
}

// ---- Borrowed meters ----

int ECTuplet::FindFit(ECMeter *meter, float length, int &level, int &index, int mode)
{
    level = index = -1;
    if (!meter)
        return 0;
    auto match = [&](int l, int i) {
        level = l;
        index = i;
        return 1;
    };
    if (mode == 0 || mode == 1)
    {
        for (int l = 0; l <= 3; ++l)
        {
            CArray<float, float> entries = Level(meter, l);
            const int n = static_cast<int>(entries.GetSize());
            if (mode == 0)
            {
                int i = 0;
                while (i < n && entries[i] == length)
                    ++i;
                if (i == n)
                    return match(l, i);
            }
            else
            {
                for (int i = 0; i < n; ++i)
                    if (entries[i] == length)
                        return match(l, i);
            }
        }
        return 0;
    }
    for (int l = 3; l >= 0; --l)
    {
        CArray<float, float> entries = Level(meter, l);
        for (int i = 0; i < static_cast<int>(entries.GetSize()); ++i)
            if (entries[i] > length)
                return match(l, i);
    }
    return 0;
}

int ECTuplet::FitInside(ECMeter *meter, CByteArray &numerators, CByteArray &denominators, float unit,
                        float remaining, int &index, int insert)
{
    const float step = static_cast<float>(m_normal) * unit;
    const BYTE denominator = ToByte(static_cast<float>(GetAdjustedDenominator()));
    int position = index;
    auto write = [&](BYTE numerator, BYTE denom) {
        if (insert == 1)
        {
            numerators.InsertAt(position, numerator);
            denominators.InsertAt(position, denom);
        }
        else
        {
            numerators.SetAtGrow(position, numerator);
            denominators.SetAtGrow(position, denom);
        }
        ++position;
    };
    do
    {
        write(m_irregular, denominator);
        remaining -= step;
    } while (step > 0.0f && step <= remaining); // a step of 0 would never use the room up
    // What is left becomes plain beats; an overrun (a negative rest) has
    // nothing left to fill.
    float pulse = meter ? meter->GetPulse() : 0.0f;
    if (remaining > 0.0f && pulse > 0.0f)
    {
        while (std::fmod(remaining, pulse) != 0.0f && pulse > 0.03125f)
            pulse /= 2.0f;
        write(ToByte(remaining / pulse), ToByte(4.0f / pulse));
    }
    if (insert == 1)
        index = position;
    return 1;
}

int ECTuplet::SetupBorrowedMeter(ECMeter *meter, ECMeter *borrowed)
{
    if (!meter || !borrowed)
        return 0;
    const float unit = GetUnitsAsTime(GetUnits()).GetSeconds();
    if (unit == 0.0f)
        return 0;
    const float target = static_cast<float>(m_normal) * unit;
    CByteArray numerators, denominators;
    int level = -1, index = -1;
    if (FindFit(meter, target, level, index, 0))
    {
        const auto denominator = ToByte(static_cast<float>(GetAdjustedDenominator()));
        for (INT_PTR i = Level(meter, level).GetSize(); i > 0; --i)
        {
            numerators.Add(m_irregular);
            denominators.Add(denominator);
        }
    }
    else if (FindFit(meter, target, level, index, 1))
    {
        CArray<float, float> entries = Level(meter, level);
        const float pulse = meter->GetPulse();
        int position = 0;
        for (INT_PTR i = 0; i < entries.GetSize(); ++i)
        {
            const float entry = entries[i];
            if (entry == target)
            {
                numerators.Add(m_irregular);
                denominators.Add(ToByte(static_cast<float>(GetAdjustedDenominator())));
                ++position;
            }
            else if (entry < target)
            {
                numerators.Add(pulse > 0.0f ? ToByte(entry / pulse) : 0);
                denominators.Add(pulse > 0.0f ? ToByte(4.0f / pulse) : 0);
                ++position;
            }
            else
            {
                FitInside(meter, numerators, denominators, unit, entry, position, 1);
            }
        }
    }
    else if (FindFit(meter, target, level, index, 2))
    {
        int position = 0;
        FitInside(meter, numerators, denominators, unit, meter->GetMeasureLength(), position, 1);
    }
    else
    {
        return 0;
    }
    return borrowed->SetMeter(numerators, denominators, 1);
}

int ECTuplet::GetTupletRange(ECMeasure *measure, ECMeter *meter, MCTime &start, MCTime &end, int flag)
{
    if (!measure || !meter)
        return 0;
    MCTime time = *GetTime();
    if (time == MCTime::TimeNull())
    {
        for (POSITION pos = m_children.GetHeadPosition(); pos;)
        {
            ECBase *child = m_children.GetNext(pos);
            MCTime *childTime = child ? child->GetTime() : nullptr;
            if (childTime && !(*childTime == MCTime::TimeNull()))
            {
                time = *childTime;
                break;
            }
        }
        if (time == MCTime::TimeNull())
            return 0;
    }
    float relative = time.GetSeconds() - measure->GetTime()->GetSeconds();
    if (relative < 0.0f)
        relative = 0.0f;

    ECMeter *borrowed = new ECMeter;
    borrowed->Ref();
    struct Release
    {
        ECMeter *meter;
        ~Release() { meter->Unref(1); }
    } release{borrowed};
    if (!SetupBorrowedMeter(meter, borrowed))
        return 0;

    const float unit = GetUnitsAsTime(GetUnits()).GetSeconds();
    float written = static_cast<float>(m_irregular) * unit;
    const float real = static_cast<float>(m_normal) * unit;
    int irregular = m_irregular, normal = m_normal;
    if (irregular > 0 && normal > 0)
    {
        if (2 * normal <= irregular)
        {
            while (2 * normal <= irregular)
            {
                normal *= 2;
                written /= 2.0f;
            }
        }
        else
        {
            while (2 * irregular <= normal)
            {
                irregular *= 2;
                written *= 2.0f;
            }
        }
    }
    if (written == 0.0f)
        return 0;

    // The walk: each beat at its sounding length (a tuplet beat scaled by
    // normal over irregular) beside its written length, until the beat that
    // sounds at the tuplet's time.
    CArray<float, float> entries = Level(borrowed, 1);
    const long relativeTicks = Ticks(relative);
    const long writtenTicks = Ticks(written);
    float scaled = 0.0f, plain = 0.0f;
    for (INT_PTR i = 0; i < entries.GetSize(); ++i)
    {
        const float entry = entries[i];
        const auto k = static_cast<unsigned short>(i);
        const bool tupletBeat = borrowed->GetPulsesPerStress(k) == m_irregular && Ticks(borrowed->GetBeat(k)) == writtenTicks;
        const float sounding =
            tupletBeat ? entry * static_cast<float>(m_normal) / static_cast<float>(m_irregular) : entry;
        if (relativeTicks < Ticks(scaled + sounding))
            break;
        scaled += sounding;
        plain += entry;
    }
    if (flag == 1)
    {
        start = MCTime(plain);
        end = MCTime(plain + written);
    }
    else
    {
        start = MCTime(scaled);
        end = MCTime(scaled + real);
    }
    return 1;
}

int ECTuplet::IsValid(ECMeasure *measure, ECMeter *meter)
{
    MCTime start, end;
    if (GetIrregularUnits() == -1 || !GetTupletRange(measure, meter, start, end, 0))
        return 2;
    const float measureTime = measure->GetTime()->GetSeconds();
    return end.GetSeconds() + measureTime > measureTime + meter->GetMeasureLength() ? 1 : 0;
}

// ---- Tree ----

int ECTuplet::RemoveFromParents()
{
    KeepAlive self(this);
    if (ECBase *measure = GetAncestor(EVENT_ID_MEASURE, -1))
    {
        // AddChild passes over a child the measure holds already.
        for (POSITION pos = m_children.GetHeadPosition(); pos;)
            if (ECBase *child = m_children.GetNext(pos))
                measure->AddChild(child, 1);
        ECWithChild::RemoveChildren(0);
    }
    return ECWithTimeChild::RemoveFromParents();
}

void ECTuplet::Serialize(CArchive &ar)
{
    ECWithTimeChild::Serialize(ar);
    if (ar.IsStoring())
    {
        ar << m_irregular << m_normal << GetUnits();
        return;
    }
    ar >> m_irregular >> m_normal;
    BYTE units = 3;
    if (ar.GetObjectSchema() >= 2)
        ar >> units;
    SetSpareByte(units);
}
