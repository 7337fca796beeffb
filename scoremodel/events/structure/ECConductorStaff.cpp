#include <scoremodel/events/structure/ECConductorStaff.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/actions/ACFindEvents.h>
#include <scoremodel/actions/ACSetVoiceTrack.h>
#include <scoremodel/events/envelopes/ECTempoEnv.h>
#include <scoremodel/events/signatures/ECMeterEnv.h>
#include <scoremodel/events/signatures/ECKey.h>
#include <scoremodel/events/signatures/ECMeter.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECConductorMeasure.h>
#include <scoremodel/events/structure/ECMeasure.h>
#include <scoremodel/events/structure/ECPerformance.h>
#include <scoremodel/platform/CArchive.h>

// A staff asked for by number and missing is made by a command, as the
// conductor makes its own missing tracks (see ECConductor.cpp).
#include <scoremodel/commands/CCAddTrack.h>

#include <algorithm>
#include <cmath>
#include <vector>

IMPLEMENT_SERIAL(ECConductorStaff, ECStaff, VERSIONABLE_SCHEMA | 2)

ECConductorStaff::ECConductorStaff() : ECConductorStaff(nullptr, nullptr)
{
}

ECConductorStaff::ECConductorStaff(ECConductor *conductor, ECPerformance *performance)
    : m_pConductor(conductor), m_pPerformance(performance), m_maxMeasureEndTime(MCTime::TimeZero()),
      m_pPickupFraction(new MCFraction(0, 1))
{
    m_staves.SetSize(16, 4);
    m_staves[0] = this;
    m_measures.SetSize(0, 50);
}

ECConductorStaff::~ECConductorStaff()
{
    delete m_pPickupFraction;
}

ECConductorStaff &ECConductorStaff::operator=(const ECConductorStaff &other)
{
    if (this != &other)
        ECStaff::operator=(other);
    return *this;
}

CObject *ECConductorStaff::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECConductorStaff)))
        *this = *static_cast<ECConductorStaff *>(src);
    return this;
}

int ECConductorStaff::GetEventId() const
{
    return EVENT_ID_CONDUCTOR_STAFF;
}

int ECConductorStaff::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CONDUCTOR);
    return 1;
}

int ECConductorStaff::AddChild(ECBase *child, int sorted)
{
    const int added = ECStaff::AddChild(child, sorted);
    if (added && child->GetEventId() == EVENT_ID_TEMPO_ENV)
        m_pTempoEnv = static_cast<ECTempoEnv *>(child);
    else if (added && child->GetEventId() == EVENT_ID_METER_ENV)
        m_pMeterEnv = static_cast<ECMeterEnv *>(child);
    return added;
}

void ECConductorStaff::AddEnvelope(CRuntimeClass *envelopeClass)
{
    // AddChild keeps the envelope as this staff's own.
    auto *envelope = static_cast<ECBase *>(envelopeClass->CreateObject());
    envelope->SetVoiceTrack(14, 0);
    if (!AddChild(envelope, 1))
        envelope->Unref(1);
}

ECTempoEnv *ECConductorStaff::GetTempoEnv()
{
    if (!m_pTempoEnv)
        AddEnvelope(RUNTIME_CLASS(ECTempoEnv));
    return m_pTempoEnv;
}

ECMeterEnv *ECConductorStaff::GetMeterEnv()
{
    if (!m_pMeterEnv)
        AddEnvelope(RUNTIME_CLASS(ECMeterEnv));
    return m_pMeterEnv;
}

int ECConductorStaff::RemoveChild(ECBase *child, int deep)
{
    if (!ECStaff::RemoveChild(child, deep))
        return 0;
    if (child == m_pTempoEnv)
        m_pTempoEnv = nullptr;
    else if (child == m_pMeterEnv)
        m_pMeterEnv = nullptr;
    return 1;
}

int ECConductorStaff::RemoveChildren(int deep)
{
    m_pTempoEnv = nullptr;
    m_pMeterEnv = nullptr;
    // The columns are children: without them the score has no measures, and
    // the array must not point at what may now be gone.
    m_measures.RemoveAll();
    m_nMaxMeasure = -1;
    m_nCurrentMeasure = 0;
    m_maxMeasureEndTime = MCTime::TimeZero();
    return ECStaff::RemoveChildren(deep);
}

ECConductor *ECConductorStaff::GetConductor()
{
    if (!m_pConductor)
        m_pConductor = static_cast<ECConductor *>(GetAncestor(EVENT_ID_CONDUCTOR, -1));
    return m_pConductor;
}

ECPerformance *ECConductorStaff::GetPerformance()
{
    if (!m_pPerformance && GetConductor())
        m_pPerformance = m_pConductor->GetPerformance();
    return m_pPerformance;
}

// ---- Staves ----

int ECConductorStaff::LastStaffIndex() const
{
    return std::min(m_nMaxStaffNumber, static_cast<int>(m_staves.GetSize()) - 1);
}

int ECConductorStaff::GetStaffNumber(ECStaff *staff)
{
    if (!staff)
        return -1;
    for (int number = 0; number <= LastStaffIndex(); ++number)
        if (m_staves.GetAt(number) == staff)
            return number;
    return -1;
}

ECStaff *ECConductorStaff::GetStaff(int number, int create)
{
    if (number >= 0 && number <= LastStaffIndex())
        return m_staves.GetAt(number);
    if (!create)
        return nullptr;
    ECStaff *staff = new ECStaff;
    staff->SetVoiceTrack(14, number);
    return static_cast<ECStaff *>(CCAddTrack::AddNow(GetPerformance(), staff, -1));
}

int ECConductorStaff::InsertStaff(ECStaff *staff, int at)
{
    if (!staff || staff == this || GetStaffNumber(staff) >= 0 || !GetConductor())
        return -1;
    if (at < 1 || at > m_nMaxStaffNumber + 1)
        at = m_nMaxStaffNumber + 1;
    RenumberStaves(at, 1);
    // The staff's own events take its new number too.
    {
        ACSetVoiceTrack number(at, 15);
        number.Apply(staff);
    }
    staff->SetVoiceTrack(14, at);
    // Slots past the maximum are spare; the staff takes the one at `at`
    // while the array still has room, so the array does not grow for ever.
    if (m_nMaxStaffNumber + 1 < m_staves.GetSize() && !m_staves.GetAt(m_staves.GetSize() - 1))
        m_staves.RemoveAt(m_staves.GetSize() - 1);
    m_staves.InsertAt(at, staff);
    ++m_nMaxStaffNumber;
    m_pConductor->AddChild(staff, 1);

    // A row for every column: the staff's own measures in time order (as an
    // undo brings them back), new ones where it has too few.
    ACFindEvents find(1);
    find.AddEvtType(EVENT_ID_MEASURE);
    find.SetDepth(1);
    find.Apply(staff);
    std::vector<ECMeasure *> own;
    for (POSITION pos = find.GetEvents().GetHeadPosition(); pos;)
    {
        ECBase *measure = find.GetEvents().GetNext(pos);
        if (measure != staff && measure->GetEventId() == EVENT_ID_MEASURE)
            own.push_back(static_cast<ECMeasure *>(measure));
    }
    std::stable_sort(own.begin(), own.end(),
                     [](ECMeasure *a, ECMeasure *b) { return *a->GetTime() < *b->GetTime(); });
    size_t next = 0;
    for (int column = 0; column <= m_nMaxMeasure; ++column)
    {
        ECConductorMeasure *conductorMeasure = m_measures.GetAt(column);
        ECMeasure *row = next < own.size() ? own[next++] : nullptr;
        const bool made = row == nullptr;
        if (made)
            row = new ECMeasure;
        row->SetTime(conductorMeasure->GetTime());
        row->SetVoiceTrack(14, at);
        if (made && !staff->AddChild(row, 1))
        {
            row->Unref(1);
            continue;
        }
        conductorMeasure->AddMeasureOnTrack(row, at);
    }
    m_group.InsertTrack(at, staff->GetStaffType() == StaffTypeTwoHands ? 1 : 2);
    return at;
}

void ECConductorStaff::RemoveStaff(ECStaff *staff)
{
    const int number = GetStaffNumber(staff);
    if (number < 1)
        return;
    // The rows leave the columns; the measures stay the staff's, so that an
    // undo brings the staff back whole.
    for (int column = 0; column <= m_nMaxMeasure; ++column)
        m_measures.GetAt(column)->RemoveMeasureOnTrack(number);
    m_staves.RemoveAt(number);
    m_staves.Add(nullptr);
    --m_nMaxStaffNumber;
    // Out of the tree first, so that the renumbering leaves the staff its
    // number: an undo puts it back there.
    if (GetConductor())
        m_pConductor->RemoveChild(staff, 0);
    RenumberStaves(number + 1, -1);
    m_group.RemoveTrack(number);
}

void ECConductorStaff::RenumberStaves(int from, int delta)
{
    ECBase *root = GetPerformance();
    if (!root)
        root = GetConductor();
    if (!root)
        return;
    // The staves two levels below the performance (one below the
    // conductor), gathered by hand: a depth-limited search would still run
    // through every staff's measures at its limit, looking for envelopes to
    // look through, and that walk would cost more than the renumbering.
    std::vector<ECBase *> staves;
    auto gather = [&staves](ECBase *parent) {
        EventList *children = parent->GetChildren();
        for (POSITION pos = children ? children->GetHeadPosition() : nullptr; pos;)
        {
            ECBase *child = children->GetNext(pos);
            const int id = child->GetEventId();
            if (id == EVENT_ID_STAFF || id == EVENT_ID_CONDUCTOR_STAFF)
                staves.push_back(child);
        }
    };
    if (root == m_pConductor)
        gather(root);
    else if (EventList *children = root->GetChildren())
        for (POSITION pos = children->GetHeadPosition(); pos;)
            gather(children->GetNext(pos));
    for (auto it = staves.rbegin(); it != staves.rend(); ++it)
    {
        ECBase *staff = *it;
        const int track = staff->GetTrack();
        // The chord staff (0x7FC) is not numbered with the staves.
        if (track != 0 && track >= from && track < 0x7FC)
        {
            // Voice 15 leaves the voices as they are.
            ACSetVoiceTrack move(track + delta, 15);
            move.Apply(staff);
        }
    }
}

void ECConductorStaff::OrderStaves()
{
    // An exchange sort: there are few staves, and they are nearly in order.
    const int last = LastStaffIndex();
    for (int i = 0; i < last; ++i)
        for (int j = i + 1; j <= last; ++j)
        {
            ECStaff *a = m_staves.GetAt(i);
            ECStaff *b = m_staves.GetAt(j);
            if (a && b && b->GetTrack() < a->GetTrack())
            {
                m_staves.SetAt(i, b);
                m_staves.SetAt(j, a);
            }
        }
    for (int column = 0; column <= m_nMaxMeasure; ++column)
        m_measures.GetAt(column)->OrderMeasures();
}

void ECConductorStaff::RebuildStaffCaches()
{
    for (int number = 1; number <= LastStaffIndex(); ++number)
        if (ECStaff *staff = m_staves.GetAt(number))
            staff->RebuildCache();
}

void ECConductorStaff::GetKeysAtTime(const MCTime &time, EventList &keys)
{
    MCTime at = time;
    for (int number = 1; number <= LastStaffIndex(); ++number)
    {
        ECStaff *staff = m_staves.GetAt(number);
        if (!staff)
            continue;
        const int hands = staff->GetStaffType() == StaffTypeTwoHands ? 2 : 1;
        for (int hand = 0; hand < hands; ++hand)
            if (ECKey *key = staff->GetKeyAtTime(at, static_cast<BYTE>(hand)))
                keys.AddTail(key);
    }
}

// ---- Measures ----

void ECConductorStaff::SetPickupFraction(MCFraction fraction)
{
    m_pPickupFraction->SetNum(fraction.GetNum());
    m_pPickupFraction->SetDen(fraction.GetDen());
}

float ECConductorStaff::MeasureLength(ECMeter *meter)
{
    const float length = meter ? meter->GetMeasureLength() : 4.0f;
    return std::isfinite(length) && length > 0.0f ? length : 4.0f;
}

ECMeter *ECConductorStaff::MeterAt(const MCTime &time)
{
    if (!GetConductor())
        return nullptr;
    MCTime at = time;
    return m_pConductor->GetMeterAtTime(at);
}

void ECConductorStaff::ClampCursor()
{
    if (m_nCurrentMeasure > m_nMaxMeasure)
        m_nCurrentMeasure = m_nMaxMeasure;
    if (m_nCurrentMeasure < 0)
        m_nCurrentMeasure = 0;
}

ECConductorMeasure *ECConductorStaff::GetConductorMeasureAtTime(MCTime &time, int create, int count)
{
    // Written so that a time that compares false both ways (not a number)
    // counts as below zero.
    if (!(time >= MCTime::TimeZero()))
        return nullptr;
    if (time >= m_maxMeasureEndTime)
    {
        if (!create)
            return nullptr;
        if (count < 1)
            count = 1;
        // Refused before anything is made when the meter at the end says it
        // would take too many measures.
        const float needed = (time.GetSeconds() - m_maxMeasureEndTime.GetSeconds()) /
                             MeasureLength(MeterAt(m_maxMeasureEndTime));
        if (needed > static_cast<float>(kMaxMeasuresPerLookup))
            return nullptr;
        int appended = 0;
        while (m_maxMeasureEndTime <= time)
        {
            if (appended + count > kMaxMeasuresPerLookup)
                return nullptr;
            const MCTime before = m_maxMeasureEndTime;
            InsertMeasures(m_nMaxMeasure + 1, count, m_maxMeasureEndTime, MeterAt(m_maxMeasureEndTime));
            appended += count;
            // A length lost to the float's precision would never get there.
            if (!(m_maxMeasureEndTime > before))
                return nullptr;
        }
        m_nCurrentMeasure = m_nMaxMeasure;
        return GetConductorMeasureAtTime(time, 0, 0);
    }
    // A score whose end was set with no columns behind it has nothing to
    // answer with.
    if (m_measures.GetSize() == 0)
        return nullptr;
    ClampCursor();
    // Near the cursor a walk is cheapest. Further away a binary search
    // finds the same column (the last one at or before the time; the first
    // for a time before it), since the columns stand in time order: a walk
    // would make lookups that alternate between two distant places (a
    // re-cut hands events to bars far from those it visits) cost the
    // columns between each time.
    constexpr int kNearby = 16;
    const int cursor = m_nCurrentMeasure;
    if ((cursor >= kNearby && time < *m_measures.GetAt(cursor - kNearby)->GetTime()) ||
        (cursor + kNearby <= m_nMaxMeasure && time >= *m_measures.GetAt(cursor + kNearby)->GetTime()))
    {
        int low = 0, high = m_nMaxMeasure + 1; // the answer is the last index below `high` at or before the time
        while (low < high)
        {
            const int middle = low + (high - low) / 2;
            if (time >= *m_measures.GetAt(middle)->GetTime())
                low = middle + 1;
            else
                high = middle;
        }
        m_nCurrentMeasure = low > 0 ? low - 1 : 0;
        return m_measures.GetAt(m_nCurrentMeasure);
    }
    bool back = false;
    while (time < *m_measures.GetAt(m_nCurrentMeasure)->GetTime())
    {
        back = true;
        if (--m_nCurrentMeasure < 0)
        {
            m_nCurrentMeasure = 0;
            return m_measures.GetAt(0);
        }
    }
    if (back)
        return m_measures.GetAt(m_nCurrentMeasure);
    while (m_nCurrentMeasure <= m_nMaxMeasure && time >= *m_measures.GetAt(m_nCurrentMeasure)->GetTime())
        ++m_nCurrentMeasure;
    --m_nCurrentMeasure;
    return m_measures.GetAt(m_nCurrentMeasure);
}

int ECConductorStaff::GetMeasureNumberAtTime(MCTime &time)
{
    if (!(time >= MCTime::TimeZero()))
        return 0;
    if (time > m_maxMeasureEndTime)
        return m_nMaxMeasure + 1;
    GetConductorMeasureAtTime(time, 0, 0);
    return m_nCurrentMeasure + 1;
}

int ECConductorStaff::GetMeasureNumberBeforeTime(MCTime &time)
{
    if (!(time > MCTime(0.0f)))
        return 0;
    if (time >= m_maxMeasureEndTime)
        return m_nMaxMeasure + 1;
    ECConductorMeasure *column = GetConductorMeasureAtTime(time, 0, 0);
    if (column && *column->GetTime() == time)
        return m_nCurrentMeasure;
    return m_nCurrentMeasure + 1;
}

ECMeasure *ECConductorStaff::GetMeasure(int track, MCTime time, int create, int count)
{
    if (!GetStaff(track, create))
        return nullptr;
    ECConductorMeasure *column = GetConductorMeasureAtTime(time, create, count);
    return column ? column->GetMeasureOnTrack(track) : nullptr;
}

ECMeasure *ECConductorStaff::GetMeasure(int track, int number)
{
    if (track < 0 || track > m_nMaxStaffNumber)
        return nullptr;
    const int index = number - 1;
    if (index < 0 || index > m_nMaxMeasure)
        return nullptr;
    return m_measures.GetAt(index)->GetMeasureOnTrack(track);
}

int ECConductorStaff::GetMeasures(int track, MCTime start, MCTime end, EventList &measures)
{
    const int first = GetMeasureNumberAtTime(start);
    const int last = GetMeasureNumberBeforeTime(end);
    return GetMeasures(track, first, last, measures);
}

int ECConductorStaff::GetMeasures(int track, int first, int last, EventList &measures)
{
    measures.RemoveAll();
    if (m_nMaxMeasure < 0)
        return 0;
    int firstRow = track;
    int lastRow = track;
    if (track == kAllTracks)
    {
        firstRow = 0;
        lastRow = m_nMaxStaffNumber;
    }
    else if (track < 0 || track > m_nMaxStaffNumber)
        return 0;
    const int from = std::clamp(first - 1, 0, m_nMaxMeasure);
    const int to = std::max(from, std::clamp(last - 1, 0, m_nMaxMeasure));
    for (int row = firstRow; row <= lastRow; ++row)
        for (int column = from; column <= to; ++column)
            if (ECMeasure *measure = m_measures.GetAt(column)->GetMeasureOnTrack(row))
                measures.AddTail(measure);
    return measures.GetCount();
}

int ECConductorStaff::PlaceColumn(int at, ECConductorMeasure *column, ECMeasure *const *rows, const MCTime &start)
{
    MCTime time = start;
    column->SetTime(&time);
    const bool inTree = column->GetParents() && column->GetParents()->Find(this);
    if (!inTree && !AddChild(column, 1))
        return 0;
    m_measures.InsertAt(at, column);
    ++m_nMaxMeasure;
    for (int number = 1; number <= LastStaffIndex(); ++number)
    {
        ECStaff *staff = m_staves.GetAt(number);
        ECMeasure *row = rows ? rows[number] : nullptr;
        const bool made = row == nullptr;
        if (made)
            row = new ECMeasure;
        row->SetTime(&time);
        row->SetVoiceTrack(14, number);
        // A staff refuses a measure it holds already; that one is in place.
        if (staff && !staff->AddChild(row, 1) && made)
        {
            row->Unref(1);
            continue;
        }
        column->AddMeasureOnTrack(row, number);
    }
    return 1;
}

int ECConductorStaff::InsertMeasures(int at, int count, MCTime start, ECMeter *meter)
{
    if (count < 0)
        count = 0;
    if (at < 0 || at > m_nMaxMeasure)
        at = m_nMaxMeasure + 1;
    const MCTime length(MeasureLength(meter));
    int placed = 0;
    for (int i = 0; i < count; ++i)
    {
        auto *column = new ECConductorMeasure(start);
        if (!PlaceColumn(at + placed, column, nullptr, start))
        {
            column->Unref(1);
            continue;
        }
        ++placed;
        start += length;
        m_maxMeasureEndTime += length;
    }
    m_nCurrentMeasure = at + count;
    ClampCursor();
    return 1;
}

int ECConductorStaff::InsertMeasures(int at, EventList &measures, MCTime start, ECMeter *meter)
{
    if (at < 0 || at > m_nMaxMeasure)
        at = m_nMaxMeasure + 1;
    const MCTime length(MeasureLength(meter));
    const int staves = LastStaffIndex();

    // The columns in list order, each with the time it had when called.
    struct Column
    {
        MCTime time;
        ECConductorMeasure *measure;
        std::vector<ECMeasure *> rows;
    };
    std::vector<Column> columns;
    for (POSITION pos = measures.GetHeadPosition(); pos;)
    {
        ECBase *event = measures.GetNext(pos);
        if (!event || !event->IsKindOf(RUNTIME_CLASS(ECConductorMeasure)))
            continue;
        auto *column = static_cast<ECConductorMeasure *>(event);
        if (m_nMaxMeasure >= 0 && GetConductorMeasureAtTime(*column->GetTime(), 0, 0) == column)
            continue;
        columns.push_back({*column->GetTime(), column, std::vector<ECMeasure *>(staves + 1, nullptr)});
    }
    std::vector<size_t> byTime(columns.size());
    for (size_t i = 0; i < byTime.size(); ++i)
        byTime[i] = i;
    std::stable_sort(byTime.begin(), byTime.end(),
                     [&](size_t a, size_t b) { return columns[a].time < columns[b].time; });
    for (POSITION pos = measures.GetHeadPosition(); pos;)
    {
        ECBase *event = measures.GetNext(pos);
        if (!event || event->GetEventId() != EVENT_ID_MEASURE || !event->GetTime())
            continue;
        const int track = event->GetTrack();
        if (track < 1 || track > staves)
            continue;
        const MCTime &time = *event->GetTime();
        auto it = std::lower_bound(byTime.begin(), byTime.end(), time,
                                   [&](size_t index, const MCTime &t) { return columns[index].time < t; });
        for (; it != byTime.end() && columns[*it].time == time; ++it)
            if (!columns[*it].rows[track])
            {
                columns[*it].rows[track] = static_cast<ECMeasure *>(event);
                break;
            }
    }

    int placed = 0;
    for (Column &column : columns)
    {
        // The rows a removal left in the column are replaced by the rows
        // found above.
        column.measure->RemoveMeasures();
        column.measure->GetMeasures().SetSize(16, 4);
        column.measure->GetMeasures().SetAt(0, column.measure);
        column.measure->m_nMaxTrack = 0;
        if (!PlaceColumn(at + placed, column.measure, column.rows.data(), start))
            continue;
        ++placed;
        start += length;
        m_maxMeasureEndTime += length;
    }
    m_nCurrentMeasure = at + placed;
    ClampCursor();
    return 1;
}

int ECConductorStaff::RemoveMeasures(int at, int count)
{
    if (count < 0)
        count = 0;
    if (at < 0 || at > m_nMaxMeasure)
        at = m_nMaxMeasure + 1 - count;
    if (at < 0)
    {
        count += at;
        at = 0;
    }
    count = std::min(count, m_nMaxMeasure + 1 - at);
    for (int index = at + count - 1; index >= at; --index)
    {
        ECConductorMeasure *column = m_measures.GetAt(index);
        const MCTime length(MeasureLength(MeterAt(*column->GetTime())));
        // A reference while the column and its rows leave the tree, so the
        // rows can be read after the column is gone from this staff.
        column->Ref();
        for (int number = LastStaffIndex(); number >= 1; --number)
        {
            ECMeasure *row = column->RemoveMeasureOnTrack(number);
            ECStaff *staff = m_staves.GetAt(number);
            if (row && staff)
                staff->RemoveChild(row, 0);
        }
        m_measures.RemoveAt(index);
        --m_nMaxMeasure;
        m_maxMeasureEndTime -= length;
        RemoveChild(column, 0);
        column->Unref(1);
    }
    m_nCurrentMeasure = at + count;
    ClampCursor();
    return 1;
}

// ---- Archive ----

void ECConductorStaff::Serialize(CArchive &ar)
{
    ECStaff::Serialize(ar);
    if (ar.IsStoring())
    {
        ar.WriteObject(GetConductor());
        ar.WriteObject(GetPerformance());
        ar << static_cast<DWORD>(m_nMaxStaffNumber) << static_cast<DWORD>(m_nMaxMeasure);
        m_maxMeasureEndTime.Serialize(ar, -1);
        ar.WriteObject(m_pTempoEnv);
        ar.WriteObject(m_pMeterEnv);
        return;
    }
    ar >> m_pConductor >> m_pPerformance;
    DWORD maxStaff = 0;
    DWORD maxMeasure = 0;
    ar >> maxStaff >> maxMeasure;
    // A damaged count must not turn into a negative index.
    m_nMaxStaffNumber = std::max(0, static_cast<int>(maxStaff));
    m_nMaxMeasure = std::max(-1, static_cast<int>(maxMeasure));
    m_maxMeasureEndTime.Serialize(ar, ActiveArchiveVersion());
    if (ActiveArchiveVersion() >= ArchiveVersionAttachmentSlots)
        ar >> m_pTempoEnv >> m_pMeterEnv;
    // Older documents name neither envelope; they stand among the children
    // all the same, and the first of each kind is the one.
    for (POSITION pos = m_children.GetHeadPosition(); pos;)
    {
        ECBase *child = m_children.GetNext(pos);
        if (!m_pTempoEnv && child->GetEventId() == EVENT_ID_TEMPO_ENV)
            m_pTempoEnv = static_cast<ECTempoEnv *>(child);
        else if (!m_pMeterEnv && child->GetEventId() == EVENT_ID_METER_ENV)
            m_pMeterEnv = static_cast<ECMeterEnv *>(child);
    }
}

void ECConductorStaff::PostSerialize(CArchive &ar)
{
    ECStaff::PostSerialize(ar);
    m_staves.Serialize(ar);
    if (ar.IsLoading())
    {
        // Only staves may stand in the array, and this staff at 0.
        for (INT_PTR i = 0; i < m_staves.GetSize(); ++i)
        {
            CObject *element = static_cast<CObArray &>(m_staves).GetAt(i);
            if (element && !element->IsKindOf(RUNTIME_CLASS(ECStaff)))
                m_staves.SetAt(i, nullptr);
        }
        if (m_staves.GetSize() == 0)
            m_staves.SetSize(1, 4);
        m_staves.SetAt(0, this);
        m_nMaxStaffNumber = LastStaffIndex();
    }
    m_measures.Serialize(ar);
    if (ar.IsLoading())
    {
        // Only conductor measures stand in the columns: anything else (or a
        // hole) is dropped, so every index up to max measure is a column.
        for (INT_PTR i = m_measures.GetSize() - 1; i >= 0; --i)
        {
            CObject *element = static_cast<CObArray &>(m_measures).GetAt(i);
            if (!element || !element->IsKindOf(RUNTIME_CLASS(ECConductorMeasure)))
                m_measures.RemoveAt(i);
        }
        m_nMaxMeasure = static_cast<int>(m_measures.GetSize()) - 1;
        m_nCurrentMeasure = 0;
    }
    m_group.Serialize(ar);
}
