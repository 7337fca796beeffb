// What the tests and the fuzz target of the bar-structure commands check
// after each edit: the exact shape of the whole tree (for undo and redo),
// and that the score's matrix is whole with every event in the bar that
// covers it.
#pragma once

#include <scoremodel/commands/CCBase.h>
#include <scoremodel/commands/MCCommandMgr.h>
#include <scoremodel/events/signatures/ECMeter.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECConductorMeasure.h>
#include <scoremodel/events/structure/ECConductorStaff.h>
#include <scoremodel/events/structure/ECMeasure.h>
#include <scoremodel/events/structure/ECPerformance.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <string>
#include <tuple>
#include <unordered_set>
#include <vector>

namespace score_checks
{
inline std::vector<ECBase *> Members(ECBase::EventList *list)
{
    std::vector<ECBase *> out;
    if (list)
        for (POSITION pos = list->GetHeadPosition(); pos;)
            out.push_back(list->GetNext(pos));
    return out;
}

// Every event under the document in walk order: itself, its time's bits,
// its children and its parents; then the columns of the score, each with
// its rows.
struct TreeShape
{
    std::vector<std::tuple<ECBase *, std::uint32_t, std::vector<ECBase *>, std::vector<ECBase *>>> events;
    std::vector<std::vector<ECBase *>> columns;
    bool operator==(const TreeShape &) const = default;
};

// Runs `command` synchronously in an undo step of its own named `name`;
// whether it got through.
inline bool RunStep(ECPerformance *doc, CCBase *command, const std::wstring &name)
{
    command->Ref();
    command->SetSynchronous(1);
    CString title(name.c_str());
    MCCommandMgr::BeginUndo(doc, title);
    command->Apply(doc);
    MCCommandMgr::EndUndo(doc);
    const bool done = command->GetCommandPhase() == CCBase::PhaseFinish;
    command->Unref(1);
    return done;
}

inline std::vector<ECBase *> RowsOf(ECConductorMeasure *column)
{
    std::vector<ECBase *> rows{column};
    for (int track = 0; track <= column->GetMaxTrack(); ++track)
        rows.push_back(column->GetMeasureOnTrack(track));
    return rows;
}

inline TreeShape ShapeOf(ECPerformance *doc)
{
    TreeShape shape;
    std::unordered_set<ECBase *> seen;
    std::vector<ECBase *> stack{doc};
    while (!stack.empty())
    {
        ECBase *e = stack.back();
        stack.pop_back();
        if (!seen.insert(e).second)
            continue;
        MCTime *time = e->GetTime();
        shape.events.emplace_back(e, time ? std::bit_cast<std::uint32_t>(time->GetSeconds()) : 0u,
                                  Members(e->GetChildren()), Members(e->GetParents()));
        for (int i = 0; ECBase *member = e->GetMemberEvent(i); ++i)
            stack.push_back(member);
        std::vector<ECBase *> children = Members(e->GetChildren());
        stack.insert(stack.end(), children.rbegin(), children.rend());
    }
    if (ECConductorStaff *score = doc->GetConductor()->GetConductorStaff())
    {
        ECConductorStaff::MeasureArray &columns = score->GetConductorMeasures();
        for (int i = 0; i < columns.GetSize(); ++i)
            shape.columns.push_back(RowsOf(columns.GetAt(i)));
    }
    return shape;
}

// Empty when the matrix is whole, the columns follow each other bar by bar
// under the meter in force, and every event of a staff lies in the bar
// that covers its time on that staff; else what is wrong.
inline std::string CheckWhole(ECConductor *conductor)
{
    ECConductorStaff *score = conductor->GetConductorStaff();
    ECConductorStaff::MeasureArray &columns = score->GetConductorMeasures();
    if (columns.GetSize() != score->GetMaxMeasureNumber() + 1 || columns.GetSize() == 0)
        return "the column count";
    for (int i = 0; i < columns.GetSize(); ++i)
    {
        ECConductorMeasure *column = columns.GetAt(i);
        MCTime at = *column->GetTime();
        ECMeter *meter = conductor->GetMeterAtTime(at);
        float length = meter ? meter->GetMeasureLength() : 4.0f;
        if (length <= 0.0f)
            length = 4.0f;
        const float next = i + 1 < columns.GetSize() ? columns.GetAt(i + 1)->GetTime()->GetSeconds()
                                                     : score->GetMaxMeasureEndTime().GetSeconds();
        if (std::fabs(next - (at.GetSeconds() + length)) > 1e-3f * std::fmax(1.0f, next))
            return "bar " + std::to_string(i + 1) + " is not as long as its meter says";
        for (int track = 0; track <= score->GetMaxStaffNumber(); ++track)
        {
            ECMeasure *row = column->GetMeasureOnTrack(track);
            if (!row)
                return "bar " + std::to_string(i + 1) + " has no measure on staff " + std::to_string(track);
            if (row->GetTime()->GetSeconds() != at.GetSeconds())
                return "bar " + std::to_string(i + 1) + " on staff " + std::to_string(track) + " stands at " +
                       std::to_string(row->GetTime()->GetSeconds()) + ", not " + std::to_string(at.GetSeconds());
        }
    }
    for (int track = 1; track <= score->GetMaxStaffNumber(); ++track)
    {
        ECTrack *staff = conductor->GetTrack(ECConductor::TrackStaff, track, 0);
        int measures = 0;
        for (ECBase *measure : Members(staff->GetChildren()))
        {
            if (measure->GetEventId() != EVENT_ID_MEASURE)
                continue;
            ++measures;
            for (ECBase *event : Members(measure->GetChildren()))
                if (conductor->GetMeasure(track, *event->GetTime(), 0, 1) != measure)
                    return "an event at " + std::to_string(event->GetTime()->GetSeconds()) + " on staff " +
                           std::to_string(track) + " is not in its bar";
        }
        if (measures != columns.GetSize())
            return "the measures of staff " + std::to_string(track);
    }
    return {};
}
} // namespace score_checks
