// The document version that record loaders branch on.
//
// Loaders ask ActiveArchiveVersion(); the performance layer answers it. The
// event bases sit below the performance, so the performance installs its
// answer here (ECPerformance::GetActiveVersion, at library load) instead of
// the bases calling up into it. Until a source is installed, and whenever the
// source has no active document, the answer is 0x7FFFFFFF: every loader then
// takes its newest branch, as for an object stored with no document active.
//
//     if (ActiveArchiveVersion() >= ArchiveVersionAttachmentSlots) ...
//
// Records are always written in the newest layout; a field added to a record
// later is read only at or above the version that brought it, and the
// constructor's default stands below. Each such version has a name here, so
// a new record adds its own row and its own branch and nothing else changes.
//
// Threads: the source is installed once, at start. Only one document loads
// at a time (the active performance is process-wide).
#pragma once

#include <scoremodel/Export.h>

// The versions at which a record's layout changed.
enum ArchiveVersionThreshold : int
{
    // MCTime (and the times of every record): a mode byte before the value.
    ArchiveVersionTimeMode = 1,
    // MCDataArray and DCBase: the attachment layout with slots; the conductor
    // staff: its tempo and meter envelope references.
    ArchiveVersionAttachmentSlots = 3,
    // ECGraceNote: no second duration after the note's record; ECBarline:
    // type and position packed in one byte; ECGroup: the group type.
    ArchiveVersionPackedMarks = 3,
    // ECStaff: percussion fields, staff lines and staff size.
    ArchiveVersionStaffLayout = 5,
    // MCInstrument: name, description and the three counts.
    ArchiveVersionInstrumentFields = 5,
    // MCInstrument: the tunes and the initialized word.
    ArchiveVersionInstrumentTunes = 6,
    // ECNote: the fret and the string.
    ArchiveVersionNoteTablature = 5,
    // ECTurn: accidentals in place of the old turn type.
    ArchiveVersionTurnAccidentals = 14,
    // ECStaff: the staff sizes of today (8 and 9 were 32 and 33).
    ArchiveVersionStaffSize = 16,
    // ECNote: the button-accordion notation byte.
    ArchiveVersionNotationByte = 18,
    // ECConductor: the chord staff.
    ArchiveVersionChordStaff = 19,
    // ECConductorMeasure: the collapse value.
    ArchiveVersionCollapse = 20,
    // What this library writes.
    ArchiveVersionCurrent = 20,
};

// The version of the document being loaded, or 0x7FFFFFFF.
SCOREMODEL_API int ActiveArchiveVersion();

// Installs the function that answers ActiveArchiveVersion (null: none);
// returns the one installed before, so a caller can put it back.
typedef int (*ARCHIVEVERSIONFUNC)();
SCOREMODEL_API ARCHIVEVERSIONFUNC SetActiveArchiveVersionSource(ARCHIVEVERSIONFUNC source);
