// A private user folder and a recorded message box for the instrument file
// tests, so that tests running side by side never share a user file and a
// failure's message can be checked.
#pragma once

#include <scoremodel/instruments/XMLInstrumentParser.h>
#include <scoremodel/instruments/XMLInstrumentParserFaults.h>
#include <scoremodel/platform/MessageBox.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace instrumenttest
{
inline std::vector<std::wstring> &Messages()
{
    static std::vector<std::wstring> messages;
    return messages;
}

inline int RecordMessage(const CString &text, unsigned)
{
    Messages().push_back(text.Str());
    return IDOK;
}

inline std::string ReadAll(const std::filesystem::path &file)
{
    std::ifstream in(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline void WriteAll(const std::filesystem::path &file, const std::string &text)
{
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out << text;
}

// An instrument element as the file holds it.
inline std::string InstrumentXml(const std::string &name, int strings, std::initializer_list<int> tunes,
                                 const std::string &extra = "")
{
    std::string xml = "<instrument><name>" + name + "</name><strings>" + std::to_string(strings) + "</strings>" +
                      extra + "<tune>";
    for (int t : tunes)
        xml += "<frequency>" + std::to_string(t) + "</frequency>";
    return xml + "</tune></instrument>";
}

class InstrumentFileTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "scoremodel-instruments-XXXXXX").string();
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        m_dir = pattern;
        m_user = m_dir / "user";
        if (const char *old = std::getenv("SCOREMODEL_USER_DIR"))
            m_oldUser = old, m_hadUser = true;
        ::setenv("SCOREMODEL_USER_DIR", m_user.c_str(), 1);
        m_oldHandler = MCSetMessageBoxHandler(&RecordMessage);
        Messages().clear();
        SetInstrumentPersistFault(InstrumentPersistFault::None);
    }
    void TearDown() override
    {
        SetInstrumentPersistFault(InstrumentPersistFault::None);
        MCSetMessageBoxHandler(m_oldHandler);
        if (m_hadUser)
            ::setenv("SCOREMODEL_USER_DIR", m_oldUser.c_str(), 1);
        else
            ::unsetenv("SCOREMODEL_USER_DIR");
        std::error_code ignored;
        std::filesystem::remove_all(m_dir, ignored);
        // The next test starts from the shipped file again.
        XMLInstrumentParser::GetInstance()->ParseStartFile();
        Messages().clear();
    }

    XMLInstrumentParser &Parser() { return *XMLInstrumentParser::GetInstance(); }
    std::filesystem::path UserFile() const { return m_user / "TabInstruments.xml"; }

    // Loads a document made of `body` inside a root element.
    int LoadBody(const std::string &body)
    {
        const std::filesystem::path file = m_dir / "load.xml";
        WriteAll(file, "<?xml version=\"1.0\"?>\n<instruments>" + body + "</instruments>\n");
        return Parser().ParseXMLFromFile(CString::FromUtf8(file.c_str()));
    }

    // Names of the cached instruments, refreshed first when asked.
    std::vector<std::wstring> Names(int refresh)
    {
        std::vector<std::wstring> out;
        for (const CString &n : Parser().GetInstrumentNameList(refresh))
            out.push_back(n.Str());
        return out;
    }

    std::filesystem::path m_dir;
    std::filesystem::path m_user;

private:
    std::string m_oldUser;
    bool m_hadUser = false;
    MCMessageBoxHandler m_oldHandler = nullptr;
};
} // namespace instrumenttest
