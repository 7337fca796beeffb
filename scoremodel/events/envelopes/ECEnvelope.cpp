#include <scoremodel/events/envelopes/ECEnvelope.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/events/envelopes/ECEnvPoint.h>
#include <scoremodel/events/envelopes/EnvelopeNodes.h>
#include <scoremodel/platform/CArchive.h>
#include <scoremodel/platform/Exceptions.h>

#include <cmath>

IMPLEMENT_SERIAL(ECEnvelope, ECWithTimeChild, VERSIONABLE_SCHEMA | 2)

namespace
{
using envelope_nodes::AsNode;
using envelope_nodes::Next;
using envelope_nodes::Prev;

inline ECEnvPoint *PointOf(POSITION pos)
{
    return envelope_nodes::ItemAt<ECEnvPoint>(pos);
}
// Every child is an ECEnvPoint (AddChild and the loader see to it), so the
// time is read without a virtual call.
inline const MCTime &TimeOf(POSITION pos)
{
    return *PointOf(pos)->ECWithTime::GetTime();
}
inline float Seconds(const MCTime &time)
{
    return time.GetSeconds();
}

// Saturating round to int, so a huge or NaN value never overflows.
int RoundToInt(float value)
{
    if (!(value == value))
        return 0;
    if (value >= 2147483520.0f)
        return 0x7FFFFFFF;
    if (value <= -2147483648.0f)
        return static_cast<int>(0x80000000u);
    return static_cast<int>(std::lround(value));
}
} // namespace

void SetScaleParams(float x1, float x2, float y1, float y2, float &scale, float &offset)
{
    if (x1 == x2)
    {
        scale = 0.0f;
        offset = 0.0f;
        return;
    }
    scale = (y2 - y1) / (x2 - x1);
    offset = y2 - scale * x2;
}

ECEnvelope::ECEnvelope()
{
    m_minDeltaTime = MCTime(0.05f);
    m_minDeltaTime.SetMode(3);
}

ECEnvelope::~ECEnvelope()
{
    DeleteAnchorGroups();
}

ECEnvelope &ECEnvelope::operator=(const ECEnvelope &other)
{
    if (this != &other)
    {
        ECWithTimeChild::operator=(other);
        m_defaultValue = other.m_defaultValue;
        m_lowerLimit = other.m_lowerLimit;
        m_upperLimit = other.m_upperLimit;
        m_minDeltaTime = other.m_minDeltaTime;
        m_name = other.m_name;
        m_comment = other.m_comment;
        m_envFlags = other.m_envFlags;
    }
    return *this;
}

CObject *ECEnvelope::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECEnvelope)))
        *this = *static_cast<ECEnvelope *>(src);
    return this;
}

int ECEnvelope::GetEventId() const
{
    return EVENT_ID_ENVELOPE;
}

int ECEnvelope::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CONDUCTOR_STAFF);
    types.Add(EVENT_ID_STAFF);
    types.Add(EVENT_ID_TRACK);
    types.Add(EVENT_ID_WAVE_TRACK);
    return 1;
}

// ---- Children ----

int ECEnvelope::AddChild(ECBase *child, int)
{
    if (!child || !child->GetTime() || !child->IsKindOf(RUNTIME_CLASS(ECEnvPoint)))
        return 0;
    CSingleLock lock(&m_lock, TRUE);
    MCTime *time = child->GetTime();
    if (*time < MCTime::TimeZero())
        child->SetTime(const_cast<MCTime *>(&MCTime::TimeZero()));
    // Appending in time order is the common case: past the tail no point
    // can share the time, so the walk is skipped.
    // Elsewhere the walk for a point at the same time starts from the
    // nearer end, which finds the same point or none.
    POSITION tail = m_children.GetTailPosition();
    if (tail && !(TimeOf(tail) < *time))
    {
        const float head = Seconds(TimeOf(m_children.GetHeadPosition()));
        if (Seconds(*time) - head <= Seconds(TimeOf(tail)) - Seconds(*time))
        {
            for (POSITION pos = m_children.GetHeadPosition(); pos; pos = Next(pos))
            {
                const MCTime &at = TimeOf(pos);
                if (at == *time)
                    return 0;
                if (at > *time)
                    break;
            }
        }
        else
        {
            for (POSITION pos = tail; pos; pos = Prev(pos))
            {
                const MCTime &at = TimeOf(pos);
                if (at == *time)
                    return 0;
                if (at < *time)
                    break;
            }
        }
    }
    if (!ECWithTimeChild::AddChild(child, 1))
        return 0;
    UpdateChildren();
    return 1;
}

int ECEnvelope::RemoveChild(ECBase *child, int deep)
{
    KeepAlive alive(this); // the children's parent links may hold the last references
    CSingleLock lock(&m_lock, TRUE);
    int result = ECWithTimeChild::RemoveChild(child, deep);
    UpdateChildren();
    return result;
}

int ECEnvelope::RemoveChildren(int deep)
{
    KeepAlive alive(this); // the children's parent links may hold the last references
    CSingleLock lock(&m_lock, TRUE);
    int result = ECWithTimeChild::RemoveChildren(deep);
    DeleteAnchorGroups();
    UpdateChildren();
    return result;
}

void ECEnvelope::UpdateChildren()
{
    CSingleLock lock(&m_lock, TRUE);
    m_pos = m_children.GetHeadPosition();
}

// ---- Point lookup ----

ECEnvPoint *ECEnvelope::GetPointAtIndex(int index)
{
    if (index < 0 || index >= m_children.GetCount())
        return nullptr;
    POSITION pos = m_children.FindIndex(index);
    return pos ? PointOf(pos) : nullptr;
}

ECEnvPoint *ECEnvelope::GetPointBefore(MCTime &time)
{
    // The cursor is read under the lock only: an editor may be moving it.
    CSingleLock lock(&m_lock, TRUE);
    if (!m_pos)
        return nullptr;
    if (TimeOf(m_pos) >= time)
    {
        POSITION prev = Prev(m_pos);
        if (!prev)
        {
            m_pos = m_children.GetHeadPosition();
            return nullptr;
        }
        m_pos = prev;
        if (TimeOf(prev) < time)
            return PointOf(prev);
    }
    else
    {
        POSITION next = Next(m_pos);
        if (!next)
        {
            m_pos = m_children.GetTailPosition();
            return PointOf(m_pos);
        }
        if (TimeOf(next) >= time)
            return PointOf(m_pos);
        m_pos = next;
    }
    return _Search(time, SearchBefore);
}

ECEnvPoint *ECEnvelope::GetPointBeforeEqual(MCTime &time)
{
    CSingleLock lock(&m_lock, TRUE);
    if (!m_pos || !AsNode(m_pos)->data)
        return nullptr;
    if (TimeOf(m_pos) > time)
    {
        POSITION prev = Prev(m_pos);
        if (!prev)
        {
            m_pos = m_children.GetHeadPosition();
            return nullptr;
        }
        m_pos = prev;
        if (TimeOf(prev) <= time)
            return PointOf(prev);
    }
    else
    {
        POSITION next = Next(m_pos);
        if (!next)
        {
            m_pos = m_children.GetTailPosition();
            return PointOf(m_pos);
        }
        if (TimeOf(next) > time)
            return PointOf(m_pos);
        m_pos = next;
    }
    return _Search(time, SearchBeforeEqual);
}

ECEnvPoint *ECEnvelope::GetPointAt(MCTime &time)
{
    ECEnvPoint *point = GetPointAfterEqual(time);
    return point && *point->ECWithTime::GetTime() == time ? point : nullptr;
}

ECEnvPoint *ECEnvelope::GetPointAfterEqual(MCTime &time)
{
    // The cursor is read under the lock only: an editor may be moving it.
    CSingleLock lock(&m_lock, TRUE);
    if (!m_pos)
        return nullptr;
    if (TimeOf(m_pos) >= time)
    {
        POSITION prev = Prev(m_pos);
        if (!prev)
        {
            m_pos = m_children.GetHeadPosition();
            return PointOf(m_pos);
        }
        if (TimeOf(prev) < time)
            return PointOf(m_pos);
        m_pos = prev;
    }
    else
    {
        POSITION next = Next(m_pos);
        if (!next)
        {
            m_pos = m_children.GetTailPosition();
            return nullptr;
        }
        m_pos = next;
        if (TimeOf(next) >= time)
            return PointOf(next);
    }
    return _Search(time, SearchAfterEqual);
}

ECEnvPoint *ECEnvelope::GetPointAfter(MCTime &time)
{
    // The cursor is read under the lock only: an editor may be moving it.
    CSingleLock lock(&m_lock, TRUE);
    if (!m_pos)
        return nullptr;
    if (TimeOf(m_pos) > time)
    {
        POSITION prev = Prev(m_pos);
        if (!prev)
        {
            m_pos = m_children.GetHeadPosition();
            return PointOf(m_pos);
        }
        if (TimeOf(prev) <= time)
            return PointOf(m_pos);
        m_pos = prev;
    }
    else
    {
        POSITION next = Next(m_pos);
        if (!next)
        {
            m_pos = m_children.GetTailPosition();
            return nullptr;
        }
        m_pos = next;
        if (TimeOf(next) > time)
            return PointOf(next);
    }
    return _Search(time, SearchAfter);
}

// ---- The search ----

ECEnvPoint *ECEnvelope::_Search(MCTime &time, int mode)
{
    if (!m_pos)
        return nullptr;
    const MCTime &c = TimeOf(m_pos);
    int forward = 1;
    if (c >= time)
    {
        POSITION head = m_children.GetHeadPosition();
        const MCTime &h = TimeOf(head);
        if ((mode == SearchBefore && time <= h) || (mode == SearchBeforeEqual && time < h))
        {
            m_pos = head;
            return nullptr;
        }
        if ((mode == SearchAfter && time < h) || (mode == SearchAfterEqual && time <= h))
        {
            m_pos = head;
            return PointOf(head);
        }
        if (Seconds(time) - Seconds(h) < Seconds(c) - Seconds(time))
            m_pos = head;
        else
            forward = 0;
    }
    else
    {
        POSITION tail = m_children.GetTailPosition();
        const MCTime &e = TimeOf(tail);
        if ((mode == SearchBefore && time > e) || (mode == SearchBeforeEqual && time >= e))
        {
            m_pos = tail;
            return PointOf(tail);
        }
        if ((mode == SearchAfter && time >= e) || (mode == SearchAfterEqual && time > e))
        {
            m_pos = tail;
            return nullptr;
        }
        if (Seconds(e) - Seconds(time) < Seconds(time) - Seconds(c))
        {
            m_pos = tail;
            forward = 0;
        }
    }
    return _LinearSearch(time, forward, mode);
}

ECEnvPoint *ECEnvelope::_LinearSearch(MCTime &time, int forward, int mode)
{
    if (forward)
        return _LinearSearchForward(time, mode) ? _CompleteSearchForward(mode) : _ResolveSearchForward(mode);
    return _LinearSearchBackward(time, mode) ? _CompleteSearchBackward(mode) : _ResolveSearchBackward(mode);
}

// The scans report a hit as a non-null point; the cursor has then already
// moved one node past it (or is null past an end).
ECEnvPoint *ECEnvelope::_LinearSearchForward(MCTime &time, int mode)
{
    const bool inclusive = mode == SearchBefore || mode == SearchAfterEqual;
    while (m_pos)
    {
        ECEnvPoint *point = PointOf(m_pos);
        const MCTime &at = TimeOf(m_pos);
        m_pos = Next(m_pos);
        if (inclusive ? at >= time : at > time)
            return point;
    }
    return nullptr;
}

ECEnvPoint *ECEnvelope::_LinearSearchBackward(MCTime &time, int mode)
{
    const bool exclusive = mode == SearchBefore || mode == SearchAfterEqual;
    while (m_pos)
    {
        ECEnvPoint *point = PointOf(m_pos);
        const MCTime &at = TimeOf(m_pos);
        m_pos = Prev(m_pos);
        if (exclusive ? at < time : at <= time)
            return point;
    }
    return nullptr;
}

ECEnvPoint *ECEnvelope::_CompleteSearchForward(int mode)
{
    m_pos = m_pos ? Prev(m_pos) : m_children.GetTailPosition();
    if (mode == SearchAfterEqual || mode == SearchAfter)
        return PointOf(m_pos);
    POSITION prev = Prev(m_pos);
    if (!prev)
    {
        m_pos = m_children.GetHeadPosition();
        return nullptr;
    }
    m_pos = prev;
    return PointOf(prev);
}

ECEnvPoint *ECEnvelope::_CompleteSearchBackward(int mode)
{
    m_pos = m_pos ? Next(m_pos) : m_children.GetHeadPosition();
    if (mode == SearchBefore || mode == SearchBeforeEqual)
        return PointOf(m_pos);
    POSITION next = Next(m_pos);
    if (!next)
    {
        m_pos = m_children.GetTailPosition();
        return nullptr;
    }
    m_pos = next;
    return PointOf(next);
}

ECEnvPoint *ECEnvelope::_ResolveSearchForward(int mode)
{
    m_pos = m_children.GetTailPosition();
    return mode == SearchBefore || mode == SearchBeforeEqual ? PointOf(m_pos) : nullptr;
}

ECEnvPoint *ECEnvelope::_ResolveSearchBackward(int mode)
{
    m_pos = m_children.GetHeadPosition();
    return mode == SearchBefore || mode == SearchBeforeEqual ? nullptr : PointOf(m_pos);
}

// ---- Index lookup ----

// Counts from the head to the first point past the target (at or past it
// when inclusive). The cursor ends beside the hit, or on the tail.
int ECEnvelope::_IndexSearchForward(MCTime &time, int inclusive)
{
    int index = 0;
    for (POSITION pos = m_children.GetHeadPosition(); pos; pos = Next(pos), ++index)
    {
        const MCTime &at = TimeOf(pos);
        if (inclusive ? at >= time : at > time)
        {
            m_pos = Next(pos) ? Next(pos) : pos;
            return index;
        }
    }
    m_pos = m_children.GetTailPosition();
    return index;
}

int ECEnvelope::_IndexSearchBackward(MCTime &time, int inclusive)
{
    int index = m_children.GetCount() - 1;
    for (POSITION pos = m_children.GetTailPosition(); pos; pos = Prev(pos), --index)
    {
        const MCTime &at = TimeOf(pos);
        if (inclusive ? at <= time : at < time)
        {
            m_pos = Prev(pos) ? Prev(pos) : pos;
            return index;
        }
    }
    m_pos = m_children.GetHeadPosition();
    return index;
}

int ECEnvelope::GetIndexForPoint(ECEnvPoint *point)
{
    if (!m_pos || m_children.IsEmpty() || !point)
        return -1;
    const float at = Seconds(*point->ECWithTime::GetTime());
    const float first = Seconds(TimeOf(m_children.GetHeadPosition()));
    const float last = Seconds(TimeOf(m_children.GetTailPosition()));
    CSingleLock lock(&m_lock, TRUE);
    if (at - first <= last - at)
    {
        int index = 0;
        for (POSITION pos = m_children.GetHeadPosition(); pos; pos = Next(pos), ++index)
            if (PointOf(pos) == point)
            {
                m_pos = pos;
                return index;
            }
        m_pos = m_children.GetTailPosition();
        return -1;
    }
    int index = m_children.GetCount() - 1;
    for (POSITION pos = m_children.GetTailPosition(); pos; pos = Prev(pos), --index)
        if (PointOf(pos) == point)
        {
            m_pos = pos;
            return index;
        }
    m_pos = m_children.GetHeadPosition();
    return -1;
}

// The four index lookups differ only in their comparisons: `mode` says which
// side of the target the answer lies on and whether a hit counts. Outside the
// range the answer is known at once; inside, the nearer end is scanned from
// (a tie goes to the head).
int ECEnvelope::_IndexLookup(MCTime &time, int mode)
{
    if (!m_pos)
        return -1;
    const MCTime &f = TimeOf(m_children.GetHeadPosition());
    const MCTime &l = TimeOf(m_children.GetTailPosition());
    const bool before = mode == SearchBefore || mode == SearchBeforeEqual;
    // Modes 1 and 4 look for the first point at or past the target.
    const int inclusive = mode == SearchBefore || mode == SearchAfterEqual;
    if (inclusive ? time <= f : time < f)
        return before ? -1 : 0;
    if (inclusive ? time > l : time >= l)
        return before ? m_children.GetCount() - 1 : -1;
    if (Seconds(time) - Seconds(f) <= Seconds(l) - Seconds(time))
        return _IndexSearchForward(time, inclusive) - (before ? 1 : 0);
    return _IndexSearchBackward(time, !inclusive) + (before ? 0 : 1);
}

int ECEnvelope::GetIndexBefore(MCTime &time)
{
    return _IndexLookup(time, SearchBefore);
}

int ECEnvelope::GetIndexBeforeEqual(MCTime &time)
{
    return _IndexLookup(time, SearchBeforeEqual);
}

int ECEnvelope::GetIndexAt(MCTime &)
{
    return -1;
}

int ECEnvelope::GetIndexAfterEqual(MCTime &time)
{
    return _IndexLookup(time, SearchAfterEqual);
}

int ECEnvelope::GetIndexAfter(MCTime &time)
{
    return _IndexLookup(time, SearchAfter);
}

// ---- Ranges ----

int ECEnvelope::_GetPointsInRange(MCTime &from, MCTime &to, EventList &list, int flagMask)
{
    CSingleLock lock(&m_lock, TRUE);
    ECEnvPoint *first = GetPointAfterEqual(from);
    if (!first)
        return 0;
    // GetPointAfterEqual leaves the cursor on the point it gives.
    int added = 0;
    for (POSITION pos = m_pos; pos; pos = Next(pos))
    {
        if (!(TimeOf(pos) < to))
            break;
        ECEnvPoint *point = PointOf(pos);
        if (flagMask && !(point->GetPointFlags() & flagMask))
            continue;
        list.AddTail(point);
        added = 1;
    }
    return added;
}

int ECEnvelope::GetPointsInRange(MCTime &from, MCTime &to, EventList &list)
{
    return _GetPointsInRange(from, to, list, 0);
}

int ECEnvelope::GetAnchorPointsInRange(MCTime &from, MCTime &to, EventList &list)
{
    return _GetPointsInRange(from, to, list, 0x01);
}

int ECEnvelope::GetAnchorHeadPointsInRange(MCTime &from, MCTime &to, EventList &list)
{
    return _GetPointsInRange(from, to, list, 0x02);
}

int ECEnvelope::IsEndPoint(ECEnvPoint *point)
{
    if (m_children.IsEmpty())
        return 0;
    return m_children.GetHead() == point || m_children.GetTail() == point ? 1 : 0;
}

// ---- Anchor groups ----

ECEnvelope::EventList *ECEnvelope::GetAnchorGroup(ECEnvPoint *point)
{
    for (EventList *group : m_anchorGroups)
        for (POSITION pos = group->GetHeadPosition(); pos;)
            if (group->GetNext(pos) == point)
                return group;
    return nullptr;
}

void ECEnvelope::AddAnchorGroup(EventList *group)
{
    if (!group)
        return;
    auto *copy = new EventList(10);
    for (POSITION pos = group->GetHeadPosition(); pos;)
        copy->AddTail(group->GetNext(pos));
    m_anchorGroups.push_back(copy);
}

void ECEnvelope::RemoveAnchorGroup(EventList *group)
{
    for (auto it = m_anchorGroups.begin(); it != m_anchorGroups.end(); ++it)
        if (*it == group)
        {
            m_anchorGroups.erase(it);
            delete group;
            return;
        }
}

void ECEnvelope::DeleteAnchorGroups()
{
    for (EventList *group : m_anchorGroups)
        delete group;
    m_anchorGroups.clear();
}

// ---- Settings ----

void ECEnvelope::SetMinDeltaTime(MCTime &time)
{
    m_minDeltaTime = time;
    if (m_minDeltaTime.GetSeconds() < 0.005f)
        m_minDeltaTime.SetSeconds(0.005f);
}

void ECEnvelope::SetIntValued(int on)
{
    const DWORD bit = (on & 1) ? 2u : 0u;
    if ((m_envFlags & 2u) == bit)
        return;
    m_envFlags = (m_envFlags & ~2u) | bit;
    if (bit)
        m_lastIntValue = RoundToInt(m_lastFloatValue);
    else
        m_lastFloatValue = static_cast<float>(m_lastIntValue);
}

// ---- Values ----

int ECEnvelope::_GetValueEnd(ECEnvPoint *point, MCTime &time, float &value, int clamp)
{
    if (clamp)
    {
        if (value < m_lowerLimit)
            value = m_lowerLimit;
        if (value > m_upperLimit)
            value = m_upperLimit;
    }
    int changed;
    if (IntValued())
    {
        const int rounded = RoundToInt(value);
        changed = rounded != m_lastIntValue;
        m_lastIntValue = rounded;
        value = static_cast<float>(rounded);
    }
    else
    {
        changed = value != m_lastFloatValue;
        m_lastFloatValue = value;
    }
    m_lastValueTime = time;
    if (point)
        m_currentStyle = point->GetStyle();
    return changed;
}

int ECEnvelope::_GetValue(MCTime &time, float &value, int clamp, int hand)
{
    ECEnvPoint *point = GetPointBeforeEqual(time);
    if (!point || (hand != -1 && hand != point->GetHand()))
    {
        value = m_defaultValue;
        return _GetValueEnd(point, time, value, clamp);
    }
    value = point->GetValue();
    const MCTime &at = *point->ECWithTime::GetTime();
    if (point->GetStyle() == 1 && at != time)
    {
        // The point after is the cursor's neighbour when the cursor stayed
        // on `point` (the usual case): the same answer as GetPointAfter,
        // without a second search.
        ECEnvPoint *next = nullptr;
        if (m_pos && PointOf(m_pos) == point)
            next = Next(m_pos) ? PointOf(Next(m_pos)) : nullptr;
        else
            next = GetPointAfter(time);
        if (next)
        {
            const float range = next->GetValue() - value;
            if ((!IntValued() || std::fabs(range) >= 1.0f) && range != 0.0f)
            {
                const float span = Seconds(*next->ECWithTime::GetTime()) - Seconds(at);
                value = value + (Seconds(time) - Seconds(at)) * (range / span);
            }
        }
    }
    return _GetValueEnd(point, time, value, clamp);
}

int ECEnvelope::GetValue(MCTime &time, float &value, int clamp, int hand)
{
    CSingleLock lock(&m_lock, TRUE);
    return _GetValue(time, value, clamp, hand);
}

int ECEnvelope::TryGetValue(MCTime &time, float &value, int clamp, int hand)
{
    if (!m_lock.TryLock())
    {
        value = IntValued() ? static_cast<float>(m_lastIntValue) : m_lastFloatValue;
        return -1;
    }
    int changed = _GetValue(time, value, clamp, hand);
    m_lock.Unlock();
    return changed;
}

int ECEnvelope::GetValue(ECEnvPoint *point, float &value, int clamp)
{
    if (!point)
        return 0;
    value = point->GetValue();
    return _GetValueEnd(point, *point->ECWithTime::GetTime(), value, clamp);
}

void ECEnvelope::_AddRealValue(ECEnvPoint *point, int clamp, MCTime &time, EValueList &list)
{
    float value = 0.0f;
    if (GetValue(point, value, clamp))
        list.AddTail(new EVALUE{time, value});
}

void ECEnvelope::_AddInterpolatedValue(int clamp, MCTime &time, EValueList &list)
{
    float value = 0.0f;
    if (_GetValue(time, value, clamp, -1))
        list.AddTail(new EVALUE{time, value});
}

int ECEnvelope::GetValues(MCTime &from, MCTime &to, float density, EValueList &list, int clamp)
{
    CSingleLock lock(&m_lock, TRUE);
    float step = m_minDeltaTime.GetMode() == 2 ? 0.0f : m_minDeltaTime.GetSeconds() * density;
    if (!(step > 0.002f))
        step = 0.002f;
    EventList points;
    GetPointsInRange(from, to, points);
    if (m_lastEndTime != from && m_lastValueTime != from)
    {
        // Playback jumped: a held value in force at `from` is delivered
        // there; a ramp in progress is sampled anyway.
        m_lastValueTime = from;
        if (points.IsEmpty() || *points.GetHead()->GetTime() > from)
        {
            if (ECEnvPoint *before = GetPointBefore(from))
            {
                m_currentStyle = before->GetStyle();
                if (m_currentStyle == 0)
                    _AddRealValue(before, clamp, from, list);
            }
        }
    }
    MCTime t = m_lastValueTime;
    while (t < to)
    {
        if (m_currentStyle == 0)
        {
            if (points.IsEmpty())
            {
                t = to;
                break;
            }
            auto *point = static_cast<ECEnvPoint *>(points.RemoveHead());
            t = *point->ECWithTime::GetTime();
            _AddRealValue(point, clamp, t, list);
            continue;
        }
        const float before = t.GetSeconds();
        t.SetSeconds(before + step);
        if (!(t.GetSeconds() > before))
            break; // the step no longer moves a float this large
        if (!points.IsEmpty() && t >= *points.GetHead()->GetTime())
        {
            auto *point = static_cast<ECEnvPoint *>(points.RemoveHead());
            t = *point->ECWithTime::GetTime();
            _AddRealValue(point, clamp, t, list);
        }
        else
            _AddInterpolatedValue(clamp, t, list);
    }
    m_lastEndTime = to;
    return list.IsEmpty() ? 0 : 1;
}

void ECEnvelope::Reset()
{
    m_lastFloatValue = 3.4028235e38f;
    m_lastIntValue = 0x7FFFFFFF;
    m_lastValueTime = MCTime::TimeZero();
    m_lastEndTime = MCTime::TimeZero();
}

// ---- Maps of one point class ----

int ECEnvelope::AddChildOfKind(ECBase *child, int sorted, CRuntimeClass *kind)
{
    if (!child || !child->IsKindOf(kind))
        return 0;
    CSingleLock lock(&m_lock, TRUE);
    if (!ECEnvelope::AddChild(child, sorted))
        return 0;
    child->SetVoiceTrack(GetVoiceTrack());
    return 1;
}

void ECEnvelope::CheckChildrenOfKind(CRuntimeClass *kind, const char *what)
{
    for (POSITION pos = m_children.GetHeadPosition(); pos; pos = Next(pos))
        if (!envelope_nodes::ItemAt<ECBase>(pos)->IsKindOf(kind))
            throw CArchiveException(CArchiveException::genericException, what);
}

// ---- Archive ----

void ECEnvelope::Serialize(CArchive &ar)
{
    ECWithTimeChild::Serialize(ar);
    if (ar.IsStoring())
    {
        ar << m_defaultValue << m_lowerLimit << m_upperLimit;
        ar << m_name << m_comment;
        ar << m_envFlags;
        m_minDeltaTime.Serialize(ar, -1);
        return;
    }
    ar >> m_defaultValue >> m_lowerLimit >> m_upperLimit;
    ar >> m_name >> m_comment;
    ar >> m_envFlags;
    m_minDeltaTime.Serialize(ar, ActiveArchiveVersion());
    for (POSITION pos = m_children.GetHeadPosition(); pos; pos = Next(pos))
        if (!static_cast<ECBase *>(AsNode(pos)->data)->IsKindOf(RUNTIME_CLASS(ECEnvPoint)))
            throw CArchiveException(CArchiveException::genericException, "an envelope child that is not a point");
    for (POSITION pos = m_children.GetHeadPosition(); pos; pos = Next(pos))
        if (TimeOf(pos) < MCTime::TimeZero())
            PointOf(pos)->SetTime(const_cast<MCTime *>(&MCTime::TimeZero()));
    m_children.Sort();
    m_pos = m_children.GetHeadPosition();
}
