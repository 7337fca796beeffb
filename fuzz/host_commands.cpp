// Drives a simulated host from the fuzzer's bytes: documents, command rates,
// sent and posted edits, undo and redo, handlers that throw, remove handlers,
// pump the loop or post follow-ups, and documents closed at any point.
//
// A finding is a crash, a sanitizer report, a leak, an exception the library
// did not pass on from a handler, or a broken history (the host aborts).
#include "../tests/commands/HostSimulation.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size > 4096)
        return 0;
    std::size_t next = 0;
    // Each choice takes one byte; once the bytes run out every choice is 0,
    // which ends in quiet edits of the first document.
    hostsim::Host host([&](unsigned n) { return next < size ? data[next++] % n : 0u; });
    std::string problem;
    for (int step = 0; step < 200 && next < size && problem.empty(); ++step)
        problem = host.Step();
    if (problem.empty())
        problem = host.Finish();
    if (!problem.empty())
    {
        std::fprintf(stderr, "host_commands: %s\n", problem.c_str());
        std::abort();
    }
    return 0;
}
