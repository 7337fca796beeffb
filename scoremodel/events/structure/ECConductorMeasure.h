// ECConductorMeasure: one column of the score.
//
// The conductor staff's measure at one time. Its measure array, indexed by
// track number, knows the ECMeasure of every staff in the column; element 0
// is this measure itself. Voice 14, track 0. The array holds no references:
// each row's measure is held by its staff, and the conductor staff keeps the
// rows of every column in step with its staff array (ECConductorStaff).
//
// Archive record: that of ECWithTimeChild, the max track as DWORD, then the
// collapse-measure value as one raw byte, always written but read only from
// document version 20 on. The measure array stands in the second section
// (PostSerialize), after the tree.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/structure/ECMeasure.h>
#include <scoremodel/platform/CArray.h>

class SCOREMODEL_API ECConductorMeasure : public ECMeasure
{
    DECLARE_SERIAL(ECConductorMeasure)

public:
    typedef CTypedPtrArray<CObArray, ECMeasure *> MeasureArray;

    ECConductorMeasure();
    // Also sets the time.
    explicit ECConductorMeasure(MCTime &time);

    void Serialize(CArchive &ar) override;
    void PostSerialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 16.
    int GetEventId() const override;
    // ECConductorStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    // The value the views give to a collapsed column; kept in the spare byte.
    virtual void SetCollapseMeasure(BYTE value) { SetSpareByte(value); }
    virtual BYTE GetCollapseMeasure() const { return GetSpareByte(); }

    // The measure of the column on `track`; 0 for a track below 0 or above
    // the max track.
    ECMeasure *GetMeasureOnTrack(int track);
    int GetMaxTrack() const { return m_nMaxTrack; }
    MeasureArray &GetMeasures() { return m_measures; }
    // Empties the list, then lists the events of that row's measure (its
    // children, walked at depth 1); track 0x7FE takes every row from 0 to
    // the max track in order. 1 when the list is not empty.
    int GetMeasureEvents(int track, EventList &events);
    // The column before this one, through the ECConductorStaff above and
    // GetMeasureNumber; 0 for the first column or outside a score.
    ECConductorMeasure *GetPreviousCondMeasure();
    // Sets the time of every row from 0 to the max track, this measure
    // included, so the whole column moves at once.
    void SetMeasureTime(MCTime *time);

    // Assigns the base and copies the collapse-measure value.
    ECConductorMeasure &operator=(const ECConductorMeasure &other);
    // Identity.
    int operator==(const ECConductorMeasure &other) const { return this == &other; }
    int operator!=(const ECConductorMeasure &other) const { return !(*this == other); }

protected:
    friend class ECConductorStaff;
    friend class MCStructureJournal;

    ~ECConductorMeasure() override;

    // Inserts `measure` as the row of `track` (the rows above move up) and
    // raises the max track. 0 for a null measure or a track below 1 or
    // above the max track plus 1.
    int AddMeasureOnTrack(ECMeasure *measure, int track);
    // Takes out the row of `track` (the rows above move down), lowers the
    // max track and returns it; 0 when out of range.
    ECMeasure *RemoveMeasureOnTrack(int track);
    // Empties the array; max track -1.
    void RemoveMeasures();
    // Sorts the rows by each measure's track number, lowest first.
    void OrderMeasures();

    MeasureArray m_measures;
    int m_nMaxTrack = 0;

private:
    ECConductorMeasure(const ECConductorMeasure &) = delete;
};
