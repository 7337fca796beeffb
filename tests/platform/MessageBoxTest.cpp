#include <scoremodel/platform/MessageBox.h>

#include <gtest/gtest.h>

#include <string>

namespace
{
CString s_lastText;
unsigned s_lastType = 0;
int s_calls = 0;

int RecordingHandler(const CString &text, unsigned type)
{
    s_lastText = text;
    s_lastType = type;
    ++s_calls;
    return IDNO;
}

// Restores the default handler however a test ends.
class MessageBoxTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        MCSetMessageBoxHandler(nullptr);
        s_lastText.Empty();
        s_lastType = 0;
        s_calls = 0;
    }
    void TearDown() override { MCSetMessageBoxHandler(nullptr); }
};
} // namespace

TEST_F(MessageBoxTest, TheHostHandlerGetsTextAndKindItsAnswerIsReturnedAndRemovingItReturnsIt)
{
    EXPECT_EQ(MCSetMessageBoxHandler(&RecordingHandler), nullptr);
    EXPECT_EQ(AfxMessageBox(L"Tempo \u2669 kept", MB_YESNO | MB_ICONQUESTION), IDNO);
    EXPECT_EQ(s_lastText, CString(L"Tempo \u2669 kept"));
    EXPECT_EQ(s_lastType, MB_YESNO | MB_ICONQUESTION);
    EXPECT_EQ(MCSetMessageBoxHandler(nullptr), &RecordingHandler);
    ::testing::internal::CaptureStderr();
    MCMessageBox(L"to stderr", MB_OK);
    ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(s_calls, 1);
}

TEST_F(MessageBoxTest, WithoutAHostTheTextGoesToStderrWithItsKind)
{
    ::testing::internal::CaptureStderr();
    MCMessageBox(L"The tempo at the beginning cannot be removed. \u00C4", MB_ICONINFORMATION);
    MCMessageBox(L"plain", MB_OK);
    const std::string out = ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(out, "information: The tempo at the beginning cannot be removed. \xC3\x84\nplain\n");
}

TEST_F(MessageBoxTest, WithoutAHostQuestionsAnswerWithTheDefaultButton)
{
    struct Case
    {
        unsigned type;
        int answer;
    };
    const Case cases[] = {
        {MB_OK, IDOK},
        {MB_OKCANCEL | MB_DEFBUTTON2, IDCANCEL},
        {MB_YESNO | MB_ICONQUESTION, IDYES},
        {MB_YESNO | MB_DEFBUTTON2, IDNO},
        {MB_YESNOCANCEL | MB_DEFBUTTON3, IDCANCEL},
        {MB_ABORTRETRYIGNORE | MB_DEFBUTTON2, IDRETRY},
        {0x0000000Eu, IDOK}, // unknown buttons
    };
    ::testing::internal::CaptureStderr();
    for (const Case &c : cases)
        EXPECT_EQ(MCMessageBox(L"?", c.type), c.answer) << std::hex << c.type;
    ::testing::internal::GetCapturedStderr();
}
