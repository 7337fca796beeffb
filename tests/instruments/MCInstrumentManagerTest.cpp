#include "instruments/InstrumentFileTestSupport.h"

#include <scoremodel/instruments/MCInstrumentManager.h>
#include <scoremodel/platform/Exceptions.h>

#include <gtest/gtest.h>

#include <cmath>

using namespace instrumenttest;

namespace
{
MCInstrument Guitar()
{
    CArray<int, int> tunes;
    for (int i = 0; i < 6; ++i)
        tunes.Add(MCInstrument::FretsDefault[i]);
    return MCInstrument(L"Guitar", L"", 6, 24, 4, tunes);
}
} // namespace

using MCInstrumentManagerTest = InstrumentFileTest;

TEST(MCInstrumentManagerPitch, KeysFollowEqualTemperamentFromA440)
{
    MCInstrumentManager *m = MCInstrumentManager::GetInstance();
    EXPECT_EQ(m, MCInstrumentManager::GetInstance());
    const struct
    {
        int key;
        double hz;
    } keys[] = {{69, 440.0}, {57, 220.0}, {81, 880.0}, {60, 261.6255653006}, {0, 8.1757989156}, {126, 11839.8215267723},
                {9, 13.75}};
    for (const auto &k : keys)
        EXPECT_NEAR(m->GetHzOfKey(k.key), k.hz, k.hz * 1e-11) << k.key;
    // Each key a semitone above the one before.
    for (int key = 1; key < MCInstrumentManager::kPitchCount; ++key)
        EXPECT_NEAR(m->GetHzOfKey(key) / m->GetHzOfKey(key - 1), std::pow(2.0, 1.0 / 12), 1e-12) << key;
    EXPECT_THROW(m->GetHzOfKey(127), CInvalidArgException);
    EXPECT_THROW(m->GetHzOfKey(-1), CInvalidArgException);
}

TEST(MCInstrumentManagerPitch, OpenStringsOfTheCurrentInstrument)
{
    MCInstrumentManager *m = MCInstrumentManager::GetInstance();
    MCInstrument guitar = Guitar();
    m->SetInstrument(guitar);
    guitar.SetTunes(0, 0); // the manager holds its own copy
    EXPECT_NEAR(m->GetHzPitch(0), 329.6275569, 1e-6);
    EXPECT_NEAR(m->GetHzPitch(5), 82.4068892, 1e-6);
    EXPECT_THROW(m->GetHzPitch(6), CInvalidArgException);
    EXPECT_THROW(m->GetHzPitch(-1), CInvalidArgException);

    MCInstrument high = Guitar();
    high.SetTunes(2, 127);
    high.SetTunes(3, -3);
    m->SetInstrument(high);
    EXPECT_NO_THROW(m->GetHzPitch(1));
    EXPECT_THROW(m->GetHzPitch(2), CInvalidArgException); // the table ends at 126
    EXPECT_THROW(m->GetHzPitch(3), CInvalidArgException);
    m->SetInstrument(MCInstrument());
    EXPECT_THROW(m->GetHzPitch(0), CInvalidArgException);
}

TEST_F(MCInstrumentManagerTest, PassesCallsToTheParser)
{
    MCInstrumentManager *m = MCInstrumentManager::GetInstance();
    ASSERT_EQ(LoadBody(InstrumentXml("A", 1, {40}) + InstrumentXml("Guitar", 6, {64, 59, 55, 50, 45, 40})), 1);
    CArray<CString, CString> &names = m->GetInstrumentNameList(false);
    ASSERT_EQ(names.GetSize(), 2);
    EXPECT_EQ(names[1], L"Guitar");

    MCInstrument guitar = Guitar();
    guitar.SetFretsCount(-1);
    guitar.SetFingerDistance(-1);
    EXPECT_EQ(m->GetIndex(guitar), 1);
    EXPECT_EQ(m->GetIndex(Guitar()), -1); // frets differ
    EXPECT_EQ(m->GetInstrument(1).GetStringsCount(), 6);
    EXPECT_EQ(m->GetInstrument(2).GetStringsCount(), -1);
    EXPECT_EQ(m->HasInstrumentName(CString(L"Guitar")), 1);
    EXPECT_EQ(m->HasInstrumentName(CString(L"guitar")), 0);
    EXPECT_EQ(m->HasInstrumentName(&guitar), 1);
    EXPECT_EQ(m->HasInstrumentName(nullptr), 0);

    EXPECT_EQ(m->DelInstrument(-1), 0);
    EXPECT_EQ(m->EditInstrument(-1, guitar), 0);
    EXPECT_EQ(m->GetInstrumentNameList(true).GetSize(), 2);

    EXPECT_EQ(m->AddInstrument(Guitar()), 2);
    EXPECT_EQ(m->HasInstrumentName(CString(L"Guitar")), 1);
    EXPECT_EQ(m->GetInstrumentNameList(false).GetSize(), 2); // the cache lags
    EXPECT_EQ(m->GetInstrumentNameList(true).GetSize(), 3);
    EXPECT_EQ(m->EditInstrument(0, Guitar()), 1);
    EXPECT_EQ(m->DelInstrument(1), 1);
    ASSERT_EQ(m->Persist(), 1);
    EXPECT_TRUE(std::filesystem::exists(UserFile()));
    CArray<CString, CString> &after = m->GetInstrumentNameList(true);
    ASSERT_EQ(after.GetSize(), 2);
    EXPECT_EQ(after[0], L"Guitar");
    EXPECT_EQ(after[1], L"Guitar");
}
