// Every lookup of an envelope, from every cursor position and after every
// kind of jump, against a brute-force search over the sorted times.
#include <scoremodel/events/envelopes/ECEnvPoint.h>
#include <scoremodel/events/envelopes/ECEnvelope.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <vector>

namespace
{
// Shows the cursor, which no public call reveals.
class ProbeEnvelope : public ECEnvelope
{
public:
    POSITION Cursor() const { return m_pos; }
};

struct Envelope
{
    ProbeEnvelope *env = new ProbeEnvelope;
    std::vector<float> times;
    std::vector<ECEnvPoint *> points;

    explicit Envelope(const std::vector<float> &at)
    {
        env->Ref(); // as its parent would
        for (float t : at)
        {
            auto *p = static_cast<ECEnvPoint *>(RUNTIME_CLASS(ECEnvPoint)->CreateObject());
            MCTime time(t);
            p->SetTime(&time);
            EXPECT_EQ(env->AddChild(p, 0), 1);
        }
        times = at;
        std::sort(times.begin(), times.end());
        for (int i = 0; i < env->GetPointCount(); ++i)
            points.push_back(env->GetPointAtIndex(i));
    }
    ~Envelope()
    {
        env->RemoveChildren(1); // the children hold their parent
        env->Unref(1);
    }
    Envelope(const Envelope &) = delete;
    Envelope &operator=(const Envelope &) = delete;

    // Brute force: index of the last time < t (or <= t), first >= t (> t).
    int Before(float t, bool equal) const
    {
        int found = -1;
        for (size_t i = 0; i < times.size(); ++i)
            if (equal ? times[i] <= t : times[i] < t)
                found = static_cast<int>(i);
        return found;
    }
    int After(float t, bool equal) const
    {
        for (size_t i = 0; i < times.size(); ++i)
            if (equal ? times[i] >= t : times[i] > t)
                return static_cast<int>(i);
        return -1;
    }
    ECEnvPoint *At(int index) const { return index < 0 ? nullptr : points[static_cast<size_t>(index)]; }

    // One lookup of kind `kind` (0 to 9) at `t`, checked against brute force.
    void Check(int kind, float t) const
    {
        MCTime time(t);
        switch (kind)
        {
        case 0: EXPECT_EQ(env->GetPointBefore(time), At(Before(t, false))) << "before " << t; break;
        case 1: EXPECT_EQ(env->GetPointBeforeEqual(time), At(Before(t, true))) << "before-equal " << t; break;
        case 2: EXPECT_EQ(env->GetPointAfterEqual(time), At(After(t, true))) << "after-equal " << t; break;
        case 3: EXPECT_EQ(env->GetPointAfter(time), At(After(t, false))) << "after " << t; break;
        case 4:
        {
            const int i = After(t, true);
            EXPECT_EQ(env->GetPointAt(time), i >= 0 && times[static_cast<size_t>(i)] == t ? At(i) : nullptr);
            EXPECT_EQ(env->GetIndexAt(time), -1) << "an exact hit is never an index";
            break;
        }
        case 5: EXPECT_EQ(env->GetIndexBefore(time), Before(t, false)) << "index before " << t; break;
        case 6: EXPECT_EQ(env->GetIndexBeforeEqual(time), Before(t, true)) << "index before-equal " << t; break;
        case 7: EXPECT_EQ(env->GetIndexAfterEqual(time), After(t, true)) << "index after-equal " << t; break;
        case 8: EXPECT_EQ(env->GetIndexAfter(time), After(t, false)) << "index after " << t; break;
        case 9:
        {
            if (points.empty())
                break;
            const size_t i = static_cast<size_t>(std::max(0.0f, std::min(t, static_cast<float>(points.size() - 1))));
            EXPECT_EQ(env->GetIndexForPoint(points[i]), static_cast<int>(i));
            break;
        }
        }
        if (!points.empty())
            EXPECT_NE(env->Cursor(), nullptr) << "the cursor of an envelope with points is never null";
    }
};

constexpr int kKinds = 10;
} // namespace

TEST(EnvelopeLookups, EveryLookupFromEveryCursorAfterEveryJumpMatchesBruteForce)
{
    // Sizes 0 to 6, points on even times, queries on every half unit around
    // them: hits, gaps and both outsides.
    for (int n = 0; n <= 6; ++n)
    {
        std::vector<float> at;
        for (int i = n - 1; i >= 0; --i) // added out of order on purpose
            at.push_back(2.0f * static_cast<float>(i));
        Envelope e(at);
        std::vector<float> queries;
        for (float q = -1.5f; q <= 2.0f * static_cast<float>(n) + 1.0f; q += 0.5f)
            queries.push_back(q);
        for (int setKind = 0; setKind < kKinds; ++setKind)
            for (float setAt : queries)
                for (int kind = 0; kind < kKinds; ++kind)
                    for (float q : queries)
                    {
                        e.Check(setKind, setAt); // the jump that places the cursor
                        e.Check(kind, q);
                    }
    }
}

TEST(EnvelopeLookups, AnEmptyEnvelopeAnswersNothing)
{
    Envelope e({});
    MCTime t(1.0f);
    EXPECT_EQ(e.env->GetPointBefore(t), nullptr);
    EXPECT_EQ(e.env->GetPointAtIndex(0), nullptr);
    EXPECT_EQ(e.env->GetIndexAfter(t), -1);
    EXPECT_EQ(e.env->GetIndexForPoint(nullptr), -1);
    EXPECT_EQ(e.env->IsEnabled(), 0) << "an empty envelope never counts as enabled";
    EXPECT_EQ(e.env->IsEndPoint(nullptr), 0);
}

TEST(EnvelopeLookups, RandomWalksOverALargeEnvelopeMatchBruteForce)
{
    std::mt19937 rng(1234);
    std::set<int> unique;
    std::uniform_int_distribution<int> pick(0, 400000);
    while (unique.size() < 5000)
        unique.insert(pick(rng));
    std::vector<float> at;
    for (int v : unique)
        at.push_back(static_cast<float>(v) / 8.0f);
    std::shuffle(at.begin(), at.end(), rng);
    Envelope e(at);
    ASSERT_EQ(e.env->GetPointCount(), 5000);

    std::uniform_int_distribution<int> kind(0, kKinds - 1);
    std::uniform_real_distribution<float> anywhere(-10.0f, 50010.0f);
    std::uniform_int_distribution<int> step(-3, 12);
    float playhead = 0.0f;
    for (int i = 0; i < 30000; ++i)
    {
        // Mostly playback moving forward in small steps, sometimes an exact
        // point time, sometimes a jump anywhere.
        const int mode = i % 10;
        if (mode == 0)
            playhead = anywhere(rng);
        else if (mode == 1)
            playhead = e.times[static_cast<size_t>(pick(rng)) % e.times.size()];
        else
            playhead += static_cast<float>(step(rng)) / 16.0f;
        const int k = kind(rng);
        e.Check(k == 9 ? 1 : k, playhead);
    }
}

TEST(EnvelopeLookups, RangesAreHalfOpenAndFilterAnchors)
{
    Envelope e({0.0f, 1.0f, 2.0f, 3.0f, 4.0f});
    e.points[1]->SetAnchor(1);
    e.points[2]->SetAnchor(1);
    e.points[2]->SetAnchorHead(1);
    e.points[4]->SetAnchorHead(1);
    struct Case
    {
        float from, to;
        int which; // 0 all, 1 anchors, 2 anchor heads
        std::vector<int> expected;
    } cases[] = {
        {1.0f, 1.0f, 0, {}},         {1.0f, 3.0f, 0, {1, 2}},    {-5.0f, 9.0f, 0, {0, 1, 2, 3, 4}},
        {0.5f, 4.0f, 1, {1, 2}},     {0.0f, 5.0f, 2, {2, 4}},    {4.5f, 9.0f, 0, {}},
        {3.0f, 4.0f, 2, {}},
    };
    for (const Case &c : cases)
    {
        MCTime from(c.from), to(c.to);
        ECBase::EventList list;
        const int got = c.which == 0   ? e.env->GetPointsInRange(from, to, list)
                        : c.which == 1 ? e.env->GetAnchorPointsInRange(from, to, list)
                                       : e.env->GetAnchorHeadPointsInRange(from, to, list);
        EXPECT_EQ(got, c.expected.empty() ? 0 : 1);
        std::vector<ECBase *> want, have;
        for (int i : c.expected)
            want.push_back(e.points[static_cast<size_t>(i)]);
        for (POSITION pos = list.GetHeadPosition(); pos;)
            have.push_back(list.GetNext(pos));
        EXPECT_EQ(have, want) << c.from << " to " << c.to;
    }
    EXPECT_EQ(e.env->IsEndPoint(e.points[0]), 1);
    EXPECT_EQ(e.env->IsEndPoint(e.points[4]), 1);
    EXPECT_EQ(e.env->IsEndPoint(e.points[2]), 0);
}

TEST(EnvelopeLookups, AddRefusesATakenTimeMovesNegativeTimesToZeroAndKeepsOrder)
{
    Envelope e({3.0f, 1.0f});
    auto *twin = static_cast<ECEnvPoint *>(RUNTIME_CLASS(ECEnvPoint)->CreateObject());
    MCTime one(1.0f);
    twin->SetTime(&one);
    EXPECT_EQ(e.env->AddChild(twin, 0), 0) << "two points at one time";
    EXPECT_EQ(e.env->GetPointCount(), 2);
    twin->Unref(1);
    // Near the tail the search for a twin runs from the tail.
    const std::pair<float, int> late[] = {{2.9f, 1}, {2.9f, 0}, {3.0f, 0}};
    for (auto [at, expected] : late)
    {
        auto *point = static_cast<ECEnvPoint *>(RUNTIME_CLASS(ECEnvPoint)->CreateObject());
        MCTime t(at);
        point->SetTime(&t);
        point->Ref();
        EXPECT_EQ(e.env->AddChild(point, 0), expected) << at;
        point->Unref(1);
    }
    EXPECT_EQ(e.env->GetPointCount(), 3) << "only the first 2.9 is new";

    auto *early = static_cast<ECEnvPoint *>(RUNTIME_CLASS(ECEnvPoint)->CreateObject());
    MCTime minus(-2.0f);
    early->SetTime(&minus);
    EXPECT_EQ(e.env->AddChild(early, 0), 1);
    EXPECT_TRUE(*early->GetTime() == MCTime::TimeZero());
    EXPECT_EQ(e.env->GetPointAtIndex(0), early);

    auto *timeless = RUNTIME_CLASS(ECEnvelope)->CreateObject();
    EXPECT_EQ(e.env->AddChild(static_cast<ECBase *>(timeless), 0), 0) << "only points belong in an envelope";
    static_cast<ECBase *>(timeless)->Unref(1);

    // Removing resets the cursor to the head; removing the last leaves none.
    EXPECT_EQ(e.env->RemoveChildren(1), 1);
    EXPECT_EQ(e.env->Cursor(), nullptr);
}
