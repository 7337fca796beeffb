#include <scoremodel/plugins/CPluginFileReader.h>

#include <scoremodel/document/MCFileReader.h>
#include <scoremodel/events/base/MCPtrList.h>
#include <scoremodel/plugins/PluginRegistry.h>

namespace
{
// At namespace scope, so it is made before any plug-in is loaded and goes
// after the plug-ins' own static entries at exit.
MCPtrList s_registry;
} // namespace

CPluginFileReader::CPluginFileReader(int type, CRuntimeClass *fileClass) : m_fileClass(fileClass), m_fileType(type)
{
}

CPluginFileReader::~CPluginFileReader() = default;

void CPluginFileReader::AddPlugin(CPluginFileReader *entry)
{
    if (entry)
        s_registry.AddTail(entry);
}

void CPluginFileReader::RemovePlugin(CPluginFileReader *entry)
{
    if (POSITION pos = s_registry.Find(entry))
        s_registry.RemoveAt(pos);
}

MCFileReader *CPluginFileReader::CreateReader(int type)
{
    for (POSITION pos = s_registry.GetHeadPosition(); pos;)
    {
        auto *entry = static_cast<CPluginFileReader *>(s_registry.GetNext(pos));
        if (entry && entry->m_fileType == type)
            return static_cast<MCFileReader *>(CreatePluginObject(entry->m_fileClass, RUNTIME_CLASS(MCFileReader)));
    }
    return nullptr;
}
