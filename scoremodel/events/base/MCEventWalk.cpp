#include <scoremodel/events/base/MCEventWalk.h>

#include <scoremodel/events/base/ECBase.h>

#include <unordered_map>

namespace
{
// The levels at which events that the walk can meet more than once were
// searched: only those can repeat (several parents walking down, several
// children walking up, or the start itself on a cycle), so other events cost
// nothing here.
class Visits
{
public:
    // True when `e` was already searched at `level` or above it (nearer the
    // start), which covers everything a search from here would see.
    bool Seen(ECBase *e, int level)
    {
        auto [it, inserted] = m_levels.try_emplace(e, level);
        if (inserted)
            return false;
        if (it->second <= level)
            return true;
        it->second = level;
        return false;
    }

private:
    std::unordered_map<ECBase *, int> m_levels;
};

bool MayRepeat(ECBase *e, ECBase *start, bool upward)
{
    if (e == start)
        return true;
    ECBase::EventList *list = upward ? e->GetChildren() : e->GetParents();
    return list && list->GetCount() > 1;
}

struct FindFirstWalk
{
    ECBase *start;
    int id;
    int depth; // 255: no limit
    bool upward;
    Visits visits;

    // Returns the match, or null to go on.
    ECBase *Apply(ECBase *e, int level)
    {
        if (!e)
            return nullptr;
        if (MayRepeat(e, start, upward) && visits.Seen(e, level))
            return nullptr;
        if (e->GetEventId() == id)
            return e;
        if (!upward && MCEventWalk::IsDefaultClipped(e->GetEventId()))
            return nullptr;
        ECBase::EventList *list = upward ? e->GetParents() : e->GetChildren();
        if (!list || list->IsEmpty())
            return nullptr;
        if (depth != 255 && level + 1 > depth)
            return nullptr;
        for (POSITION pos = list->GetHeadPosition(); pos;)
        {
            ECBase *next = list->GetNext(pos);
            if (ECBase *found = Apply(next, level + 1))
                return found;
        }
        return nullptr;
    }
};

struct CollectWalk
{
    ECBase *start;
    std::vector<ECBase *> &found;
    Visits visits;

    void Apply(ECBase *e)
    {
        if (!e)
            return;
        if (MayRepeat(e, start, false) && visits.Seen(e, 0))
            return;
        if (!MCEventWalk::IsDefaultBypassed(e->GetEventId()))
            found.push_back(e);
        ECBase::EventList *list = e->GetChildren();
        if (!list)
            return;
        for (POSITION pos = list->GetHeadPosition(); pos;)
            Apply(list->GetNext(pos));
    }
};
} // namespace

bool MCEventWalk::IsDefaultClipped(int id)
{
    return id == EVENT_ID_BEAM || id == EVENT_ID_SLUR || id == EVENT_ID_TIE || id == EVENT_ID_GLISSANDO;
}

bool MCEventWalk::IsDefaultBypassed(int id)
{
    switch (id)
    {
    case EVENT_ID_CHAN_PRESSURE_ENV:
    case EVENT_ID_CONTROLLER_ENV:
    case EVENT_ID_ENVELOPE:
    case EVENT_ID_METER_ENV:
    case EVENT_ID_NRPN_ENV:
    case EVENT_ID_PATCH_ENV:
    case EVENT_ID_PITCH_BEND_ENV:
    case EVENT_ID_POLY_PRESSURE_ENV:
    case EVENT_ID_RPN_ENV:
    case EVENT_ID_TEMPO_ENV:
    case 63:
    case 69:
    case 79:
        return true;
    default:
        return false;
    }
}

ECBase *MCEventWalk::FindFirst(ECBase *start, int id, int depth, bool upward)
{
    // The action takes a limit of 0 to 255, 255 meaning none, and keeps its
    // default (none) for any other value.
    const int limit = depth >= 0 && depth <= 255 ? depth : 255;
    FindFirstWalk walk{start, id, limit, upward, {}};
    return walk.Apply(start, 0);
}

void MCEventWalk::CollectAll(ECBase *start, std::vector<ECBase *> &found)
{
    CollectWalk walk{start, found, {}};
    walk.Apply(start);
}
