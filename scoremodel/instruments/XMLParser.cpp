#include <scoremodel/instruments/XMLParser.h>

#include <pugixml.hpp>

#include <cstring>

XMLParser::XMLParser() : m_document(std::make_unique<pugi::xml_document>())
{
}

XMLParser::~XMLParser() = default;

void XMLParser::to_utf8(const CString &text, std::string &out)
{
    out = text.ToUtf8();
}

void XMLParser::to_mbc(const CString &text, std::string &out)
{
    out = text.ToUtf8();
}

CString XMLParser::FromDocumentText(const char *text)
{
    return CString::FromUtf8(text ? text : "");
}

int XMLParser::Equals(const char *name, const char *other)
{
    return name && other && std::strcmp(name, other) == 0 ? 1 : 0;
}
