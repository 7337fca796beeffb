// Loads whole documents from arbitrary bytes, as a host opens a file.
//
// Every malformed input must end in MCDocumentException with nothing left
// behind; anything else escaping (another exception, a crash, a sanitizer
// report, a leak) is a finding. A document that loads is taken down again,
// which must free all of it.
//
// The length in the header is set to the bytes that follow, so that inputs
// the fuzzer grows or shrinks still reach the archive; the length check
// itself is simple and covered by the unit tests.
#include <scoremodel/commands/MCCommandMgr.h>
#include <scoremodel/document/MCDocumentFile.h>
#include <scoremodel/events/structure/ECPerformance.h>
#include <scoremodel/platform/CFile.h>

#include <cstddef>
#include <cstdint>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size > 1u << 20)
        return 0;
    std::vector<BYTE> bytes(data, data + size);
    if (size >= MCDocumentFile::kHeaderSize)
    {
        const std::uint64_t length = size - MCDocumentFile::kHeaderSize;
        for (int i = 0; i < 8; ++i)
            bytes[12 + static_cast<size_t>(i)] = static_cast<BYTE>(length >> (8 * i));
    }
    CMemFile file(bytes.data(), static_cast<UINT>(bytes.size()));
    try
    {
        ECPerformance *doc = MCDocumentFile::Read(file);
        doc->RemoveChildren(1);
        doc->Unref(1);
    }
    catch (const MCDocumentException &)
    {
        // Expected for malformed input; the load released what it made.
    }
    MCCommandMgr::OnIdle();
    return 0;
}
