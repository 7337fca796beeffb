#include <scoremodel/commands/CCCopyTracks.h>

#include <scoremodel/actions/ACPostSerialize.h>
#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECTrack.h>
#include <scoremodel/platform/CArchive.h>
#include <scoremodel/platform/CFile.h>

IMPLEMENT_DYNCREATE(CCCopyTracks, CCBase)

namespace
{
int NewestVersion()
{
    return ArchiveVersionCurrent;
}

// A deep copy of `track` through the archive: the record and its second
// section stored, then read back, in this library's own layout whatever the
// version of the document being edited.
ECTrack *CopyThroughArchive(ECTrack *track)
{
    CMemFile mem;
    {
        CArchive ar(&mem, CArchive::store);
        ar << track;
        ACPostSerialize post(ar);
        post.Apply(track);
        ar.Close();
    }
    mem.SeekToBegin();
    const ARCHIVEVERSIONFUNC previous = SetActiveArchiveVersionSource(&NewestVersion);
    ECTrack *copy = nullptr;
    CArchive ar(&mem, CArchive::load);
    try
    {
        ar >> copy;
        if (copy)
        {
            ACPostSerialize post(ar);
            post.Apply(copy);
        }
    }
    catch (const CException &)
    {
        ECBase::ReleaseLoadedObjects(ar.GetLoadedObjects());
        copy = nullptr;
    }
    SetActiveArchiveVersionSource(previous);
    return copy;
}
} // namespace

CCCopyTracks::CCCopyTracks() = default;

CCCopyTracks::CCCopyTracks(const CArray<int, int> &staves, int at) : m_at(at)
{
    for (INT_PTR i = 0; i < staves.GetSize(); ++i)
        m_staves.push_back(staves[i]);
}

CCCopyTracks::~CCCopyTracks()
{
    for (ECTrack *copy : m_copies)
        copy->ReleaseHold();
}

int CCCopyTracks::GetCommandId()
{
    return COMMAND_ID_COPY_TRACKS;
}

int CCCopyTracks::Prepare()
{
    return CCBase::Prepare() && !m_staves.empty() ? 1 : 0;
}

int CCCopyTracks::Process()
{
    ECConductor *conductor = GetConductor();
    if (m_copies.empty())
    {
        std::vector<ECTrack *> copies;
        for (int number : m_staves)
        {
            ECTrack *source = conductor->GetTrack(ECConductor::TrackStaff, number, 0);
            ECTrack *copy = source ? CopyThroughArchive(source) : nullptr;
            if (!copy)
            {
                for (ECTrack *made : copies)
                    made->ReleaseHold();
                return 0;
            }
            copy->Ref();
            copies.push_back(copy);
        }
        m_copies = copies;
    }
    int at = m_at;
    for (ECTrack *copy : m_copies)
    {
        const int number = conductor->InsertTrack(copy, at);
        if (number < 0)
            return 0;
        at = number + 1;
    }
    return CCBase::Process();
}

void CCCopyTracks::Undo()
{
    if (!GetConductor())
        return;
    for (auto it = m_copies.rbegin(); it != m_copies.rend(); ++it)
        GetConductor()->RemoveTrack(*it);
}
