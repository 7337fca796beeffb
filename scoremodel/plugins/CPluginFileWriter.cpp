#include <scoremodel/plugins/CPluginFileWriter.h>

#include <scoremodel/document/MCFileWriter.h>
#include <scoremodel/plugins/PluginRegistry.h>

namespace
{
// At namespace scope, so it is made before any plug-in is loaded and goes
// after the plug-ins' own static entries at exit.
MCPtrList s_registry;
} // namespace

CPluginFileWriter::CPluginFileWriter(int type, CRuntimeClass *fileClass) : m_fileClass(fileClass), m_fileType(type)
{
}

CPluginFileWriter::~CPluginFileWriter() = default;

void CPluginFileWriter::AddPlugin(CPluginFileWriter *entry)
{
    PluginFileList::Add(s_registry, entry);
}

void CPluginFileWriter::RemovePlugin(CPluginFileWriter *entry)
{
    PluginFileList::Remove(s_registry, entry);
}

MCFileWriter *CPluginFileWriter::CreateWriter(int type)
{
    return static_cast<MCFileWriter *>(
        PluginFileList::CreateFirst<CPluginFileWriter>(s_registry, type, RUNTIME_CLASS(MCFileWriter)));
}
