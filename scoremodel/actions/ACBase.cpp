#include <scoremodel/actions/ACBase.h>

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/events/base/EventIds.h>

namespace
{
// Beam, slur, tie and glissando: their children are reached through the
// measure, so a walk that entered them would meet those notes twice.
const int kDefaultClip[] = {EVENT_ID_BEAM, EVENT_ID_SLUR, EVENT_ID_TIE, EVENT_ID_GLISSANDO};

// The envelope containers, and ids that no class uses at present but that
// were reserved for containers of the same kind.
const int kDefaultBypass[] = {EVENT_ID_CHAN_PRESSURE_ENV, EVENT_ID_CONTROLLER_ENV, EVENT_ID_ENVELOPE,
                              EVENT_ID_METER_ENV,         EVENT_ID_NRPN_ENV,       EVENT_ID_PATCH_ENV,
                              EVENT_ID_PITCH_BEND_ENV,    EVENT_ID_POLY_PRESSURE_ENV, EVENT_ID_RPN_ENV,
                              EVENT_ID_TEMPO_ENV,         63,                      69,
                              79};

// The events of time zero that bypass filter 0 selects: the fixed furniture
// at the start of every staff.
bool IsTimeZeroFixedId(int id)
{
    switch (id)
    {
    case EVENT_ID_BANK_LSB:
    case EVENT_ID_BANK_MSB:
    case EVENT_ID_CLEF:
    case EVENT_ID_CONDUCTOR_STAFF:
    case EVENT_ID_ENV_POINT:
    case EVENT_ID_FLOW_CONTROL:
    case EVENT_ID_KEY:
    case EVENT_ID_METER:
    case EVENT_ID_PERFORMANCE:
    case EVENT_ID_PROGRAM_CHANGE:
    case EVENT_ID_STAFF:
    case EVENT_ID_TEMPO:
    case EVENT_ID_TEXT:
    case EVENT_ID_DRAWING:
        return true;
    default:
        return false;
    }
}

// A lyric is filtered only when both of its two lowest flag bits are set.
constexpr BYTE kLyricFilterFlags = 0x03;
} // namespace

// ---- IdMask ----

void ACBase::IdMask::Add(int id)
{
    if (id >= 0 && id < 128)
        bits[id >> 6] |= uint64_t(1) << (id & 63);
    else
        hasOthers = true;
}

bool ACBase::IdMask::Test(int id, const CArray<int, int> &list) const
{
    if (id >= 0 && id < 128)
        return (bits[id >> 6] >> (id & 63)) & 1;
    if (!hasOthers)
        return false;
    for (int listed : list)
        if (listed == id)
            return true;
    return false;
}

// ---- Construction ----

ACBase::ACBase(int bReverse)
    : m_bBegun(0), m_bReverse(bReverse ? 1 : 0), m_bInList(0), m_bClip(1), m_bBypass(1), m_bBypassFilter(0),
      m_nDepth(kNoDepthLimit), m_nCurDepth(0)
{
    for (int id : kDefaultClip)
    {
        m_clipTypes.Add(id);
        m_clipMask.Add(id);
    }
    for (int id : kDefaultBypass)
    {
        m_bypassTypes.Add(id);
        m_bypassMask.Add(id);
    }
}

ACBase::~ACBase() = default;

// ---- The walk ----

int ACBase::BeginAction()
{
    return 1;
}

int ACBase::DoAction(ECBase *)
{
    return ResultContinue;
}

void ACBase::EndAction()
{
}

void ACBase::Reset()
{
    m_bBegun = 0;
}

bool ACBase::EnsureBegun()
{
    if (!m_bBegun)
        m_bBegun = BeginAction() ? 1 : 0;
    return m_bBegun;
}

ACBase::EventList *ACBase::GetFollowList(ECBase *e)
{
    return m_bReverse ? e->GetParents() : e->GetChildren();
}

int ACBase::Apply(ECBase *e)
{
    if (!e)
        return ResultFailed;
    if (!EnsureBegun())
        return ResultFailed;

    const int id = e->GetEventId();
    const bool bypassed = (m_bBypass && IsBypassedId(id)) || (m_bBypassFilter && ShouldFilter(e, m_bypassFilters));
    int result = ResultContinue;

    if (!bypassed)
    {
        result = DoAction(e);
        // Anything but "go on" ends this event here, before its children.
        if (result != ResultContinue)
            return result;
        if (m_bClip && IsClippedId(id))
            return ResultSkip;
    }

    EventList *list = GetFollowList(e);
    if (list && !list->IsEmpty())
    {
        LevelScope level(*this, bypassed);
        if (level.GetState() == LevelScope::DepthPassed)
            return ResultSkip;
        if (level.GetState() == LevelScope::TooDeep)
            return ResultFailed;
        for (POSITION pos = list->GetHeadPosition(); pos;)
        {
            ECBase *child = list->GetNext(pos);
            EventList::PrefetchAhead(pos);
            int childResult = Apply(child);
            if (childResult == ResultFailed || childResult == ResultStop)
            {
                result = childResult;
                break;
            }
            result = ResultContinue;
            if (childResult == ResultLeave)
                break;
        }
    }

    if (m_nCurDepth == 0 && !m_bInList)
        EndAction();
    return result;
}

int ACBase::Apply(EventList *list, int bContinue)
{
    if (!list)
        return ResultFailed;
    m_bInList = 1;
    int result = ResultContinue;
    for (POSITION pos = list->GetHeadPosition(); pos;)
    {
        ECBase *e = list->GetNext(pos);
        if (!e)
            continue;
        result = Apply(e);
        m_nCurDepth = 0;
        if (!bContinue && (result == ResultFailed || result == ResultStop || result == ResultLeave))
        {
            result = ResultStop;
            break;
        }
    }
    EndAction();
    return result;
}

// ---- Lists ----

void ACBase::ClipEvtType(int id)
{
    if (id == -1)
    {
        ClipNone();
        return;
    }
    m_clipTypes.Add(id);
    m_clipMask.Add(id);
    m_bClip = 1;
}

void ACBase::ClipNone()
{
    m_clipTypes.RemoveAll();
    m_clipMask.Clear();
    m_bClip = 0;
}

void ACBase::BypassEvtType(int id)
{
    if (id == -1)
    {
        BypassNone();
        return;
    }
    m_bypassTypes.Add(id);
    m_bypassMask.Add(id);
    m_bBypass = 1;
}

void ACBase::BypassNone()
{
    m_bypassTypes.RemoveAll();
    m_bypassMask.Clear();
    m_bBypass = 0;
}

void ACBase::BypassFilter(int code)
{
    m_bypassFilters.Add(code);
    m_bBypassFilter = 1;
}

void ACBase::BypassFilterNone()
{
    m_bypassFilters.RemoveAll();
    m_bBypassFilter = 0;
}

bool ACBase::IsClippedId(int id) const
{
    return m_clipMask.Test(id, m_clipTypes);
}

bool ACBase::IsBypassedId(int id) const
{
    return m_bypassMask.Test(id, m_bypassTypes);
}

int ACBase::ShouldClip(ECBase *e)
{
    if (!m_bClip || !e)
        return 0;
    return IsClippedId(e->GetEventId()) ? 1 : 0;
}

int ACBase::ShouldBypass(ECBase *e)
{
    if (!e)
        return 0;
    if (m_bBypass && IsBypassedId(e->GetEventId()))
        return 1;
    if (m_bBypassFilter)
        return ShouldFilter(e, m_bypassFilters);
    return 0;
}

int ACBase::ShouldFilter(ECBase *e, CArray<int, int> &filters)
{
    if (!e)
        return 0;
    for (int code : filters)
    {
        if (code != kFilterTimeZeroFixed)
            continue;
        MCTime *time = e->GetTime();
        if (!time || !(*time == MCTime::TimeZero()))
            continue;
        int id = e->GetEventId();
        if (IsTimeZeroFixedId(id))
            return 1;
        if (id == EVENT_ID_LYRIC && (e->GetFlags() & kLyricFilterFlags) == kLyricFilterFlags)
            return 1;
    }
    return 0;
}
