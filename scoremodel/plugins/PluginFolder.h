// The plug-in folder as the loader sees it, with a switch for the tests.
//
// Tests load plug-ins from folders of their own (an empty one, one with a
// broken library) without moving files beside the test program. Not part
// of the library's interface.
#pragma once

#include <scoremodel/platform/CString.h>

// Makes the walk read `folder` instead of the one beside the module; an
// empty folder switches back. Not synchronised: set it before a walk.
void MCSetPluginFolderOverride(const CString &folder);

// The folder of the module that holds the library: the shared library's
// when it is one, otherwise the program's. Empty when it cannot be found.
CString MCGetModuleFolder();
