// Loads an object graph from arbitrary bytes, the way a document is loaded:
// a root entered with MapObject and filled by its own Serialize, then any
// further objects up to the end of the stream.
//
// The archive must turn every malformed input into a CArchiveException;
// anything else escaping (another exception, a crash, a sanitizer report, a
// leak) is a finding. After the load, whether it failed or not, every object
// the archive created is freed through GetLoadedObjects(), and every pointer
// in the graph is checked to lead to one of them.
#include "archive_objects_classes.h"

#include <cstddef>
#include <cstdint>
#include <unordered_set>

namespace
{
void CheckGraph(const FuzzNode *root, const std::vector<CObject *> &loaded)
{
    std::unordered_set<const CObject *> known(loaded.begin(), loaded.end());
    known.insert(root);
    known.insert(nullptr);
    auto check = [&](const FuzzItem *p) {
        if (!known.count(p))
            __builtin_trap();
    };
    auto checkNode = [&](const FuzzNode *node) {
        for (const FuzzItem *child : node->m_children)
            check(child);
        check(node->m_pLink);
    };
    checkNode(root);
    for (const CObject *p : loaded)
        if (const FuzzNode *node = dynamic_cast<const FuzzNode *>(p))
            checkNode(node);
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size > 1u << 20)
        return 0;
    CMemFile file(reinterpret_cast<const BYTE *>(data), static_cast<UINT>(size));
    FuzzNode *root = new FuzzNode;
    {
        CArchive ar(&file, CArchive::load);
        try
        {
            ar.MapObject(root);
            root->Serialize(ar);
            while (ar.GetBytesRemaining() > 0)
                ar.ReadObject(RUNTIME_CLASS(FuzzItem));
        }
        catch (const CArchiveException &)
        {
            // Expected for malformed input; the objects are freed below.
        }
        CheckGraph(root, ar.GetLoadedObjects());
        for (CObject *p : ar.GetLoadedObjects())
            delete p;
    }
    delete root;
    return 0;
}
