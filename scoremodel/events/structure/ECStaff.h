// ECStaff: a track with measures, the home of the notes of one part.
//
// Track numbers 1 to n are the staves of the score, in the conductor staff's
// staff array; the chord staff (staff type 9, track 0x7FC) is a staff that
// stands apart from that numbering. Structural: voice 14.
//
// The staff type (7 bits) and the staff-empty flag (the top bit) share the
// spare byte of the event. Types the model branches on: 1, a staff of two
// hands; 4, tablature; 9, the chord staff. Others are carried for the views.
//
// Clefs and keys. The staff answers "which clef (key) is in force at this
// time, for this hand" from its MCStaffCache, not from a search of the tree.
// The cache is kept current from three sides: a measure caches a clef or
// key added to it and uncaches one before it leaves (ECMeasure::AddChild,
// RemoveChild); a measure added to or removed from the staff brings or takes
// the clefs and keys it holds; and a clef or key that changes its time calls
// UncacheEvent before and CacheEvent after (or RecacheEvent once moved).
// Only the events in the staff's own measures are cached: a mirror of a key
// (ECMirror) shows the key elsewhere but neither caches it on another staff
// nor keeps it in this staff's cache once the key itself has left.
//
// Archive record: that of ECTrack, then the spare byte raw, the percussion
// map (2 bytes), the percussion MIDI pitch (1 byte), the staff lines (4
// bytes), the staff size (BYTE) and the tablature instrument (its own
// record). Loading reads the percussion fields, the lines, the size and the
// instrument only from document version 5 on, and rebuilds the cache from
// the clefs and keys beneath the staff. A tablature staff (type 4) counts its
// lines from its tablature instrument's strings.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/structure/ECTrack.h>
#include <scoremodel/instruments/MCInstrument.h>

class ECClef;
class ECKey;
class MCStaffCache;

class SCOREMODEL_API ECStaff : public ECTrack
{
    DECLARE_SERIAL(ECStaff)

public:
    // The staff types the model itself branches on.
    enum : BYTE
    {
        StaffTypeTwoHands = 1,
        StaffTypeTablature = 4,
        StaffTypeChord = 9
    };

    // Type 0, empty.
    ECStaff();
    explicit ECStaff(BYTE type);

    void Serialize(CArchive &ar) override;
    // On load below document version 16: a staff size of 8 becomes 32 and 9
    // becomes 33.
    void PostSerialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 55.
    int GetEventId() const override;
    // ECConductor.
    int GetParentTypes(CArray<int, int> &types) override;

    // ---- Staff properties ----

    // The tablature instrument's string count on a tablature staff (type
    // 4), the staff's own lines on any other.
    int GetStaffLines() const;
    MCInstrument &GetTablatureInstrument() { return m_tablature; }
    const MCInstrument &GetTablatureInstrument() const { return m_tablature; }
    // Takes a copy of `instrument`.
    void SetTablatureInstrument(const MCInstrument &instrument) { m_tablature = instrument; }
    BYTE GetStaffType() const { return static_cast<BYTE>(GetSpareByte() & 0x7F); }
    // Stores 7 bits and keeps the empty flag.
    void SetStaffType(BYTE type) { SetSpareByte(static_cast<BYTE>((GetSpareByte() & 0x80) | (type & 0x7F))); }
    int IsStaffEmpty() const { return (GetSpareByte() & 0x80) ? 1 : 0; }
    void SetStaffEmpty(int empty) { SetSpareByte(static_cast<BYTE>((GetSpareByte() & 0x7F) | (empty ? 0x80 : 0))); }

    BYTE GetStaffSize() const { return m_staffSize; }
    void SetStaffSize(BYTE size) { m_staffSize = size; }
    // Notehead, degree and voice of a percussion staff, packed in 16 bits.
    WORD GetPercussionStaffMap() const { return m_percussionMap; }
    void SetPercussionStaffMap(WORD map) { m_percussionMap = map; }
    BYTE GetPercussionStaffMidiPitch() const { return m_percussionPitch; }
    void SetPercussionStaffMidiPitch(BYTE pitch) { m_percussionPitch = pitch; }
    void SetStaffLines(int lines) { m_nStaffLines = lines; }
    int GetJianpuOffsetY() const { return m_nJianpuOffsetY; }
    void SetJianpuOffsetY(int offset) { m_nJianpuOffsetY = offset; }
    int GetJianpuMode() const { return m_nJianpuMode; }
    void SetJianpuMode(int mode) { m_nJianpuMode = mode; }
    // The vertical offset of numbered notation on a grand staff (type 1):
    // the lower hand sits one staff below the offset of a single staff.
    int GetJianpuOffsetYForGrandStaff() const;

    // ---- Clefs and keys ----

    // The clef (key) in force at the time for the hand (the last one at or
    // before it); any non-zero hand is the second hand. 0 when none.
    virtual ECClef *GetClefAtTime(MCTime &time, BYTE hand);
    // The one in force just before a change at exactly `time`.
    virtual ECClef *GetClefBeforeTime(MCTime &time, BYTE hand);
    // From the clef's time to the next change of that hand's clefs; the
    // last clef runs to the end of the score (the conductor staff's end
    // time, or TimeMax outside a score). TimeNull for both when the clef is
    // not the one in force at its own time (not cached on this staff).
    virtual void GetClefScope(ECClef *clef, MCTime &start, MCTime &end, BYTE hand);
    ECKey *GetKeyAtTime(MCTime &time, BYTE hand);
    ECKey *GetKeyBeforeTime(MCTime &time, BYTE hand);
    void GetKeyScope(ECKey *key, MCTime &start, MCTime &end, BYTE hand);
    MCStaffCache *GetCache() { return m_cache; }

    // 0 for an event that is not a clef or key (or no cache); otherwise the
    // cache's answer. A clef or key calls UncacheEvent before its time
    // changes and CacheEvent after. The first clef (key) of a hand at a
    // moment answers; a second one there is cached once the first leaves.
    virtual int CacheEvent(ECBase *event, BYTE hand);
    virtual int UncacheEvent(ECBase *event, BYTE hand);
    // Uncaches the event if it is cached, then caches it: for whoever has
    // already moved it.
    virtual int RecacheEvent(ECBase *event, BYTE hand);
    // The hand a clef or key is cached under: its own GetHand; 0 for any
    // other event.
    static BYTE GetCacheHand(ECBase *event);
    // Empties the cache and caches the clefs and keys beneath the staff, in
    // tree order.
    void RebuildCache();

    // ---- Compression marks ----

    // 1 when the last compression mark (ECCompress) between time zero and
    // `time` covers `time` (from its time to its time plus duration).
    int IsCompressionActive(MCTime *time);
    // 1 when a compression mark lies between the two times (taken in order
    // of the pointers); 0 for the same pointer twice.
    int IsCompressionBetween(MCTime *a, MCTime *b);

    // ---- Children ----

    // After the base's call, a measure's clefs and keys enter the cache.
    int AddChild(ECBase *child, int sorted) override;
    // A measure's clefs and keys leave the cache before the base's call.
    int RemoveChild(ECBase *child, int deep) override;
    // Empties the cache, then the base's call.
    int RemoveChildren(int deep) override;

    // Assigns the ECTrack part, then the staff type (not the empty flag),
    // the staff size, the tablature instrument, the staff lines and the
    // jianpu offset. The percussion fields and the jianpu mode are not
    // copied.
    ECStaff &operator=(const ECStaff &other);
    // Staff type, staff size, tablature instrument and staff lines.
    int operator==(const ECStaff &other) const;
    int operator!=(const ECStaff &other) const { return !(*this == other); }

protected:
    ECStaff(const ECStaff &other);
    ~ECStaff() override;

    BYTE m_staffSize = 0x20;
    WORD m_percussionMap = 0x0D0;
    BYTE m_percussionPitch = 0x23;
    int m_nStaffLines = 5;
    MCInstrument m_tablature;
    int m_nJianpuOffsetY = 1000;
    int m_nJianpuMode = 0;
    MCStaffCache *m_cache = nullptr;

private:
    // Caches (or uncaches) the clefs and keys that are children of
    // `measure`.
    void CacheMeasure(ECBase *measure, bool cache);
    // After `gone` left the cache: another clef (key) of its hand at the
    // same time in this staff's measure there is cached in its place.
    void CacheRunnerUp(ECBase *gone, BYTE hand);
};
