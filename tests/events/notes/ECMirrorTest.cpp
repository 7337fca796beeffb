// Mirrors stand in a list for the event they show: the list operations that
// gather events for a command replace each mirror by its source.
#include "events/base/EventTestSupport.h"

#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/events/base/MCEventList.h>
#include <scoremodel/events/envelopes/ECTempo.h>
#include <scoremodel/events/media/ECText.h>
#include <scoremodel/events/notes/ECMirror.h>
#include <scoremodel/events/signatures/ECClef.h>
#include <scoremodel/events/signatures/ECKey.h>
#include <scoremodel/events/signatures/ECMeter.h>

#include <gtest/gtest.h>

#include <vector>

TEST(ECMirrorTest, ReplaceMirrorsPutsEachSourceInItsMirrorsPlace)
{
    ECBase *clef = CreateEventW(EVENT_ID_CLEF);
    ECBase *key = CreateEventW(EVENT_ID_KEY);
    ECBase *text = CreateEventW(EVENT_ID_TEXT);
    auto *ofKey = new ECMirror;
    auto *ofNothing = new ECMirror;
    ofKey->SetMirrorEvent(key, 0); // the pointer only: the key's own list stays out of the count below
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

TEST(ECMirrorTest, LinkingUpdatesTheMirroredEventsList)
{
    for (int id : {EVENT_ID_CLEF, EVENT_ID_KEY, EVENT_ID_METER, EVENT_ID_TEMPO, EVENT_ID_TEXT})
    {
        SCOPED_TRACE(id);
        ECBase *first = CreateEventW(id);
        ECBase *second = CreateEventW(id);
        first->Ref();
        second->Ref();
        auto *mirror = new ECMirror;
        mirror->Ref();
        auto listed = [&](ECBase *e) {
            int n = 0;
            // Each class keeps its mirrors in a list of its own.
            if (auto *clef = dynamic_cast<ECClef *>(e))
                n = clef->GetMirrors()->GetCount();
            else if (auto *key = dynamic_cast<ECKey *>(e))
                n = key->GetMirrors()->GetCount();
            else if (auto *meter = dynamic_cast<ECMeter *>(e))
                n = meter->GetMirrors().GetCount();
            else if (auto *tempo = dynamic_cast<ECTempo *>(e))
                n = tempo->GetMirrors()->GetCount();
            else if (auto *text = dynamic_cast<ECText *>(e))
                n = text->GetMirrors()->GetCount();
            return n;
        };
        mirror->SetMirrorEvent(first, 1);
        EXPECT_EQ(listed(first), 1);
        mirror->SetMirrorEvent(second, 1);
        EXPECT_EQ(listed(first), 0) << "the old event lets go";
        EXPECT_EQ(listed(second), 1);
        EXPECT_EQ(mirror->GetMirrorEvent(), second);
        mirror->SetMirrorEvent(nullptr, 0);
        EXPECT_EQ(listed(second), 1) << "without update only the pointer changes";
        mirror->SetMirrorEvent(second, 0);
        mirror->SetMirrorEvent(nullptr, 1);
        EXPECT_EQ(listed(second), 0);
        first->Unref(1);
        second->Unref(1);
        mirror->Unref(1);
    }
}
