// CPluginFileWriter: the registry of file writers, by file type.
//
// A plug-in that writes a foreign format derives from MCFileWriter, describes
// the class with an entry and registers it in its InitPlugins:
//
//     static CPluginFileWriter s_entry(kFileTypeMidi, RUNTIME_CLASS(MyMidiWriter));
//     CPluginFileWriter::AddPlugin(&s_entry);
//     ...
//     MCFileWriter *pWriter = CPluginFileWriter::CreateWriter(kFileTypeMidi); // the host; it deletes it
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

class MCFileWriter;

class SCOREMODEL_API CPluginFileWriter : public CPlugin
{
public:
    CPluginFileWriter(int type, CRuntimeClass *fileClass);
    ~CPluginFileWriter() override;

    CRuntimeClass *GetFileClass() const { return m_fileClass; }
    int GetFileType() const { return m_fileType; }

    // Appends the entry to the registry; ignores null.
    static void AddPlugin(CPluginFileWriter *entry);
    // Takes the entry out of the registry, wherever it is; nothing if absent.
    static void RemovePlugin(CPluginFileWriter *entry);

    // A new writer of the first entry registered for that type; null when no
    // entry has the type, or its class is null or cannot make an
    // MCFileWriter. The caller owns the result.
    static MCFileWriter *CreateWriter(int type);

private:
    CRuntimeClass *m_fileClass;
    int m_fileType;
};
