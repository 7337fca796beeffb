// A score saved and read back: the columns, rows, staves and groups of the
// second section, the staff caches rebuilt from the tree, and the conductor
// staff's record as documents before version 3 wrote it.
#include "events/ArchiveTestSupport.h"
#include "events/structure/ScoreTestSupport.h"

#include <scoremodel/actions/ACPostSerialize.h>
#include <scoremodel/document/MCDocumentFile.h>
#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/events/envelopes/ECTempoEnv.h>
#include <scoremodel/events/signatures/ECClef.h>
#include <scoremodel/events/signatures/ECKey.h>
#include <scoremodel/events/signatures/ECMeterEnv.h>

namespace
{
using ScoreArchive = ScoreTest;

TEST_F(ScoreArchive, TheMatrixCachesAndGroupsComeBack)
{
    Build(3, 4);
    m_score->GetStaff(2, 0)->SetStaffType(ECStaff::StaffTypeTwoHands);
    MCTime five(5.0f), nine(9.0f);
    auto *clef = static_cast<ECClef *>(CreateEventW(EVENT_ID_CLEF));
    clef->SetTime(&five);
    m_score->GetMeasure(2, five, 0, 0)->AddChild(clef, 1);
    auto *key = static_cast<ECKey *>(CreateEventW(EVENT_ID_KEY));
    key->SetTime(&nine);
    m_score->GetMeasure(3, nine, 0, 0)->AddChild(key, 1);
    int id = -1;
    ASSERT_EQ(m_score->GroupStaves(1, 2, 1, id), 1);
    Column(2)->SetCollapseMeasure(4);
    m_score->GetTempoEnv();
    m_score->GetMeterEnv();

    CMemFile mem;
    MCDocumentFile::Write(mem, m_doc);
    mem.SeekToBegin();
    int version = 0;
    ECPerformance *copy = MCDocumentFile::Read(mem, &version);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(version, ArchiveVersionCurrent);
    auto *conductor = static_cast<ECConductor *>(copy->GetDescendant(EVENT_ID_CONDUCTOR, 1));
    ASSERT_NE(conductor, nullptr);
    ECConductorStaff *score = conductor->GetConductorStaff();
    ASSERT_NE(score, nullptr);
    EXPECT_EQ(score->GetMaxStaffNumber(), 3);
    EXPECT_EQ(score->GetMaxMeasureNumber(), 3);
    EXPECT_TRUE(score->GetMaxMeasureEndTime() == MCTime(16.0f));
    EXPECT_NE(score->FindTempoEnv(), nullptr);
    EXPECT_NE(score->FindMeterEnv(), nullptr);
    for (int c = 0; c <= 3; ++c)
    {
        ECConductorMeasure *column = score->GetConductorMeasures().GetAt(c);
        ASSERT_EQ(column->GetMaxTrack(), 3);
        EXPECT_TRUE(*column->GetTime() == MCTime(4.0f * c));
        for (int row = 1; row <= 3; ++row)
        {
            ECMeasure *measure = column->GetMeasureOnTrack(row);
            ASSERT_NE(measure, nullptr);
            EXPECT_NE(measure->GetParents()->Find(score->GetStaff(row, 0)), nullptr);
        }
    }
    EXPECT_EQ(score->GetConductorMeasures().GetAt(2)->GetCollapseMeasure(), 4);
    MCTime six(6.0f), ten(10.0f);
    ECClef *loadedClef = score->GetStaff(2, 0)->GetClefAtTime(six, 0);
    ASSERT_NE(loadedClef, nullptr);
    EXPECT_NE(loadedClef, clef);
    EXPECT_TRUE(*loadedClef->GetTime() == five);
    EXPECT_NE(score->GetStaff(3, 0)->GetKeyAtTime(ten, 0), nullptr);
    int first = 0, last = 0, kind = 0;
    EXPECT_EQ(score->GetGroup().GetGroupInfo(id, first, last, kind), 1);
    EXPECT_EQ(std::make_tuple(first, last, kind), std::make_tuple(1, 2, 1));
    // The loaded score is a working score.
    MCTime far(30.0f);
    EXPECT_NE(score->GetConductorMeasureAtTime(far, 1, 1), nullptr);
    EXPECT_EQ(score->GetMaxMeasureNumber(), 7);
    copy->RemoveChildren(1);
    copy->Unref(1);
}

// The envelope slots of the conductor staff's record, as documents before
// version 3 leave them (not read) or a damaged one leaves them (null).
struct EnvelopeSlots : ECConductorStaff
{
    static constexpr auto Tempo = &EnvelopeSlots::m_pTempoEnv;
};

TEST(ConductorStaffRecord, AStaffWhoseRecordNamesNoEnvelopesFindsThemAmongItsChildren)
{
    auto *staff = static_cast<ECConductorStaff *>(CreateEventW(EVENT_ID_CONDUCTOR_STAFF));
    staff->Ref();
    ECTempoEnv *tempo = staff->GetTempoEnv();
    ASSERT_NE(tempo, nullptr);
    staff->*EnvelopeSlots::Tempo = nullptr;
    const Bytes head = Store([&](CArchive &ar) { ar.WriteObject(staff); });
    const Bytes whole = Store([&](CArchive &ar) {
        ar.WriteObject(staff);
        ACPostSerialize post(ar);
        post.Apply(staff);
    });
    staff->*EnvelopeSlots::Tempo = tempo;
    staff->ReleaseHold();
    // The record ends with the two envelope references, both null.
    ASSERT_GT(head.size(), 4u);
    EXPECT_EQ(Bytes(head.end() - 4, head.end()), (Bytes{0, 0, 0, 0}));

    ECConductorStaff *loaded = nullptr;
    const ULONGLONG used = LoadBytes(whole, [&](CArchive &ar) {
        ar >> loaded;
        ASSERT_NE(loaded, nullptr);
        loaded->Ref();
        ACPostSerialize post(ar);
        post.Apply(loaded);
    });
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(used, whole.size());
    ECTempoEnv *found = loaded->FindTempoEnv();
    ASSERT_NE(found, nullptr) << "the tempo map is found among the children";
    EXPECT_EQ(loaded->GetTempoEnv(), found) << "and not made a second time";
    EXPECT_EQ(loaded->GetChildren()->GetCount(), 1);
    EXPECT_EQ(loaded->GetMaxMeasureNumber(), -1);
    loaded->ReleaseHold();
}

TEST(ConductorMeasureRecord, TheCollapseByteIsReadFromVersionTwentyOn)
{
    auto *column = static_cast<ECConductorMeasure *>(CreateEventW(EVENT_ID_CONDUCTOR_MEASURE));
    column->Ref();
    column->SetCollapseMeasure(9);
    const Bytes head = Store([&](CArchive &ar) { ar.WriteObject(column); });
    Bytes whole = Store([&](CArchive &ar) {
        ar.WriteObject(column);
        ACPostSerialize post(ar);
        post.Apply(column);
    });
    column->Unref(1);
    // The record ends with the max track (DWORD 0) and the collapse byte.
    ASSERT_GT(head.size(), 5u);
    EXPECT_EQ(Bytes(head.end() - 5, head.end()), (Bytes{0, 0, 0, 0, 9}));
    Bytes old = whole;
    old.erase(old.begin() + static_cast<long>(head.size()) - 1);
    for (auto [bytes, version, collapse] : {std::tuple{&whole, 20, 9}, std::tuple{&old, 19, 0}})
    {
        ECPerformance *header = new ECPerformance;
        header->Ref();
        header->SetVersion(version);
        ECPerformance *previous = ECPerformance::SetActivePerformance(header);
        ECConductorMeasure *loaded = nullptr;
        ULONGLONG used = 0;
        try
        {
            used = LoadBytes(*bytes, [&](CArchive &ar) {
                ar >> loaded;
                loaded->Ref();
                ACPostSerialize post(ar);
                post.Apply(loaded);
            });
        }
        catch (...)
        {
            ECPerformance::SetActivePerformance(previous);
            header->Unref(1);
            throw;
        }
        ECPerformance::SetActivePerformance(previous);
        header->Unref(1);
        ASSERT_NE(loaded, nullptr);
        EXPECT_EQ(used, bytes->size()) << version;
        EXPECT_EQ(loaded->GetCollapseMeasure(), collapse) << version;
        EXPECT_EQ(loaded->GetMeasureOnTrack(0), loaded);
        loaded->Unref(1);
    }
}
} // namespace
