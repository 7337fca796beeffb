// ECEnvelope: a time-ordered curve of values; its children are the points
// (ECEnvPoint), at most one per time, sorted by ascending time.
//
// The playback engine walks forward through time asking for the value now,
// thousands of times a second, while editors ask for points by time and by
// index. So the envelope remembers where its last search stopped (the
// cursor): a lookup first looks at the cursor's node and one neighbour, and
// only then searches, starting from whichever of head, cursor and tail lies
// nearer. Sequential reading costs O(1) per call; a jump costs at most half
// the stretch from the nearest of the three.
//
//     ECEnvPoint *p = envelope->GetPointBeforeEqual(now);   // O(1) when near
//     float v;
//     if (envelope->GetValue(now, v, 1, -1))                // changed?
//         send(v);
//
// The cursor is null exactly while the envelope has no point. Every lookup
// moves it, which is why the lookups are not const. A search that runs off
// the list leaves the cursor on the end node it reached.
//
// Threads and locks. The envelope's lock (re-entrant, GetLock) stands for the
// child list's lock: the point, range and anchor lookups, GetIndexForPoint,
// UpdateChildren, and here also AddChild, RemoveChild and RemoveChildren take
// it, so a playback thread may read while the editing thread adds and
// removes points. GetValue holds it for the whole call (not just around its
// lookups), so the points it reads cannot die under it. The plain index
// lookups take no lock and belong to the editing thread. The last-value
// fields are unguarded: one reader at a time samples an envelope.
// TryGetValue never waits: when another thread holds the lock it answers
// with the last delivered value and says so.
//
// Kept oddities, wanted as they are:
// - GetIndexAt always answers -1; use GetPointAt for an exact hit.
// - IsEndPoint reads both ends without a test: call it on a non-empty
//   envelope only (here it answers 0 for an empty one rather than crash).
// - An integer-valued envelope does not interpolate a ramp whose range is
//   below 1: a ramp from 10 to 10.5 delivers 10 throughout.
// - IsEnabled is 0 for an envelope without points whatever Enable said.
// - AddChild refuses a child at a time already taken, and moves a negative
//   time to zero. It always inserts by time whatever `sorted` says, and
//   refuses a child that is not an ECEnvPoint: the searches rely on both.
//
// Archive record, behind ECWithTimeChild: float default value, float lower
// limit, float upper limit, CString name, CString comment, DWORD flags,
// MCTime minimum delta time, then the anchor group list, which as a plain
// pointer list writes nothing. Loading puts the cursor on the head, moves
// negative point times to zero and sorts the points; a child that is not a
// point is a corrupt file (CArchiveException).
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/base/ECWithTimeChild.h>
#include <scoremodel/events/base/MCPtrList.h>
#include <scoremodel/platform/CCriticalSection.h>
#include <scoremodel/platform/CString.h>
#include <scoremodel/platform/CTypedPtrList.h>

#include <vector>

class ECEnvPoint;

// One sample delivered by GetValues; the caller's list owns it.
struct EVALUE
{
    MCTime time;
    float value;
};
typedef CTypedPtrList<MCPtrList, EVALUE *> EValueList;

// The line through (x1, y1) and (x2, y2): scale and offset; both 0 when x1
// equals x2.
SCOREMODEL_API void SetScaleParams(float x1, float x2, float y1, float y2, float &scale, float &offset);

class SCOREMODEL_API ECEnvelope : public ECWithTimeChild
{
    DECLARE_SERIAL(ECEnvelope)

public:
    // Search modes of _Search and its parts.
    enum SearchMode
    {
        SearchBefore = 1,
        SearchBeforeEqual = 2,
        SearchAfterEqual = 4,
        SearchAfter = 5
    };

    ECEnvelope();

    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 22.
    int GetEventId() const override;
    // ECConductorStaff, ECStaff, ECTrack, ECWaveTrack.
    int GetParentTypes(CArray<int, int> &types) override;

    // ---- Children ----

    // 0 for a child without a time, not a point, or at a time already taken.
    // Otherwise inserts it by time (a negative time becomes zero), runs
    // UpdateChildren and returns 1.
    int AddChild(ECBase *child, int sorted) override;
    // The base's result; UpdateChildren after it.
    int RemoveChild(ECBase *child, int deep) override;
    // Also deletes every anchor group.
    int RemoveChildren(int deep) override;
    // Puts the cursor on the head (null for no point), under the lock. An
    // override must keep that.
    virtual void UpdateChildren();

    // ---- Point lookup (points owned by the envelope, or null) ----

    // Null for an index outside 0 to count - 1.
    ECEnvPoint *GetPointAtIndex(int index);
    // Last point with time < `time`.
    ECEnvPoint *GetPointBefore(MCTime &time);
    // Last point with time <= `time`.
    ECEnvPoint *GetPointBeforeEqual(MCTime &time);
    // The point exactly at `time`.
    ECEnvPoint *GetPointAt(MCTime &time);
    // First point with time >= `time`.
    ECEnvPoint *GetPointAfterEqual(MCTime &time);
    // First point with time > `time`.
    ECEnvPoint *GetPointAfter(MCTime &time);

    // ---- Index lookup (-1 when there is no such point; no lock) ----

    int GetPointCount() { return m_children.GetCount(); }
    int GetIndexForPoint(ECEnvPoint *point);
    int GetIndexBefore(MCTime &time);
    int GetIndexBeforeEqual(MCTime &time);
    // Always -1 (see the header comment).
    int GetIndexAt(MCTime &time);
    int GetIndexAfterEqual(MCTime &time);
    int GetIndexAfter(MCTime &time);

    // ---- Ranges: points with from <= time < to appended; 1 if any ----

    int GetPointsInRange(MCTime &from, MCTime &to, EventList &list);
    int GetAnchorPointsInRange(MCTime &from, MCTime &to, EventList &list);
    int GetAnchorHeadPointsInRange(MCTime &from, MCTime &to, EventList &list);
    // 1 for the first or the last point.
    int IsEndPoint(ECEnvPoint *point);

    // ---- Anchor groups (the envelope owns the groups, not the points) ----

    // The first group holding `point`, else null.
    EventList *GetAnchorGroup(ECEnvPoint *point);
    // Appends a copy of `group`; the argument stays the caller's.
    void AddAnchorGroup(EventList *group);
    // Deletes `group` when it is one of this envelope's; else nothing.
    void RemoveAnchorGroup(EventList *group);
    int GetAnchorGroupCount() const { return static_cast<int>(m_anchorGroups.size()); }

    // ---- Settings ----

    // Stored as given, unordered.
    void SetLimits(float lower, float upper)
    {
        m_lowerLimit = lower;
        m_upperLimit = upper;
    }
    float GetLowerLimit() const { return m_lowerLimit; }
    float GetUpperLimit() const { return m_upperLimit; }
    float GetDefaultValue() const { return m_defaultValue; }
    void SetDefaultValue(float value) { m_defaultValue = value; }
    CString GetEnvelopeName() const { return m_name; }
    void SetEnvelopeName(const CString &name) { m_name = name; }
    CString GetEnvelopeComment() const { return m_comment; }
    void SetEnvelopeComment(const CString &comment) { m_comment = comment; }
    // Raised to 0.005 seconds when below.
    void SetMinDeltaTime(MCTime &time);
    MCTime &GetMinDeltaTime() { return m_minDeltaTime; }
    void Enable(int on) { m_envFlags = (m_envFlags & ~1u) | (static_cast<unsigned>(on) & 1u); }
    // 1 only when enabled and holding at least one point.
    int IsEnabled() { return (m_envFlags & 1u) && !m_children.IsEmpty() ? 1 : 0; }
    int IntValued() const { return (m_envFlags >> 1) & 1u; }
    // Carries the last delivered value over when the setting changes.
    void SetIntValued(int on);
    int GetCurrentStyle() const { return m_currentStyle; }
    MCTime &GetLastValueTime() { return m_lastValueTime; }
    MCTime &GetLastEndTime() { return m_lastEndTime; }

    // ---- Values ----

    // The value at `time`; 1 when it differs from the last delivered value.
    // `hand` -1 takes any point; 0 or 1 only a point of that hand, else the
    // default value.
    int GetValue(MCTime &time, float &value, int clamp, int hand);
    // The point's own value through the same end stage, at the point's time.
    int GetValue(ECEnvPoint *point, float &value, int clamp);
    // Appends to `list` the changes over [from, to): points as they come,
    // ramps sampled every max(minimum delta time * density, 0.002 s). One
    // sample per change, never two equal values in a row. 1 if `list` holds
    // any sample afterwards.
    int GetValues(MCTime &from, MCTime &to, float density, EValueList &list, int clamp);
    // Forgets the last delivered value: the next read counts as changed.
    void Reset();
    // For the playback thread: GetValue without waiting. When another thread
    // holds the lock, `value` gets the last delivered value and the result
    // is -1; otherwise GetValue's result.
    int TryGetValue(MCTime &time, float &value, int clamp, int hand);

    // The lock that guards the child list and the cursor.
    CCriticalSection &GetLock() { return m_lock; }

    // Copies the ECWithTimeChild part, default value, limits, minimum delta
    // time, name, comment and flags; not the playback memory, the cursor or
    // the anchor groups.
    ECEnvelope &operator=(const ECEnvelope &other);
    int operator==(const ECEnvelope &other) const { return ECWithTimeChild::operator==(other); }
    int operator!=(const ECEnvelope &other) const { return !(*this == other); }

protected:
    ~ECEnvelope() override;

    // ---- The search (under the lock; none takes it) ----

    ECEnvPoint *_Search(MCTime &time, int mode);
    ECEnvPoint *_LinearSearch(MCTime &time, int forward, int mode);
    ECEnvPoint *_LinearSearchForward(MCTime &time, int mode);
    ECEnvPoint *_LinearSearchBackward(MCTime &time, int mode);
    ECEnvPoint *_CompleteSearchForward(int mode);
    ECEnvPoint *_CompleteSearchBackward(int mode);
    ECEnvPoint *_ResolveSearchForward(int mode);
    ECEnvPoint *_ResolveSearchBackward(int mode);
    int _IndexSearchForward(MCTime &time, int inclusive);
    int _IndexSearchBackward(MCTime &time, int inclusive);
    int _IndexLookup(MCTime &time, int mode);
    int _GetValue(MCTime &time, float &value, int clamp, int hand);
    int _GetValueEnd(ECEnvPoint *point, MCTime &time, float &value, int clamp);
    void _AddRealValue(ECEnvPoint *point, int clamp, MCTime &time, EValueList &list);
    void _AddInterpolatedValue(int clamp, MCTime &time, EValueList &list);
    int _GetPointsInRange(MCTime &from, MCTime &to, EventList &list, int flagMask);
    void DeleteAnchorGroups();

    // ---- For the maps whose points are of one class (tempo, meter) ----

    // AddChild for an instance of `kind` only (0 for anything else); on
    // success the child takes this envelope's voice/track word.
    int AddChildOfKind(ECBase *child, int sorted, CRuntimeClass *kind);
    // After a load: a child that is no `kind` is a corrupt file
    // (CArchiveException naming `what`).
    void CheckChildrenOfKind(CRuntimeClass *kind, const char *what);

    POSITION m_pos = nullptr;
    float m_defaultValue = 0.0f;
    float m_lowerLimit = -3.4028235e38f;
    float m_upperLimit = 3.4028235e38f;
    MCTime m_minDeltaTime;
    CString m_name;
    CString m_comment;
    int m_currentStyle = 0;
    int m_lastIntValue = 0x7FFFFFFF;
    float m_lastFloatValue = 3.4028235e38f;
    MCTime m_lastValueTime;
    MCTime m_lastEndTime;
    std::vector<EventList *> m_anchorGroups;
    DWORD m_envFlags = 3;
    CCriticalSection m_lock;

private:
    ECEnvelope(const ECEnvelope &) = delete;
};
