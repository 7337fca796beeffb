#include <scoremodel/platform/CString.h>

#include <gtest/gtest.h>

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

namespace
{

std::wstring W(const CString &s) { return std::wstring(s.GetString(), static_cast<size_t>(s.GetLength())); }
std::string A(const CStringA &s) { return std::string(s.GetString(), static_cast<size_t>(s.GetLength())); }

template <typename X, typename... Args>
CStringT<X> F(const X *fmt, const Args &...args)
{
    CStringT<X> s;
    s.Format(fmt, args...);
    return s;
}

// FormatV reads its arguments blindly, so only the length modifier tells it
// how many bytes each one takes.
template <typename X>
CStringT<X> FV(const X *fmt, ...)
{
    va_list ap;
    va_start(ap, fmt);
    CStringT<X> s;
    s.FormatV(fmt, ap);
    va_end(ap);
    return s;
}

// 2^63 + 1 needs 64 significant bits: a long double holds it, a double
// rounds it to 2^63.
constexpr long double kNeedsLongDouble = 9223372036854775808.0L + 1.0L;

TEST(CStringFormatLength, EachModifierTakesTheWidthItNames)
{
    const long long int64Min = std::numeric_limits<long long>::min();
    const std::pair<const wchar_t *, CString> cases[] = {
        // q and j are 64 bits.
        {L"-9223372036854775808", F(L"%jd", int64Min)},
        {L"18446744073709551615", F(L"%qu", ~0ULL)},
        {L"123456789ABCDEF", F(L"%jX", 0x123456789abcdefULL)},
        {L"1099511627776|-1099511627776", F(L"%qd|%ji", 1LL << 40, -(1LL << 40))},
        // z, t and a bare I are pointer-sized.
        {L"18446744073709551615", F(L"%zu", std::numeric_limits<size_t>::max())},
        {L"-9223372036854775808", F(L"%td", std::numeric_limits<ptrdiff_t>::min())},
        {L"10000000000|-3", F(L"%zx|%Id", size_t(1) << 40, ptrdiff_t(-3))},
        // I32 is 32 bits even for a wider argument.
        {L"5", F(L"%I32d", (1LL << 32) | 5)},
        // A wide modifier never reads past the argument's own width: a
        // 32-bit -1 stays -1 signed and 2^32-1 unsigned.
        {L"-1|4294967295|-1|4294967295", F(L"%jd|%ju|%zd|%zu", -1, -1, -1, -1)},
        // Flags, width and precision combine with the modifier.
        {L"[-00000000000042]|[+7  ]", F(L"[%015jd]|[%-+4zd]", -42LL, ptrdiff_t(7))},
        // L is long double; a double or a long double goes to either.
        {L"9223372036854775809", F(L"%.0Lf", kNeedsLongDouble)},
        {L"9223372036854775808", F(L"%.0f", kNeedsLongDouble)},
        {L"1.000000e+4000", F(L"%Le", 1e4000L)},
        {L"0.5|0.250000", F(L"%Lg|%f", 0.5, 0.25L)},
    };
    for (const auto &[expected, actual] : cases)
        EXPECT_EQ(std::wstring(expected), W(actual));
}

TEST(CStringFormatLength, AVaListIsReadAtTheModifiersWidth)
{
    const std::pair<const wchar_t *, CString> cases[] = {
        {L"1099511627776 7", FV(L"%zu %d", size_t(1) << 40, 7)},
        {L"-1099511627776 7", FV(L"%td %d", ptrdiff_t(-(1LL << 40)), 7)},
        {L"-9223372036854775808 7", FV(L"%jd %d", std::numeric_limits<intmax_t>::min(), 7)},
        {L"18446744073709551615 7", FV(L"%qu %d", ~0ULL, 7)},
        {L"FFFFFFFFFF 7", FV(L"%IX %d", size_t(0xFFFFFFFFFFULL), 7)},
        {L"9223372036854775809 7", FV(L"%.0Lf %d", kNeedsLongDouble, 7)},
    };
    for (const auto &[expected, actual] : cases)
        EXPECT_EQ(std::wstring(expected), W(actual));
}

// w forces a wide argument and h a narrow one, whatever the string's width
// says %s and %c mean.
TEST(CStringFormatLength, WAndHChooseTheArgumentsWidthForTextAndCharacters)
{
    // Through a va_list the modifier is all there is to go by.
    EXPECT_EQ("b\xc3\xa4r|\xe4\xb8\xad", A(FV("%ws|%wS", L"b\u00e4r", L"\u4e2d")));
    EXPECT_EQ("\xc3\xa9|\xe9", A(FV("%wc|%c", 0xE9, 0xE9)));
    // In a wide string h makes %s and %c narrow: a lone byte 0xE9 is not
    // UTF-8, so it shows as U+FFFD rather than as U+00E9.
    EXPECT_EQ(L"b\u00e4r|\uFFFD|\u00e9", W(FV(L"%hs|%hc|%c", "b\xc3\xa4r", 0xE9, 0xE9)));
    // Typed arguments: a wide character under %wc is encoded, in either width.
    EXPECT_EQ("\xc3\xa9|\xe4\xb8\xad", A(F("%wc|%ws", L'\u00e9', L"\u4e2d")));
    EXPECT_EQ(L"\u00e9|\u4e2d", W(F(L"%wc|%ws", L'\u00e9', L"\u4e2d")));
    EXPECT_EQ("[  ab]|[ab  ]", A(FV("[%4.2ws]|[%-4ws]", L"abc", L"ab")));
}

TEST(CStringFormatPointer, APointerIsItsFullWidthInUpperCaseHex)
{
    const void *p = reinterpret_cast<const void *>(0xABCDEF12ULL);
    const std::pair<const wchar_t *, CString> cases[] = {
        {L"00000000ABCDEF12", F(L"%p", p)},
        {L"0000000000000000", F(L"%p", nullptr)},
        {L"0000000000000000", F(L"%p", static_cast<const int *>(nullptr))},
        // Width pads with spaces on the chosen side; a short width never cuts.
        {L"[    00000000ABCDEF12]", F(L"[%20p]", p)},
        {L"[00000000ABCDEF12    ]", F(L"[%-20p]", p)},
        {L"[00000000ABCDEF12]", F(L"[%4p]", p)},
        {L"[    00000000ABCDEF12]", F(L"[%*p]", 20, p)},
        // A string under %p is its address, never its text.
        {L"000000000000BEEF", F(L"%p", reinterpret_cast<const char *>(0xBEEF))},
        {L"000000000000BEEF", F(L"%p", reinterpret_cast<const wchar_t *>(0xBEEF))},
        // An integer is taken as an address.
        {L"00000000000000FF", F(L"%p", 255)},
        {L"00000000ABCDEF12", FV(L"%p", p)},
    };
    for (const auto &[expected, actual] : cases)
        EXPECT_EQ(std::wstring(expected), W(actual));
    EXPECT_EQ("00000000ABCDEF12 x", A(F("%p %s", p, "x")));
    EXPECT_EQ("00000000ABCDEF12", A(FV("%p", p)));

    CString s(L"kept");
    EXPECT_THROW(s.Format(L"%p", 1.5), CInvalidArgException);
    EXPECT_THROW(s.Format(L"%p"), CInvalidArgException);
    EXPECT_EQ(L"kept", W(s));
}

// ---- SpanIncluding / SpanExcluding ---------------------------------------------

TEST(CStringSpan, TheLeadingRunInOrOutOfTheSet)
{
    struct Case
    {
        const wchar_t *text;
        const wchar_t *set;
        const wchar_t *including;
        const wchar_t *excluding;
    };
    const Case cases[] = {
        {L"2024-11-25", L"0123456789", L"2024", L""},
        {L"key=value;x", L"=;", L"", L"key"},
        {L"cabd", L"abcabc", L"cab", L""}, // order and repeats in the set do not matter
        {L"aaaa", L"a", L"aaaa", L""},
        {L"abc", L"xyz", L"", L"abc"},
        {L"", L"abc", L"", L""},
        {L"abc", L"", L"", L"abc"}, // nothing is in an empty set
        {L"  x y", L" ", L"  ", L""},
        {L"x  y", L" ", L"", L"x"},
        {L"\u00e9\u00e9a\u00e9", L"\u00e9", L"\u00e9\u00e9", L""},
        {L"Fl\u00f6te", L"\u00f6\u00fc", L"", L"Fl"},
        {L"\U0001F3B5\U0001F3B5|", L"\U0001F3B5", L"\U0001F3B5\U0001F3B5", L""},
        {L"Aa", L"a", L"", L"A"}, // case matters
    };
    for (const Case &c : cases)
    {
        const CString text(c.text);
        const std::string shown = testing::PrintToString(std::wstring(c.text));
        EXPECT_EQ(std::wstring(c.including), W(text.SpanIncluding(c.set))) << shown;
        EXPECT_EQ(std::wstring(c.excluding), W(text.SpanExcluding(c.set))) << shown;
        EXPECT_EQ(std::wstring(c.text), W(text)) << "a span leaves its source alone";
    }
    // No set at all behaves as an empty one.
    EXPECT_EQ(L"", W(CString(L"abc").SpanIncluding(nullptr)));
    EXPECT_EQ(L"abc", W(CString(L"abc").SpanExcluding(nullptr)));

    const CStringA path("dir/file.txt");
    EXPECT_EQ("dir", A(path.SpanExcluding("/.")));
    EXPECT_EQ("dir", A(path.SpanIncluding("abcdefghijklmnopqrstuvwxyz")));
    EXPECT_EQ("dir/file.txt", A(path.SpanExcluding("")));
}

} // namespace
