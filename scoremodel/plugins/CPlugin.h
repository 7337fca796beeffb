// CPlugin: loading of the plug-in libraries, and the base of the registry
// entries they make.
//
// At start the host calls CPlugin::Initialize(). It walks the folder
// "PlugIns" beside the module that holds this library (libscoremodel.so, or
// the program itself when the library is linked in statically), loads every
// file ending in ".so" there, in name order, and starts each one:
//
//     unsigned GetPluginVersion();   // required; 0 means "do not start me"
//     int InitPlugins();             // required; makes the registry entries
//     unsigned GetPluginID();        // optional; files the module under an id
//
// The entry points take no arguments and are looked up by these names, so a
// plug-in declares them extern "C" and exported. In InitPlugins a plug-in
// calls the AddPlugin functions of CPluginFileReader, CPluginFileWriter,
// CPluginData and CPluginFilter; the rest of the library then asks those
// registries and never knows which module answered. A plug-in links against
// libscoremodel like any host.
//
// The checks of one file, in this order: the library must load (else the
// message IDD_DM_MB_TEXT2); it must have GetPluginVersion (else it is
// skipped silently); the version must be 1 or more (else skipped silently,
// the library stays loaded); it must have InitPlugins (else the message
// IDD_DM_MB_TEXT3). A folder with no ".so" file, or no folder at all, gives
// IDD_DM_MB_TEXT1 once. The three texts are those of the section
// "TuDataModel_Plugins_CPlugins" of the language file, shown through the
// message-box hook (platform/MessageBox.h). A failed plug-in never ends the
// walk.
//
// Kept oddities:
// - The walk never changes the process's working directory: a relative file
//   name given to InitPlugin or FreePlugin is taken inside the plug-in folder.
// - A library stays mapped until the process ends, even after FreePlugin:
//   filters cannot be taken out of their registry (CPluginFilter), so the
//   code and data their entries point to must outlive every lookup.
//   FreePlugin drops the load that InitPlugin took, and only that.
// - Nothing clears the id map; a later plug-in with the same id replaces the
//   module recorded under it.
//
// Threads: the host loads and frees plug-ins on one thread, before or after
// documents are used; the registries and the id map have no lock.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CMap.h>
#include <scoremodel/platform/CString.h>

// The platform's module handle: what the loader gave for a library.
struct HINSTANCE__;
typedef HINSTANCE__ *HINSTANCE;

class SCOREMODEL_API CPlugin
{
public:
    CPlugin() = default;
    virtual ~CPlugin();

    // The plug-in id of every module that gave one, to its module handle.
    static CMap<unsigned int, unsigned int, HINSTANCE__ *, HINSTANCE__ *> s_modules;

    // Loads and starts every plug-in of the plug-in folder (see above).
    static void Initialize();
    // Frees every plug-in of the plug-in folder by its name.
    static void UnInitialize();

    // Loads and starts one library; 1 when its InitPlugins was called, 0
    // otherwise (with the message the checks above name).
    static int InitPlugin(wchar_t *file);
    // Drops the load InitPlugin took of the library of that name, if any.
    // Always 1, also for a name that was never loaded.
    static int FreePlugin(wchar_t *file);

    // The module recorded under a plug-in id; null if none.
    static HINSTANCE GetModuleHandleW(unsigned int id);

    // The folder the walk reads: "<folder of the module>/PlugIns".
    static CString GetPluginFolder();
};

// 1 if the process has a library of that name loaded (a path, or a name the
// loader would search for, such as "libm.so.6"), 0 otherwise.
SCOREMODEL_API int IsModuleLoaded(const wchar_t *name);
