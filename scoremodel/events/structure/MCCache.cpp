#include <scoremodel/events/structure/MCCache.h>

MCCache::MCCache() = default;

MCCache::~MCCache()
{
    DeleteCache();
}

void MCCache::SetSize(int size)
{
    if (size < 1)
        return;
    for (POSITION pos = m_points.GetHeadPosition(); pos;)
        static_cast<CachePoint *>(m_points.GetNext(pos))->objects.SetSize(size);
    m_nSize = size;
}

CachePoint *MCCache::NewPoint(const MCTime &time, const CachePoint *copyFrom)
{
    auto *point = new CachePoint;
    point->time = time;
    point->objects.SetSize(m_nSize);
    if (copyFrom)
        for (int i = 0; i < m_nSize; ++i)
            point->objects[i] = copyFrom->objects[i];
    return point;
}

void MCCache::FreePoint(CachePoint *point)
{
    if (point->aux)
        DeleteAuxPointer(point->aux);
    delete point;
}

void MCCache::DeleteAuxPointer(void *)
{
}

int MCCache::SearchCondition(MCTime &time, CachePoint *point, POSITION)
{
    return time >= point->time;
}

CachePoint *MCCache::GetCachePointForTime(MCTime &time)
{
    if (m_points.IsEmpty())
    {
        m_pCurrent = NewPoint(MCTime(0.0f), nullptr);
        m_currentPos = m_points.AddHead(m_pCurrent);
        return m_pCurrent;
    }
    if (time <= MCTime(0.0f) || !m_currentPos)
    {
        m_currentPos = m_points.GetHeadPosition();
        m_pCurrent = static_cast<CachePoint *>(m_points.GetAt(m_currentPos));
        if (time <= MCTime(0.0f))
            return m_pCurrent;
    }
    if (SearchCondition(time, m_pCurrent, m_currentPos))
    {
        for (POSITION next = m_currentPos; m_points.GetNext(next), next;)
        {
            auto *point = static_cast<CachePoint *>(m_points.GetAt(next));
            if (!SearchCondition(time, point, next))
                break;
            m_currentPos = next;
            m_pCurrent = point;
        }
        return m_pCurrent;
    }
    // Backward; the first point (0.0) satisfies any time above zero, and it
    // stays the answer should a derived condition refuse every point.
    for (POSITION prev = m_currentPos; m_points.GetPrev(prev), prev;)
    {
        m_currentPos = prev;
        m_pCurrent = static_cast<CachePoint *>(m_points.GetAt(prev));
        if (SearchCondition(time, m_pCurrent, prev))
            break;
    }
    return m_pCurrent;
}

CachePoint *MCCache::GetCachePointBeforeTime(MCTime &time)
{
    CachePoint *point = GetCachePointForTime(time);
    if (point->time != time)
        return point;
    POSITION prev = m_currentPos;
    m_points.GetPrev(prev);
    return prev ? static_cast<CachePoint *>(m_points.GetAt(prev)) : point;
}

void MCCache::UpdateListPointers(void *old, int list)
{
    void *now = m_pCurrent->objects[list];
    POSITION pos = m_currentPos;
    m_points.GetNext(pos);
    while (pos)
    {
        auto *point = static_cast<CachePoint *>(m_points.GetNext(pos));
        if (point->objects[list] != old)
            break;
        point->objects[list] = now;
    }
}

int MCCache::CacheObject(void *object, MCTime &time, int list)
{
    if (time < MCTime::TimeZero() || !ListInRange(list))
        return 0;
    CachePoint *point = GetCachePointForTime(time);
    void *old = point->objects[list];
    if (point->time != time)
    {
        CachePoint *added = NewPoint(time, point);
        POSITION pos = m_points.InsertAfter(m_currentPos, added);
        if (!pos)
        {
            FreePoint(added);
            return 0;
        }
        m_currentPos = pos;
        m_pCurrent = added;
    }
    else if (old == object)
        return 1;
    m_pCurrent->objects[list] = object;
    UpdateListPointers(old, list);
    return 1;
}

int MCCache::UncacheObject(void *object, MCTime &time, int list)
{
    if (time < MCTime::TimeZero() || !ListInRange(list) || m_points.IsEmpty())
        return 0;
    CachePoint *point = GetCachePointForTime(time);
    if (point->time != time || point->objects[list] != object)
        return 0;
    POSITION prevPos = m_currentPos;
    m_points.GetPrev(prevPos);
    auto *previous = prevPos ? static_cast<CachePoint *>(m_points.GetAt(prevPos)) : nullptr;
    point->objects[list] = previous ? previous->objects[list] : nullptr;
    UpdateListPointers(object, list);
    if (!previous)
        return 1;
    for (int i = 0; i < m_nSize; ++i)
        if (point->objects[i] != previous->objects[i])
            return 1;
    // Nothing changes here any more: the point goes, and the cursor falls
    // back to the point before, which answers for the same times.
    m_points.RemoveAt(m_currentPos);
    FreePoint(point);
    m_currentPos = prevPos;
    m_pCurrent = previous;
    return 1;
}

int MCCache::ObjectIsCached(void *object, int list)
{
    if (list != -1 && !ListInRange(list))
        return 0;
    for (POSITION pos = m_points.GetHeadPosition(); pos;)
    {
        auto *point = static_cast<CachePoint *>(m_points.GetNext(pos));
        for (int i = 0; i < m_nSize; ++i)
            if ((list == -1 || i == list) && point->objects[i] == object)
                return 1;
    }
    return 0;
}

void *MCCache::GetObjectForTime(MCTime &time, int list)
{
    if (time < MCTime(0.0f) || !ListInRange(list))
        return nullptr;
    return GetCachePointForTime(time)->objects[list];
}

void *MCCache::GetObjectBeforeTime(MCTime &time, int list)
{
    if (time < MCTime(0.0f) || !ListInRange(list))
        return nullptr;
    return GetCachePointBeforeTime(time)->objects[list];
}

void MCCache::GetObjectScope(void *object, MCTime &time, int list, MCTime &start, MCTime &end)
{
    start = MCTime::TimeNull();
    end = MCTime::TimeNull();
    if (!object || time < MCTime(0.0f) || !ListInRange(list))
        return;
    CachePoint *point = GetCachePointForTime(time);
    if (point->objects[list] != object)
        return;
    start = point->time;
    POSITION pos = m_currentPos;
    for (m_points.GetPrev(pos); pos;)
    {
        auto *before = static_cast<CachePoint *>(m_points.GetPrev(pos));
        if (before->objects[list] != object)
            break;
        start = before->time;
    }
    end = MCTime::TimeMax();
    pos = m_currentPos;
    for (m_points.GetNext(pos); pos;)
    {
        auto *after = static_cast<CachePoint *>(m_points.GetNext(pos));
        if (after->objects[list] != object)
        {
            end = after->time;
            break;
        }
    }
}

void MCCache::DeleteCache()
{
    while (!m_points.IsEmpty())
        FreePoint(static_cast<CachePoint *>(m_points.RemoveTail()));
    m_pCurrent = nullptr;
    m_currentPos = nullptr;
}

void MCCache::DeleteCacheAfter(MCTime &time)
{
    while (!m_points.IsEmpty())
    {
        auto *last = static_cast<CachePoint *>(m_points.GetTail());
        if (last->time <= time)
            break;
        if (last == m_pCurrent)
        {
            m_pCurrent = nullptr;
            m_currentPos = nullptr;
        }
        FreePoint(static_cast<CachePoint *>(m_points.RemoveTail()));
    }
}
