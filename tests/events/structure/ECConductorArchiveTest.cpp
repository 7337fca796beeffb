#include "events/ArchiveTestSupport.h"
#include "events/structure/TrackTestSupport.h"

#include <scoremodel/actions/ACPostSerialize.h>
#include <scoremodel/platform/CArchive.h>
#include <scoremodel/platform/CFile.h>

namespace
{
// A conductor that stores the layout of documents before version 19: no
// chord staff after the conductor staff. It loads as any conductor.
class OldConductor : public ECConductor
{
    DECLARE_SERIAL(OldConductor)

public:
    void Serialize(CArchive &ar) override
    {
        if (!ar.IsStoring())
            return ECConductor::Serialize(ar);
        ECWithChild::Serialize(ar);
        ar.WriteObject(GetConductorStaff());
    }
};
IMPLEMENT_SERIAL(OldConductor, ECConductor, VERSIONABLE_SCHEMA | 2)

// Both sections of a document, as a host writes them.
void Store(CMemFile &mem, ECPerformance *doc)
{
    CArchive ar(&mem, CArchive::store);
    ar.WriteObject(doc);
    ACPostSerialize post(ar);
    post.Apply(doc);
    ar.Close();
}

// Reads a document stored in `mem` as a file of `version`; the stream must
// be read to its end.
ECPerformance *Load(CMemFile &mem, int version)
{
    const ULONGLONG length = mem.GetLength();
    mem.SeekToBegin();
    ECPerformance *header = new ECPerformance;
    header->Ref();
    header->SetVersion(version);
    ECPerformance *previous = ECPerformance::SetActivePerformance(header);
    ECPerformance *doc = nullptr;
    {
        CArchive ar(&mem, CArchive::load);
        ar >> doc;
        if (doc)
        {
            doc->Ref();
            ACPostSerialize post(ar);
            post.Apply(doc);
        }
        ar.Close();
    }
    ECPerformance::SetActivePerformance(previous);
    header->Unref(1);
    EXPECT_EQ(mem.GetPosition(), length) << "the loaders must read the stream to its end";
    return doc;
}

void Release(ECPerformance *doc)
{
    doc->RemoveChildren(1);
    doc->Unref(1);
}
} // namespace

using ConductorArchive = TrackTest;

TEST_F(ConductorArchive, AVersion19DocumentBringsItsChordStaffStavesAndWaveTracks)
{
    m_conductor->GetConductorStaff();
    m_conductor->GetChordStaff()->SetStaffSize(0x33);
    AddStaff();
    AddStaff()->SetStaffLines(4);
    AddWave();
    AddWave(0);

    CMemFile mem;
    Store(mem, m_doc);
    ECPerformance *doc = Load(mem, 19);
    ASSERT_NE(doc, nullptr);
    ECConductor *conductor = doc->GetConductor();
    ASSERT_NE(conductor, nullptr);
    ECConductorStaff *conductorStaff = conductor->GetConductorStaff();
    ASSERT_NE(conductorStaff, nullptr);
    EXPECT_EQ(conductorStaff->GetConductor(), conductor);
    EXPECT_EQ(conductorStaff->GetPerformance(), doc);
    EXPECT_EQ(doc->GetUndoCount(), 0) << "nothing was made after loading";

    ASSERT_EQ(conductor->GetMaxTrackNumber(2), 2);
    EXPECT_EQ(conductor->GetTrack(2, 1, 0)->GetTrack(), 1);
    EXPECT_EQ(static_cast<ECStaff *>(conductor->GetTrack(2, 2, 0))->GetStaffLines(), 4);
    EXPECT_EQ(conductor->GetMaxTrackNumber(3), 2);

    ECStaff *chord = conductor->GetChordStaff();
    EXPECT_EQ(chord->GetStaffSize(), 0x33) << "the stored chord staff, not a new one";
    EXPECT_EQ(chord->GetParents()->GetCount(), 0);
    Release(doc);
}

TEST_F(ConductorArchive, AVersion18DocumentHasNoChordStaffUntilItIsAskedFor)
{
    m_doc->RemoveChildren(1);
    m_conductor = new OldConductor;
    m_doc->AddChild(m_conductor, 0);
    m_conductor->GetConductorStaff();
    AddStaff();

    CMemFile mem;
    Store(mem, m_doc);
    ECPerformance *doc = Load(mem, 18);
    ASSERT_NE(doc, nullptr);
    ECConductor *conductor = doc->GetConductor();
    EXPECT_EQ(conductor->GetMaxTrackNumber(2), 1);
    EXPECT_EQ(doc->GetUndoCount(), 0);

    CString name(L"chord staff");
    MCCommandMgr::BeginUndo(doc, name);
    ECStaff *chord = conductor->GetChordStaff();
    MCCommandMgr::EndUndo(doc);
    ASSERT_NE(chord, nullptr);
    EXPECT_EQ(chord->GetStaffSize(), 0x20);
    EXPECT_EQ(doc->GetUndoCount(), 1) << "the chord staff is made by a command";
    doc->ClearUndo();
    Release(doc);
}

TEST_F(ConductorArchive, TheWaveTrackArrayFollowsTheStoredNumbersNotTheChildOrder)
{
    ECConductor *conductor = new ECConductor;
    conductor->Ref();
    for (int number : {3, 1, 2})
    {
        auto *track = new CountedWaveTrack;
        track->SetVoiceTrack(14, number);
        conductor->AddChild(track, 0);
    }

    auto *loaded = LoadObject<ECConductor>(Store([&](CArchive &ar) { ar.WriteObject(conductor); }));
    ASSERT_NE(loaded, nullptr);
    loaded->Ref();
    ASSERT_EQ(loaded->GetMaxTrackNumber(3), 3);
    for (int number = 1; number <= 3; ++number)
        EXPECT_EQ(loaded->GetTrack(3, number, 0)->GetTrack(), number);
    EXPECT_EQ(loaded->GetChildren()->GetHead()->GetTrack(), 3) << "the child order is left alone";
    loaded->RemoveChildren(1);
    loaded->Unref(1);
    conductor->RemoveChildren(1);
    conductor->Unref(1);
}
