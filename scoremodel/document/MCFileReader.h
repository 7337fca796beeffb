// MCFileReader: the base of an import filter.
//
// A plug-in derives from MCFileReader to read a foreign file format into the
// host's document, registers the class with the plug-in registry, and the
// host makes readers by key. The base reads nothing: every load operation
// returns 0 (nothing read), so a reader overrides only the forms it
// supports. It has nothing to do with the document archive.
//
// MCOpusDoc is the host's document class; this library never looks inside
// it and only passes the pointer through.
//
//     class MidiReader : public MCFileReader { ... int LoadFile(CString, MCOpusDoc *) override; };
//
// Archive: serialisable with schema 1 and no fields, so a registry can name
// the class in a stream.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CObject.h>
#include <scoremodel/platform/CString.h>

class MCOpusDoc;

class SCOREMODEL_API MCFileReader : public CObject
{
    DECLARE_SERIAL(MCFileReader)

public:
    MCFileReader() = default;
    ~MCFileReader() override = default;

    // Reads the file at `path` into `document`. 1 on success; 0 here.
    virtual int LoadFile(CString path, MCOpusDoc *document);
    // Reads the text `content` (narrow, as read from a file) into `document`.
    // 1 on success; 0 here.
    virtual int LoadContent(CStringA content, MCOpusDoc *document);
    // The same for wide text. 1 on success; 0 here.
    virtual int LoadContent(CString content, MCOpusDoc *document);
    // Parses what a LoadContent took in. 1 on success; 0 here.
    virtual int Parse();
    // Stores whether the reader reports what it does; on (1) at construction.
    virtual void SetVerbose(int verbose);

    int GetVerbose() const { return m_nVerbose; }

    // What the last load did or why it failed, in one line for the user;
    // empty until a reader sets it. Not virtual, so the table of virtual
    // operations stays that of the interface.
    void SetStatusMsg(const CString &message) { m_strStatus = message; }
    const CString &GetStatusMsg() const { return m_strStatus; }

protected:
    int m_nVerbose = 1;
    CString m_strStatus;
};
