// A tiny program built against the installed package.
#include <scoremodel/scoremodel.h>

#include <cstdio>

int main()
{
    CRuntimeClass *pClass = CRuntimeClass::FromName("CObject");
    if (!pClass)
    {
        std::fprintf(stderr, "the run-time class table is empty\n");
        return 1;
    }
    std::printf("consumer sees %s\n", pClass->m_lpszClassName);

    // Run with no data folder named in the environment, the library must find
    // the language files it was installed with, beside itself. A host that
    // only installed the package would otherwise show empty texts everywhere.
    CString largo = MCLanguageManager::GetText(L"DataModel", L"IDS_DM_TEMPO_LARGO");
    if (largo != L"Largo")
    {
        std::fprintf(stderr, "no English text from the data folder '%s' (got '%s')\n",
                     MCGetDataFolder().ToUtf8().c_str(), largo.ToUtf8().c_str());
        return 1;
    }
    std::printf("consumer reads '%s' from %s\n", largo.ToUtf8().c_str(), MCGetDataFolder().ToUtf8().c_str());

    // The plug-in the test dropped into the installed plug-in folder.
    CPlugin::Initialize();
    LCBase *filter = CPluginFilter::CreateFilter("Consumer");
    if (!filter || !CPlugin::GetModuleHandleW(4242))
    {
        std::fprintf(stderr, "no plug-in loaded from %s\n", CPlugin::GetPluginFolder().ToUtf8().c_str());
        return 1;
    }
    delete filter;
    std::printf("consumer loads a plug-in from %s\n", CPlugin::GetPluginFolder().ToUtf8().c_str());
    return 0;
}
