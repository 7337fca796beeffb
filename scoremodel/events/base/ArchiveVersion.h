// The document version that record loaders of the event bases branch on.
//
// One place that the base records ask, so that they all read the same
// version while a document loads.
#pragma once

// The version of the document being loaded; 0x7FFFFFFF (newest) when no
// document is active.
inline int ActiveArchiveVersion()
{
    return 0x7FFFFFFF;
}
