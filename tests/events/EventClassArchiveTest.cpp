// Every served event class through the archive: stored with WriteObject,
// loaded with the check against the class the id names, the fields of the
// bases (and a duration where the class stores one) come back, the selection
// does not, and the record is read to its last byte.
#include "events/ArchiveTestSupport.h"
#include "events/EventClassTable.h"

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/events/base/EventRegistry.h>

#include <gtest/gtest.h>

#include <set>

namespace
{
// The classes whose record holds their duration; the others (a tempo, whose
// record places it by type, and a chord symbol, which does not store it)
// come back with their initial duration.
const std::set<int> kStoresDuration = {EVENT_ID_NOTE,    EVENT_ID_GRACE_NOTE, EVENT_ID_LYRIC,
                                       EVENT_ID_LYRIC_BLOCK, EVENT_ID_WAVE,   EVENT_ID_COMPRESS,
                                       EVENT_ID_DYNAMIC, EVENT_ID_PEDAL,      EVENT_ID_TRANSPOSE};

// Takes down an event that nobody else holds, with its children.
void Release(ECBase *e)
{
    e->Ref();
    e->RemoveChildren(1);
    e->Unref(1);
}

// An event of the id with every base field away from its default.
ECBase *MakeFilled(int id)
{
    ECBase *e = CreateEventW(id);
    MCTime time(2.5f), duration(0.75f);
    e->SetTime(&time);
    e->SetVoiceTrack(3, 17);
    e->SetDuration(&duration);
    e->SetSelected(1, 3);
    if (e->GetChildren())
    {
        ECBase *child = CreateEventW(EVENT_ID_WITH_TIME);
        MCTime childTime(1.25f);
        child->SetTime(&childTime);
        e->AddChild(child, 0);
    }
    return e;
}
} // namespace

TEST(EventClassArchiveTest, EveryServedClassRoundTripsItsBaseRecord)
{
    for (const EventClassRow &row : EventClassRows())
    {
        if (!row.served)
            continue;
        SCOPED_TRACE(row.name);
        ECBase *original = MakeFilled(row.id);
        ASSERT_NE(original, nullptr);

        Bytes bytes = Store([&](CArchive &ar) { ar.WriteObject(original); });
        ECBase *loaded = nullptr;
        ULONGLONG used = LoadBytes(bytes, [&](CArchive &ar) {
            loaded = static_cast<ECBase *>(AfxReadObjectOfClass(ar, GetEventRuntimeClass(row.id)));
        });
        ASSERT_NE(loaded, nullptr);
        EXPECT_EQ(used, bytes.size()) << "the loader must read the record to its end";

        EXPECT_EQ(loaded->GetRuntimeClass(), original->GetRuntimeClass());
        EXPECT_EQ(loaded->GetEventId(), row.id);
        EXPECT_EQ(loaded->GetSelectedFlag(), 0u);
        if (MCTime *time = original->GetTime())
        {
            ASSERT_NE(loaded->GetTime(), nullptr);
            EXPECT_TRUE(*loaded->GetTime() == *time);
            EXPECT_EQ(loaded->GetVoiceTrack()->GetValue(), original->GetVoiceTrack()->GetValue());
        }
        if (kStoresDuration.count(row.id))
        {
            EXPECT_TRUE(*loaded->GetDuration() == MCTime(0.75f));
        }
        if (ECBase::EventList *children = original->GetChildren())
        {
            ASSERT_NE(loaded->GetChildren(), nullptr);
            ASSERT_EQ(loaded->GetChildren()->GetCount(), children->GetCount());
            if (!children->IsEmpty())
            {
                EXPECT_TRUE(*loaded->GetChildren()->GetHead()->GetTime() == MCTime(1.25f));
            }
        }
        Release(loaded);
        Release(original);
    }
}
