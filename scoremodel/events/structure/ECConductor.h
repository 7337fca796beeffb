// ECConductor: the registry of everything that runs along time in parallel.
//
// The one structural child of the performance. It holds the conductor staff
// (track 0, the time axis, the tempo and meter maps), the staves (1 to n,
// numbered by the conductor staff's staff array), the chord staff (0x7FC)
// and the wave tracks (numbered from 1 in the wave track array). Queries by
// track kind go through GetTrack, GetTrackNumber and GetMaxTrackNumber:
//
//     kind 0  conductor staff   one, number 0
//     kind 1  chord staff       one, number 0x7FC, made when missing
//     kind 2  staves            1 to ECConductorStaff::GetMaxStaffNumber()
//     kind 3  wave tracks       1 to the size of the wave track array
//
// Any other kind gives 0 from all three.
//
// Structure that is missing is made at first use by a synchronous
// CCAddTrack, so GetConductorStaff, GetChordStaff and GetTrack with `create`
// may change the tree (and, inside an undo bracket, the undo step). Tracks
// enter and leave only through InsertTrack and RemoveTrack, which the track
// commands call.
//
// The chord staff is a staff but not a numbered one: OrderTracks (which runs
// whenever a staff or wave track is added) takes it out of the child list and
// does not append it again. The conductor keeps it as its chord staff all the
// same, writes it in its record, and holds a reference on it (as on the
// conductor staff) for as long as it points to it.
//
// Threads: the document thread, under the performance lock while commands
// run.
//
// Archive record: that of ECWithChild, then the conductor staff and the chord
// staff by reference. Loading reads the chord staff only from document
// version 19 on (older documents make it at first use), then rebuilds the
// wave track array from the stored track numbers.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/base/ECWithChild.h>
#include <scoremodel/platform/CArray.h>

class ECConductorStaff;
class ECMeasure;
class ECMeter;
class ECMeterEnv;
class ECPerformance;
class ECStaff;
class ECTempo;
class ECTempoEnv;
class ECTrack;
class ECWaveTrack;

class SCOREMODEL_API ECConductor : public ECWithChild
{
    DECLARE_SERIAL(ECConductor)

    // The track commands place and take out tracks.
    friend class CCAddTrack;
    friend class CCRemoveTrack;
    friend class CCOrderTracks;
    friend class CCCopyTracks;

public:
    // Track kinds, as GetTrack, GetTrackNumber and GetMaxTrackNumber take them.
    enum TrackKind : int
    {
        TrackConductorStaff = 0,
        TrackChordStaff = 1,
        TrackStaff = 2,
        TrackWave = 3
    };

    // The track number of the chord staff.
    static constexpr int kChordStaffTrack = 0x7FC;

    ECConductor();

    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 15.
    int GetEventId() const override;
    // ECPerformance.
    int GetParentTypes(CArray<int, int> &types) override;
    // The conductor staff, then the chord staff, as the record writes them
    // (the chord staff is in no child list), leaving out one not made.
    ECBase *GetMemberEvent(int index) override;

    // After the base's call, a staff or wave track child reorders the tracks
    // (OrderTracks(0)).
    int AddChild(ECBase *child, int sorted) override;

    // ---- Tracks ----

    // 1 for kinds 0 and 1, the staff maximum for 2, the wave track count for
    // 3, 0 for any other kind.
    int GetMaxTrackNumber(int kind);
    // 0 for kind 0, 0x7FC for kind 1 (whatever the track), the staff number
    // for 2 and the wave track number for 3 (-1 when absent), 0 otherwise.
    int GetTrackNumber(int kind, ECTrack *track);
    // The track of a kind and number; `create` goes to the staff and wave
    // track lookups. Kind 1 makes the chord staff when missing. 0 for any
    // other kind.
    ECTrack *GetTrack(int kind, int number, int create);
    using ECBase::GetTrack; // the event's own track number
    // Sorts the child list: staves in the order of their numbers, then wave
    // tracks in theirs, then by time. With `orderStaves`, the conductor
    // staff first sorts its staff array by track number. Nothing without a
    // conductor staff. The chord staff leaves the child list here (see the
    // class comment); a staff or wave track the arrays do not number stays a
    // child, behind the numbered ones.
    void OrderTracks(int orderStaves);

    // ---- Measures (forwarded to the conductor staff) ----

    // The highest measure index plus 1; 0 without measures.
    int GetMaxMeasureNumber();
    // The end of the last measure; 0.0 without measures.
    MCTime GetMaxMeasureEndTime();
    // Forwarded to the conductor staff; without one they answer as for a
    // score without measures: 0, null, an emptied list. GetMeasure with
    // `create` makes the conductor staff.
    int GetMeasureNumberAtTime(MCTime &time);
    int GetMeasureNumberBeforeTime(MCTime &time);
    ECMeasure *GetMeasure(int track, MCTime time, int create, int count);
    ECMeasure *GetMeasure(int track, int number);
    int GetMeasures(int track, MCTime start, MCTime end, EventList &measures);
    int GetMeasures(int track, int first, int last, EventList &measures);

    // ---- Tempo and meter ----

    // The tempo in force at the time (at or before it); 0 when none.
    ECTempo *GetTempoAtTime(MCTime &time);
    // The last tempo strictly before the time; 0 when none.
    ECTempo *GetTempoBeforeTime(MCTime &time);
    ECMeter *GetMeterAtTime(MCTime &time);
    ECMeter *GetMeterBeforeTime(MCTime &time);
    // Both outputs start as TimeNull. For a point of the meter envelope,
    // `start` is its time and `end` the next point's time, or the end of the
    // last measure for the last point.
    void GetMeterScope(ECMeter *meter, MCTime &start, MCTime &end);
    // The meter that governs the document: the one at time 0, unless it is a
    // pickup (role 2); then the meter of role 1, or else the second point.
    ECMeter *GetDocMeter();
    // The first meter of the envelope with that pickup role; 0 if none.
    ECMeter *GetMeterByPickupRole(BYTE role);

    // ---- Structure ----

    // The ancestor performance (cached); 0 outside a document.
    ECPerformance *GetPerformance();
    // Made at first use (voice 14, track 0, time zero) by a synchronous
    // CCAddTrack; 0 only when that could not run (no performance).
    ECConductorStaff *GetConductorStaff();
    // Made at first use (staff type 9, voice 14, track 0x7FC, time zero, not
    // empty) by a synchronous CCAddTrack; 0 only when that could not run.
    ECStaff *GetChordStaff();

    // Assigns the ECWithChild part only.
    ECConductor &operator=(const ECConductor &other);
    // Identity.
    int operator==(const ECConductor &other) const { return this == &other; }
    int operator!=(const ECConductor &other) const { return !(*this == other); }

protected:
    // Lets go of the conductor staff and the chord staff.
    ~ECConductor() override;

    // ---- For the track commands ----

    // Places a track: the conductor staff and the chord staff become
    // children (0, 0x7FC), any other staff goes to
    // ECConductorStaff::InsertStaff at number `index`, a wave track to
    // InsertWaveTrack. The number it got, or -1 for null, a refusal or any
    // other kind of track.
    int InsertTrack(ECTrack *track, int index);
    // The reverse of InsertTrack; nothing for null or a track not placed.
    void RemoveTrack(ECTrack *track);
    // The index at which InsertTrack puts `track` back where it stands now
    // (its staff number, its wave track index, 0 for the conductor staff and
    // the chord staff); -1 when it is not placed.
    int GetPlace(ECTrack *track);
    // Array index plus 1; -1 when absent.
    int GetWaveTrackNumber(ECWaveTrack *track);
    // Number 1 to the array size: that wave track. Another number gives 0
    // when `create` is 0; otherwise a new wave track is added at the end by
    // a synchronous CCAddTrack and returned.
    ECWaveTrack *GetWaveTrack(int number, int create);
    // A negative index means the end. The track gets voice 14 and track
    // number index + 1, enters the array at `index` and becomes a child.
    // Returns the index, or -1 when the child was refused (the array is then
    // as before).
    int InsertWaveTrack(ECWaveTrack *track, int index);
    // Takes the wave track out of the array and the child list.
    void RemoveWaveTrack(ECWaveTrack *track);
    // After loading: the wave tracks among the children (depth 2) go into
    // the array at their track number minus one.
    void BuildWaveTrackArray();

private:
    ECConductor(const ECConductor &) = delete;

    // 1 when `track` is in the child list (its parent list names this
    // conductor; that list is the short one).
    int IsChild(ECBase *track);
    // The conductor staff's tempo map, made at first use; its meter
    // envelope without making it. Null when absent.
    ECTempoEnv *TempoEnv();
    ECMeterEnv *MeterEnv();

    // Keeps `track` as the conductor staff or chord staff pointer `slot`,
    // with a reference, and lets go of what it held before.
    template <class T>
    void Hold(T *&slot, T *track);

    ECPerformance *m_pPerformance = nullptr;
    ECConductorStaff *m_pConductorStaff = nullptr;
    ECStaff *m_pChordStaff = nullptr;
    CPtrArray m_waveTracks;
};
