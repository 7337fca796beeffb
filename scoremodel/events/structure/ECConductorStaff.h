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
// Archive record: that of ECStaff, then the conductor and the performance by
// reference, the max staff number and the max measure as DWORD, the end time
// (written with version -1, read with the document's), and the tempo and
// meter envelopes by reference (read from document version 3 on). The staff
// array stands in the second section (PostSerialize).
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/structure/ECStaff.h>
#include <scoremodel/platform/CArray.h>

class ECConductor;
class ECMeterEnv;
class ECPerformance;
class ECTempoEnv;

class SCOREMODEL_API ECConductorStaff : public ECStaff
{
    DECLARE_SERIAL(ECConductorStaff)

public:
    typedef CTypedPtrArray<CObArray, ECStaff *> StaffArray;

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
    // Forgets both envelopes first.
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
    // that the index equals the track number again.
    void OrderStaves();

    // ---- Envelopes and measures ----

    // The tempo map, made at first use (voice 14, track 0) and added as a
    // child; null only when the add is refused. The add goes straight to
    // AddChild until the add command can run it.
    ECTempoEnv *GetTempoEnv();
    // The tempo map without making it; null while there is none.
    ECTempoEnv *FindTempoEnv() const { return m_pTempoEnv; }
    // The meter envelope added to this staff; null while there is none.
    ECMeterEnv *GetMeterEnv() const { return m_pMeterEnv; }
    // The highest measure index; -1 when there are no measures.
    int GetMaxMeasureNumber() const { return m_nMaxMeasure; }
    // The end of the last measure; 0.0 when there are none.
    MCTime &GetMaxMeasureEndTime() { return m_maxMeasureEndTime; }

    ECConductorStaff &operator=(const ECConductorStaff &other);
    // Identity.
    int operator==(const ECConductorStaff &other) const { return this == &other; }
    int operator!=(const ECConductorStaff &other) const { return !(*this == other); }

protected:
    ~ECConductorStaff() override;

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
    int m_nMaxMeasure = -1;
    MCTime m_maxMeasureEndTime;
    ECTempoEnv *m_pTempoEnv = nullptr;
    ECMeterEnv *m_pMeterEnv = nullptr;

private:
    ECConductorStaff(const ECConductorStaff &) = delete;
};
