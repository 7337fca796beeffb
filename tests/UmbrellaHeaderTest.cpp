// The umbrella header must name every public header, or a consumer that
// includes only it misses classes added later; and it, like every public
// header, must stay clear of the headers the library keeps to itself, which
// are not installed.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

namespace
{
const std::filesystem::path kRoot = std::filesystem::path(SCOREMODEL_TEST_SOURCE_DIR) / "scoremodel";

std::string ReadText(const std::filesystem::path &path)
{
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

std::set<std::string> PrivateHeaders()
{
    std::set<std::string> headers;
    std::ifstream in(std::filesystem::path(SCOREMODEL_TEST_SOURCE_DIR) / "cmake" / "private-headers.txt");
    for (std::string line; std::getline(in, line);)
        if (!line.empty() && line[0] != '#')
            headers.insert(line);
    return headers;
}
} // namespace

TEST(UmbrellaHeader, NamesEveryPublicHeaderAndNoPrivateOne)
{
    const std::set<std::string> privateHeaders = PrivateHeaders();
    ASSERT_FALSE(privateHeaders.empty()) << "cannot read cmake/private-headers.txt";
    const std::string umbrella = ReadText(kRoot / "scoremodel.h");
    ASSERT_FALSE(umbrella.empty()) << "cannot read the umbrella header";
    for (const auto &entry : std::filesystem::recursive_directory_iterator(kRoot))
    {
        if (entry.path().extension() != ".h" || entry.path().filename() == "scoremodel.h")
            continue;
        const std::string name = entry.path().lexically_relative(kRoot).generic_string();
        const std::string include = "#include <scoremodel/" + name + ">";
        if (privateHeaders.count(name))
        {
            EXPECT_TRUE(std::filesystem::exists(kRoot / name)) << "listed private header is gone: " << name;
            EXPECT_EQ(umbrella.find(include), std::string::npos) << "umbrella names private " << name;
        }
        else
            EXPECT_NE(umbrella.find(include), std::string::npos) << "missing: " << include;
    }
}

TEST(UmbrellaHeader, NoPublicHeaderIncludesAPrivateOne)
{
    const std::set<std::string> privateHeaders = PrivateHeaders();
    for (const auto &entry : std::filesystem::recursive_directory_iterator(kRoot))
    {
        if (entry.path().extension() != ".h")
            continue;
        const std::string name = entry.path().lexically_relative(kRoot).generic_string();
        if (privateHeaders.count(name))
            continue;
        const std::string text = ReadText(entry.path());
        for (const std::string &hidden : privateHeaders)
            EXPECT_EQ(text.find("<scoremodel/" + hidden + ">"), std::string::npos) << name << " includes " << hidden;
    }
}
