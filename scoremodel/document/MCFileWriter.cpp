#include <scoremodel/document/MCFileWriter.h>

#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(MCFileWriter, CObject, VERSIONABLE_SCHEMA | 1)

int MCFileWriter::SaveFile(CArchive &, MCOpusDoc *)
{
    return 0;
}

void MCFileWriter::SetStatusMsg(CString message)
{
    m_strStatus = message;
}

int MCFileWriter::SaveFileInDebugXML(CArchive &, MCOpusDoc *)
{
    return 0;
}
