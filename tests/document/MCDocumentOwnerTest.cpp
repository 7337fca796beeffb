// The document owner takes a document down whole, in order: no handler is
// called once closing began, every staff (those kept by undo steps too) is
// freed, the active performance does not dangle, and moves close or hand
// over exactly once.
#include "events/structure/TrackTestSupport.h"

#include <scoremodel/commands/CCAddTrack.h>
#include <scoremodel/commands/CCRemoveTrack.h>
#include <scoremodel/document/MCDocumentOwner.h>

namespace
{
int g_stateCalls = 0;
int CountState(ECBase *, int, void *, void *)
{
    ++g_stateCalls;
    return 1;
}

void Apply(ECPerformance *doc, CCBase *command)
{
    CString name(L"edit");
    MCCommandMgr::BeginUndo(doc, name);
    command->SetSynchronous(1);
    command->Apply(doc);
    MCCommandMgr::EndUndo(doc);
}

// A document with two staves made and one removed again, so that an undo
// step holds a staff outside the tree.
MCDocumentOwner Edited()
{
    MCDocumentOwner doc = MCDocumentOwner::Make();
    EXPECT_NE(doc->GetConductor(), nullptr);
    auto *kept = new CountedStaff;
    Apply(doc.Get(), new CCAddTrack(kept, -1));
    Apply(doc.Get(), new CCAddTrack(new CountedStaff, -1));
    Apply(doc.Get(), new CCRemoveTrack(kept));
    doc->AddStateHandler(CountState, nullptr);
    doc->AddCommandHandler([](ECBase *, int, void *, void *) { return 1; }, nullptr);
    return doc;
}
} // namespace

TEST(MCDocumentOwner, ClosingFreesTheWholeDocumentAndCallsNoHandler)
{
    g_liveTracks = 0;
    g_stateCalls = 0;
    for (int way = 0; way < 4; ++way)
    {
        {
            MCDocumentOwner doc = Edited();
            ASSERT_EQ(g_liveTracks, 2) << way;
            ECPerformance::SetActivePerformance(doc.Get());
            const int callsBefore = g_stateCalls;
            switch (way)
            {
            case 0: doc.Close(); break;                                 // explicitly
            case 1: break;                                              // by the destructor
            case 2: doc = MCDocumentOwner(); break;                      // by a move over it
            case 3: { MCDocumentOwner taker(std::move(doc)); } break;   // by the one it moved to
            }
            if (way != 1)
            {
                EXPECT_FALSE(doc) << way;
                EXPECT_EQ(g_liveTracks, 0) << way;
                EXPECT_EQ(ECPerformance::GetActivePerformance(), nullptr) << way;
            }
            EXPECT_EQ(g_stateCalls, callsBefore) << "a handler ran while closing, way " << way;
            doc.Close(); // a second close does nothing
        }
        EXPECT_EQ(g_liveTracks, 0) << way;
        EXPECT_EQ(ECPerformance::GetActivePerformance(), nullptr) << way;
    }
}

TEST(MCDocumentOwner, ReleaseHandsTheHoldToTheCaller)
{
    g_liveTracks = 0;
    ECPerformance *held = nullptr;
    {
        MCDocumentOwner doc = Edited();
        held = doc.Release();
        EXPECT_FALSE(doc);
    }
    EXPECT_EQ(g_liveTracks, 2) << "released, the document is not closed";
    MCDocumentOwner again(held);
    again.Close();
    EXPECT_EQ(g_liveTracks, 0);
}
