// Meter and meter map records through the archive: the byte layout, the
// flags that older documents lack, patterns restored as stored, truncated
// records, and the positions of a loaded map.
#include "events/ArchiveTestSupport.h"

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/events/signatures/ECMeter.h>
#include <scoremodel/events/signatures/ECMeterEnv.h>

#include <gtest/gtest.h>

#include <functional>
#include <tuple>

namespace
{
void Release(ECBase *e)
{
    e->Ref();
    e->RemoveChildren(1);
    e->Unref(1);
}

ECMeter *ListMeter()
{
    auto *m = new ECMeter;
    CByteArray nums, dens;
    nums.Add(3);
    nums.Add(2);
    dens.Add(8);
    dens.Add(4);
    m->SetMeter(nums, dens, 0);
    return m;
}

// The meter part of a record, written field by field as the layout says.
Bytes MeterBody(ECMeter *m, BYTE type, BYTE n, BYTE d, WORD count, WORD pulse, const WORD *flags,
                std::initializer_list<WORD> stress, std::initializer_list<WORD> pulses,
                std::initializer_list<BYTE> nums = {}, std::initializer_list<BYTE> dens = {})
{
    return Store([&](CArchive &ar) {
        m->ECEnvPoint::Serialize(ar);
        ar << type << n << d << count << pulse;
        if (flags)
            ar << *flags;
        for (auto *words : {&stress, &pulses})
        {
            ar.WriteCount(words->size());
            for (WORD w : *words)
                ar << w;
        }
        if (type > 3)
            for (auto *bytes : {&nums, &dens})
            {
                ar.WriteCount(bytes->size());
                for (BYTE b : *bytes)
                    ar << b;
            }
    });
}
} // namespace

TEST(MeterArchive, TheRecordIsWrittenFieldByField)
{
    const WORD role2 = 2;
    const WORD role0 = 0;
    struct Case
    {
        const char *what;
        std::function<ECMeter *()> make;
        std::function<Bytes(ECMeter *)> expected;
    } cases[] = {
        {"4/4 given, two stresses padded to five",
         [] { return new ECMeter(4, 4, 0); },
         [&](ECMeter *m) { return MeterBody(m, 0, 4, 4, 2, 256, &role0, {512, 512, 0, 0, 0}, {2, 2, 0, 0, 0}); }},
        {"6/8 triple, no compound arrays, a role",
         [] {
             auto *m = new ECMeter(6, 8, 255);
             m->SetPickupRole(2);
             return m;
         },
         [&](ECMeter *m) { return MeterBody(m, 3, 6, 8, 2, 128, &role2, {384, 384, 0, 0, 0}, {3, 3, 0, 0, 0}); }},
        {"5/4 imperfect writes two empty compound arrays",
         [] { return new ECMeter(5, 4, 255); },
         [&](ECMeter *m) { return MeterBody(m, 4, 5, 4, 2, 256, &role0, {512, 768, 0, 0, 0}, {2, 3, 0, 0, 0}); }},
        {"a list meter writes its components",
         [] { return ListMeter(); },
         [&](ECMeter *m) {
             return MeterBody(m, 6, 7, 8, 2, 128, &role0, {384, 512, 0, 0, 0}, {3, 2, 0, 0, 0}, {3, 2}, {8, 4});
         }},
    };
    for (const Case &c : cases)
    {
        SCOPED_TRACE(c.what);
        ECMeter *original = c.make();
        MCTime at(6.0f);
        original->SetTime(&at);
        const Bytes body = Store([&](CArchive &ar) { original->Serialize(ar); });
        EXPECT_EQ(body, c.expected(original));

        // And back, as an object.
        Bytes object = Store([&](CArchive &ar) { ar.WriteObject(original); });
        bool failed = true;
        ECMeter *loaded = LoadObject<ECMeter>(object, &failed);
        ASSERT_FALSE(failed);
        EXPECT_TRUE(*loaded == *original);
        EXPECT_EQ(loaded->GetPickupRole(), original->GetPickupRole());
        EXPECT_TRUE(*loaded->GetTime() == at);
        EXPECT_EQ(loaded->GetCompoundDenominator().GetSize(), original->GetCompoundDenominator().GetSize());
        Release(loaded);
        Release(original);
    }
}

TEST(MeterArchive, FlagsAreReadFromVersionNineOn)
{
    auto *shape = new ECMeter;
    const WORD flags = 0xA3; // role 3 and bits of the host's
    const Bytes withFlags = MeterBody(shape, 2, 3, 4, 1, 256, &flags, {768}, {3});
    const Bytes without = MeterBody(shape, 2, 3, 4, 1, 256, nullptr, {768}, {3});
    for (int version : {8, 9, 20})
    {
        SCOPED_TRACE(version);
        DocumentVersion document(version);
        auto *fresh = new ECMeter;
        const Bytes &body = version > 8 ? withFlags : without;
        EXPECT_EQ(LoadBytes(body, [&](CArchive &ar) { fresh->Serialize(ar); }), body.size());
        EXPECT_EQ(fresh->GetPickupRole(), version > 8 ? 3 : 0);
        EXPECT_EQ(fresh->GetFlags(), version > 8 ? 0xA3 : 0) << "the other bits are kept";
        EXPECT_EQ(fresh->GetNumerator(), 3);
        // Written back in the newest layout, flags included.
        EXPECT_EQ(Store([&](CArchive &ar) { fresh->Serialize(ar); }).size(), withFlags.size());
        Release(fresh);
    }
    Release(shape);
}

TEST(MeterArchive, APatternIsRestoredAsStoredAndACopyRecomputesIt)
{
    auto *shape = new ECMeter;
    const WORD flags = 0;
    // 4/4 that claims one stress of 999 ticks and a count past its array.
    const Bytes odd = MeterBody(shape, 2, 4, 4, 3, 256, &flags, {999}, {7});
    auto *fresh = new ECMeter;
    EXPECT_EQ(LoadBytes(odd, [&](CArchive &ar) { fresh->Serialize(ar); }), odd.size());
    EXPECT_EQ(fresh->GetStressPulsesPerMeasure(), 3);
    EXPECT_EQ(fresh->GetStressTicks(0, 256), 999);
    EXPECT_THROW(fresh->GetStressTicks(1, 256), CInvalidArgException) << "the count does not make the array";
    auto *copy = new ECMeter(*fresh);
    EXPECT_EQ(copy->GetStressPulsesPerMeasure(), 2) << "4/4 of type 2 again: two halves";
    EXPECT_EQ(copy->GetStressTicks(0, 256), 512);
    Release(copy);

    // A type the table does not know loads, and answers 0 for its beats.
    const Bytes unknown = MeterBody(shape, 9, 4, 4, 0, 256, &flags, {}, {}, {1}, {4});
    EXPECT_EQ(LoadBytes(unknown, [&](CArchive &ar) { fresh->Serialize(ar); }), unknown.size());
    EXPECT_EQ(fresh->GetBeatsPerMeasure(), 0);
    EXPECT_EQ(fresh->GetBeat(0), 0.0f);
    EXPECT_EQ(fresh->GetCompoundNumerator().GetSize(), 1);
    Release(fresh);
    Release(shape);
}

TEST(MeterArchive, EveryTruncatedRecordIsAnEndOfFile)
{
    ECMeter *m = ListMeter();
    const Bytes body = Store([&](CArchive &ar) { m->Serialize(ar); });
    for (size_t cut = 0; cut < body.size(); ++cut)
    {
        SCOPED_TRACE(cut);
        const Bytes shortBody(body.begin(), body.begin() + static_cast<std::ptrdiff_t>(cut));
        auto *fresh = new ECMeter;
        EXPECT_EQ(archive_bytes::CauseOf([&] { LoadBytes(shortBody, [&](CArchive &ar) { fresh->Serialize(ar); }); }),
                  CArchiveException::endOfFile);
        Release(fresh);
    }
    Release(m);
}

TEST(MeterArchive, ALoadedMapHasItsPositionsAndHoldsOnlyMeters)
{
    auto *env = static_cast<ECMeterEnv *>(RUNTIME_CLASS(ECMeterEnv)->CreateObject());
    for (auto [at, n, d] : {std::tuple{0.0f, 3, 4}, std::tuple{6.0f, 6, 8}, std::tuple{12.0f, 5, 4}})
    {
        auto *m = new ECMeter(static_cast<unsigned char>(n), static_cast<unsigned char>(d), 255);
        MCTime time(at);
        m->SetTime(&time);
        env->AddChild(m, 1);
    }
    Bytes bytes = Store([&](CArchive &ar) { ar.WriteObject(env); });
    bool failed = true;
    auto *loaded = LoadObject<ECMeterEnv>(bytes, &failed);
    ASSERT_FALSE(failed);
    ASSERT_EQ(loaded->GetPointCount(), 3);
    EXPECT_EQ(static_cast<ECMeter *>(loaded->GetPointAtIndex(1))->GetBarPulseTick().bar, 2);
    EXPECT_EQ(static_cast<ECMeter *>(loaded->GetPointAtIndex(2))->GetBarPulseTick().bar, 4);
    MCTime t(13.0f);
    loaded->GetBarPulseTick(t, 480);
    EXPECT_EQ(t.GetBarPulseTick()->pulse, 1);
    Release(loaded);

    // A plain point slipped into a map is a corrupt file.
    auto *point = static_cast<ECEnvPoint *>(RUNTIME_CLASS(ECEnvPoint)->CreateObject());
    MCTime at(20.0f);
    point->SetTime(&at);
    env->GetChildren()->AddTail(point);
    point->AddParent(env);
    Bytes bad = Store([&](CArchive &ar) { ar.WriteObject(env); });
    failed = false;
    EXPECT_EQ(LoadObject<ECMeterEnv>(bad, &failed), nullptr);
    EXPECT_TRUE(failed);
    Release(env);
}
