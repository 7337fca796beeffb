// XMLParser: the base of the library's XML file readers. It owns one XML
// document (the DOM the readers walk and edit) and the conversions between
// the library's wide strings and the document's UTF-8.
//
// The document is held behind a pointer, so that a host that includes this
// header needs no XML library of its own.
//
// No lock: a parser belongs to the thread that uses it.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CString.h>

#include <memory>
#include <string>

namespace pugi
{
class xml_document;
}

class SCOREMODEL_API XMLParser
{
public:
    XMLParser();
    virtual ~XMLParser();
    XMLParser(const XMLParser &) = delete;
    XMLParser &operator=(const XMLParser &) = delete;

    // ---- Text conversions -------------------------------------------------------
    //
    // The document's strings are UTF-8 and CString is wide, so no string type
    // of its own stands between them: these two cover what the platform's
    // string conversions did.

    // `text` as UTF-8 into `out`.
    static void to_utf8(const CString &text, std::string &out);
    // `text` in the multibyte encoding of file names, which is UTF-8 here.
    static void to_mbc(const CString &text, std::string &out);
    // A UTF-8 text of the document as a CString (invalid bytes as U+FFFD).
    static CString FromDocumentText(const char *text);

protected:
    // 1 when two element names are the same (exact, case sensitive).
    static int Equals(const char *name, const char *other);
    pugi::xml_document &Document() { return *m_document; }

private:
    std::unique_ptr<pugi::xml_document> m_document;
};
