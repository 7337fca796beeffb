// Reads MIDI files from arbitrary bytes, as the midifile plug-in does, and
// builds each one that reads into a score, then writes it back.
//
// A refusal must be SmfError (a structural fault, with its offset inside
// the input) or, in the score, std::runtime_error (a limit passed). What
// reads must write again and read back to the same events. Anything else
// (another exception, a crash, a sanitizer report, a leak, a blown memory
// limit) is a finding.
#include <SmfDocument.h>

#include <scoremodel/commands/MCCommandMgr.h>
#include <scoremodel/document/MCDocumentOwner.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace
{
[[noreturn]] void Finding(const char *what)
{
    std::fprintf(stderr, "midi_file: %s\n", what);
    std::abort();
}

bool SameEvents(const smf::File &a, const smf::File &b)
{
    if (a.tracks.size() != b.tracks.size())
        return false;
    for (size_t t = 0; t < a.tracks.size(); ++t)
    {
        const auto &x = a.tracks[t].events, &y = b.tracks[t].events;
        if (x.size() != y.size())
            return false;
        for (size_t i = 0; i < x.size(); ++i)
            if (x[i].tick != y[i].tick || x[i].status != y[i].status || x[i].meta != y[i].meta ||
                x[i].data1 != y[i].data1 || x[i].data2 != y[i].data2 || a.PayloadText(x[i]) != b.PayloadText(y[i]))
                return false;
    }
    return true;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const bool registered = (smf::RegisterEventData(), MCCommandMgr::SetDocumentThread(), true);
    (void)registered;
    if (size > 1u << 16)
        return 0;
    smf::File file;
    try
    {
        file = smf::Parse(data, size);
    }
    catch (const smf::SmfError &e)
    {
        if (e.Offset() > size)
            Finding("a fault offset past the input");
        return 0;
    }
    const std::vector<std::uint8_t> bytes = smf::Serialize(file);
    if (!SameEvents(smf::Parse(bytes), file))
        Finding("a file read back differs from what was written");
    {
        MCDocumentOwner doc = MCDocumentOwner::Make();
        try
        {
            // Tighter limits than a host's: a score of the largest size
            // the limits let through takes seconds to build and take down
            // under the sanitizers, and the fuzzer wants many inputs.
            smf::ImportLimits limits;
            limits.bars = 2000;
            limits.measures = 10000;
            limits.tiePieces = 20000;
            limits.staves = 64;
            smf::Import(file, doc.Get(), limits);
            smf::Serialize(smf::Export(doc.Get()));
        }
        catch (const smf::SmfError &)
        {
            Finding("the score refused with a byte fault");
        }
        catch (const std::runtime_error &)
        {
            // A limit of the score passed: refused with its reason.
        }
    }
    MCCommandMgr::OnIdle();
    return 0;
}
