#include <scoremodel/state/SCPrefs.h>

#include <scoremodel/commands/MCCommandMgr.h>
#include <scoremodel/platform/Preferences.h>
#include <scoremodel/state/SCSelection.h>

void SCPrefs::DoState()
{
    if (GetCode() == CodePreferences)
    {
        SCSelection::SetColor(static_cast<COLORREF>(LoadIntPreference(L"Settings\\Color", L"Selection", 255)));
        MCCommandMgr::SetUndoLevels(LoadIntPreference(L"Settings", L"UndoLevels", MCCommandMgr::DefaultUndoLevels));
    }
    SCBase::DoState();
}
