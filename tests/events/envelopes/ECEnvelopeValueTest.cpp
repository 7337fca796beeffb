// Values of an envelope: holds, ramps, hands, clamps, change detection, and
// the sampling of GetValues.
#include <scoremodel/events/envelopes/ECControllerEnvelopes.h>
#include <scoremodel/events/envelopes/ECEnvPoint.h>
#include <scoremodel/events/envelopes/ECEnvelope.h>

#include <gtest/gtest.h>

#include <vector>

namespace
{
struct Pt
{
    float time, value;
    int style, hand;
};

// An envelope (held like a parent would) with the given points.
ECEnvelope *Make(const std::vector<Pt> &points, bool intValued = true)
{
    auto *env = static_cast<ECEnvelope *>(RUNTIME_CLASS(ECEnvelope)->CreateObject());
    env->Ref();
    env->SetIntValued(intValued);
    for (const Pt &p : points)
    {
        auto *point = static_cast<ECEnvPoint *>(RUNTIME_CLASS(ECEnvPoint)->CreateObject());
        MCTime t(p.time);
        point->SetTime(&t);
        point->SetValue(p.value);
        point->SetStyle(p.style);
        point->SetHand(p.hand);
        env->AddChild(point, 1);
    }
    return env;
}

std::vector<std::pair<float, float>> Samples(EValueList &list)
{
    std::vector<std::pair<float, float>> out;
    while (!list.IsEmpty())
    {
        EVALUE *v = list.RemoveHead();
        out.emplace_back(v->time.GetSeconds(), v->value);
        delete v;
    }
    return out;
}
} // namespace

TEST(EnvelopeValues, GetValueFollowsHoldsRampsHandsAndClamps)
{
    struct Case
    {
        const char *what;
        std::vector<Pt> points;
        bool intValued;
        float at;
        int clamp, hand;
        float expected;
    } cases[] = {
        {"empty: the default", {}, true, 1.0f, 0, -1, 0.0f},
        {"hold", {{0, 10, 0, 0}, {4, 20, 0, 0}}, true, 3.9f, 0, -1, 10.0f},
        {"ramp midway", {{0, 10, 1, 0}, {4, 20, 0, 0}}, true, 2.0f, 0, -1, 15.0f},
        {"ramp rounds for integers", {{0, 10, 1, 0}, {4, 20, 0, 0}}, true, 1.0f, 0, -1, 13.0f},
        {"ramp exact for floats", {{0, 10, 1, 0}, {4, 20, 0, 0}}, false, 1.0f, 0, -1, 12.5f},
        {"a ramp's end point is its own value", {{0, 10, 1, 0}, {4, 20, 1, 0}}, true, 4.0f, 0, -1, 20.0f},
        {"a ramp below one step holds for integers", {{0, 10, 1, 0}, {4, 10.5f, 0, 0}}, true, 3.0f, 0, -1, 10.0f},
        {"the same ramp interpolates for floats", {{0, 10, 1, 0}, {4, 10.5f, 0, 0}}, false, 2.0f, 0, -1, 10.25f},
        {"a ramp with no point after holds", {{0, 10, 1, 0}}, true, 9.0f, 0, -1, 10.0f},
        {"before the first point: the default", {{2, 10, 0, 0}}, true, 1.0f, 0, -1, 0.0f},
        {"another hand: the default, no earlier point", {{0, 50, 0, 1}, {2, 10, 0, 0}}, true, 3.0f, 0, 1, 0.0f},
        {"the asked hand", {{0, 50, 0, 0}, {2, 10, 0, 1}}, true, 3.0f, 0, 1, 10.0f},
        {"clamped to the upper limit", {{0, 500, 0, 0}}, false, 1.0f, 1, -1, 127.0f},
        {"unclamped", {{0, 500, 0, 0}}, false, 1.0f, 0, -1, 500.0f},
        {"clamped to the lower limit", {{0, -5, 0, 0}}, false, 1.0f, 1, -1, 0.0f},
    };
    for (const Case &c : cases)
    {
        ECEnvelope *env = Make(c.points, c.intValued);
        env->SetLimits(0.0f, 127.0f);
        MCTime t(c.at);
        float value = -1.0f;
        EXPECT_EQ(env->GetValue(t, value, c.clamp, c.hand), 1) << c.what << ": the first read is a change";
        EXPECT_FLOAT_EQ(value, c.expected) << c.what;
        EXPECT_EQ(env->GetValue(t, value, c.clamp, c.hand), 0) << c.what << ": the same value again";
        env->Reset();
        EXPECT_EQ(env->GetValue(t, value, c.clamp, c.hand), 1) << c.what << ": after Reset";
        env->RemoveChildren(1); // the children hold their parent
        env->Unref(1);
    }
}

TEST(EnvelopeValues, SettingsKeepTheirFloorsAndCarryTheLastValue)
{
    ECEnvelope *env = Make({{0, 10.4f, 0, 0}}, false);
    MCTime tiny(0.001f);
    env->SetMinDeltaTime(tiny);
    EXPECT_FLOAT_EQ(env->GetMinDeltaTime().GetSeconds(), 0.005f);
    MCTime zero;
    float v;
    env->GetValue(zero, v, 0, -1);
    env->SetIntValued(1); // last float 10.4 becomes last integer 10
    EXPECT_EQ(env->GetValue(zero, v, 0, -1), 0) << "10 was already delivered";
    env->Enable(0);
    EXPECT_EQ(env->IsEnabled(), 0);
    env->Enable(3);
    EXPECT_EQ(env->IsEnabled(), 1);
    float scale, offset;
    SetScaleParams(1, 3, 10, 20, scale, offset);
    EXPECT_FLOAT_EQ(scale, 5.0f);
    EXPECT_FLOAT_EQ(offset, 5.0f);
    SetScaleParams(2, 2, 10, 20, scale, offset);
    EXPECT_EQ(scale, 0.0f);
    EXPECT_EQ(offset, 0.0f);
    env->RemoveChildren(1); // the children hold their parent
    env->Unref(1);
}

TEST(EnvelopeValues, GetValuesDeliversOnlyChangesWithOneSamplePerChange)
{
    // A ramp 0 -> 100 over 1 s, then a hold, sampled at the 0.002 s floor.
    ECEnvelope *env = Make({{0, 0, 1, 0}, {1, 100, 0, 0}, {2, 100, 0, 0}, {3, 7, 0, 0}});
    MCTime from(0.0f), to(4.0f);
    EValueList list;
    EXPECT_EQ(env->GetValues(from, to, 0.01f, list, 1), 1);
    auto samples = Samples(list);
    // Every integer 0 to 100 once, then 7: never two equal values in a row.
    ASSERT_EQ(samples.size(), 102u);
    for (size_t i = 1; i < samples.size(); ++i)
    {
        EXPECT_NE(samples[i].second, samples[i - 1].second);
        EXPECT_GE(samples[i].first, samples[i - 1].first);
    }
    EXPECT_EQ(samples.front().second, 0.0f);
    EXPECT_EQ(samples[100].second, 100.0f);
    EXPECT_FLOAT_EQ(samples.back().first, 3.0f);
    EXPECT_EQ(samples.back().second, 7.0f);
    env->RemoveChildren(1); // the children hold their parent
    env->Unref(1);
}

TEST(EnvelopeValues, GetValuesLeadsInAfterAJumpAndNotAcrossTouchingRanges)
{
    ECEnvelope *env = Make({{0, 5, 0, 0}, {2, 9, 0, 0}, {6, 1, 0, 0}});
    EValueList list;
    MCTime a(3.0f), b(5.0f), c(7.0f);
    env->GetValues(a, b, 1.0f, list, 0);
    auto first = Samples(list);
    ASSERT_EQ(first.size(), 1u) << "the held value of the jump target";
    EXPECT_FLOAT_EQ(first[0].first, 3.0f);
    EXPECT_EQ(first[0].second, 9.0f);
    env->GetValues(b, c, 1.0f, list, 0);
    auto second = Samples(list);
    ASSERT_EQ(second.size(), 1u) << "touching ranges go on without a lead-in";
    EXPECT_EQ(second[0].second, 1.0f);
    // A jump back delivers the held value again only if it changed.
    MCTime z(0.5f), y(1.0f);
    env->GetValues(z, y, 1.0f, list, 0);
    auto third = Samples(list);
    ASSERT_EQ(third.size(), 1u);
    EXPECT_EQ(third[0].second, 5.0f);
    env->RemoveChildren(1); // the children hold their parent
    env->Unref(1);
}

TEST(EnvelopeValues, TheStepComesFromMinimumDeltaAndDensity)
{
    ECEnvelope *env = Make({{0, 0, 1, 0}, {1, 1000, 0, 0}}, false);
    struct Case
    {
        float density, step;
    } cases[] = {{0.01f, 0.002f}, {1.0f, 0.05f}, {2.0f, 0.1f}, {0.0f, 0.002f}};
    for (const Case &c : cases)
    {
        env->Reset();
        EValueList list;
        MCTime from(0.0f), to(0.5f);
        env->GetValues(from, to, c.density, list, 0);
        auto s = Samples(list);
        ASSERT_GE(s.size(), 3u);
        EXPECT_NEAR(s[2].first - s[1].first, c.step, 1e-4) << "density " << c.density;
    }
    env->RemoveChildren(1); // the children hold their parent
    env->Unref(1);
}

TEST(EnvelopeValues, PatchValuesPackAndEditWithByteShapedMasks)
{
    float v = ECPatchEnv::MakePatchValue(3, 5, 9);
    int msb, lsb, program;
    ECPatchEnv::ReadPatchValue(v, msb, lsb, program);
    EXPECT_EQ(msb, 3);
    EXPECT_EQ(lsb, 5);
    EXPECT_EQ(program, 9);
    int zero = 0;
    ECPatchEnv::EditPatchValue(v, &zero, nullptr, nullptr);
    EXPECT_EQ(ECPatchEnv::GetBankMSB(v), 3) << "bits 14 and 15 survive an MSB edit";
    float w = ECPatchEnv::MakePatchValue(0, 1, 0);
    ECPatchEnv::EditPatchValue(w, nullptr, &zero, nullptr);
    EXPECT_EQ(ECPatchEnv::GetBankLSB(w), 1) << "bit 7 survives an LSB edit";
    int seven = 7;
    ECPatchEnv::EditPatchValue(w, nullptr, nullptr, &seven);
    EXPECT_EQ(ECPatchEnv::GetProgram(w), 7);
}
