#include <scoremodel/plugins/CPluginFileReader.h>

#include <scoremodel/document/MCFileReader.h>
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
    PluginFileList::Add(s_registry, entry);
}

void CPluginFileReader::RemovePlugin(CPluginFileReader *entry)
{
    PluginFileList::Remove(s_registry, entry);
}

MCFileReader *CPluginFileReader::CreateReader(int type)
{
    return static_cast<MCFileReader *>(
        PluginFileList::CreateFirst<CPluginFileReader>(s_registry, type, RUNTIME_CLASS(MCFileReader)));
}
