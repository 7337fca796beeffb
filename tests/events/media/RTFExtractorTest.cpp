// Plain text out of rich text: a table of inputs and the text a user should
// see, then broken and random input that must never crash or hang.
#include <scoremodel/events/media/RTFExtractor.h>

#include <gtest/gtest.h>

#include <random>
#include <string>

TEST(RTFExtractor, GivesTheTextAUserSees)
{
    struct Case
    {
        const char *rtf;
        const wchar_t *text;
    } const cases[] = {
        {"{\\rtf1 Allegro}", L"Allegro"},
        {"{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0\\fswiss Arial;}}{\\colortbl;\\red255\\green0\\blue0;}\\f0\\fs24 Largo}",
         L"Largo"},
        {"{\\rtf1 one\\par two\\line three\\tab four}", L"one\ntwo\nthree\tfour"},
        {"{\\rtf1 a\\\\b\\{c\\}d}", L"a\\b{c}d"},
        {"{\\rtf1 caf\\'e9 \\'80}", L"caf\u00e9 \u20ac"},
        {"{\\rtf1 \\u8364?uro}", L"\u20acuro"},
        {"{\\rtf1\\uc2 \\u-3913xyz}", L"\uf0b7z"},
        {"{\\rtf1\\uc0 \\u55357\\u56832 !}", L"\U0001F600!"}, // the blank ends the word
        {"{\\rtf1 {\\*\\generator Writer 1.0;}text}", L"text"},
        {"{\\rtf1 {\\info{\\title T}{\\author A}}body}", L"body"},
        {"{\\rtf1 {\\b bold} {\\i italic}}", L"bold italic"},
        {"{\\rtf1 a\\~b\\emdash c\\ldblquote d\\rdblquote}", L"a\u00a0b\u2014c\u201cd\u201d"},
        {"{\\rtf1 line\r\nbreaks\nare ignored}", L"linebreaksare ignored"},
        {"{\\rtf1 \\unknownword42 kept}", L"kept"},
        {"plain text, not RTF", L"plain text, not RTF"},
        {"", L""},
    };
    for (const Case &c : cases)
        EXPECT_EQ(RTFExtractor::Extract(CStringA(c.rtf)), CString(c.text)) << c.rtf;
}

TEST(RTFExtractor, BrokenRtfEndsQuietly)
{
    struct Case
    {
        const char *rtf;
        const wchar_t *text;
    } const cases[] = {
        {"{\\rtf1 open {group never closed", L"open group never closed"},
        {"{\\rtf1 extra}}} closing} braces", L"extra closing braces"},
        {"{\\rtf1 cut escape \\", L"cut escape "},
        {"{\\rtf1 cut hex \\'e", L"cut hex e"},
        {"{\\rtf1 bad hex \\'zz", L"bad hex zz"},
        {"{\\rtf1 \\u", L""},
        {"{\\rtf1 \\u99999999999999999999 x}", L"x"},
        {"{\\rtf1 \\uc999999 \\u65 abc}", L"A"}, // at most 8 fallbacks
        {"{\\rtf1 lone low \\u-9216?half}", L"lone low half"},
    };
    for (const Case &c : cases)
        EXPECT_EQ(RTFExtractor::Extract(CStringA(c.rtf)), CString(c.text)) << c.rtf;
    EXPECT_EQ(RTFExtractor::Extract(nullptr, 5), CString());
    EXPECT_EQ(RTFExtractor::Extract("{\\rtf1 x}", -1), CString());
}

TEST(RTFExtractor, DeepNestingAndNoiseNeverCrash)
{
    std::string deep = "{\\rtf1 ";
    deep += std::string(200000, '{') + "deep" + std::string(200000, '}');
    EXPECT_EQ(RTFExtractor::Extract(CStringA(deep.c_str())), CString(L"deep"));

    std::mt19937 random(22);
    const char alphabet[] = "{}\\'*uc0123456789-abfonttbl ;?\r\n\x80\xff";
    for (int round = 0; round < 2000; ++round)
    {
        std::string text = "{\\rtf1";
        const int length = static_cast<int>(random() % 64);
        for (int i = 0; i < length; ++i)
            text.push_back(alphabet[random() % (sizeof alphabet - 1)]);
        const CString plain = RTFExtractor::Extract(text.c_str(), static_cast<int>(text.size()));
        EXPECT_LE(plain.GetLength(), length) << text;
    }
}
