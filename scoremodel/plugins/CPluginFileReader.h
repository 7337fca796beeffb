// CPluginFileReader: the registry of file readers, by file type.
//
// A plug-in that reads a foreign format derives from MCFileReader, describes
// the class with an entry and registers it in its InitPlugins:
//
//     static CPluginFileReader s_entry(kFileTypeMidi, RUNTIME_CLASS(MyMidiReader));
//     CPluginFileReader::AddPlugin(&s_entry);
//     ...
//     MCFileReader *pReader = CPluginFileReader::CreateReader(kFileTypeMidi); // the host; it deletes it
//
// The registry is a list in registration order; only the first entry of a
// type ever answers, so a later plug-in cannot take a type over. File types
// are the host's numbers. The registry holds the entries by pointer: an
// entry must stay alive until it is removed (a static object of the plug-in
// does, since plug-in libraries stay mapped; see CPlugin.h).
//
// Threads: registration at start, on one thread; no lock.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/plugins/CPlugin.h>
#include <scoremodel/platform/CObject.h>

class MCFileReader;

class SCOREMODEL_API CPluginFileReader : public CPlugin
{
public:
    CPluginFileReader(int type, CRuntimeClass *fileClass);
    ~CPluginFileReader() override;

    CRuntimeClass *GetFileClass() const { return m_fileClass; }
    int GetFileType() const { return m_fileType; }

    // Appends the entry to the registry; ignores null.
    static void AddPlugin(CPluginFileReader *entry);
    // Takes the entry out of the registry, wherever it is; nothing if absent.
    static void RemovePlugin(CPluginFileReader *entry);

    // A new reader of the first entry registered for that type; null when no
    // entry has the type, or its class is null or cannot make an
    // MCFileReader. The caller owns the result.
    static MCFileReader *CreateReader(int type);

private:
    CRuntimeClass *m_fileClass;
    int m_fileType;
};
