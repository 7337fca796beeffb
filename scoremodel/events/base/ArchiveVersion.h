// The document version that record loaders branch on.
//
// Loaders ask ActiveArchiveVersion(); the performance layer answers it. The
// event bases sit below the performance, so the performance installs its
// answer here (ECPerformance::GetActiveVersion, at library load) instead of
// the bases calling up into it. Until a source is installed, and whenever the
// source has no active document, the answer is 0x7FFFFFFF: every loader then
// takes its newest branch, as for an object stored with no document active.
//
//     if (ActiveArchiveVersion() >= 3) ... // the layout of version 3 and later
//
// Threads: the source is installed once, at start. Only one document loads
// at a time (the active performance is process-wide).
#pragma once

// The version of the document being loaded, or 0x7FFFFFFF.
int ActiveArchiveVersion();

// Installs the function that answers ActiveArchiveVersion (null: none);
// returns the one installed before, so a caller can put it back.
typedef int (*ARCHIVEVERSIONFUNC)();
ARCHIVEVERSIONFUNC SetActiveArchiveVersionSource(ARCHIVEVERSIONFUNC source);
