// Reads arbitrary bytes as the instrument file, then edits and refreshes the
// list, as a host does after opening the instruments dialog.
//
// Whatever the bytes, the reader must end with a list (possibly empty) that
// takes edits; anything escaping (an exception, a crash, a sanitizer report,
// a leak) is a finding. Messages about damaged files are swallowed.
#include <scoremodel/instruments/XMLInstrumentParser.h>
#include <scoremodel/platform/MessageBox.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

namespace
{
int Quiet(const CString &, unsigned)
{
    return IDOK;
}

// One file per process, rewritten for every input and removed at exit.
const std::string &InputPath()
{
    struct Input
    {
        std::string path;
        Input()
        {
            const char *tmp = std::getenv("TMPDIR");
            path = std::string(tmp && *tmp ? tmp : "/tmp") + "/scoremodel-fuzz-instruments-" +
                   std::to_string(::getpid()) + ".xml";
        }
        ~Input() { std::remove(path.c_str()); }
    };
    static const Input input;
    return input.path;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size > 1u << 20)
        return 0;
    MCSetMessageBoxHandler(&Quiet);
    FILE *file = std::fopen(InputPath().c_str(), "wb");
    if (!file)
        return 0;
    std::fwrite(data, 1, size, file);
    std::fclose(file);

    XMLInstrumentParser *parser = XMLInstrumentParser::GetInstance();
    parser->ParseXMLFromFile(CString::FromUtf8(InputPath().c_str()));
    const INT_PTR count = parser->GetInstruments(0).GetSize();
    for (INT_PTR i = 0; i < count; ++i)
        parser->GetInstrument(static_cast<int>(i), 0).GetTunes().GetSize();
    MCInstrument added = parser->GetInstrument(0, 0);
    parser->AddInstrument(added);
    parser->EditInstrument(static_cast<int>(count), added);
    parser->DelInstrument(0);
    // One added (and edited in place), and the first removed when there was one.
    if (parser->GetInstruments(1).GetSize() != (count > 0 ? count : 1))
        std::abort();
    return 0;
}
