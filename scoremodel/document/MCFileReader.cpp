#include <scoremodel/document/MCFileReader.h>

IMPLEMENT_SERIAL(MCFileReader, CObject, VERSIONABLE_SCHEMA | 1)

int MCFileReader::LoadFile(CString, MCOpusDoc *)
{
    return 0;
}

int MCFileReader::LoadContent(CStringA, MCOpusDoc *)
{
    return 0;
}

int MCFileReader::LoadContent(CString, MCOpusDoc *)
{
    return 0;
}

int MCFileReader::Parse()
{
    return 0;
}

void MCFileReader::SetVerbose(int verbose)
{
    m_nVerbose = verbose;
}
