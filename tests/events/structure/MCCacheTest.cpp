// The time-indexed cache: complete points, the cursor, caching and
// uncaching, checked by hand at the edges and against a plain model of
// "the last change at or before a time" under random edits.
#include <scoremodel/events/structure/MCCache.h>

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <vector>

namespace
{
struct Cache : MCCache
{
    Cache() { SetSize(2); }
};

void *Obj(int n)
{
    static char objects[4096];
    return &objects[n];
}

TEST(MCCacheTest, TheFirstLookupMakesThePointAtZeroAndNegativeTimesMakeNothing)
{
    Cache cache;
    MCTime negative(-1.0f);
    EXPECT_EQ(cache.GetObjectForTime(negative, 0), nullptr);
    EXPECT_EQ(cache.GetPointCount(), 0) << "a negative time touches nothing";
    MCTime three(3.0f);
    EXPECT_EQ(cache.GetObjectForTime(three, 0), nullptr);
    EXPECT_EQ(cache.GetPointCount(), 1);
    EXPECT_EQ(cache.GetObjectForTime(three, 2), nullptr) << "a list out of range";
    EXPECT_EQ(cache.GetObjectForTime(three, -1), nullptr);
    EXPECT_EQ(cache.CacheObject(Obj(1), negative, 0), 0);
    EXPECT_EQ(cache.CacheObject(Obj(1), three, 5), 0);
    EXPECT_EQ(cache.UncacheObject(Obj(1), three, 0), 0) << "no point at 3";
}

TEST(MCCacheTest, AChangeBetweenTwoOthersRulesOnlyUntilTheNext)
{
    Cache cache;
    MCTime zero(0.0f), four(4.0f), eight(8.0f);
    ASSERT_EQ(cache.CacheObject(Obj(1), zero, 0), 1);
    ASSERT_EQ(cache.CacheObject(Obj(2), eight, 0), 1);
    ASSERT_EQ(cache.CacheObject(Obj(9), four, 1), 1); // the other list changes at 4
    ASSERT_EQ(cache.CacheObject(Obj(3), four, 0), 1);
    const struct
    {
        float time;
        void *list0, *list1, *before0;
    } rows[] = {
        {0.0f, Obj(1), nullptr, Obj(1)}, {3.9f, Obj(1), nullptr, Obj(1)}, {4.0f, Obj(3), Obj(9), Obj(1)},
        {7.9f, Obj(3), Obj(9), Obj(3)},  {8.0f, Obj(2), Obj(9), Obj(3)},  {100.0f, Obj(2), Obj(9), Obj(2)},
    };
    // Forward, backward and jumping: the cursor must not matter.
    for (int order : {0, 1, 2})
        for (size_t k = 0; k < std::size(rows); ++k)
        {
            const auto &r = rows[order == 0 ? k : order == 1 ? std::size(rows) - 1 - k : (k * 4) % std::size(rows)];
            MCTime t(r.time);
            SCOPED_TRACE(r.time);
            EXPECT_EQ(cache.GetObjectForTime(t, 0), r.list0);
            EXPECT_EQ(cache.GetObjectForTime(t, 1), r.list1);
            EXPECT_EQ(cache.GetObjectBeforeTime(t, 0), r.before0);
        }
    // Caching again where it stands adds nothing.
    const int points = cache.GetPointCount();
    EXPECT_EQ(cache.CacheObject(Obj(3), four, 0), 1);
    EXPECT_EQ(cache.GetPointCount(), points);

    MCTime start, end;
    cache.GetObjectScope(Obj(3), four, 0, start, end);
    EXPECT_TRUE(start == four && end == eight);
    MCTime six(6.0f);
    cache.GetObjectScope(Obj(3), six, 0, start, end);
    EXPECT_TRUE(start == four && end == eight) << "asked from inside the scope";
    cache.GetObjectScope(Obj(2), eight, 0, start, end);
    EXPECT_TRUE(start == eight && end == MCTime::TimeMax());
    cache.GetObjectScope(Obj(1), eight, 0, start, end);
    EXPECT_TRUE(start == MCTime::TimeNull() && end == MCTime::TimeNull()) << "not in force there";
}

TEST(MCCacheTest, OfTwoObjectsAtOneTimeTheLastCachedAnswers)
{
    Cache cache;
    MCTime four(4.0f), six(6.0f);
    cache.CacheObject(Obj(1), four, 0);
    cache.CacheObject(Obj(2), four, 0);
    EXPECT_EQ(cache.GetObjectForTime(six, 0), Obj(2));
    EXPECT_EQ(cache.ObjectIsCached(Obj(1), -1), 0);
    EXPECT_EQ(cache.UncacheObject(Obj(1), four, 0), 0) << "no longer there";
    EXPECT_EQ(cache.UncacheObject(Obj(2), four, 0), 1);
    EXPECT_EQ(cache.GetObjectForTime(six, 0), nullptr);
    EXPECT_EQ(cache.GetPointCount(), 1) << "a point that changes nothing goes";
}

TEST(MCCacheTest, TheObjectBeforeTheFirstPointIsItsOwn)
{
    Cache cache;
    MCTime zero(0.0f);
    cache.CacheObject(Obj(5), zero, 1);
    EXPECT_EQ(cache.GetObjectBeforeTime(zero, 1), Obj(5));
    MCTime later(2.0f);
    cache.DeleteCacheAfter(zero);
    EXPECT_EQ(cache.GetObjectForTime(later, 1), Obj(5));
    cache.DeleteCache();
    EXPECT_EQ(cache.GetPointCount(), 0);
    EXPECT_EQ(cache.GetObjectForTime(later, 1), nullptr);
}

// Random edits with each object at one time (as an event has one), then
// every time and list compared with the model.
TEST(MCCacheTest, RandomEditsAnswerLikeTheLastChangeAtOrBeforeEachTime)
{
    std::mt19937 rng(1234);
    for (int round = 0; round < 20; ++round)
    {
        Cache cache;
        std::map<int, void *> model[2];
        std::vector<std::tuple<void *, int, int>> cached; // object, time, list
        int next = 0;
        for (int step = 0; step < 300; ++step)
        {
            const int list = static_cast<int>(rng() % 2);
            if (cached.empty() || rng() % 3)
            {
                const int time = static_cast<int>(rng() % 40);
                void *object = Obj(++next);
                MCTime t(static_cast<float>(time));
                ASSERT_EQ(cache.CacheObject(object, t, list), 1);
                model[list][time] = object;
                cached.emplace_back(object, time, list);
            }
            else
            {
                const size_t pick = rng() % cached.size();
                auto [object, time, l] = cached[pick];
                cached.erase(cached.begin() + static_cast<long>(pick));
                MCTime t(static_cast<float>(time));
                const bool inModel = model[l].count(time) && model[l][time] == object;
                EXPECT_EQ(cache.UncacheObject(object, t, l), inModel ? 1 : 0);
                if (inModel)
                    model[l].erase(time);
            }
            // Every few steps, read every time in a random order of lists.
            if (step % 7)
                continue;
            for (int l = 0; l < 2; ++l)
                for (int time = 0; time <= 42; ++time)
                {
                    void *expected = nullptr;
                    void *before = nullptr;
                    for (auto &[at, object] : model[l])
                    {
                        if (at <= time)
                            expected = object;
                        if (at < time || (time == 0 && at == 0))
                            before = object;
                    }
                    MCTime t(static_cast<float>(time));
                    ASSERT_EQ(cache.GetObjectForTime(t, l), expected) << "list " << l << " time " << time;
                    ASSERT_EQ(cache.GetObjectBeforeTime(t, l), before) << "list " << l << " time " << time;
                }
        }
    }
}
} // namespace
