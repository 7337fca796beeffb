// The conductor that commands reach after the host replaced the document's
// tree: they must land in the new conductor, never in the one that went.
#include "CommandTestSupport.h"

#include <scoremodel/commands/CCAddTrack.h>
#include <scoremodel/document/MCDocumentFile.h>
#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/events/structure/ECStaff.h>
#include <scoremodel/platform/CArchive.h>
#include <scoremodel/platform/CFile.h>

#include <functional>

using ConductorCache = CommandTest;

TEST_F(ConductorCache, CommandsReachTheConductorThatReplacedARemovedOne)
{
    // Each way a host can take the conductor out of the document.
    const std::pair<const char *, std::function<void(ECPerformance *)>> removals[] = {
        {"RemoveChildren", [](ECPerformance *doc) { doc->RemoveChildren(1); }},
        {"RemoveChild", [](ECPerformance *doc) { doc->RemoveChild(doc->GetConductor(), 1); }},
        // The conductor leaves by itself, then its subtree is taken down.
        {"RemoveFromParents",
         [](ECPerformance *doc) {
             ECConductor *conductor = doc->GetConductor();
             conductor->Ref();
             conductor->RemoveFromParents();
             conductor->RemoveChildren(1);
             conductor->Unref(1);
         }},
    };
    for (const auto &[how, remove] : removals)
    {
        SCOPED_TRACE(how);
        ASSERT_NE(m_doc->GetConductor(), nullptr);
        // A command has run, so the document has handed its conductor out.
        ASSERT_NE(CCAddTrack::AddNow(m_doc, new ECStaff, -1), nullptr);
        remove(m_doc);
        EXPECT_EQ(m_doc->GetConductor(), nullptr) << "the removed conductor is still answered";

        auto *conductor = new ECConductor;
        m_doc->AddChild(conductor, 0);
        EXPECT_EQ(m_doc->GetConductor(), conductor);
        ECTrack *staff = CCAddTrack::AddNow(m_doc, new ECStaff, -1);
        ASSERT_NE(staff, nullptr);
        EXPECT_EQ(conductor->GetMaxTrackNumber(ECConductor::TrackStaff), 1);
        EXPECT_EQ(conductor->GetTrack(ECConductor::TrackStaff, 1, 0), staff);
    }
}

TEST_F(ConductorCache, LoadingIntoTheDocumentFindsTheLoadedConductor)
{
    // Another document's tree with two staves, stored as a host stores it.
    CMemFile mem;
    {
        auto *source = new ECPerformance;
        source->Ref();
        source->AddChild(new ECConductor, 0);
        ASSERT_NE(CCAddTrack::AddNow(source, new ECStaff, -1), nullptr);
        ASSERT_NE(CCAddTrack::AddNow(source, new ECStaff, -1), nullptr);
        CArchive ar(&mem, CArchive::store);
        MCDocumentFile::StoreArchive(ar, source);
        ar.Close();
        source->RemoveChildren(1);
        source->Unref(1);
    }

    // Held, so the loaded conductor cannot take the old one's address.
    ECConductor *old = m_doc->GetConductor();
    ASSERT_NE(old, nullptr);
    old->Ref();
    m_doc->RemoveChildren(1);
    mem.SeekToBegin();
    {
        CArchive ar(&mem, CArchive::load);
        MCDocumentFile::LoadArchive(ar, m_doc, ArchiveVersionCurrent);
        ar.Close();
    }

    ECConductor *loaded = m_doc->GetConductor();
    old->Unref(1);
    ASSERT_NE(loaded, nullptr);
    ASSERT_NE(loaded, old) << "the removed conductor is still answered";
    ASSERT_EQ(loaded->GetMaxTrackNumber(ECConductor::TrackStaff), 2);
    ECTrack *staff = CCAddTrack::AddNow(m_doc, new ECStaff, 1);
    ASSERT_NE(staff, nullptr);
    EXPECT_EQ(loaded->GetMaxTrackNumber(ECConductor::TrackStaff), 3);
    EXPECT_EQ(loaded->GetTrack(ECConductor::TrackStaff, 1, 0), staff);
}
