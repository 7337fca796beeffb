#include <scoremodel/plugins/CPluginFileWriter.h>

#include <scoremodel/document/MCFileWriter.h>
#include <scoremodel/events/base/MCPtrList.h>
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
    if (entry)
        s_registry.AddTail(entry);
}

void CPluginFileWriter::RemovePlugin(CPluginFileWriter *entry)
{
    if (POSITION pos = s_registry.Find(entry))
        s_registry.RemoveAt(pos);
}

MCFileWriter *CPluginFileWriter::CreateWriter(int type)
{
    for (POSITION pos = s_registry.GetHeadPosition(); pos;)
    {
        auto *entry = static_cast<CPluginFileWriter *>(s_registry.GetNext(pos));
        if (entry && entry->m_fileType == type)
            return static_cast<MCFileWriter *>(CreatePluginObject(entry->m_fileClass, RUNTIME_CLASS(MCFileWriter)));
    }
    return nullptr;
}
