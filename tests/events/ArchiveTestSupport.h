// Storing events to memory and loading them back, for the archive tests.
#pragma once

#include "ArchiveBytes.h"

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/platform/CArchive.h>
#include <scoremodel/platform/CFile.h>

#include <functional>
#include <vector>

using archive_bytes::Bytes;
using archive_bytes::Store;

// Loaders read the version of a document of that number while it lives.
class DocumentVersion
{
public:
    explicit DocumentVersion(int version)
    {
        s_version = version;
        m_previous = SetActiveArchiveVersionSource([] { return s_version; });
    }
    ~DocumentVersion() { SetActiveArchiveVersionSource(m_previous); }

private:
    static inline int s_version = 0;
    ARCHIVEVERSIONFUNC m_previous;
};

// Reads `bytes` with `read` and answers how many of them the archive used.
inline ULONGLONG LoadBytes(const Bytes &bytes, const std::function<void(CArchive &)> &read)
{
    CMemFile mem(bytes.data(), static_cast<UINT>(bytes.size()));
    {
        CArchive ar(&mem, CArchive::load);
        read(ar);
        ar.Close();
    }
    return mem.GetPosition();
}

// Loads one object; on an archive error releases what the load made and
// returns null.
template <class T>
T *LoadObject(const Bytes &bytes, bool *failed = nullptr)
{
    CMemFile mem(bytes.data(), static_cast<UINT>(bytes.size()));
    CArchive ar(&mem, CArchive::load);
    T *root = nullptr;
    try
    {
        ar >> root;
    }
    catch (const CArchiveException &)
    {
        ECBase::ReleaseLoadedObjects(ar.GetLoadedObjects());
        if (failed)
            *failed = true;
        return nullptr;
    }
    if (failed)
        *failed = false;
    return root;
}
