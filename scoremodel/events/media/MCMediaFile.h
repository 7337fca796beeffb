// MCMediaFile: where an audio or video event finds its material: a file by
// path, and the stretch of it that plays.
//
// The offset and the length count in the file's own units (sample frames of
// an audio file, frames of a video), from the start of the file; a length
// of 0 plays to the end. The model never opens the file: the player does,
// and a path that no longer exists is the player's to report.
//
//     MCMediaFile clip(L"/music/take3.wav", 44100, 88200);   // seconds 1 to 3
//     wave->SetMediaFile(clip);
//
// Archive record: the path (CString), the offset and the length (8 bytes
// each). A loaded negative offset or length reads as 0.
//
// A plain value: copy freely, no lock.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CString.h>
#include <scoremodel/platform/Types.h>

class CArchive;

class SCOREMODEL_API MCMediaFile
{
public:
    // No file, offset 0, length 0.
    MCMediaFile() = default;
    // Negative values are taken as 0.
    MCMediaFile(const CString &path, LONGLONG offset, LONGLONG length);

    const CString &GetPath() const { return m_path; }
    void SetPath(const CString &path) { m_path = path; }
    LONGLONG GetOffset() const { return m_offset; }
    // A negative offset changes nothing.
    void SetOffset(LONGLONG offset);
    LONGLONG GetLength() const { return m_length; }
    // A negative length changes nothing.
    void SetLength(LONGLONG length);
    // 1 when a path is set.
    int HasFile() const { return !m_path.IsEmpty(); }

    void Serialize(CArchive &ar);

    bool operator==(const MCMediaFile &other) const
    {
        return m_path == other.m_path && m_offset == other.m_offset && m_length == other.m_length;
    }
    bool operator!=(const MCMediaFile &other) const { return !(*this == other); }

private:
    CString m_path;
    LONGLONG m_offset = 0;
    LONGLONG m_length = 0;
};
