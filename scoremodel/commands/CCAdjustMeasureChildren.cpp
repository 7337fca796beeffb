#include <scoremodel/commands/CCAdjustMeasureChildren.h>

#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECConductorStaff.h>
#include <scoremodel/events/structure/ECMeasure.h>

#include <algorithm>

IMPLEMENT_DYNCREATE(CCAdjustMeasureChildren, CCBase)

CCAdjustMeasureChildren::CCAdjustMeasureChildren() : m_bReverse(0)
{
}

CCAdjustMeasureChildren::~CCAdjustMeasureChildren()
{
    ReleaseMoves();
}

void CCAdjustMeasureChildren::ReleaseMoves()
{
    for (Move &move : m_moves)
        for (ECBase *e : {move.event, move.from, move.to})
            e->Unref(1);
    m_moves.clear();
}

int CCAdjustMeasureChildren::GetCommandId()
{
    return COMMAND_ID_ADJUST_MEASURE_CHILDREN;
}

int CCAdjustMeasureChildren::Prepare()
{
    if (!CCBase::Prepare())
        return 0;
    ECConductor *conductor = GetConductor();
    const int staves = conductor->GetMaxTrackNumber(ECConductor::TrackStaff);
    m_nFirstTrack = std::clamp(m_nFirstTrack, 0, staves);
    m_nLastTrack = std::clamp(m_nLastTrack, 0, staves);
    if (m_nFirstTrack > m_nLastTrack)
        std::swap(m_nFirstTrack, m_nLastTrack);
    if (m_start < MCTime::TimeZero())
        m_start = MCTime::TimeZero();
    const MCTime end = conductor->GetMaxMeasureEndTime();
    if (m_end > end)
        m_end = end;
    if (m_end < m_start)
        std::swap(m_start, m_end);
    return 1;
}

int CCAdjustMeasureChildren::Process()
{
    ECConductor *conductor = GetConductor();
    ReleaseMoves();
    const int before = conductor->GetMaxMeasureNumber();
    for (int track = m_nFirstTrack; track <= m_nLastTrack; ++track)
    {
        EventList measures;
        conductor->GetMeasures(track, m_start, m_end, measures);
        measures.Sort();
        std::vector<ECBase *> walk;
        for (POSITION pos = measures.GetHeadPosition(); pos;)
            walk.push_back(measures.GetNext(pos));
        if (m_bReverse)
            std::reverse(walk.begin(), walk.end());
        for (ECBase *measure : walk)
        {
            std::vector<ECBase *> children;
            for (POSITION pos = measure->GetChildren()->GetHeadPosition(); pos;)
                children.push_back(measure->GetChildren()->GetNext(pos));
            if (m_bReverse)
                std::reverse(children.begin(), children.end());
            for (ECBase *child : children)
            {
                MCTime *time = child->GetTime();
                if (child->GetEventId() == EVENT_ID_MIRROR || !time || *time == MCTime::TimeNull())
                    continue;
                ECMeasure *target = conductor->GetMeasure(track, *time, 1, 1);
                if (MCTime *duration = child->GetDuration())
                {
                    MCTime end = *time;
                    end += *duration;
                    conductor->GetMeasure(track, end, 1, 1);
                }
                if (!target || target == measure)
                    continue;
                child->Ref();
                measure->Ref();
                target->Ref();
                measure->RemoveChild(child, 0);
                target->AddChild(child, 1);
                m_moves.push_back({child, measure, target});
            }
        }
    }
    const int after = conductor->GetMaxMeasureNumber();
    if (after > before)
    {
        m_nMeasureInsertLocation = before + 1;
        m_nMeasureInsertCount = after - before;
    }
    return CCBase::Process();
}

void CCAdjustMeasureChildren::Undo()
{
    for (auto it = m_moves.rbegin(); it != m_moves.rend(); ++it)
    {
        it->to->RemoveChild(it->event, 0);
        it->from->AddChild(it->event, 1);
    }
    ReleaseMoves();
    if (m_nMeasureInsertCount > 0 && GetConductor() && GetConductor()->GetConductorStaff())
    {
        // The location is a measure number (from 1); the columns count from 0.
        GetConductor()->GetConductorStaff()->RemoveMeasures(m_nMeasureInsertLocation - 1, m_nMeasureInsertCount);
    }
    m_nMeasureInsertLocation = -1;
    m_nMeasureInsertCount = 0;
}
