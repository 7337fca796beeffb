// A host with an event loop of its own: the document lives on a thread of
// its own, which sleeps in poll() on the library's wake-up descriptor and
// the host's own descriptors, with the library's next timer delay as the
// timeout. Posted commands run only when that thread pumps
// (MCMessageLoop::ProcessPending), so every wake-up ends in a pump.
//
// Here the host's own descriptor is a pipe over which main asks for edits:
// 'a' adds a staff, 'u' undoes, 'q' saves, reloads and closes.
#include <scoremodel/scoremodel.h>

#include <cstdio>
#include <poll.h>
#include <string>
#include <thread>
#include <unistd.h>

namespace
{
int Staves(ECPerformance *doc)
{
    return doc->GetConductor()->GetConductorStaff()->GetMaxStaffNumber();
}

int DocumentThread(int requests, const std::string &file)
{
    // This thread pumps the loop, so edits run here: named before any other
    // library call.
    MCCommandMgr::SetDocumentThread();
    MCDocumentOwner doc = MCDocumentOwner::Make();
    bool quitting = false;
    while (!quitting || MCMessageLoop::GetNextTimerDelay() >= 0)
    {
        pollfd fds[2] = {{MCMessageLoop::GetWakeupFd(), POLLIN, 0}, {quitting ? -1 : requests, POLLIN, 0}};
        if (::poll(fds, 2, MCMessageLoop::GetNextTimerDelay()) < 0)
            return 1;
        if (fds[1].revents & (POLLIN | POLLHUP))
        {
            char request = 'q';
            if (::read(requests, &request, 1) != 1)
                request = 'q';
            if (request == 'a')
            {
                CString name(L"Add staff");
                MCCommandMgr::BeginUndo(doc.Get(), name);
                (new CCAddTrack(new ECStaff, -1))->Apply(doc.Get()); // posted
                MCCommandMgr::EndUndo(doc.Get());
            }
            else if (request == 'u')
            {
                // Undo what has run: first let the batched commands finish.
                for (int delay; (delay = MCMessageLoop::GetNextTimerDelay()) >= 0;)
                {
                    pollfd wake = {MCMessageLoop::GetWakeupFd(), POLLIN, 0};
                    ::poll(&wake, 1, delay);
                    MCMessageLoop::ProcessPending();
                }
                doc->Undo(1);
            }
            else
                quitting = true;
        }
        MCMessageLoop::ProcessPending(); // what was posted, and the timers due
    }
    std::printf("document thread: %d staves, %d undo steps\n", Staves(doc.Get()), doc->GetUndoCount());
    MCDocumentFile::Save(doc.Get(), file.c_str());
    MCDocumentOwner copy(MCDocumentFile::Load(file.c_str()));
    const int reloaded = Staves(copy.Get());
    std::printf("reloaded: %d staves\n", reloaded);
    return reloaded == Staves(doc.Get()) && reloaded == 2 ? 0 : 1;
}
} // namespace

int main()
{
    const std::string file = "/tmp/scoremodel-poll-host-" + std::to_string(::getpid()) + ".smd";
    int pipeFds[2];
    if (::pipe(pipeFds) != 0)
        return 1;
    int result = 1;
    std::thread documentThread([&] { result = DocumentThread(pipeFds[0], file); });
    // Three staves, then one undone: each request waits in the pipe until the
    // document thread wakes for it.
    for (char request : std::string("aaa"))
    {
        (void)!::write(pipeFds[1], &request, 1);
        ::usleep(20000);
    }
    (void)!::write(pipeFds[1], "u", 1);
    ::usleep(20000);
    ::close(pipeFds[1]); // end of requests: save, reload and close
    documentThread.join();
    ::close(pipeFds[0]);
    std::remove(file.c_str());
    return result;
}
