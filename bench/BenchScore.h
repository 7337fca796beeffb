// The score the event benchmarks share: a root, 10 staves, 1000 measures per
// staff (a measure every 4 beats) and 100 notes per measure in time order,
// 1,000,000 notes and 1,010,011 events in all, made of the real staff,
// measure and note classes. The root is a plain timed container: the
// performance would bring its command machinery, which has nothing to do
// with walking or storing the tree.
#pragma once

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/events/base/EventRegistry.h>

namespace bench
{
constexpr int kStaves = 10;
constexpr int kMeasures = 1000;
constexpr int kNotes = 100;
constexpr float kBeatsPerMeasure = 4.0f;
constexpr int kScoreNotes = kStaves * kMeasures * kNotes;

// A new event of the id at `time`, held by nobody.
inline ECBase *MakeTimed(int id, float time)
{
    ECBase *e = CreateEventW(id);
    MCTime t(time);
    e->SetTime(&t);
    return e;
}

// A new score of `staves` staves, held once by the caller; ReleaseTree takes
// it down.
inline ECBase *BuildScore(int staves = kStaves)
{
    ECBase *root = MakeTimed(EVENT_ID_WITH_TIME_CHILD, 0.0f);
    root->Ref();
    for (int s = 0; s < staves; ++s)
    {
        ECBase *staff = MakeTimed(EVENT_ID_STAFF, 0.0f);
        root->AddChild(staff, 0);
        for (int m = 0; m < kMeasures; ++m)
        {
            float start = m * kBeatsPerMeasure;
            ECBase *measure = MakeTimed(EVENT_ID_MEASURE, start);
            staff->AddChild(measure, 0);
            for (int n = 0; n < kNotes; ++n)
                measure->AddChild(MakeTimed(EVENT_ID_NOTE, start + n * (kBeatsPerMeasure / kNotes)), 0);
        }
    }
    return root;
}

// Takes down a tree that the caller holds once.
inline void ReleaseTree(ECBase *root)
{
    root->RemoveChildren(1);
    root->Unref(1);
}
} // namespace bench
