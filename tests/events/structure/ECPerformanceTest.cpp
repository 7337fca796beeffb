// The document root: the active document and its version, the conductor
// cache and the archive record.
#include "events/ArchiveTestSupport.h"

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECPerformance.h>

#include <gtest/gtest.h>

namespace
{
ECPerformance *NewDocument()
{
    auto *doc = new ECPerformance;
    doc->Ref();
    return doc;
}

void Drop(ECPerformance *doc)
{
    doc->RemoveChildren(1);
    doc->Unref(1);
}
} // namespace

TEST(ECPerformanceActive, LoadersReadTheActiveDocumentsVersion)
{
    ECPerformance *before = ECPerformance::SetActivePerformance(nullptr);
    EXPECT_EQ(ECPerformance::GetActiveVersion(), 0x7FFFFFFF);
    EXPECT_EQ(ActiveArchiveVersion(), 0x7FFFFFFF);

    ECPerformance *a = NewDocument();
    ECPerformance *b = NewDocument();
    EXPECT_EQ(a->GetVersion(), 0);
    a->SetVersion(18);
    b->SetVersion(19);
    EXPECT_EQ(ECPerformance::SetActivePerformance(a), nullptr);
    EXPECT_EQ(ActiveArchiveVersion(), 18);
    EXPECT_EQ(ECPerformance::SetActivePerformance(b), a);
    EXPECT_EQ(ECPerformance::GetActivePerformance(), b);
    EXPECT_EQ(ActiveArchiveVersion(), 19);
    Drop(b); // a document that goes stops being the active one
    EXPECT_EQ(ECPerformance::GetActivePerformance(), nullptr);
    EXPECT_EQ(ActiveArchiveVersion(), 0x7FFFFFFF);
    Drop(a);
    ECPerformance::SetActivePerformance(before);
}

// The conductor is found once a child and kept from then on, and a load
// fills the same cache.
TEST(ECPerformanceConductor, FoundWhenAddedAndWhenLoaded)
{
    ECPerformance *doc = NewDocument();
    EXPECT_EQ(doc->GetConductor(), nullptr);
    auto *conductor = new ECConductor;
    doc->AddChild(conductor, 0);
    EXPECT_EQ(doc->GetConductor(), conductor);

    Bytes bytes = Store([&](CArchive &ar) { doc->Serialize(ar); });
    ECPerformance *loaded = NewDocument();
    LoadBytes(bytes, [&](CArchive &ar) { loaded->Serialize(ar); });
    ASSERT_NE(loaded->GetConductor(), nullptr);
    EXPECT_EQ(loaded->GetChildren()->GetCount(), 1);
    EXPECT_EQ(loaded->GetChildren()->GetHead(), loaded->GetConductor());
    Drop(loaded);
    Drop(doc);
}
