// ACBase: the tree walker that every action is built on.
//
// An action walks the event tree from a given event and does one thing at
// each event it meets. The walk is written once, here; a concrete action
// overrides DoAction, and what DoAction returns steers the walk:
//
//   ResultFailed   (-1)  failure; the whole walk stops
//   ResultContinue  (0)  go on: enter this event's children
//   ResultSkip      (1)  do not enter the children; the siblings go on
//   ResultStop      (2)  stop the whole walk
//   ResultLeave     (3)  leave this level: the remaining siblings of this event
//                        are dropped and the walk goes on above. Children
//                        lists are in time order, so a range search returns
//                        this at the first event past its end.
//
// Apply returns the same codes. A typical use, on the stack:
//
//     ACFindEvents find(1);
//     find.AddEvtType(EVENT_ID_NOTE);
//     if (find.Apply(pMeasure) != ACBase::ResultFailed)
//         UseNotes(find.GetEvents());
//
// Three lists shape the walk, each switched on and off as a whole:
//   - the clip list (on; beam, slur, tie, glissando): DoAction runs on such
//     an event, but its children are not entered;
//   - the bypass list (on; the envelope containers and the unused ids 63, 69,
//     79): DoAction does not run on such an event, but its children are
//     entered, and it does not count as a level of depth. So envelope
//     containers are transparent: their points are visited and they are not;
//   - the bypass filters (off): codes that bypass further events; code 0
//     bypasses the fixed events of time zero (see ShouldFilter).
//
// Depth. SetDepth(n) limits how many levels below the start are entered; 255
// means no limit. Bypassed events are looked through, so a depth of 1 reaches
// the children, and the points of an envelope among them.
//
// Wanted oddities, kept on purpose:
//   - EndAction runs at the end of every event that reaches the end of Apply
//     while no depth limit is set (the level count then stays 0), not only at
//     the end of the outermost call; a limited walk runs it once, at the top.
//     An early return (a DoAction result other than 0, a clipped event, the
//     depth limit) skips it. Actions must make a repeated EndAction harmless.
//   - Once the list Apply has run, the action never again gets EndAction from
//     the single-event Apply: m_bInList is set and never cleared, not even by
//     Reset.
//   - BeginAction runs once, at the first Apply. Without Reset, a second
//     Apply continues the first: results gather across the calls.
//
// A walk deeper than kMaxNesting levels fails with ResultFailed. Only a graph
// with a cycle (a corrupt document) gets there; the guard turns an endless
// descent into a failure instead of a stack overflow. It costs one counter.
//
// The walk itself allocates nothing: it recurses over the child (or parent)
// lists in place, and the clip and bypass tests on the usual event ids are a
// bit test (see the masks below), since they run at every event.
//
// Threads: an action is not safe to share; each caller builds its own, on the
// stack. The tree must not change under a walk except through the event being
// visited: the next position is taken before each call, so a DoAction may
// remove its own event from the list being walked, and then returns 1 or
// more, since with 0 the walk would go on into the children of an event that
// may be gone.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CArray.h>
#include <scoremodel/platform/CTypedPtrList.h>
#include <scoremodel/platform/Types.h>

#include <cstdint>

class ECBase;
class MCEventList;

class SCOREMODEL_API ACBase
{
public:
    typedef CTypedPtrList<MCEventList, ECBase *> EventList;

    // The results of DoAction and of Apply.
    enum Result : int
    {
        ResultFailed = -1,
        ResultContinue = 0,
        ResultSkip = 1,
        ResultStop = 2,
        ResultLeave = 3
    };

    // The depth that means "no limit".
    static constexpr int kNoDepthLimit = 255;
    // The deepest recursion a walk accepts before it fails (see the header).
    static constexpr int kMaxNesting = 1000;
    // The bypass filter code that bypasses the fixed events of time zero.
    static constexpr int kFilterTimeZeroFixed = 0;

    // `bReverse` non-zero walks to the parents instead of the children. The
    // clip and bypass lists start with their defaults, switched on.
    explicit ACBase(int bReverse = 0);
    virtual ~ACBase();

    ACBase(const ACBase &) = delete;
    ACBase &operator=(const ACBase &) = delete;

    // ---- The walk (virtual, in this order) ----

    // Runs once before the first event of a walk; 0 makes Apply fail with -1.
    // Returns 1 here.
    virtual int BeginAction();
    // Walks every non-null entry of `list` from the head, each as a walk of
    // its own (the level count starts at 0 for each). With `bContinue` 0, an
    // entry giving -1, 2 or 3 stops the loop and the result becomes 2; with
    // `bContinue` non-zero the loop goes on. Then EndAction runs once. Returns
    // the last result: 0 for an empty list, -1 for a null one (nothing runs).
    // Sets m_bInList for good (see the header).
    virtual int Apply(EventList *list, int bContinue);
    // Walks from `e` (see the header). -1 for a null event, without starting
    // the action; -1 when BeginAction refuses.
    virtual int Apply(ECBase *e);
    // The work at one event; its result steers the walk. A result other than
    // 0 is returned at once, without entering the children; the parent's loop
    // takes values other than -1, 2 and 3 as 1. Returns 0 here.
    virtual int DoAction(ECBase *e);
    // Runs at the end of a walk, possibly more than once (see the header).
    // Nothing here.
    virtual void EndAction();
    // Makes the next Apply run BeginAction again.
    virtual void Reset();

    // ---- Direction and depth ----

    void SetReverse(int bReverse) { m_bReverse = bReverse ? 1 : 0; }
    int IsReverse() const { return m_bReverse; }
    // Levels to descend, 0 to 255; 255 is no limit. A value outside that
    // range changes nothing: cut to 8 bits, 256 would become 0 and silently
    // stop the walk at its start.
    void SetDepth(int depth)
    {
        if (depth >= 0 && depth <= kNoDepthLimit)
            m_nDepth = static_cast<BYTE>(depth);
    }
    int GetDepth() const { return m_nDepth; }
    // The level the walk is at, counted only under a depth limit.
    int GetCurDepth() const { return m_nCurDepth; }

    // ---- Clip, bypass and filter lists ----

    // Appends an id to the clip list and switches it on; -1 means ClipNone.
    void ClipEvtType(int id);
    // Empties the clip list and switches it off.
    void ClipNone();
    // The same for the bypass list.
    void BypassEvtType(int id);
    void BypassNone();
    // Appends a filter code and switches filtering on.
    void BypassFilter(int code);
    // Empties the filter codes and switches filtering off.
    void BypassFilterNone();

    const CArray<int, int> &GetClipTypes() const { return m_clipTypes; }
    const CArray<int, int> &GetBypassTypes() const { return m_bypassTypes; }
    const CArray<int, int> &GetBypassFilters() const { return m_bypassFilters; }
    int IsClipOn() const { return m_bClip; }
    int IsBypassOn() const { return m_bBypass; }
    int IsBypassFilterOn() const { return m_bBypassFilter; }
    int IsBegun() const { return m_bBegun; }
    int IsInList() const { return m_bInList; }

protected:
    // 1 when the clip list is on and holds the event's id; 0 otherwise (and
    // for null).
    int ShouldClip(ECBase *e);
    // 0 for null. 1 when the bypass list is on and holds the event's id;
    // otherwise, when filtering is on, ShouldFilter(e, m_bypassFilters).
    int ShouldBypass(ECBase *e);
    // 1 when one of `filters` selects the event. Code 0 selects, at time
    // zero, the bank selects, clef, conductor staff, generic envelope point,
    // flow control, key, meter, performance, program change, staff, tempo,
    // text and drawing, and a lyric whose two lowest flag bits are both set.
    // Other codes select nothing.
    int ShouldFilter(ECBase *e, CArray<int, int> &filters);

    // The list the walk follows from `e`: its parents walking in reverse,
    // otherwise its children (null when it has none).
    EventList *GetFollowList(ECBase *e);

    // The bookkeeping of the walk, for Apply overrides that walk their own way.
    // Runs BeginAction when it has not run; false when it refused.
    bool EnsureBegun();

    // One level below an event, for the life of the scope: counts the depth
    // (for an event not bypassed, under a depth limit) and the recursion, and
    // takes both back when the scope ends, even through an exception. When
    // the level could not be entered nothing is counted: State() says why.
    class LevelScope
    {
    public:
        enum State
        {
            Entered,
            DepthPassed, // past the depth limit
            TooDeep      // kMaxNesting reached: a cycle
        };

        LevelScope(ACBase &action, bool bypassed)
            : m_action(action), m_counted(!bypassed && action.m_nDepth != kNoDepthLimit)
        {
            if (m_counted && action.m_nCurDepth >= action.m_nDepth)
                m_state = DepthPassed;
            else if (action.m_nNesting >= kMaxNesting)
                m_state = TooDeep;
            else
            {
                m_state = Entered;
                ++action.m_nNesting;
                if (m_counted)
                    ++action.m_nCurDepth;
            }
        }
        ~LevelScope()
        {
            if (m_state != Entered)
                return;
            --m_action.m_nNesting;
            if (m_counted)
                --m_action.m_nCurDepth;
        }
        LevelScope(const LevelScope &) = delete;
        LevelScope &operator=(const LevelScope &) = delete;

        State GetState() const { return m_state; }

    private:
        ACBase &m_action;
        bool m_counted;
        State m_state;
    };

    // The same tests by id, for code that already holds the id.
    bool IsClippedId(int id) const;
    bool IsBypassedId(int id) const;

    unsigned m_bBegun : 1;
    unsigned m_bReverse : 1;
    unsigned m_bInList : 1;
    unsigned m_bClip : 1;
    unsigned m_bBypass : 1;
    unsigned m_bBypassFilter : 1;
    BYTE m_nDepth;
    BYTE m_nCurDepth;
    CArray<int, int> m_clipTypes;
    CArray<int, int> m_bypassTypes;
    CArray<int, int> m_bypassFilters;

private:
    // Ids 0..127 of a list as bits, kept in step with the array, with a flag
    // for ids outside that range (which then fall back to a scan). The lists
    // are read at every event and changed almost never.
    struct IdMask
    {
        uint64_t bits[2] = {0, 0};
        bool hasOthers = false;

        void Add(int id);
        void Clear() { *this = IdMask(); }
        bool Test(int id, const CArray<int, int> &list) const;
    };

    IdMask m_clipMask;
    IdMask m_bypassMask;
    int m_nNesting = 0;
};
