// The umbrella header must name every public header, or a consumer that
// includes only it misses classes added later.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

TEST(UmbrellaHeader, IncludesEveryHeaderOfTheLibrary)
{
    const std::filesystem::path root = std::filesystem::path(SCOREMODEL_TEST_SOURCE_DIR) / "scoremodel";
    std::ifstream in(root / "scoremodel.h");
    ASSERT_TRUE(in) << "cannot read the umbrella header";
    std::stringstream text;
    text << in.rdbuf();
    for (const auto &entry : std::filesystem::recursive_directory_iterator(root))
    {
        if (entry.path().extension() != ".h" || entry.path().filename() == "scoremodel.h")
            continue;
        const std::string include = "#include <scoremodel/" + entry.path().lexically_relative(root).generic_string() + ">";
        EXPECT_NE(text.str().find(include), std::string::npos) << "missing: " << include;
    }
}
