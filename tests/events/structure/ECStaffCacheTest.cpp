// A staff's clef and key lookups: kept current as clefs and keys enter and
// leave measures, as measures enter and leave the staff, and as a clef or
// key moves through the staff's uncache and recache calls.
#include "events/structure/ScoreTestSupport.h"

#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/events/notes/ECMirror.h>
#include <scoremodel/events/signatures/ECClef.h>
#include <scoremodel/events/signatures/ECKey.h>
#include <scoremodel/events/structure/MCStaffCache.h>

#include <random>

namespace
{
class StaffCache : public ScoreTest
{
protected:
    void SetUp() override
    {
        ScoreTest::SetUp();
        Build(2, 4); // bars at 0, 4, 8, 12
        m_staff = m_score->GetStaff(1, 0);
    }

    // A clef or key added to the staff's measure at its time.
    template <class T>
    T *Put(int id, float time, int track = 1)
    {
        auto *event = static_cast<T *>(CreateEventW(id));
        MCTime t(time);
        event->SetTime(&t);
        EXPECT_TRUE(m_score->GetMeasure(track, t, 0, 0)->AddChild(event, 1));
        return event;
    }
    ECClef *Clef(float time, int track = 1) { return Put<ECClef>(EVENT_ID_CLEF, time, track); }
    ECKey *Key(float time, int track = 1) { return Put<ECKey>(EVENT_ID_KEY, time, track); }
    ECClef *ClefAt(float time, BYTE hand = 0)
    {
        MCTime t(time);
        return m_staff->GetClefAtTime(t, hand);
    }
    ECMeasure *MeasureOf(ECBase *event) { return static_cast<ECMeasure *>(event->GetParents()->GetHead()); }

    ECStaff *m_staff = nullptr;
};

TEST(MCStaffCacheTest, ListsByKindAndHand)
{
    const struct
    {
        int type;
        BYTE hand;
        int list;
    } rows[] = {{5, 0, 0}, {5, 1, 1}, {5, 3, 1}, {6, 0, 2}, {6, 1, 3}, {6, 200, 3}, {7, 0, -1}, {0, 1, -1}};
    for (const auto &r : rows)
        EXPECT_EQ(MCStaffCache::GetCacheListPosition(r.type, r.hand), r.list) << r.type << " " << int(r.hand);
    ECBase *note = CreateEventW(EVENT_ID_NOTE);
    note->Ref();
    EXPECT_EQ(MCStaffCache::GetCacheListPosition(note, 0), -1);
    EXPECT_EQ(MCStaffCache::IsCacheEvent(note), 0);
    EXPECT_EQ(MCStaffCache::IsCacheEvent(nullptr), 0);
    note->Unref(1);
}

TEST_F(StaffCache, ClefsAndKeysAnswerFromTheirTimeUntilTheNextChange)
{
    ECClef *treble = Clef(0.0f);
    ECClef *bass = Clef(8.0f);
    ECKey *key = Key(4.0f);
    Clef(2.0f, 2); // another staff's clef
    EXPECT_EQ(ClefAt(0.0f), treble);
    EXPECT_EQ(ClefAt(7.5f), treble);
    EXPECT_EQ(ClefAt(9.0f), bass);
    EXPECT_EQ(ClefAt(9.0f, 3), nullptr) << "the other hand has no clef";
    ECClef *tenor = Clef(4.0f);
    EXPECT_EQ(ClefAt(3.0f), treble);
    EXPECT_EQ(ClefAt(4.0f), tenor);
    EXPECT_EQ(ClefAt(7.0f), tenor);
    EXPECT_EQ(ClefAt(8.0f), bass);
    MCTime four(4.0f), five(5.0f), three(3.0f);
    EXPECT_EQ(m_staff->GetClefBeforeTime(four, 0), treble);
    EXPECT_EQ(m_staff->GetKeyAtTime(five, 0), key);
    EXPECT_EQ(m_staff->GetKeyAtTime(three, 0), nullptr);

    // Scopes end at the next change, the last one with the score.
    MCTime start, end;
    m_staff->GetClefScope(tenor, start, end, 0);
    EXPECT_TRUE(start == four && end == MCTime(8.0f));
    m_staff->GetKeyScope(key, start, end, 0);
    EXPECT_TRUE(start == four && end == MCTime(16.0f));

    // Removing a clef from its measure takes it out before it dies.
    EXPECT_TRUE(MeasureOf(tenor)->RemoveChild(tenor, 1));
    EXPECT_EQ(ClefAt(5.0f), treble);
    EventList keys;
    m_score->GetKeysAtTime(MCTime(6.0f), keys);
    EXPECT_EQ(keys.GetCount(), 1);
    m_score->GetKeysAtTime(MCTime(1.0f), keys);
    EXPECT_EQ(keys.GetCount(), 1) << "the list is not emptied, and no key is in force at 1";
}

TEST_F(StaffCache, TheFirstClefAtAMomentKeepsItsPlaceUntilItLeaves)
{
    ECClef *first = Clef(4.0f);
    MCTime four(4.0f);
    auto *second = static_cast<ECClef *>(CreateEventW(EVENT_ID_CLEF));
    second->SetTime(&four);
    EXPECT_TRUE(MeasureOf(first)->AddChild(second, 1));
    EXPECT_EQ(m_staff->GetCache()->CacheEvent(second, 0), 0);
    EXPECT_EQ(ClefAt(4.0f), first);
    MeasureOf(first)->RemoveChild(first, 1);
    EXPECT_EQ(ClefAt(5.0f), second) << "the second one answers once the first is gone";
}

TEST_F(StaffCache, AMovedClefIsUncachedBeforeAndCachedAfter)
{
    ECClef *a = Clef(0.0f);
    ECClef *b = Clef(4.0f);
    // A clef moves itself through the cache: uncache, set the time, cache.
    MCTime ten(10.0f);
    b->SetTime(&ten);
    EXPECT_EQ(ClefAt(5.0f), a);
    EXPECT_EQ(ClefAt(10.0f), b);
    EXPECT_EQ(m_staff->CacheEvent(b, 0), 0) << "cached already, at its new time";
    // Moved behind the cache's back (the base's setter), then recached by
    // whoever moved it: no stale entry stays at the old time.
    MCTime two(2.0f);
    b->ECWithTime::SetTime(&two);
    EXPECT_EQ(m_staff->RecacheEvent(b, 0), 1);
    EXPECT_EQ(ClefAt(11.0f), b);
    EXPECT_EQ(ClefAt(1.0f), a);
    EXPECT_EQ(ClefAt(2.0f), b);
    ECBase *note = CreateEventW(EVENT_ID_NOTE);
    note->Ref();
    EXPECT_EQ(m_staff->CacheEvent(note, 0), 0);
    EXPECT_EQ(m_staff->RecacheEvent(note, 0), 0);
    note->Unref(1);
}

TEST_F(StaffCache, AMeasureBringsItsClefsAndTakesThemAway)
{
    ECClef *clef = Clef(8.0f);
    ECMeasure *measure = MeasureOf(clef);
    measure->Ref();
    m_staff->RemoveChild(measure, 0);
    EXPECT_EQ(ClefAt(9.0f), nullptr);
    EXPECT_EQ(m_staff->GetCache()->EventIsCached(clef), 0);
    m_staff->AddChild(measure, 1);
    EXPECT_EQ(ClefAt(9.0f), clef);
    measure->Unref(1);
    // Emptying the staff empties its cache.
    m_staff->Ref();
    m_staff->RemoveChildren(1);
    EXPECT_EQ(m_staff->GetCache()->GetPointCount(), 0);
    m_staff->Unref(1);
}

TEST_F(StaffCache, AMirrorNeitherCachesTheKeyElsewhereNorKeepsItCached)
{
    ECKey *key = Key(4.0f);
    auto *mirror = static_cast<ECMirror *>(CreateEventW(EVENT_ID_MIRROR));
    MCTime four(4.0f);
    mirror->SetTime(&four);
    mirror->SetMirrorEvent(key, 0);
    ASSERT_TRUE(m_score->GetMeasure(2, four, 0, 0)->AddChild(mirror, 1));
    MCTime five(5.0f);
    EXPECT_EQ(m_score->GetStaff(2, 0)->GetKeyAtTime(five, 0), nullptr);
    key->Ref();
    MeasureOf(key)->RemoveChild(key, 0);
    EXPECT_EQ(m_staff->GetKeyAtTime(five, 0), nullptr);
    mirror->SetMirrorEvent(nullptr, 0);
    key->Unref(1);
}

TEST_F(StaffCache, TheCacheComesBackFromTheTreeWhenRebuilt)
{
    ECClef *a = Clef(0.0f);
    ECKey *k = Key(8.0f);
    m_staff->GetCache()->DeleteCache();
    EXPECT_EQ(ClefAt(1.0f), nullptr);
    m_score->RebuildStaffCaches();
    EXPECT_EQ(ClefAt(1.0f), a);
    MCTime nine(9.0f);
    EXPECT_EQ(m_staff->GetKeyAtTime(nine, 0), k);
}

// Random clefs added, moved and removed; every lookup answers as a search
// of the staff's clefs would (the first added at a moment wins).
TEST_F(StaffCache, RandomEditsAnswerLikeASearchOfTheStaff)
{
    std::mt19937 rng(77);
    std::vector<ECClef *> clefs;
    for (int step = 0; step < 400; ++step)
    {
        const int op = static_cast<int>(rng() % 3);
        if (op == 0 || clefs.empty())
            clefs.push_back(Clef(static_cast<float>(rng() % 16)));
        else if (op == 1)
        {
            ECClef *clef = clefs[rng() % clefs.size()];
            MCTime to(static_cast<float>(rng() % 16));
            ECMeasure *from = MeasureOf(clef);
            ECMeasure *target = m_score->GetMeasure(1, to, 0, 0);
            // A move inside its measure: uncache, set, cache. Across
            // measures: out of one, into the other.
            if (from == target)
            {
                m_staff->UncacheEvent(clef, 0);
                clef->SetTime(&to);
                m_staff->CacheEvent(clef, 0);
            }
            else
            {
                clef->Ref();
                from->RemoveChild(clef, 0);
                clef->SetTime(&to);
                target->AddChild(clef, 1);
                clef->Unref(1);
            }
        }
        else
        {
            const size_t pick = rng() % clefs.size();
            MeasureOf(clefs[pick])->RemoveChild(clefs[pick], 1);
            clefs.erase(clefs.begin() + static_cast<long>(pick));
        }
        for (int time = 0; time < 16; ++time)
        {
            // In force: a clef with the latest time at or before; among
            // several at that time, any one of them (which one is a matter
            // of order, checked above).
            float best = -1.0f;
            for (ECClef *c : clefs)
                if (c->GetTime()->GetSeconds() <= time)
                    best = std::max(best, c->GetTime()->GetSeconds());
            ECClef *got = ClefAt(static_cast<float>(time));
            if (best < 0.0f)
                ASSERT_EQ(got, nullptr) << "step " << step << " time " << time;
            else
            {
                ASSERT_NE(got, nullptr) << "step " << step << " time " << time;
                ASSERT_EQ(got->GetTime()->GetSeconds(), best) << "step " << step << " time " << time;
                ASSERT_NE(std::find(clefs.begin(), clefs.end(), got), clefs.end()) << "a dead clef answered";
            }
        }
    }
}
} // namespace

namespace
{
TEST_F(StaffCache, EmptyingAMeasureLeavesNoClefOfItInTheCache)
{
    // Two clefs at one moment, the one that answers listed second: emptying
    // the measure must not let the other take its place on the way out.
    MCTime four(4.0f);
    auto *later = static_cast<ECClef *>(CreateEventW(EVENT_ID_CLEF));
    later->SetTime(&four);
    ECClef *first = Clef(4.0f);
    ECMeasure *measure = MeasureOf(first);
    ASSERT_TRUE(measure->AddChild(later, 0));
    EXPECT_EQ(ClefAt(4.0f), first);
    // Of two cached at one time the last one answers.
    ASSERT_EQ(m_staff->GetCache()->CacheObject(later, four, 0), 1);
    EXPECT_EQ(ClefAt(4.0f), later);
    measure->RemoveChildren(1);
    EXPECT_EQ(ClefAt(4.0f), nullptr);
    EXPECT_EQ(m_staff->GetCache()->GetPointCount(), 1);
}
} // namespace
