#include <scoremodel/events/structure/ECConductor.h>

#include <scoremodel/actions/ACFindEvents.h>
#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/events/envelopes/ECTempo.h>
#include <scoremodel/events/envelopes/ECTempoEnv.h>
#include <scoremodel/events/media/ECWaveTrack.h>
#include <scoremodel/events/signatures/ECMeter.h>
#include <scoremodel/events/signatures/ECMeterEnv.h>
#include <scoremodel/events/structure/ECConductorStaff.h>
#include <scoremodel/events/structure/ECPerformance.h>
#include <scoremodel/platform/CArchive.h>

// Missing structure is made by a command, so that it enters the undo history
// like any edit: this is the one place where the conductor reaches up into
// the commands.
#include <scoremodel/commands/CCAddTrack.h>

#include <algorithm>
#include <vector>

IMPLEMENT_SERIAL(ECConductor, ECWithChild, VERSIONABLE_SCHEMA | 2)

namespace
{
// A meter envelope read from a file may hold other points; they are no meter.
ECMeter *AsMeter(ECEnvPoint *point)
{
    return point && point->IsKindOf(RUNTIME_CLASS(ECMeter)) ? static_cast<ECMeter *>(point) : nullptr;
}
} // namespace

ECConductor::ECConductor() = default;

ECConductor::~ECConductor()
{
    // The children go with the base; the chord staff, which may stand
    // outside the child list, goes here with its subtree.
    Hold(m_pConductorStaff, static_cast<ECConductorStaff *>(nullptr));
    Hold(m_pChordStaff, static_cast<ECStaff *>(nullptr));
}

template <class T>
void ECConductor::Hold(T *&slot, T *track)
{
    if (slot == track)
        return;
    if (track)
        track->Ref();
    T *previous = slot;
    slot = track;
    if (previous)
        previous->ReleaseHold();
}

ECConductor &ECConductor::operator=(const ECConductor &other)
{
    if (this != &other)
        ECWithChild::operator=(other);
    return *this;
}

CObject *ECConductor::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECConductor)))
        *this = *static_cast<ECConductor *>(src);
    return this;
}

int ECConductor::GetEventId() const
{
    return EVENT_ID_CONDUCTOR;
}

int ECConductor::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_PERFORMANCE);
    return 1;
}

int ECConductor::IsChild(ECBase *track)
{
    return track->GetParents()->Find(this) ? 1 : 0;
}

int ECConductor::AddChild(ECBase *child, int sorted)
{
    const int added = ECWithChild::AddChild(child, sorted);
    if (added && (child->GetEventId() == EVENT_ID_STAFF || child->GetEventId() == EVENT_ID_WAVE_TRACK))
        OrderTracks(0);
    return added;
}

// ---- Tracks ----

int ECConductor::GetMaxTrackNumber(int kind)
{
    switch (kind)
    {
    case TrackConductorStaff:
    case TrackChordStaff:
        return 1;
    case TrackStaff:
        return m_pConductorStaff ? m_pConductorStaff->GetMaxStaffNumber() : 0;
    case TrackWave:
        return static_cast<int>(m_waveTracks.GetSize());
    default:
        return 0;
    }
}

int ECConductor::GetTrackNumber(int kind, ECTrack *track)
{
    switch (kind)
    {
    case TrackConductorStaff:
        return 0;
    case TrackChordStaff:
        return kChordStaffTrack;
    case TrackStaff:
        return m_pConductorStaff && track && track->IsKindOf(RUNTIME_CLASS(ECStaff))
                   ? m_pConductorStaff->GetStaffNumber(static_cast<ECStaff *>(track))
                   : -1;
    case TrackWave:
        return track && track->IsKindOf(RUNTIME_CLASS(ECWaveTrack))
                   ? GetWaveTrackNumber(static_cast<ECWaveTrack *>(track))
                   : -1;
    default:
        return 0;
    }
}

ECTrack *ECConductor::GetTrack(int kind, int number, int create)
{
    switch (kind)
    {
    case TrackConductorStaff:
        return GetConductorStaff();
    case TrackChordStaff:
        return GetChordStaff();
    case TrackStaff:
    {
        ECConductorStaff *conductorStaff = create ? GetConductorStaff() : m_pConductorStaff;
        return conductorStaff ? conductorStaff->GetStaff(number, create) : nullptr;
    }
    case TrackWave:
        return GetWaveTrack(number, create);
    default:
        return nullptr;
    }
}

void ECConductor::OrderTracks(int orderStaves)
{
    if (!m_pConductorStaff)
        return;
    if (orderStaves)
        m_pConductorStaff->OrderStaves();

    // The list holds each track while it is out of the child list.
    EventList taken;
    for (POSITION pos = m_children.GetHeadPosition(); pos;)
    {
        ECBase *child = m_children.GetNext(pos);
        if (child && (child->GetEventId() == EVENT_ID_STAFF || child->GetEventId() == EVENT_ID_WAVE_TRACK))
            taken.AddTail(child);
    }
    for (POSITION pos = taken.GetHeadPosition(); pos;)
        ECWithChild::RemoveChild(taken.GetNext(pos), 0);

    auto putBack = [&](ECBase *track) {
        POSITION at = track ? taken.Find(track) : nullptr;
        if (!at)
            return;
        ECWithChild::AddChild(track, 0);
        taken.RemoveAt(at);
    };
    for (int kind : {TrackStaff, TrackWave})
    {
        const int count = GetMaxTrackNumber(kind);
        for (int number = 1; number <= count; ++number)
            putBack(GetTrack(kind, number, 0));
    }
    // A track the arrays do not number stays a child, behind the numbered
    // ones, so that nothing is lost. The chord staff alone does not come
    // back: it is not a numbered staff, and the conductor holds it.
    while (!taken.IsEmpty())
    {
        ECBase *track = taken.GetHead();
        if (track != m_pChordStaff)
            ECWithChild::AddChild(track, 0);
        taken.RemoveHead();
    }
    m_children.Sort();
    UpdateHasChildren();
}

ECConductorStaff *ECConductor::GetConductorStaff()
{
    if (!m_pConductorStaff)
    {
        ECPerformance *performance = GetPerformance();
        ECConductorStaff *staff = new ECConductorStaff(this, performance);
        staff->SetVoiceTrack(14, 0);
        MCTime zero = MCTime::TimeZero();
        staff->SetTime(&zero);
        CCAddTrack::AddNow(performance, staff, -1);
    }
    return m_pConductorStaff;
}

ECStaff *ECConductor::GetChordStaff()
{
    if (!m_pChordStaff)
    {
        ECStaff *staff = new ECStaff(ECStaff::StaffTypeChord);
        staff->SetVoiceTrack(14, kChordStaffTrack);
        MCTime zero = MCTime::TimeZero();
        staff->SetTime(&zero);
        staff->SetStaffEmpty(0);
        CCAddTrack::AddNow(GetPerformance(), staff, -1);
    }
    return m_pChordStaff;
}

ECPerformance *ECConductor::GetPerformance()
{
    if (!m_pPerformance)
        m_pPerformance = static_cast<ECPerformance *>(GetAncestor(EVENT_ID_PERFORMANCE, -1));
    return m_pPerformance;
}

// ---- Placing tracks ----

int ECConductor::InsertTrack(ECTrack *track, int index)
{
    if (!track)
        return -1;
    switch (track->GetEventId())
    {
    case EVENT_ID_CONDUCTOR_STAFF:
        if (IsChild(track))
            return -1;
        Hold(m_pConductorStaff, static_cast<ECConductorStaff *>(track));
        AddChild(track, 1);
        return 0;
    case EVENT_ID_STAFF:
    {
        ECStaff *staff = static_cast<ECStaff *>(track);
        if (staff->GetStaffType() == ECStaff::StaffTypeChord)
        {
            if (IsChild(track) || track == m_pChordStaff)
                return -1;
            // Held before it is added, so that OrderTracks knows it.
            Hold(m_pChordStaff, staff);
            AddChild(track, 1);
            return kChordStaffTrack;
        }
        ECConductorStaff *conductorStaff = GetConductorStaff();
        return conductorStaff ? conductorStaff->InsertStaff(staff, index) : -1;
    }
    case EVENT_ID_WAVE_TRACK:
        return InsertWaveTrack(static_cast<ECWaveTrack *>(track), index);
    default:
        return -1;
    }
}

void ECConductor::RemoveTrack(ECTrack *track)
{
    if (!track)
        return;
    if (track == m_pConductorStaff)
    {
        RemoveChild(track, 0);
        Hold(m_pConductorStaff, static_cast<ECConductorStaff *>(nullptr));
    }
    else if (track == m_pChordStaff)
    {
        RemoveChild(track, 0);
        Hold(m_pChordStaff, static_cast<ECStaff *>(nullptr));
    }
    else if (track->GetEventId() == EVENT_ID_WAVE_TRACK)
        RemoveWaveTrack(static_cast<ECWaveTrack *>(track));
    else if (track->IsKindOf(RUNTIME_CLASS(ECStaff)) && m_pConductorStaff)
        m_pConductorStaff->RemoveStaff(static_cast<ECStaff *>(track));
}

int ECConductor::GetPlace(ECTrack *track)
{
    if (!track)
        return -1;
    if (track == m_pChordStaff || (track == m_pConductorStaff && IsChild(track)))
        return 0;
    if (track->GetEventId() == EVENT_ID_WAVE_TRACK)
    {
        const int number = GetWaveTrackNumber(static_cast<ECWaveTrack *>(track));
        return number > 0 ? number - 1 : -1;
    }
    const int number = GetTrackNumber(TrackStaff, track);
    return number > 0 ? number : -1;
}

// ---- Wave tracks ----

int ECConductor::GetWaveTrackNumber(ECWaveTrack *track)
{
    for (INT_PTR i = 0; i < m_waveTracks.GetSize(); ++i)
        if (m_waveTracks[i] == track)
            return static_cast<int>(i) + 1;
    return -1;
}

ECWaveTrack *ECConductor::GetWaveTrack(int number, int create)
{
    if (number >= 1 && number <= m_waveTracks.GetSize())
        return static_cast<ECWaveTrack *>(m_waveTracks[number - 1]);
    if (!create)
        return nullptr;
    return static_cast<ECWaveTrack *>(CCAddTrack::AddNow(GetPerformance(), new ECWaveTrack, -1, FCMidi::MidiNull()));
}

int ECConductor::InsertWaveTrack(ECWaveTrack *track, int index)
{
    if (!track || IsChild(track) || GetWaveTrackNumber(track) > 0)
        return -1;
    // Past the end is the end too: the array never holds a gap.
    if (index < 0 || index > m_waveTracks.GetSize())
        index = static_cast<int>(m_waveTracks.GetSize());
    m_waveTracks.InsertAt(index, track);
    // The stored numbers give the order on load, so the tracks behind move up.
    for (INT_PTR i = index; i < m_waveTracks.GetSize(); ++i)
        static_cast<ECWaveTrack *>(m_waveTracks[i])->SetVoiceTrack(14, static_cast<int>(i) + 1);
    AddChild(track, 1);
    return index;
}

void ECConductor::RemoveWaveTrack(ECWaveTrack *track)
{
    const int number = GetWaveTrackNumber(track);
    if (number < 1)
        return;
    m_waveTracks.RemoveAt(number - 1);
    for (INT_PTR i = number - 1; i < m_waveTracks.GetSize(); ++i)
        static_cast<ECWaveTrack *>(m_waveTracks[i])->SetVoiceTrack(14, static_cast<int>(i) + 1);
    RemoveChild(track, 0);
}

void ECConductor::BuildWaveTrackArray()
{
    ACFindEvents find(1);
    find.AddEvtType(EVENT_ID_WAVE_TRACK);
    find.SetDepth(2);
    find.Apply(this);

    std::vector<ECWaveTrack *> tracks;
    for (POSITION pos = find.GetEvents().GetHeadPosition(); pos;)
    {
        ECBase *track = find.GetEvents().GetNext(pos);
        if (track->IsKindOf(RUNTIME_CLASS(ECWaveTrack)) &&
            std::find(tracks.begin(), tracks.end(), track) == tracks.end())
            tracks.push_back(static_cast<ECWaveTrack *>(track));
    }
    // The order comes from the stored track numbers, not the child order.
    std::stable_sort(tracks.begin(), tracks.end(),
                     [](ECWaveTrack *a, ECWaveTrack *b) { return a->GetTrack() < b->GetTrack(); });
    m_waveTracks.RemoveAll();
    for (ECWaveTrack *track : tracks)
        m_waveTracks.Add(track);
}

// ---- Measures ----

int ECConductor::GetMaxMeasureNumber()
{
    return m_pConductorStaff ? m_pConductorStaff->GetMaxMeasureNumber() + 1 : 0;
}

MCTime ECConductor::GetMaxMeasureEndTime()
{
    return m_pConductorStaff ? m_pConductorStaff->GetMaxMeasureEndTime() : MCTime::TimeZero();
}

int ECConductor::GetMeasureNumberAtTime(MCTime &)
{
    return 0;
}

int ECConductor::GetMeasureNumberBeforeTime(MCTime &)
{
    return 0;
}

ECMeasure *ECConductor::GetMeasure(int, MCTime, int, int)
{
    return nullptr;
}

ECMeasure *ECConductor::GetMeasure(int, int)
{
    return nullptr;
}

int ECConductor::GetMeasures(int, MCTime, MCTime, EventList &measures)
{
    measures.RemoveAll();
    return 0;
}

int ECConductor::GetMeasures(int, int, int, EventList &measures)
{
    measures.RemoveAll();
    return 0;
}

// ---- Tempo and meter ----

ECTempo *ECConductor::GetTempoAtTime(MCTime &time)
{
    ECTempoEnv *envelope = TempoEnv();
    return envelope ? static_cast<ECTempo *>(envelope->GetPointBeforeEqual(time)) : nullptr;
}

ECTempo *ECConductor::GetTempoBeforeTime(MCTime &time)
{
    ECTempoEnv *envelope = TempoEnv();
    return envelope ? static_cast<ECTempo *>(envelope->GetPointBefore(time)) : nullptr;
}

ECMeter *ECConductor::GetMeterAtTime(MCTime &time)
{
    ECMeterEnv *envelope = MeterEnv();
    return AsMeter(envelope ? envelope->GetPointBeforeEqual(time) : nullptr);
}

ECMeter *ECConductor::GetMeterBeforeTime(MCTime &time)
{
    ECMeterEnv *envelope = MeterEnv();
    return AsMeter(envelope ? envelope->GetPointBefore(time) : nullptr);
}

void ECConductor::GetMeterScope(ECMeter *meter, MCTime &start, MCTime &end)
{
    start = MCTime::TimeNull();
    end = MCTime::TimeNull();
    ECMeterEnv *envelope = MeterEnv();
    if (!meter || !envelope)
        return;
    EventList *points = envelope->GetChildren();
    POSITION pos = points->Find(meter);
    if (!pos)
        return;
    start = *meter->GetTime();
    points->GetNext(pos);
    while (pos)
    {
        ECBase *next = points->GetNext(pos);
        if (next->GetTime())
        {
            end = *next->GetTime();
            return;
        }
    }
    end = GetMaxMeasureEndTime();
}

ECMeter *ECConductor::GetMeterByPickupRole(BYTE role)
{
    ECMeterEnv *envelope = MeterEnv();
    if (!envelope)
        return nullptr;
    EventList *points = envelope->GetChildren();
    for (POSITION pos = points->GetHeadPosition(); pos;)
    {
        ECBase *point = points->GetNext(pos);
        if (point->IsKindOf(RUNTIME_CLASS(ECMeter)) && static_cast<ECMeter *>(point)->GetPickupRole() == role)
            return static_cast<ECMeter *>(point);
    }
    return nullptr;
}

ECMeter *ECConductor::GetDocMeter()
{
    MCTime zero = MCTime::TimeZero();
    ECMeter *first = GetMeterAtTime(zero);
    if (!first || first->GetPickupRole() != 2)
        return first;
    if (ECMeter *full = GetMeterByPickupRole(1))
        return full;
    EventList *points = MeterEnv()->GetChildren();
    if (points->GetCount() >= 2)
    {
        ECBase *second = points->GetAt(points->FindIndex(1));
        if (second->IsKindOf(RUNTIME_CLASS(ECMeter)))
            return static_cast<ECMeter *>(second);
    }
    return first;
}

ECTempoEnv *ECConductor::TempoEnv()
{
    return m_pConductorStaff ? m_pConductorStaff->GetTempoEnv() : nullptr; // made at first use
}

ECMeterEnv *ECConductor::MeterEnv()
{
    return m_pConductorStaff ? m_pConductorStaff->GetMeterEnv() : nullptr;
}

ECBase *ECConductor::GetMemberEvent(int index)
{
    for (ECBase *held : {static_cast<ECBase *>(m_pConductorStaff), static_cast<ECBase *>(m_pChordStaff)})
        if (held && index-- == 0)
            return held;
    return nullptr;
}

// ---- Archive ----

void ECConductor::Serialize(CArchive &ar)
{
    ECWithChild::Serialize(ar);
    if (ar.IsStoring())
    {
        ar.WriteObject(m_pConductorStaff);
        ar.WriteObject(m_pChordStaff);
        return;
    }
    ECConductorStaff *conductorStaff = nullptr;
    ar >> conductorStaff;
    CheckHeldWhileLoading(ar, conductorStaff);
    Hold(m_pConductorStaff, conductorStaff);
    // Documents before version 19 have no chord staff; it is made at first use.
    if (ActiveArchiveVersion() >= ArchiveVersionChordStaff)
    {
        ECStaff *chordStaff = nullptr;
        ar >> chordStaff;
        CheckHeldWhileLoading(ar, chordStaff);
        Hold(m_pChordStaff, chordStaff);
    }
    BuildWaveTrackArray();
}
