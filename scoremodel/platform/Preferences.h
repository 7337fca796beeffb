// The integer preferences of the host and the model ("UndoLevels" in
// "Settings", the word tempi under "Settings\Tempo\<word>", ...).
//
// They live in one UTF-8 INI file, MCGetPreferencesPath(), in the user's
// folder (see CommonPaths.h; SCOREMODEL_USER_DIR redirects it). A section is
// a path such as "Settings\Tempo\Largo", written as is between the brackets;
// sections and keys match without regard to ASCII case.
//
//     int levels = LoadIntPreference(L"Settings", L"UndoLevels", 250);
//     SaveIntPreference(L"Settings", L"UndoLevels", 500);
//
// Durability: a save reads the file afresh, changes the one value, writes a
// temporary file beside it, flushes it to disk and renames it over the old
// one, so a crash or a power loss at any moment leaves either the old or the
// new file, never a half-written one. The flush makes a save cost a disk
// write (milliseconds); saving a value that is already stored writes nothing. Saves from several threads and processes are
// serialized by a lock on the folder, so none loses another's value.
//
// Reading never fails: a missing, unreadable or garbled file, or a value that
// is not a decimal integer in the range of int, gives the default. Loads are
// served from a copy that is refreshed whenever the file changes on disk.
//
// All functions are thread-safe.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CString.h>
#include <scoremodel/platform/Types.h>

// The value of key in section, or defaultValue when it is absent or unusable.
SCOREMODEL_API int LoadIntPreference(const CString &section, const CString &key, int defaultValue);

// Stores value under key in section; the file holds it when this returns.
// TRUE on success. FALSE, leaving the file as it was, when the folder or file
// cannot be written, when the existing file exists but cannot be read (it is
// not overwritten blindly), or when a name cannot be stored: an empty name,
// a line break, or for a key an "=" or a leading "[", ";" or "#".
SCOREMODEL_API BOOL SaveIntPreference(const CString &section, const CString &key, int value);

// The preferences file: <user folder>/preferences.ini; empty when there is
// no user folder.
SCOREMODEL_API CString MCGetPreferencesPath();

// ---- Testing --------------------------------------------------------------------

// Installs a function that SaveIntPreference calls after the temporary file
// is complete and flushed and before it replaces the preferences file, with
// the temporary file's path. Tests use it to crash a save half-way. Null
// removes it.
void MCSetPreferenceSaveFault(void (*fault)(const char *temporaryPath));
