// MCDocumentFile: the document file for hosts that have no file format of
// their own.
//
// A document file is a small header followed by the archive of one
// performance:
//
//   offset  size  field
//        0     8  the tag 89 'S' 'M' 'D' 0D 0A 1A 0A (a text-mode transfer or
//                 a truncated first line shows up in the tag)
//        8     4  the document version, little-endian (kVersion when written
//                 here); the loaders branch on it
//       12     8  the length of the archive that follows, little-endian
//       20     -  the archive: the tree section (the performance, entered
//                 with MapObject and written by its own Serialize, so that
//                 references back to it, such as the conductor staff's, are
//                 back references), then the post section (ACPostSerialize)
//
// Saving is atomic: the file is written beside the target under a temporary
// name, flushed to the disk and renamed over the target, so a crash, a full
// disk or an exception half-way leaves the previous file as it was.
//
// Loading never returns a half-built tree. A file that is not a document, is
// truncated, has bytes past its end, or holds a tree that is not one (an
// event outside the tree, a cycle among children) throws
// MCDocumentException, a CArchiveException that says what was wrong and at
// which byte; everything the load made is released first. File system
// failures throw CFileException and out of memory std::bad_alloc, also with
// nothing left behind.
//
//     MCDocumentFile::Save(doc, "/home/me/song.smd");
//     ECPerformance *copy = MCDocumentFile::Load("/home/me/song.smd");
//     ...
//     copy->RemoveChildren(1);    // the tree and the performance hold each other
//     copy->Unref(1);
//
// Threads: saving and loading name the document active for their duration
// (ECPerformance::SetActivePerformance, restored afterwards), so only one
// save or load runs at a time in a process, on the document's thread.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/platform/Exceptions.h>
#include <scoremodel/platform/Types.h>

#include <string>

class CArchive;
class CFile;
class ECPerformance;

// A document that could not be loaded: what was wrong (what()), in which
// file and at which byte of it.
class SCOREMODEL_API MCDocumentException : public CArchiveException
{
public:
    MCDocumentException(int cause, const std::string &problem, const std::string &path, ULONGLONG offset);

    // The file's path, or "" for a document read from an open file.
    const std::string &GetPath() const { return m_strPath; }
    // The byte of the file where reading stopped, from the start of the
    // header; unknownOffset when the file has no length (a pipe).
    ULONGLONG GetOffset() const { return m_nOffset; }
    // The problem alone, without path and offset.
    const std::string &GetProblem() const { return m_strProblem; }

    static constexpr ULONGLONG unknownOffset = ~0ull;

private:
    std::string m_strProblem;
    std::string m_strPath;
    ULONGLONG m_nOffset;
};

class SCOREMODEL_API MCDocumentFile
{
public:
    // The version this library writes: the newest layout of every record.
    static constexpr int kVersion = ArchiveVersionCurrent;
    static constexpr UINT kHeaderSize = 20;
    static const BYTE kTag[8];

    // ---- Files by path ----

    // Writes `performance` to `path` atomically (see the header comment).
    // The file keeps the permissions of the one it replaces. Throws
    // CFileException when the file system refuses, CArchiveException or
    // CNotSupportedException when a record can't be written; the target is
    // untouched then.
    static void Save(ECPerformance *performance, const char *path);
    // Reads the document at `path`. The result is held once for the caller,
    // who takes it down with RemoveChildren(1) and Unref(1). Throws as
    // described in the header comment. Parents come back in the order the
    // stream meets them.
    static ECPerformance *Load(const char *path);

    // ---- Open files ----

    // Writes header and archive at the file's position. The file is not
    // flushed to the disk.
    static void Write(CFile &file, ECPerformance *performance);
    // Reads a document from the file's position; as Load otherwise.
    // `version`, when given, receives the version from the header.
    static ECPerformance *Read(CFile &file, int *version = nullptr);

    // ---- The archive alone, for hosts with a header of their own ----

    // Both sections for `performance`, which is made active meanwhile.
    static void StoreArchive(CArchive &ar, ECPerformance *performance);
    // Reads both sections into `performance` (new and empty) as a document
    // of `version`, then checks that every event the archive made hangs in
    // the tree below it, without cycles. Throws CArchiveException without
    // releasing anything: the caller releases ar.GetLoadedObjects() and the
    // performance with ECBase::ReleaseLoadedObjects.
    static void LoadArchive(CArchive &ar, ECPerformance *performance, int version);
};
