// Every test program names its main thread the document thread before any
// test runs, as a host does at start-up.
#include <scoremodel/commands/MCCommandMgr.h>

#include <gtest/gtest.h>

namespace
{
class DocumentThread : public ::testing::Environment
{
public:
    void SetUp() override { ASSERT_EQ(MCCommandMgr::SetDocumentThread(), 1); }
};

[[maybe_unused]] ::testing::Environment *const s_documentThread =
    ::testing::AddGlobalTestEnvironment(new DocumentThread);
} // namespace
