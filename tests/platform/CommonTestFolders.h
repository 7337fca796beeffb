// A fresh temporary folder per test, with the environment pointed at it, so
// that tests of the common services never touch a real home folder and never
// see each other's files. Restores every variable it changed.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <string>

#include <gtest/gtest.h>

class CommonTestFolders
{
public:
    CommonTestFolders()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "scoremodel-test-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr)
            ADD_FAILURE() << "mkdtemp failed";
        m_root = pattern;
        Set("SCOREMODEL_USER_DIR", (m_root / "user").string());
        Set("HOME", (m_root / "home").string());
        Set("XDG_CONFIG_HOME", (m_root / "home/.config").string());
        Set("SCOREMODEL_DATA_DIR", std::string(SCOREMODEL_TEST_SOURCE_DIR) + "/data");
    }

    ~CommonTestFolders()
    {
        for (const auto &[name, value] : m_saved)
        {
            if (value)
                ::setenv(name.c_str(), value->c_str(), 1);
            else
                ::unsetenv(name.c_str());
        }
        std::error_code ignored;
        std::filesystem::permissions(m_root, std::filesystem::perms::owner_all, ignored);
        std::filesystem::remove_all(m_root, ignored);
    }

    CommonTestFolders(const CommonTestFolders &) = delete;
    CommonTestFolders &operator=(const CommonTestFolders &) = delete;

    const std::filesystem::path &Root() const { return m_root; }
    std::filesystem::path UserFolder() const { return m_root / "user"; }
    std::filesystem::path HomeFolder() const { return m_root / "home"; }

    // Sets a variable for the rest of the test; a null value unsets it.
    void Set(const std::string &name, const std::optional<std::string> &value)
    {
        if (!m_saved.count(name))
        {
            const char *old = std::getenv(name.c_str());
            m_saved[name] = old ? std::optional<std::string>(old) : std::nullopt;
        }
        if (value)
            ::setenv(name.c_str(), value->c_str(), 1);
        else
            ::unsetenv(name.c_str());
    }

    // Writes bytes to a file below the root, making its folders.
    std::filesystem::path WriteFile(const std::string &relative, const std::string &bytes) const
    {
        const std::filesystem::path path = m_root / relative;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream out(path, std::ios::binary | std::ios::trunc);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return path;
    }

    static std::string ReadFile(const std::filesystem::path &path)
    {
        std::ifstream in(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }

private:
    std::filesystem::path m_root;
    std::map<std::string, std::optional<std::string>> m_saved;
};
