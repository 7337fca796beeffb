// ECConductorStaff: the staff that owns the time axis of the whole score.
//
// Track number 0. It holds what all staves share: the staff array (index =
// staff number, element 0 this staff itself), the tempo and meter envelopes
// and the end time of the last measure. Staves enter and leave the score
// through InsertStaff and RemoveStaff, which the track commands reach by way
// of ECConductor::InsertTrack and RemoveTrack; both renumber the staves
// behind the place of change so that a staff's track number always equals
// its index in the array.
//
// The staff array does not hold references: the staves are the conductor's
// children, and a staff leaves the array when it leaves the conductor.
//
// The score is a matrix. Rows are tracks (0 this staff, 1 to n the staves),
// columns are measures: the measure array holds one ECConductorMeasure per
// column (a child of this staff), and each column's row array holds the
// ECMeasure of every staff at its time (a child of that staff). These
// invariants hold between any two calls:
//   - every column has a measure in each row 0 to GetMaxStaffNumber(), and
//     the measures of a column have the column's time;
//   - GetMaxMeasureNumber() is the size of the measure array minus 1;
//   - the lookup cursor lies in 0 to GetMaxMeasureNumber() (0 when empty).
// Measure indices start at 0; measure numbers (GetMeasureNumberAtTime,
// GetMeasure(int, int), GetMeasures(int, int, int, list),
// ECMeasure::GetMeasureNumber) start at 1.
//
// Cost. GetConductorMeasureAtTime walks from the cursor, the column found
// last, so a walk through the score in time order is linear overall and a
// lookup near the last one is O(1); a jump costs the columns between.
// Inserting or removing a column costs the columns behind it and the staves;
// inserting or removing a staff costs the score (every column gains or
// loses a row, the staves behind are renumbered).
//
// Inserting and removing measures does not move the columns behind the
// place of change: the measure commands shift their times (SetMeasureTime
// moves a whole column), and the lookups rely on the columns standing in
// time order once a command is done.
//
// Threads: the document thread, under the performance lock while commands
// run. A lookup moves the cursor, so even a lookup writes.
//
// Archive record: that of ECStaff, then the conductor and the performance by
// reference, the max staff number and the max measure as DWORD, the end time
// (written with version -1, read with the document's), and the tempo and
// meter envelopes by reference (read from document version 3 on). The staff
// array, the measure array and the staff groups stand in the second section
// (PostSerialize), after the tree.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/MCFraction.h>
#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/structure/ECStaff.h>
#include <scoremodel/events/structure/MCGroup.h>
#include <scoremodel/platform/CArray.h>

class ECConductor;
class ECConductorMeasure;
class ECMeasure;
class ECMeter;
class ECMeterEnv;
class ECPerformance;
class ECTempoEnv;

class SCOREMODEL_API ECConductorStaff : public ECStaff
{
    DECLARE_SERIAL(ECConductorStaff)

    // The measure commands change the columns.
    friend class CCAdjustMeasureChildren;
    friend class CCAddMeasure;
    friend class CCRemoveMeasure;
    friend class MCStructureJournal;

public:
    typedef CTypedPtrArray<CObArray, ECStaff *> StaffArray;
    typedef CTypedPtrArray<CObArray, ECConductorMeasure *> MeasureArray;

    // The track number that asks the measure queries for every row.
    static constexpr int kAllTracks = 0x7FE;
    // The most measures one lookup with `create` appends; a time that would
    // need more is refused (a bad time must not fill the memory).
    static constexpr int kMaxMeasuresPerLookup = 100000;

    ECConductorStaff();
    ECConductorStaff(ECConductor *conductor, ECPerformance *performance);

    void Serialize(CArchive &ar) override;
    void PostSerialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 17.
    int GetEventId() const override;
    // ECConductor.
    int GetParentTypes(CArray<int, int> &types) override;

    // After the base's call, keeps a tempo envelope (58) or a meter
    // envelope (34) as this staff's own.
    int AddChild(ECBase *child, int sorted) override;
    // After a successful base call, forgets the envelope it removed.
    int RemoveChild(ECBase *child, int deep) override;
    // Forgets both envelopes and every column first: the score is left
    // without measures (its staves keep theirs until they go too).
    int RemoveChildren(int deep) override;

    // As given to the constructor or read from the archive; otherwise
    // found (and kept) from the tree: the conductor ancestor and its
    // performance.
    ECConductor *GetConductor();
    ECPerformance *GetPerformance();

    // ---- Staves ----

    // The highest staff number; 0 when there is only the conductor staff.
    int GetMaxStaffNumber() const { return m_nMaxStaffNumber; }
    // The staff's number (its index in the array, searched from 0); -1 if
    // absent.
    int GetStaffNumber(ECStaff *staff);
    // The staff of `number` for 0 to the maximum. Another number gives 0
    // when `create` is 0; otherwise a new staff is added at the end by a
    // synchronous CCAddTrack on the performance (so it takes the next
    // number, whatever `number` said) and returned, or 0 if it could not be
    // placed.
    ECStaff *GetStaff(int number, int create);
    // Places `staff` at number `at`; an `at` below 1 or above the maximum
    // plus 1 means the end. The staves from `at` on move up by one (their
    // whole subtree takes the new track number), the staff takes number
    // `at`, enters the array and becomes a child of the conductor. Returns
    // the number; -1 for a null staff or one already in the array.
    int InsertStaff(ECStaff *staff, int at);
    // The reverse of InsertStaff: the staff leaves the array and the
    // conductor's children, and the staves behind it move down by one.
    // Nothing for a staff that is not numbered (the conductor staff itself,
    // the chord staff, a stranger).
    void RemoveStaff(ECStaff *staff);
    // Sorts the staff array by each staff's track number, lowest first, so
    // that the index equals the track number again; then each column's rows
    // the same way.
    void OrderStaves();
    // Forwarded to the staff groups (MCGroup::GroupTracks, RemoveGroup).
    int GroupStaves(int first, int last, int kind, int &id) { return m_group.GroupTracks(first, last, static_cast<BYTE>(kind), id); }
    void RemoveGroup(int id) { m_group.RemoveGroup(id); }
    // A stub kept for the views: returns 1 and leaves the outputs alone;
    // MCGroup::GetGroupInfo answers for real.
    int GetGroupInfo(int, int &, int &, int &) { return 1; }
    MCGroup &GetGroup() { return m_group; }
    // Rebuilds the clef and key cache of every staff from 1 to the maximum
    // from the clefs and keys beneath it.
    void RebuildStaffCaches();
    // Appends to the list (not emptied first) the key in force at the time
    // on each staff from 1 to the maximum, hand 0 and, on a staff of two
    // hands, hand 1; staves without a key there add nothing.
    void GetKeysAtTime(const MCTime &time, EventList &keys);

    // ---- Envelopes and measures ----

    // The tempo map, made at first use (voice 14, track 0) and added as a
    // child; null only when the add is refused. The add goes straight to
    // AddChild until the add command can run it.
    ECTempoEnv *GetTempoEnv();
    // The tempo map without making it; null while there is none.
    ECTempoEnv *FindTempoEnv() const { return m_pTempoEnv; }
    // The meter envelope, made at first use as the tempo map is.
    ECMeterEnv *GetMeterEnv();
    // The meter envelope without making it; null while there is none.
    ECMeterEnv *FindMeterEnv() const { return m_pMeterEnv; }

    // ---- Measures ----

    // The highest measure index; -1 when there are no measures.
    int GetMaxMeasureNumber() const { return m_nMaxMeasure; }
    // The end of the last measure; 0.0 when there are none.
    MCTime &GetMaxMeasureEndTime() { return m_maxMeasureEndTime; }
    // The lookup cursor: the index of the column found last.
    int GetCurrentMeasure() const { return m_nCurrentMeasure; }
    MeasureArray &GetConductorMeasures() { return m_measures; }

    // The number (from 1) of the column at the time. 0 below time zero,
    // max measure plus 1 (the last number) above the end time. At
    // exactly the end time no column answers, and the result is the
    // unchanged cursor plus 1.
    int GetMeasureNumberAtTime(MCTime &time);
    // The number of the column before a bar line at the time: 0 at or below
    // 0.0, max measure plus 1 (the last number) at or beyond the end; for a
    // time inside a
    // column, that column's number, and at the start of a column, the
    // number of the one before it.
    int GetMeasureNumberBeforeTime(MCTime &time);
    // The column at the time: the last one whose time is at or before it.
    // 0 below time zero, and at or beyond the end time when `create` is 0.
    // With `create`, measures are appended (`count` at a time, at least 1,
    // each as long as the meter in force at the end says, 4.0 without one)
    // until the time is covered; 0 when that would take more than
    // kMaxMeasuresPerLookup. Leaves the cursor on the answer.
    ECConductorMeasure *GetConductorMeasureAtTime(MCTime &time, int create, int count);
    // The measure of track `track` at the time; GetStaff and
    // GetConductorMeasureAtTime with `create`; 0 when either gives none.
    ECMeasure *GetMeasure(int track, MCTime time, int create, int count);
    // The measure of track `track` in the column numbered `number` (from
    // 1); 0 for a track or number out of range. Track 0 gives the column.
    ECMeasure *GetMeasure(int track, int number);
    // The measures of the columns from the one at `start` to the one before
    // a bar line at `end` (GetMeasureNumberAtTime, GetMeasureNumberBeforeTime),
    // selected as below.
    int GetMeasures(int track, MCTime start, MCTime end, EventList &measures);
    // Empties the list, then lists the measures of track `track` in the
    // columns numbered `first` to `last`: both taken as indices (number - 1)
    // and clamped to 0 to max measure, `last` raised to `first`. Track
    // 0x7FE lists every row from 0 to the maximum, row by row. Returns the
    // count listed; 0 for a track out of range or a score without measures.
    int GetMeasures(int track, int first, int last, EventList &measures);

    int HasShortenedEndMeasure() const { return m_nShortenEndMeasure; }
    // Kept for the commands; nothing here looks at it.
    void SetShortenEndMeasure(int shorten) { m_nShortenEndMeasure = shorten; }
    // Copies both fields into the owned record.
    void SetPickupFraction(MCFraction fraction);
    // The owned record; 0/1 until set.
    MCFraction *GetPickupFraction() { return m_pPickupFraction; }
    // Does nothing; returns 1. The entry point the commands call.
    int ManageEndMeasure() { return 1; }

    ECConductorStaff &operator=(const ECConductorStaff &other);
    // Identity.
    int operator==(const ECConductorStaff &other) const { return this == &other; }
    int operator!=(const ECConductorStaff &other) const { return !(*this == other); }

protected:
    ~ECConductorStaff() override;

    // ---- For the measure commands ----

    // Inserts `count` new columns at index `at` (below 0 or past the last:
    // appended), from `start` on, each the meter's length (4.0 without one):
    // a conductor measure added to this staff and a measure added to each
    // staff, all with the column's time. The end time grows by the lengths;
    // the columns behind keep their times. The cursor goes to `at + count`,
    // kept inside the score. Returns 1.
    int InsertMeasures(int at, int count, MCTime start, ECMeter *meter);
    // The same with columns the caller holds, as an undo puts back what a
    // removal took out: each conductor measure of the list becomes a column
    // in list order, timed from `start` on as above. A column's rows are the
    // ECMeasure events of the list whose time was the conductor measure's
    // time when called and whose track is a staff number (in any order,
    // column by column or row by row as GetMeasures gives them); a missing
    // row is made new. A conductor measure already in the score is passed
    // over. Returns 1.
    int InsertMeasures(int at, EventList &measures, MCTime start, ECMeter *meter);
    // Removes `count` columns from index `at`: every row leaves its column
    // and its staff, the column leaves the array and this staff, and the
    // end time shrinks by the length of the meter in force at each column.
    // What nobody else holds dies; a command that undoes holds them first.
    // An `at` below 0 or past the last means the last `count` columns
    // (index max measure + 1 - count), so that RemoveMeasures(-1, n) takes
    // away exactly what InsertMeasures(-1, n, ...) appended. The range is cut to the score. The cursor goes to
    // `at + count`, kept inside the score. Returns 1.
    int RemoveMeasures(int at, int count);
    // The length of a measure under `meter`: 4.0 without one, and also for
    // a meter whose length reads as zero or less (a wrapped 64/1), so that
    // appending always advances.
    static float MeasureLength(ECMeter *meter);
    // The meter in force at the time, through the conductor; 0 without one.
    ECMeter *MeterAt(const MCTime &time);
    // Puts the cursor back inside 0 to max measure.
    void ClampCursor();
    // Makes an envelope of the class (voice 14, track 0) and adds it.
    void AddEnvelope(CRuntimeClass *envelopeClass);
    // One new column at `at` with rows on every staff, or the given column
    // and rows; returns 0 when the column could not be placed.
    int PlaceColumn(int at, ECConductorMeasure *column, ECMeasure *const *rows, const MCTime &start);

    // Gives every staff whose track number is at least `from` the number
    // plus `delta`, through its whole subtree.
    void RenumberStaves(int from, int delta);
    // The highest index of the staff array that counts: the max staff
    // number, kept inside the array even when a document says otherwise.
    int LastStaffIndex() const;

    ECConductor *m_pConductor = nullptr;
    ECPerformance *m_pPerformance = nullptr;
    int m_nMaxStaffNumber = 0;
    StaffArray m_staves;
    int m_nCurrentMeasure = 0;
    int m_nMaxMeasure = -1;
    MCTime m_maxMeasureEndTime;
    MeasureArray m_measures;
    int m_nShortenEndMeasure = 0;
    MCFraction *m_pPickupFraction = nullptr;
    MCGroup m_group;
    ECTempoEnv *m_pTempoEnv = nullptr;
    ECMeterEnv *m_pMeterEnv = nullptr;

private:
    ECConductorStaff(const ECConductorStaff &) = delete;
};
