#include <scoremodel/events/envelopes/ECTempoEnv.h>

#include <scoremodel/events/envelopes/ECTempo.h>
#include <scoremodel/events/envelopes/EnvelopeNodes.h>
#include <scoremodel/platform/CArchive.h>
#include <scoremodel/platform/Exceptions.h>

#include <cmath>

IMPLEMENT_SERIAL(ECTempoEnv, ECEnvelope, VERSIONABLE_SCHEMA | 2)

namespace
{
using envelope_nodes::Next;
using envelope_nodes::Prev;

inline ECTempo *TempoOf(POSITION pos)
{
    return envelope_nodes::ItemAt<ECTempo>(pos);
}
inline double Beat(ECTempo *tempo)
{
    return tempo->ECWithTime::GetTime()->GetSeconds();
}
inline double Clock(ECTempo *tempo)
{
    return tempo->GetClockTime().GetSeconds();
}

// Seconds from the point `p` to `x` beats past it.
double ClockAfter(ECTempo *p, ECTempo *n, double x)
{
    const double r = p->GetRate();
    if (n && p->GetStyle() != 0)
    {
        const double a = (n->GetRate() - r) / (Beat(n) - Beat(p));
        if (a != 0.0 && std::isfinite(a))
            return (std::sqrt(2.0 * a * x + r * r) - r) / a;
    }
    return p->GetSpeed() * x;
}

// Beats from the point `p` to `y` seconds past it.
double BeatsAfter(ECTempo *p, ECTempo *n, double y)
{
    const double r = p->GetRate();
    if (n && p->GetStyle() != 0)
    {
        const double a = (n->GetRate() - r) / (Beat(n) - Beat(p));
        if (a != 0.0 && std::isfinite(a))
            return y * r + y * y * a * 0.5;
    }
    return y / p->GetSpeed();
}
} // namespace

ECTempoEnv::ECTempoEnv()
{
    SetDefaultValue(100.0f);
    SetLimits(20.0f, 400.0f);
    SetIntValued(0);
}

ECTempoEnv::~ECTempoEnv() = default;

CObject *ECTempoEnv::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECTempoEnv)))
        *this = *static_cast<ECTempoEnv *>(src);
    return this;
}

int ECTempoEnv::GetEventId() const
{
    return EVENT_ID_TEMPO_ENV;
}

int ECTempoEnv::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CONDUCTOR_STAFF);
    return 1;
}

int ECTempoEnv::AddChild(ECBase *child, int sorted)
{
    return AddChildOfKind(child, sorted, RUNTIME_CLASS(ECTempo));
}

void ECTempoEnv::UpdateChildren()
{
    CSingleLock lock(&m_lock, TRUE);
    ECEnvelope::UpdateChildren();
    m_clockPos = m_children.GetHeadPosition();
    RecalculateClockTimes();
}

void ECTempoEnv::RecalculateClockTimes()
{
    CSingleLock lock(&m_lock, TRUE);
    // Pauses first: their tempo follows from the points before them.
    for (POSITION pos = m_children.GetHeadPosition(); pos; pos = Next(pos))
    {
        ECTempo *tempo = TempoOf(pos);
        if (!ECTempo::IsPauseTempo(tempo->GetTempoType()))
            continue;
        float value = GetDefaultValue();
        if (!tempo->IsAnchorHead())
        {
            EventList *group = GetAnchorGroup(tempo);
            ECBase *head = group && !group->IsEmpty() ? group->GetHead() : nullptr;
            if (head && head != tempo)
            {
                POSITION at = m_children.Find(head);
                if (at && Prev(at))
                    value = TempoOf(Prev(at))->GetValue();
            }
            tempo->SetValue(value);
        }
        else
        {
            if (Prev(pos))
                value = TempoOf(Prev(pos))->GetValue();
            tempo->SetValue(value / std::pow(2.0f, tempo->GetPausePercent() / 100.0f));
        }
    }
    m_clockMonotonic = true;
    ECTempo *previous = nullptr;
    for (POSITION pos = m_children.GetHeadPosition(); pos; pos = Next(pos))
    {
        ECTempo *tempo = TempoOf(pos);
        MCTime clock(0.0f);
        clock.SetMode(3);
        if (!previous)
        {
            if (*tempo->ECWithTime::GetTime() > MCTime::TimeZero())
                tempo->SetTime(const_cast<MCTime *>(&MCTime::TimeZero()));
        }
        else
        {
            const double d = Beat(tempo) - Beat(previous);
            double seconds;
            if (previous->GetStyle() == 0)
                seconds = previous->GetSpeed() * d;
            else
            {
                const double r = previous->GetRate();
                const double a = (tempo->GetRate() - r) / (d == 0.0 ? 1.0 : d);
                seconds = a == 0.0 ? previous->GetSpeed() * d : (std::sqrt(2.0 * a * d + r * r) - r) / a;
            }
            clock.SetSeconds(static_cast<float>(Clock(previous) + seconds));
            if (!(clock.GetSeconds() >= previous->GetClockTime().GetSeconds()))
                m_clockMonotonic = false;
        }
        tempo->SetClockTime(clock);
        previous = tempo;
    }
    m_clockPos = m_children.GetHeadPosition();
}

void ECTempoEnv::GetClockTime(MCTime &time)
{
    if (time.GetMode() != 0)
        return;
    CSingleLock lock(&m_lock, TRUE);
    auto *p = static_cast<ECTempo *>(GetPointBeforeEqual(time));
    if (!p)
    {
        time.SetMode(3);
        return;
    }
    if (*p->ECWithTime::GetTime() == time)
    {
        time.SetSeconds(p->GetClockTime().GetSeconds());
        time.SetMode(3);
        return;
    }
    auto *n = static_cast<ECTempo *>(GetPointAfter(time));
    const double x = static_cast<double>(time.GetSeconds()) - Beat(p);
    time.SetSeconds(static_cast<float>(Clock(p) + ClockAfter(p, n, x)));
    time.SetMode(3);
}

void ECTempoEnv::GetNormalizedTime(MCTime &time)
{
    if (time.GetMode() != 3)
        return;
    CSingleLock lock(&m_lock, TRUE);
    const float target = time.GetSeconds();
    POSITION at = nullptr;
    if (m_clockMonotonic && m_clockPos)
    {
        // Clock times rise along the list: step from the last answer.
        at = m_clockPos;
        while (at && !(TempoOf(at)->GetClockTime().GetSeconds() <= target))
            at = Prev(at);
        if (at)
            while (Next(at) && TempoOf(Next(at))->GetClockTime().GetSeconds() <= target)
                at = Next(at);
    }
    else
    {
        for (at = m_children.GetTailPosition(); at; at = Prev(at))
            if (TempoOf(at)->GetClockTime().GetSeconds() <= target)
                break;
    }
    if (!at)
    {
        time.SetMode(0);
        return;
    }
    m_clockPos = at;
    ECTempo *p = TempoOf(at);
    if (Clock(p) == target)
    {
        time.SetSeconds(p->ECWithTime::GetTime()->GetSeconds());
        time.SetMode(0);
        return;
    }
    ECTempo *n = nullptr;
    for (POSITION pos = Prev(at) ? Prev(at) : m_children.GetHeadPosition(); pos; pos = Next(pos))
        if (TempoOf(pos)->GetClockTime().GetSeconds() > target)
        {
            n = TempoOf(pos);
            break;
        }
    const double y = static_cast<double>(target) - Clock(p);
    time.SetSeconds(static_cast<float>(Beat(p) + BeatsAfter(p, n, y)));
    time.SetMode(0);
}

void ECTempoEnv::Serialize(CArchive &ar)
{
    ECEnvelope::Serialize(ar);
    if (ar.IsStoring())
        return;
    CheckChildrenOfKind(RUNTIME_CLASS(ECTempo), "a tempo map child that is not a tempo");
    RecalculateClockTimes();
}
