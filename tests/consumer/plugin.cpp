// The smallest useful plug-in: one filter, built against the installed
// package and loaded from the installed plug-in folder.
#include <scoremodel/scoremodel.h>

class LCConsumerFilter : public LCBase
{
    DECLARE_DYNCREATE(LCConsumerFilter)
};
IMPLEMENT_DYNCREATE(LCConsumerFilter, LCBase)

static CPluginFilter s_filter(RUNTIME_CLASS(LCConsumerFilter), "Consumer");

extern "C" __attribute__((visibility("default"))) unsigned int GetPluginVersion()
{
    return 1;
}

extern "C" __attribute__((visibility("default"))) unsigned int GetPluginID()
{
    return 4242;
}

extern "C" __attribute__((visibility("default"))) int InitPlugins()
{
    CPluginFilter::AddPlugin(&s_filter);
    return 1;
}
