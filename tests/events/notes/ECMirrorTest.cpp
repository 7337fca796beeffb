// Mirrors stand in a list for the event they show: the list operations that
// gather events for a command replace each mirror by its source.
#include "events/base/EventTestSupport.h"

#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/events/base/MCEventList.h>
#include <scoremodel/events/notes/ECMirror.h>

#include <gtest/gtest.h>

#include <vector>

TEST(ECMirrorTest, ReplaceMirrorsPutsEachSourceInItsMirrorsPlace)
{
    ECBase *clef = CreateEventW(EVENT_ID_CLEF);
    ECBase *key = CreateEventW(EVENT_ID_KEY);
    ECBase *text = CreateEventW(EVENT_ID_TEXT);
    auto *ofKey = new ECMirror;
    auto *ofNothing = new ECMirror;
    ofKey->SetMirrorEvent(key, 1);
    EXPECT_EQ(ofKey->GetMirrorEvent(), key);

    ECBase::EventList list;
    for (ECBase *e : std::vector<ECBase *>{clef, ofKey, text, ofNothing, key})
        list.AddTail(e);
    ofKey->Ref(); // outlives its place in the list, to be checked below
    list.ReplaceMirrors(0);
    EXPECT_EQ(Elements(list), (std::vector<ECBase *>{clef, key, text, key})) << "a mirror of nothing only leaves";
    EXPECT_EQ(ofKey->GetRefCount(), 1) << "the list let go of the mirror it replaced";

    list.ReplaceMirrors(1);
    EXPECT_EQ(Elements(list), (std::vector<ECBase *>{clef, text, key}));
    ofKey->Unref(1);
}
