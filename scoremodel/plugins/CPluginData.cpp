#include <scoremodel/plugins/CPluginData.h>

#include <scoremodel/events/base/DCBase.h>
#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/plugins/PluginRegistry.h>

CRuntimeClass *CPluginData::s_plugins[kViewCodes][kEventTypes] = {};

namespace
{
bool InTable(int viewCode, int eventType)
{
    return viewCode >= 0 && viewCode < CPluginData::kViewCodes && eventType >= 0 &&
           eventType < CPluginData::kEventTypes;
}
} // namespace

CPluginData::CPluginData(CRuntimeClass *dataClass, int viewCode, int eventType)
    : m_dataClass(dataClass), m_viewCode(viewCode), m_eventType(eventType)
{
}

CPluginData::~CPluginData() = default;

CRuntimeClass *&CPluginData::GetDataClass(int viewCode, int eventType)
{
    if (InTable(viewCode, eventType))
        return s_plugins[viewCode][eventType];
    thread_local CRuntimeClass *scratch = nullptr;
    scratch = nullptr;
    return scratch;
}

void CPluginData::AddPlugin(CPluginData *data)
{
    if (data)
        GetDataClass(data->m_viewCode, data->m_eventType) = data->m_dataClass;
}

void CPluginData::RemovePlugin(CPluginData *data)
{
    if (data)
        GetDataClass(data->m_viewCode, data->m_eventType) = nullptr;
}

DCBase *CPluginData::CreateData(int viewCode, int eventType)
{
    return static_cast<DCBase *>(CreatePluginObject(GetDataClass(viewCode, eventType), RUNTIME_CLASS(DCBase)));
}

DCBase *CPluginData::CreateData(int viewCode, ECBase *event)
{
    if (!event)
        return nullptr;
    DCBase *data = CreateData(viewCode, event->GetEventId());
    if (data)
        data->SetOwner(event);
    return data;
}
