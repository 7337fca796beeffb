// Tuplets: the ratio arithmetic over every small ratio (each loop must end,
// also for counts of 0), the borrowed meters for the three ways a tuplet
// fits a measure, the range in the measure and its three answers, and the
// record that reads its object schema.
#include "events/ArchiveTestSupport.h"

#include <scoremodel/events/notes/ECNote.h>
#include <scoremodel/events/notes/ECTuplet.h>
#include <scoremodel/events/signatures/ECMeter.h>
#include <scoremodel/events/structure/ECMeasure.h>

#include <gtest/gtest.h>

#include <vector>

namespace
{
// Reaches the protected steps of the tuplet arithmetic.
class TupletProbe : public ECTuplet
{
public:
    using ECTuplet::ECTuplet;
    using ECTuplet::FindFit;
    using ECTuplet::FitInside;
    using ECTuplet::GetAdjustedDenominator;
    static TupletProbe *Make(BYTE irregular, BYTE normal, BYTE units, float time = 0.0f)
    {
        auto *t = new TupletProbe(irregular, normal, units);
        t->Ref();
        MCTime at(time);
        t->SetTime(&at);
        return t;
    }
};

ECMeter *Meter(BYTE numerator, BYTE denominator)
{
    auto *meter = new ECMeter;
    meter->Ref();
    EXPECT_EQ(meter->SetMeter(numerator, denominator, 255), 1);
    return meter;
}

ECMeasure *MeasureAt(float time)
{
    auto *measure = new ECMeasure;
    measure->Ref();
    MCTime at(time);
    measure->SetTime(&at);
    return measure;
}

std::vector<std::pair<int, int>> Components(ECMeter *meter)
{
    std::vector<std::pair<int, int>> out;
    for (INT_PTR i = 0; i < meter->GetCompoundNumerator().GetSize(); ++i)
        out.emplace_back(meter->GetCompoundNumerator()[i], meter->GetCompoundDenominator()[i]);
    return out;
}
} // namespace

TEST(ECTupletTest, NewTupletsAndUnitLengths)
{
    ECTuplet *tuplet = new ECTuplet;
    tuplet->Ref();
    EXPECT_EQ(tuplet->GetIrregular(), 3);
    EXPECT_EQ(tuplet->GetNormal(), 2);
    EXPECT_EQ(tuplet->GetUnits(), 3);
    tuplet->Unref(1);
    EXPECT_EQ(ECTuplet::GetUnitsAsTime(3).GetSeconds(), 0.5f);
    for (int code : {-2, 8, 255, 1000})
        EXPECT_EQ(ECTuplet::GetUnitsAsTime(code).GetSeconds(), 0.0f) << code;
}

TEST(ECTupletTest, EquivalentRatiosOverEverySmallRatio)
{
    int irregular = 0, normal = 0;
    BYTE units = 0;
    ECTuplet::GetEquivalentTuplet(3, 2, 3, irregular, normal, units);
    EXPECT_EQ((std::vector<int>{irregular, normal, units}), (std::vector<int>{3, 2, 3}));
    ECTuplet::GetEquivalentTuplet(5, 2, 3, irregular, normal, units);
    EXPECT_EQ((std::vector<int>{irregular, normal, units}), (std::vector<int>{5, 4, 4}));
    EXPECT_EQ(ECTuplet::CalcIrregularUnits(3, 2, 7), 255) << "0.03125 has no code here";
    EXPECT_EQ(ECTuplet::CalcIrregularUnits(9, 1, 6), 255) << "halved out of the table";

    for (int i = 0; i <= 40; ++i)
        for (int n = 0; n <= 40; ++n)
            for (int u = -1; u <= 8; ++u)
            {
                SCOPED_TRACE(::testing::Message() << i << ":" << n << " in " << u);
                ECTuplet::GetEquivalentTuplet(i, n, static_cast<BYTE>(u), irregular, normal, units);
                if (i == 0 || n == 0)
                {
                    EXPECT_EQ(irregular, i) << "a count of 0 is its own equivalent";
                    EXPECT_EQ(normal, n);
                    continue;
                }
                EXPECT_TRUE(2 * irregular > normal && 2 * normal > irregular) << "within an octave";
                EXPECT_TRUE(irregular == i || normal == n) << "only one count moves";
                EXPECT_TRUE(irregular % i == 0 && normal % n == 0) << "by doubling";
            }
}

TEST(ECTupletTest, ScaledDurationsAndAdjustedDenominators)
{
    struct Case
    {
        BYTE irregular, normal, units;
        float scaledQuarter; // ScaleDuration(1.0)
        int denominator;     // GetAdjustedDenominator
    };
    const Case cases[] = {
        {3, 2, 3, 2.0f / 3.0f, 8}, // triplet eighths
        {5, 4, 4, 0.8f, 16},       // quintuplet sixteenths
        {5, 2, 3, 0.8f, 16},       // the same, unreduced: the normal count doubles
        {2, 3, 3, 1.5f, 8},        // duplet in a compound beat
        {7, 2, 4, 4.0f / 7.0f, 32},
        {1, 4, 2, 1.0f, 1},        // the irregular count doubles: the denominator halves
        {0, 2, 3, -3.4028235e+38f, 8},
        {3, 0, 3, 0.0f, 8},
        {3, 2, 200, 2.0f / 3.0f, 4}, // no unit
    };
    for (const Case &c : cases)
    {
        SCOPED_TRACE(::testing::Message() << int(c.irregular) << ":" << int(c.normal) << " in " << int(c.units));
        TupletProbe *t = TupletProbe::Make(c.irregular, c.normal, c.units);
        MCTime quarter(1.0f);
        EXPECT_FLOAT_EQ(t->ScaleDuration(&quarter).GetSeconds(), c.scaledQuarter);
        EXPECT_EQ(t->GetAdjustedDenominator(), c.denominator);
        t->Unref(1);
    }
}

TEST(ECTupletTest, BorrowedMetersForTheThreeWaysOfFitting)
{
    struct Case
    {
        const char *what;
        BYTE numerator, denominator;
        BYTE irregular, normal, units;
        std::vector<std::pair<int, int>> borrowed;
    };
    const Case cases[] = {
        {"every beat of a level", 4, 4, 3, 2, 3, {{3, 8}, {3, 8}, {3, 8}, {3, 8}}},
        {"the whole measure", 4, 4, 5, 4, 2, {{5, 4}}},
        // 7/8 stresses as 2 + 2 + 3 eighths: the two of a quarter each take a
        // triplet, the dotted quarter one triplet and an eighth left over.
        {"beats of a level beside the tuplet's, a longer one cut", 7, 8, 3, 2, 3, {{3, 8}, {3, 8}, {3, 8}, {1, 8}}},
        {"no fit: the measure cut into the tuplet's beats and the rest", 4, 4, 5, 3, 3, {{5, 8}, {5, 8}, {1, 4}}},
    };
    for (const Case &c : cases)
    {
        SCOPED_TRACE(c.what);
        ECMeter *meter = Meter(c.numerator, c.denominator);
        TupletProbe *t = TupletProbe::Make(c.irregular, c.normal, c.units);
        ECMeter *borrowed = new ECMeter;
        borrowed->Ref();
        EXPECT_EQ(t->SetupBorrowedMeter(meter, borrowed), 1);
        EXPECT_EQ(Components(borrowed), c.borrowed);
        for (ECBase *e : {static_cast<ECBase *>(meter), static_cast<ECBase *>(t), static_cast<ECBase *>(borrowed)})
            e->Unref(1);
    }
}

TEST(ECTupletTest, RangesInTheMeasureAndWhetherTheyFit)
{
    struct Case
    {
        const char *what;
        BYTE irregular, normal, units;
        float time; // in the measure
        float start, end, writtenStart, writtenEnd;
        int valid;
    };
    const Case cases[] = {
        {"triplet on the second beat", 3, 2, 3, 1.0f, 1.0f, 2.0f, 1.5f, 3.0f, 0},
        {"triplet on the last beat", 3, 2, 3, 3.5f, 3.0f, 4.0f, 4.5f, 6.0f, 0},
        {"quintuplet of the whole bar", 5, 4, 2, 0.0f, 0.0f, 4.0f, 0.0f, 5.0f, 0},
        {"a tuplet that runs past the bar line", 5, 3, 3, 3.5f, 3.0f, 4.5f, 5.0f, 7.5f, 1},
    };
    ECMeter *meter = Meter(4, 4);
    ECMeasure *measure = MeasureAt(8.0f);
    for (const Case &c : cases)
    {
        SCOPED_TRACE(c.what);
        TupletProbe *t = TupletProbe::Make(c.irregular, c.normal, c.units, 8.0f + c.time);
        MCTime start, end;
        ASSERT_EQ(t->GetTupletRange(measure, meter, start, end, 0), 1);
        EXPECT_FLOAT_EQ(start.GetSeconds(), c.start);
        EXPECT_FLOAT_EQ(end.GetSeconds(), c.end);
        ASSERT_EQ(t->GetTupletRange(measure, meter, start, end, 1), 1);
        EXPECT_FLOAT_EQ(start.GetSeconds(), c.writtenStart);
        EXPECT_FLOAT_EQ(end.GetSeconds(), c.writtenEnd);
        EXPECT_EQ(t->IsValid(measure, meter), c.valid);
        t->Unref(1);
    }

    // No time on the tuplet: its first timed child's; none at all: no range.
    TupletProbe *t = TupletProbe::Make(3, 2, 3);
    t->SetTime(const_cast<MCTime *>(&MCTime::TimeNull()));
    EXPECT_EQ(t->IsValid(measure, meter), 2);
    ECNote *note = new ECNote;
    MCTime at(9.0f);
    note->SetTime(&at);
    t->AddChild(note, 1);
    EXPECT_EQ(t->IsValid(measure, meter), 0);
    MCTime start, end;
    t->GetTupletRange(measure, meter, start, end, 0);
    EXPECT_FLOAT_EQ(start.GetSeconds(), 1.0f);
    t->RemoveChildren(0);
    t->Unref(1);
    measure->Unref(1);
    meter->Unref(1);
}

TEST(ECTupletTest, EveryRatioEndsItsArithmetic)
{
    ECMeter *meter = Meter(4, 4);
    ECMeasure *measure = MeasureAt(0.0f);
    for (int i : {0, 1, 2, 3, 7, 64, 255})
        for (int n : {0, 1, 2, 3, 7, 64, 255})
            for (int u = 0; u <= 9; ++u)
            {
                SCOPED_TRACE(::testing::Message() << i << ":" << n << " in " << u);
                TupletProbe *t = TupletProbe::Make(static_cast<BYTE>(i), static_cast<BYTE>(n), static_cast<BYTE>(u));
                MCTime quarter(1.0f), start, end;
                t->ScaleDuration(&quarter);
                t->GetAdjustedDenominator();
                t->GetIrregularUnits();
                const int valid = t->IsValid(measure, meter);
                EXPECT_TRUE(valid >= 0 && valid <= 2);
                CByteArray numerators, denominators;
                int index = 0;
                EXPECT_EQ(t->FitInside(meter, numerators, denominators, 0.5f, 4.0f, index, 1), 1);
                EXPECT_LE(numerators.GetSize(), 4.0f / 0.5f + 1) << "a step of 0 writes once";
                t->Unref(1);
            }
    measure->Unref(1);
    meter->Unref(1);
}

TEST(ECTupletTest, LeavingTheTreeHandsTheNotesToTheMeasure)
{
    ECMeasure *measure = MeasureAt(0.0f);
    TupletProbe *t = TupletProbe::Make(3, 2, 3);
    measure->AddChild(t, 1);
    ECNote *held = new ECNote, *own = new ECNote;
    measure->AddChild(held, 1);
    t->AddChild(held, 1);
    t->AddChild(own, 1);
    t->RemoveFromParents();
    EXPECT_EQ(measure->GetChildren()->GetCount(), 2);
    EXPECT_TRUE(measure->GetChildren()->Find(held) && measure->GetChildren()->Find(own));
    EXPECT_EQ(t->GetChildren()->GetCount(), 0);
    EXPECT_EQ(held->GetParents()->GetCount(), 1);
    t->Unref(1);
    measure->RemoveChildren(1);
    measure->Unref(1);
}

TEST(ECTupletTest, TheRecordReadsUnitsOnlyFromSchemaTwo)
{
    ECTuplet *plain = new ECTuplet(5, 4, 4);
    plain->Ref();
    Bytes bytes = Store([&](CArchive &ar) { ar << plain; });
    ASSERT_EQ(bytes[0], 0xFF) << "a new class";
    ASSERT_EQ(bytes[2], 2) << "stored with schema 2";
    ECTuplet *loaded = LoadObject<ECTuplet>(bytes);
    ASSERT_NE(loaded, nullptr);
    loaded->Ref();
    EXPECT_TRUE(*loaded == *plain);
    loaded->Unref(1);

    bytes[2] = 1;
    bytes.pop_back();
    ECTuplet *old = nullptr;
    EXPECT_EQ(LoadBytes(bytes, [&](CArchive &ar) { ar >> old; }), bytes.size());
    ASSERT_NE(old, nullptr);
    old->Ref();
    EXPECT_EQ(old->GetIrregular(), 5);
    EXPECT_EQ(old->GetNormal(), 4);
    EXPECT_EQ(old->GetUnits(), 3) << "an old tuplet is in eighths";
    old->Unref(1);
    plain->Unref(1);
}
