// The smallest host: make a document, add staves through commands, pump until
// they have run, undo one, save, load the file back and close both.
//
// Posted commands (the default) run only while the host pumps the message
// queue of the thread that made the document; here that is main's own loop.
#include <scoremodel/scoremodel.h>

#include <cstdio>
#include <string>
#include <unistd.h>

namespace
{
int Staves(ECPerformance *doc)
{
    return doc->GetConductor()->GetConductorStaff()->GetMaxStaffNumber();
}

// Pumps until `done` holds, giving up after about five seconds.
template <class Done>
bool PumpUntil(Done done)
{
    for (int i = 0; i < 500 && !done(); ++i)
        MCMessageLoop::RunFor(10);
    return done();
}
} // namespace

int main(int argc, char **argv)
{
    const std::string file = argc > 1 ? argv[1] : "/tmp/scoremodel-minimal-host-" + std::to_string(::getpid()) + ".smd";

    MCCommandMgr::SetDocumentThread(); // edits run on the thread that pumps: this one
    MCDocumentOwner doc = MCDocumentOwner::Make();
    CString name(L"Add staves");
    MCCommandMgr::BeginUndo(doc.Get(), name);
    for (int i = 0; i < 3; ++i)
        (new CCAddTrack(new ECStaff, -1))->Apply(doc.Get()); // posted: runs when pumped
    MCCommandMgr::EndUndo(doc.Get());
    std::printf("staves before pumping: %d\n", Staves(doc.Get()));
    if (!PumpUntil([&] { return Staves(doc.Get()) == 3 && doc->GetUndoCount() == 1; }))
    {
        std::fprintf(stderr, "the posted commands did not run\n");
        return 1;
    }
    std::printf("staves after pumping: %d, undo steps: %d\n", Staves(doc.Get()), doc->GetUndoCount());

    doc->Undo(1);
    std::printf("staves after undo: %d\n", Staves(doc.Get()));
    doc->Redo(1);
    if (!PumpUntil([&] { return Staves(doc.Get()) == 3; }))
    {
        std::fprintf(stderr, "redo did not bring the staves back\n");
        return 1;
    }
    std::printf("staves after redo: %d\n", Staves(doc.Get()));

    MCDocumentFile::Save(doc.Get(), file.c_str());
    MCDocumentOwner copy(MCDocumentFile::Load(file.c_str()));
    std::printf("reloaded %s: %d staves\n", file.c_str(), Staves(copy.Get()));
    if (argc <= 1)
        std::remove(file.c_str());
    const bool same = Staves(copy.Get()) == 3;
    copy.Close();
    doc.Close();
    return same ? 0 : 1;
}
