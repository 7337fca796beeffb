// Where the files of the common services live: the shipped data (language
// files, the application's instrument file) and the user's own files
// (preferences, the user's instrument file).
//
// Every path is worked out again at each call from the environment, so a
// test or a host that changes the variables below sees the change at once:
//
//   SCOREMODEL_USER_DIR   every user file goes straight into this folder.
//                         Otherwise $XDG_CONFIG_HOME/scoremodel, or
//                         ~/.config/scoremodel ($HOME, else the password
//                         database) when XDG_CONFIG_HOME is unset or relative.
//   SCOREMODEL_DATA_DIR   the shipped data is read from this folder.
//                         Otherwise the data installed beside the library:
//                         from <prefix>/lib[/<multiarch>]/libscoremodel.so,
//                         <prefix>/share/scoremodel.
//
// Layout below the two folders:
//
//   <data>/languages/<ID>.lang          language files (see MCLanguageManager)
//   <data>/instruments/TabInstruments.xml  the application's instruments
//   <user>/preferences.ini              integer preferences (see Preferences.h)
//   <user>/TabInstruments.xml           the user's instruments
//
// Paths use "/" and are UTF-8 inside CString. An empty path means "no such
// place" (no data found beside the library, no home folder); the functions
// that build file paths then return an empty path too, never a path at the
// root of the file system. All functions are thread-safe.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CString.h>
#include <scoremodel/platform/Types.h>

// ---- Folders ------------------------------------------------------------------

// The folder of the user's files. It may not exist yet; writers create it.
SCOREMODEL_API CString MCGetUserFolder();

// The folder of the shipped data, or empty when none is found.
SCOREMODEL_API CString MCGetDataFolder();

// The data folder of an installed library at modulePath, by the install
// layout: <dir>/../share/scoremodel, then <dir>/../../share/scoremodel. The
// first that is an existing folder wins; empty when neither exists.
SCOREMODEL_API CString MCGetDataFolderBeside(const CString &modulePath);

// Makes a folder and its missing parents. TRUE when the folder exists
// afterwards.
SCOREMODEL_API BOOL MCCreateFolder(const CString &path);

// ---- Instrument files ---------------------------------------------------------

// The folder of the application's instrument files: <data>/instruments.
SCOREMODEL_API CString MCGetInstrumentPath();

// The full path of the user's instrument file: <user>/TabInstruments.xml.
// Writers save here; once it exists it takes precedence over the
// application's file.
SCOREMODEL_API CString MCGetUserTabInstrumentsPath();

// The full path of the application's instrument file, read when the user has
// none: <data>/instruments/TabInstruments.xml.
SCOREMODEL_API CString MCGetAppTabInstrumentsPath();

// ---- Files --------------------------------------------------------------------

// TRUE when path names an existing regular file (following links). FALSE for
// folders, missing files and the empty path.
SCOREMODEL_API BOOL MCFileExists(const CString &path);
