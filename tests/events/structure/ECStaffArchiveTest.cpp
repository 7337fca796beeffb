// A staff's record read as documents of older versions: the layout fields
// came at version 5, and the two small staff sizes of documents before
// version 16 mean the sizes 32 and 33 of today.
#include "events/ArchiveTestSupport.h"

#include <scoremodel/actions/ACPostSerialize.h>
#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/events/structure/ECPerformance.h>
#include <scoremodel/events/structure/ECStaff.h>

#include <gtest/gtest.h>

namespace
{
Bytes StoreStaff(BYTE size)
{
    auto *staff = static_cast<ECStaff *>(CreateEventW(EVENT_ID_STAFF));
    staff->Ref();
    staff->SetStaffType(ECStaff::StaffTypeTwoHands);
    staff->SetStaffSize(size);
    staff->SetStaffLines(4);
    staff->SetPercussionStaffMap(0x155);
    staff->SetPercussionStaffMidiPitch(0x40);
    const Bytes bytes = Store([&](CArchive &ar) {
        ar.WriteObject(staff);
        ACPostSerialize post(ar);
        post.Apply(staff);
    });
    staff->Unref(1);
    return bytes;
}

// Loads both sections as a document of `version` would; the caller owns the
// staff.
ECStaff *LoadStaff(const Bytes &bytes, int version, ULONGLONG *used)
{
    ECPerformance *header = new ECPerformance;
    header->Ref();
    header->SetVersion(version);
    ECPerformance *previous = ECPerformance::SetActivePerformance(header);
    ECStaff *staff = nullptr;
    *used = LoadBytes(bytes, [&](CArchive &ar) {
        ar >> staff;
        staff->Ref();
        ACPostSerialize post(ar);
        post.Apply(staff);
    });
    ECPerformance::SetActivePerformance(previous);
    header->Unref(1);
    return staff;
}

TEST(ECStaffArchiveTest, SmallSizesOfOldDocumentsBecomeTodaysSizes)
{
    const struct
    {
        BYTE stored;
        int version;
        BYTE loaded;
    } cases[] = {
        {8, 15, 32}, {9, 15, 33}, {10, 15, 10}, {32, 15, 32}, {8, 16, 8}, {9, 16, 9}, {9, 20, 9},
    };
    for (const auto &c : cases)
    {
        SCOPED_TRACE(::testing::Message() << "size " << int(c.stored) << " version " << c.version);
        const Bytes bytes = StoreStaff(c.stored);
        ULONGLONG used = 0;
        ECStaff *staff = LoadStaff(bytes, c.version, &used);
        EXPECT_EQ(used, bytes.size());
        EXPECT_EQ(staff->GetStaffSize(), c.loaded);
        EXPECT_EQ(staff->GetStaffLines(), 4);
        EXPECT_EQ(staff->GetStaffType(), ECStaff::StaffTypeTwoHands);
        staff->Unref(1);
    }
}

TEST(ECStaffArchiveTest, ADocumentBeforeVersionFiveHasNoLayoutFields)
{
    // The layout fields close a staff stored alone: the percussion map, its
    // pitch, the line count and the size (8 bytes), then the tablature
    // instrument's record.
    MCInstrument instrument;
    const Bytes instrumentRecord = Store([&](CArchive &ar) { instrument.Serialize(ar); });
    Bytes bytes = StoreStaff(0x28);
    bytes.resize(bytes.size() - 8 - instrumentRecord.size());
    ULONGLONG used = 0;
    ECStaff *staff = LoadStaff(bytes, 4, &used);
    EXPECT_EQ(used, bytes.size());
    EXPECT_EQ(staff->GetStaffType(), ECStaff::StaffTypeTwoHands);
    EXPECT_EQ(staff->GetStaffSize(), 0x20) << "the defaults stand";
    EXPECT_EQ(staff->GetStaffLines(), 5);
    EXPECT_EQ(staff->GetPercussionStaffMap(), 0x0D0);
    EXPECT_EQ(staff->GetPercussionStaffMidiPitch(), 0x23);
    staff->Unref(1);
}

TEST(ECStaffArchiveTest, ATablatureStaffCountsTheStringsOfItsInstrument)
{
    auto *staff = static_cast<ECStaff *>(CreateEventW(EVENT_ID_STAFF));
    staff->Ref();
    CArray<int, int> tunes;
    for (int tune : {64, 59, 55, 50, 45, 40, 35})
        tunes.Add(tune);
    staff->SetTablatureInstrument(MCInstrument(L"7-String Guitar", L"low B", 7, 24, 4, tunes));
    staff->SetStaffLines(5);
    EXPECT_EQ(staff->GetStaffLines(), 5) << "not a tablature staff yet";
    staff->SetStaffType(ECStaff::StaffTypeTablature);
    EXPECT_EQ(staff->GetStaffLines(), 7);

    auto *copy = static_cast<ECStaff *>(CreateEventW(EVENT_ID_STAFF));
    copy->Ref();
    EXPECT_FALSE(*copy == *staff);
    copy->Copy(staff);
    EXPECT_TRUE(*copy == *staff);
    copy->GetTablatureInstrument().SetName(L"Bass");
    EXPECT_FALSE(*copy == *staff) << "the instrument counts";

    const Bytes bytes = Store([&](CArchive &ar) { ar.WriteObject(staff); });
    ULONGLONG used = 0;
    ECStaff *loaded = LoadStaff(bytes, ArchiveVersionCurrent, &used);
    EXPECT_EQ(used, bytes.size());
    EXPECT_TRUE(loaded->GetTablatureInstrument() == staff->GetTablatureInstrument());
    EXPECT_EQ(loaded->GetStaffLines(), 7);
    for (ECStaff *s : {staff, copy, loaded})
        s->Unref(1);
}
} // namespace
