#include "ArchiveBytes.h"

#include <scoremodel/core/MCTime.h>
#include <scoremodel/platform/CArchive.h>

#include <gtest/gtest.h>

#include <vector>

namespace
{
using archive_bytes::Bytes;

Bytes Store(MCTime t, int version = -1)
{
    return archive_bytes::Store([&](CArchive &ar) { t.Serialize(ar, version); });
}

void Load(const Bytes &bytes, MCTime &t, int version)
{
    CMemFile mem(bytes.data(), static_cast<UINT>(bytes.size()));
    CArchive ar(&mem, CArchive::load);
    t.Serialize(ar, version);
}

MCTime Clock(float seconds)
{
    MCTime t(seconds);
    t.SetMode(MCTime::TimeModeClock);
    return t;
}
} // namespace

TEST(MCTimeArchive, RecordLayoutIsModeByteThenFloatOrSixteenRawBytes)
{
    struct Row
    {
        const char *name;
        MCTime time;
        Bytes bytes;
    } rows[] = {
        {"normalized 1.5", MCTime(1.5f), {0x00, 0x00, 0x00, 0xC0, 0x3F}},
        {"clock -2", Clock(-2.0f), {0x03, 0x00, 0x00, 0x00, 0xC0}},
        {"bar/pulse/tick",
         MCTime(1, 2, 3, 480),
         {0x02, 0x01, 0, 0, 0, 0x02, 0, 0, 0, 0x03, 0, 0, 0, 0xE0, 0x01, 0, 0}},
        {"negative fields", MCTime(-1, 0, -2, 0), {0x02, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0}},
    };
    for (const Row &r : rows)
    {
        SCOPED_TRACE(r.name);
        EXPECT_EQ(Store(r.time, 0), r.bytes) << "storing ignores the version";
    }
}

TEST(MCTimeArchive, EveryModeComesBackAndOldRecordsAreABareFloat)
{
    for (const MCTime &original : {MCTime(0.25f), Clock(12.5f), MCTime(7, 3, 100, 960), MCTime::TimeMax()})
    {
        for (const MCTime &start : {MCTime(9.0f), MCTime(4, 4, 4, 4), Clock(1.0f)})
        {
            MCTime loaded(start);
            Load(Store(original), loaded, 20);
            EXPECT_EQ(loaded.GetMode(), original.GetMode());
            EXPECT_EQ(Store(loaded), Store(original));
        }
    }
    // Before version 1 a time was a float alone, and the mode stays as it
    // was, but for a bar/pulse/tick time that cannot hold a float.
    const Bytes bare = {0x00, 0x00, 0x20, 0x40}; // 2.5f
    for (const MCTime &start : {MCTime(1.0f), Clock(1.0f), MCTime(1, 1, 1, 480)})
    {
        MCTime loaded(start);
        Load(bare, loaded, 0);
        EXPECT_EQ(loaded.GetMode(), start.GetMode() == MCTime::TimeModeClock ? MCTime::TimeModeClock
                                                                              : MCTime::TimeModeNormalized);
        EXPECT_FLOAT_EQ(loaded.GetSeconds(), 2.5f);
    }
    // Whatever SetMode was given, a saved time loads again with its value.
    for (BYTE mode : {BYTE(1), BYTE(4), BYTE(0xFF)})
    {
        MCTime loaded(2.0f);
        Load(Bytes{mode, 0, 0, 0x80, 0x3F}, loaded, 1);
        EXPECT_EQ(loaded.GetMode(), mode);
        EXPECT_EQ(loaded.GetSeconds(), 1.0f);
    }
}

TEST(MCTimeArchive, TruncatedRecordsThrowEndOfFileAndLeaveAUsableTime)
{
    for (const MCTime &original : {MCTime(1.5f), MCTime(1, 2, 3, 480)})
    {
        const Bytes full = Store(original);
        for (size_t cut = 0; cut < full.size(); ++cut)
        {
            SCOPED_TRACE(cut);
            MCTime loaded(5, 5, 5, 5);
            try
            {
                Load(Bytes(full.begin(), full.begin() + static_cast<long>(cut)), loaded, 1);
                ADD_FAILURE() << "a truncated record loaded";
            }
            catch (const CArchiveException &e)
            {
                EXPECT_EQ(e.m_cause, CArchiveException::endOfFile);
            }
            MCTime copy(loaded); // still a valid value
        }
    }
}
