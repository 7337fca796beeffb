#include <scoremodel/platform/CString.h>

#include <gtest/gtest.h>

#include <clocale>

#include <cwchar>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace
{

std::wstring W(const CString &s) { return std::wstring(s.GetString(), static_cast<size_t>(s.GetLength())); }

// ---- Formatting ----------------------------------------------------------------

CString FormatThroughVaList(const wchar_t *fmt, ...)
{
    va_list ap;
    va_start(ap, fmt);
    CString s(L">");
    s.AppendFormatV(fmt, ap);
    va_end(ap);
    return s;
}

TEST(CStringFormat, ConversionsFollowThePlatformWidthsAndEachArgumentsRealType)
{
    auto f = [](const wchar_t *fmt, auto... args) {
        CString s;
        s.Format(fmt, args...);
        return s;
    };
    const short negativeShort = -2;
    const LONG negativeLong = -1;
    const long big = 5000000000L;
    const std::pair<const wchar_t *, CString> cases[] = {
        {L"4294967295", f(L"%u", -1)},
        {L"-2", f(L"%hd", negativeShort)},
        {L"4464 44", f(L"%hd %hhu", 70000, 300)},
        // long is 32 bits on the platform: a LONG with %ld must not pick up
        // stray high bits, through a va_list too.
        {L"-1 4294967295", f(L"%ld %lu", negativeLong, negativeLong)},
        {L">-1 4294967295 ab \u00e9 x", FormatThroughVaList(L"%ld %lu %s %S %hc", negativeLong, negativeLong, L"ab",
                                                             "\xc3\xa9", 'x')},
        {L"1099511627776 -1099511627776", f(L"%lld %I64d", 1LL << 40, -(1LL << 40))},
        {L"[7   ]", f(L"[%*d]", -4, 7)},
        {L"[ab]", f(L"[%.*s]", 2, L"abcdef")},
        {L"(null)", f(L"%s", static_cast<const wchar_t *>(nullptr))},
        {L"(null)", f(L"%s", nullptr)},
        {L"Z \u00e9 A", f(L"%c %c %C", L'Z', L'\u00e9', 'A')},
        {L"trailing %", f(L"trailing %")},
        {L"%k %y", f(L"%k %y")}, // unknown conversions appear as written
        {L"1", f(L"%d", 1, 2, 3)}, // extra arguments are ignored
        // Wide text takes %s and narrow UTF-8 %S, but a string prints right
        // whichever of the two names it, and string objects pass as their text.
        {L"Fl\u00f6te|na\u00efve|b\u00e4r|\U0001F3B5",
         f(L"%s|%S|%hs|%ls", L"Fl\u00f6te", "na\xc3\xafve", "b\xc3\xa4r", L"\U0001F3B5")},
        {L"b\u00e4r|\u00e9", f(L"%s|%S", "b\xc3\xa4r", L"\u00e9")},
        {L"Oboe/bytes", f(L"%s/%S", CString(L"Oboe"), CStringA("bytes"))},
        {L"5000000000 4294967295 7 1", f(L"%ld %lu %lld %d", big, DWORD(0xFFFFFFFFu), 7, true)},
        {L"3.000000 50%", f(L"%f %d%%", 3, 50)}, // an integer given to %f is its value
    };
    for (const auto &[expected, actual] : cases)
        EXPECT_EQ(std::wstring(expected), W(actual));

    CStringA a;
    a.Format("%s|%S|%ls|%C", "x", L"\u00e9", L"\u4e2d", L'\u00fc');
    EXPECT_STREQ("x|\xc3\xa9|\xe4\xb8\xad|\xc3\xbc", a.GetString());
}

TEST(CStringFormat, FormattingIntoItselfKeepsTheOldValueAndLongOutputIsWhole)
{
    CString s(L"abc");
    s.Format(L"<%s>", s);
    EXPECT_EQ(L"<abc>", W(s));
    s.Format(s + L"%d", 1);
    EXPECT_EQ(L"<abc>1", W(s));

    const std::wstring big(5000, L'x');
    s.Format(L"%s|%300d|%.200f", big.c_str(), 5, 1.0);
    EXPECT_EQ(5000 + 1 + 300 + 1 + 202, s.GetLength());
    EXPECT_EQ(L'5', s[5000 + 300]);
    EXPECT_EQ(L'1', s[5000 + 1 + 300 + 1]);
}

TEST(CStringFormat, MissingWrongOrHostileArgumentsThrowAndNeverWriteThroughAPointer)
{
    CString s(L"kept");
    EXPECT_THROW(s.Format(L"%d %d", 1), CInvalidArgException);
    EXPECT_THROW(s.Format(L"%s", 42), CInvalidArgException);
    EXPECT_THROW(s.Format(L"%d", L"text"), CInvalidArgException);
    EXPECT_THROW(s.Format(L"%*d", 1.5, 2), CInvalidArgException);
    EXPECT_THROW(s.Format(L"%999999999d", 1), CInvalidArgException);
    EXPECT_THROW(s.Format(L"%*d", 2000000000, 1), CInvalidArgException);
    EXPECT_THROW(s.Format(static_cast<const wchar_t *>(nullptr)), CInvalidArgException);
    EXPECT_EQ(L"kept", W(s)) << "a failed Format leaves the string alone";
    int target = 1234;
    s.Format(L"a%nb", &target);
    EXPECT_EQ(L"ab", W(s));
    EXPECT_EQ(1234, target);
}

// ---- Substrings and searching -------------------------------------------------------

TEST(CStringSubstrings, OutOfRangeArgumentsClampInsteadOfThrowing)
{
    const CString s(L"abcdef");
    struct Case
    {
        CString actual;
        const wchar_t *expected;
    };
    const Case cases[] = {
        {s.Mid(-3, 2), L"ab"},
        {s.Mid(4, 100), L"ef"}, {s.Mid(100), L""}, {s.Mid(2, -1), L""}, {s.Left(-1), L""},
        {s.Left(99), L"abcdef"}, {s.Right(-2), L""}, {s.Right(99), L"abcdef"}, {s.Mid(5, 2147483647), L"f"},
    };
    for (const Case &c : cases)
        EXPECT_EQ(std::wstring(c.expected), W(c.actual));
}

TEST(CStringSubstrings, FindReportsIndexesAndMissesAtTheEdges)
{
    const CString s(L"a.b.c");
    struct Case
    {
        int actual;
        int expected;
    };
    const Case cases[] = {
        {s.Find(L'.', 2), 3},   {s.Find(L'.', -5), 1},     {s.Find(L'.', 99), -1},     {s.Find(L"b.c", 3), -1},
        {s.Find(L"", 5), 5},    {s.Find(L"", 6), -1},      {s.Find(L"a.b.c.d"), -1},   {s.ReverseFind(L'.'), 3},
        {s.FindOneOf(L"cb"), 2}, {CString().ReverseFind(L'a'), -1},
    };
    for (size_t i = 0; i < std::size(cases); ++i)
        EXPECT_EQ(cases[i].expected, cases[i].actual) << "case " << i;
}

TEST(CStringSubstrings, TokenizeSkipsEmptyFieldsAndEnds)
{
    const CString s(L",,alto;;tenor,bass,");
    std::vector<std::wstring> tokens;
    int pos = 0;
    for (CString t = s.Tokenize(L",;", pos); pos != -1; t = s.Tokenize(L",;", pos))
        tokens.push_back(W(t));
    EXPECT_EQ((std::vector<std::wstring>{L"alto", L"tenor", L"bass"}), tokens);

    pos = 0;
    EXPECT_TRUE(CString(L",,,").Tokenize(L",", pos).IsEmpty());
    EXPECT_EQ(-1, pos);

    // Without delimiters the rest is one token and the walk still ends.
    pos = 2;
    EXPECT_EQ(L"cdef", W(CString(L"abcdef").Tokenize(L"", pos)));
    EXPECT_TRUE(CString(L"abcdef").Tokenize(L"", pos).IsEmpty());
    EXPECT_EQ(-1, pos);
}

// ---- Changing ------------------------------------------------------------------------

TEST(CStringEdit, ReplaceCountsNonOverlappingMatchesLeftToRight)
{
    struct Case
    {
        const wchar_t *text, *from, *to, *expected;
        int count;
    };
    const Case cases[] = {
        {L"aaa", L"aa", L"b", L"ba", 1},
        {L"aaaa", L"aa", L"b", L"bb", 2},
        {L"aaa", L"a", L"aa", L"aaaaaa", 3}, // replacement containing the pattern is not rescanned
        {L"abc", L"", L"x", L"abc", 0},
        {L"x\u00e9x", L"\u00e9", L"\U0001F3B5", L"x\U0001F3B5x", 1},
    };
    for (const Case &c : cases)
    {
        CString s(c.text);
        EXPECT_EQ(c.count, s.Replace(c.from, c.to)) << c.text;
        EXPECT_EQ(std::wstring(c.expected), W(s)) << c.text;
    }

    CString s(L"a-b-c");
    EXPECT_EQ(2, s.Replace(L'-', L'+'));
    EXPECT_EQ(2, s.Remove(L'+'));
    EXPECT_EQ(L"abc", W(s));
}

TEST(CStringEdit, InsertAndDeleteClampTheirPositions)
{
    CString s(L"abc");
    EXPECT_EQ(4, s.Insert(-5, L'<'));
    EXPECT_EQ(5, s.Insert(99, L'>'));
    EXPECT_EQ(7, s.Insert(2, L"--"));
    EXPECT_EQ(L"<a--bc>", W(s));
    EXPECT_EQ(6, s.Delete(2));
    EXPECT_EQ(3, s.Delete(3, 100));
    EXPECT_EQ(3, s.Delete(99, 1));
    EXPECT_EQ(3, s.Delete(0, -1));
    EXPECT_EQ(L"<a-", W(s));
    EXPECT_EQ(6, s.Insert(1, s)) << "inserting a string into itself";
    EXPECT_EQ(L"<<a-a-", W(s));
}

TEST(CStringEdit, TrimRemovesWhitespaceCharactersAndSets)
{
    struct Case
    {
        CString actual;
        const wchar_t *expected;
    };
    const Case cases[] = {
        {CString(L" \t\r\n Hi there \v\f").Trim(), L"Hi there"},
        {CString(L"\u3000\u00a0wide\u2003").Trim(), L"wide"},
        {CString(L"   ").Trim(), L""},
        {CString(L"xxhixyx").Trim(L"xy"), L"hi"},
        {CString(L"xxhixyx").TrimRight(L"xy"), L"xxhi"},
        {CString(L"--a-b--").Trim(L'-'), L"a-b"},
        {CString(L" keep ").Trim(L""), L" keep "},
    };
    for (const Case &c : cases)
        EXPECT_EQ(std::wstring(c.expected), W(c.actual));
}

TEST(CStringEdit, CaseMappingCoversAccentedGreekAndCyrillicLetters)
{
    EXPECT_EQ(L"\u00c4PFEL \u0178 \u0141\u00d3D\u0179 \u03a3\u039f\u03a6\u0399\u0391 \u0416\u0401",
              W(CString(L"\u00e4pfel \u00ff \u0142\u00f3d\u017a \u03c3\u03bf\u03c6\u03b9\u03b1 \u0436\u0451").MakeUpper()));
    EXPECT_EQ(L"\u00e4pfel \u00ff \u0142\u00f3d\u017a \u03c3\u03bf\u03c6\u03b9\u03b1 \u0436\u0451",
              W(CString(L"\u00c4PFEL \u0178 \u0141\u00d3D\u0179 \u03a3\u039f\u03a6\u0399\u0391 \u0416\u0401").MakeLower()));
    EXPECT_EQ(L"STRA\u00dfE \u00d7", W(CString(L"stra\u00dfe \u00d7").MakeUpper())) << "no letter for \u00df; \u00d7 is no letter";
    EXPECT_STREQ("ABC\xc3\xa4", CStringA("abc\xc3\xa4").MakeUpper().GetString()) << "narrow mapping must not break UTF-8";
    EXPECT_EQ(L"\U0001F3B5cba", W(CString(L"abc\U0001F3B5").MakeReverse()));
}

// Case pairs from every script that has case, inside and outside the Basic
// Multilingual Plane; each maps both ways and compares equal without case.
TEST(CStringEdit, CaseMappingCoversEveryCasedScript)
{
    const struct
    {
        const wchar_t *upper, *lower;
    } pairs[] = {
        {L"\u0490", L"\u0491"},         // Ukrainian ghe with upturn
        {L"\u0531\u0532", L"\u0561\u0562"}, // Armenian
        {L"\uFF21\uFF3A", L"\uFF41\uFF5A"}, // fullwidth Latin
        {L"\u0181\u01C4", L"\u0253\u01C6"}, // Latin Extended-B
        {L"\u1E00\u1EA0", L"\u1E01\u1EA1"}, // Latin Extended Additional
        {L"\u1F08", L"\u1F00"},         // Greek Extended
        {L"\u10A0", L"\u2D00"},         // Georgian
        {L"\u13A0", L"\uAB70"},         // Cherokee
        {L"\u2C00", L"\u2C30"},         // Glagolitic
        {L"\u0500", L"\u0501"},         // Cyrillic Supplement
        {L"\U00010400", L"\U00010428"}, // Deseret
        {L"\U0001E900", L"\U0001E922"}, // Adlam
    };
    for (const auto &p : pairs)
    {
        const std::string name = CString(p.upper).ToUtf8();
        EXPECT_EQ(std::wstring(p.lower), W(CString(p.upper).MakeLower())) << name;
        EXPECT_EQ(std::wstring(p.upper), W(CString(p.lower).MakeUpper())) << name;
        EXPECT_EQ(CString(p.upper).CompareNoCase(p.lower), 0) << name;
    }
    // Letters without case and other characters stay as they are.
    const std::wstring caseless = L"7 \u00d7 \u4e2d \u05d0 \u0627 \U0001F3B5";
    EXPECT_EQ(caseless, W(CString(caseless.c_str()).MakeUpper()));
    EXPECT_EQ(caseless, W(CString(caseless.c_str()).MakeLower()));
}

// The host's locale does not change the mapping (a Turkish locale would map
// I to dotless i).
TEST(CStringEdit, CaseMappingIgnoresTheHostsLocale)
{
    const std::string saved = std::setlocale(LC_ALL, nullptr);
    for (const char *name : {"tr_TR.UTF-8", "C.UTF-8", "C"})
    {
        if (!std::setlocale(LC_ALL, name))
            continue;
        EXPECT_EQ(L"istanbul \u0491", W(CString(L"ISTANBUL \u0490").MakeLower())) << name;
        EXPECT_EQ(CString(L"\u0531").CompareNoCase(L"\u0561"), 0) << name;
    }
    std::setlocale(LC_ALL, saved.c_str());
}

// ---- Comparison and hashing ---------------------------------------------------------------

TEST(CStringCompare, NoCaseComparisonIgnoresCaseBeyondAscii)
{
    struct Case
    {
        const wchar_t *a, *b;
        int sign;
    };
    const Case cases[] = {
        {L"Piano", L"PIANO", 0},
        {L"\u00c4pfel", L"\u00e4PFEL", 0},
        {L"\u03a3\u039f\u03a6\u0399\u0391", L"\u03c3\u03bf\u03c6\u03b9\u03b1", 0},
        {L"\u0424\u041b\u0415\u0419\u0422\u0410", L"\u0444\u043b\u0435\u0439\u0442\u0430", 0},
        {L"Zither", L"alto", 1},
        {L"abc", L"ABCD", -1},
        {L"stra\u00dfe", L"STRASSE", 1},
    };
    for (const Case &c : cases)
    {
        const int r = CString(c.a).CompareNoCase(c.b);
        EXPECT_EQ(c.sign, (r > 0) - (r < 0)) << CString(c.a).ToUtf8() << " vs " << CString(c.b).ToUtf8();
    }
    EXPECT_GT(CString(L"apple").Compare(L"Banana"), 0) << "Compare is case sensitive and ordinal";
}

TEST(CStringCompare, OperatorsOrderOrdinallyWithPointersOnEitherSide)
{
    const CString a(L"alto");
    EXPECT_TRUE(L"alto" == a);
    EXPECT_TRUE(L"alt" < a);
    EXPECT_TRUE(a == CString("alto")) << "narrow literals convert";
    EXPECT_LT(CStringA("z").Compare("\xc3\xa9"), 0) << "bytes from 0x80 sort after ASCII";
    EXPECT_NE(CString(L"a\0b", 3), CString(L"a\0c", 3)) << "text after an embedded NUL counts";
}

TEST(CStringCompare, EqualStringsFromEitherWidthFindTheSameMapKey)
{
    std::unordered_map<CString, int> byName;
    byName[L"Fl\u00f6te"] = 1;
    byName[CString::FromUtf8("Oboe")] = 2;
    EXPECT_EQ(1, byName.at(CString("Fl\xc3\xb6te")));
    EXPECT_EQ(2, byName.at(L"Oboe"));
    std::unordered_map<CStringA, int> narrow{{"k", 7}};
    EXPECT_EQ(7, narrow.at(CStringA(L"k")));
}

// ---- Access ------------------------------------------------------------------------------

TEST(CStringAccess, IndexOutsideTheStringThrows)
{
    CString s(L"abc");
    EXPECT_EQ(L'\0', s.GetAt(3)) << "the terminator may be read";
    EXPECT_THROW((void)s[4], CInvalidArgException);
    EXPECT_THROW((void)s[-1], CInvalidArgException);
    EXPECT_THROW(s.GetAt(-1), CInvalidArgException);
    EXPECT_THROW(s.SetAt(3, L'x'), CInvalidArgException);
    EXPECT_THROW(CString(L"abc", -1), CInvalidArgException);
    EXPECT_THROW(CString(static_cast<const wchar_t *>(nullptr), 2), CInvalidArgException);
    EXPECT_TRUE(CString(static_cast<const wchar_t *>(nullptr)).IsEmpty());
    EXPECT_TRUE(CString(L'-', -3).IsEmpty());
}

TEST(CStringAccess, ReleaseBufferTakesTheWrittenLength)
{
    CString s(L"old");
    wchar_t *p = s.GetBuffer(16);
    std::wcscpy(p, L"written");
    s.ReleaseBuffer();
    EXPECT_EQ(L"written", W(s));

    p = s.GetBuffer(4);
    EXPECT_EQ(std::wstring(L"written"), std::wstring(p)) << "GetBuffer keeps the contents";
    s.ReleaseBuffer(5);
    EXPECT_EQ(L"writt", W(s));

    p = s.GetBufferSetLength(3);
    p[0] = L'a';
    p[1] = L'b';
    p[2] = L'c';
    s.ReleaseBuffer(99);
    EXPECT_EQ(L"abc", W(s)) << "a length past the buffer is clamped";

}

// ---- UTF-8 ---------------------------------------------------------------------------------

TEST(CStringUtf8, RoundTripKeepsEveryPlane)
{
    const wchar_t *texts[] = {L"", L"plain", L"Fl\u00f6te \u00e0 bec", L"\u4e2d\u6587 \u0416",
                              L"\U0001F3B5\U0001D11E clef", L"\U0010FFFF\uFFFD\u0001"};
    for (const wchar_t *t : texts)
    {
        const CString wide(t);
        const std::string utf8 = wide.ToUtf8();
        EXPECT_EQ(W(wide), W(CString::FromUtf8(utf8.c_str())));
        EXPECT_EQ(W(wide), W(CString(CStringA(wide))));
        EXPECT_EQ(utf8, std::string(CStringA(wide).GetString()));
    }
    EXPECT_EQ("\xf0\x9f\x8e\xb5", CString(L"\U0001F3B5").ToUtf8());
}

TEST(CStringUtf8, InvalidBytesBecomeOneReplacementEach)
{
    struct Case
    {
        std::string bytes;
        std::wstring expected;
    };
    const Case cases[] = {
        {"a\x80z", L"a\uFFFDz"},                               // stray continuation
        {"\xe2\x82z", L"\uFFFDz"},                             // truncated, then ASCII
        {"\xe2\x82", L"\uFFFD"},                               // truncated at the end
        {"\xc0\xaf", L"\uFFFD\uFFFD"},                         // overlong '/'
        {"\xe0\x80\xaf", L"\uFFFD\uFFFD\uFFFD"},               // overlong three-byte
        {"\xed\xa0\x80", L"\uFFFD\uFFFD\uFFFD"},               // encoded surrogate
        {"\xf4\x90\x80\x80", L"\uFFFD\uFFFD\uFFFD\uFFFD"},     // past U+10FFFF
        {"\xc3\xa9\xc3", L"\u00e9\uFFFD"},                     // good then cut
        {std::string("a\0b", 3), std::wstring(L"a\0b", 3)},    // embedded NUL kept
    };
    for (const Case &c : cases)
    {
        const CString s = CString::FromUtf8(c.bytes.data(), static_cast<int>(c.bytes.size()));
        EXPECT_EQ(c.expected, W(s));
    }
}

TEST(CStringUtf8, UnencodableWideCharactersBecomeReplacementAndNullArgumentsAreSafe)
{
    const wchar_t loneHigh[] = {L'a', static_cast<wchar_t>(0xD800), L'b', 0};
    const wchar_t pair[] = {static_cast<wchar_t>(0xD83C), static_cast<wchar_t>(0xDFB5), 0};
    const wchar_t beyond[] = {static_cast<wchar_t>(0x110000), static_cast<wchar_t>(-1), 0};
    EXPECT_EQ("a\xef\xbf\xbd" "b", CString(loneHigh).ToUtf8());
    EXPECT_EQ("\xf0\x9f\x8e\xb5", CString(pair).ToUtf8()) << "a UTF-16 pair joins into one character";
    EXPECT_EQ("\xef\xbf\xbd\xef\xbf\xbd", CString(beyond).ToUtf8());

    EXPECT_TRUE(CString::FromUtf8(static_cast<const char *>(nullptr)).IsEmpty());
    EXPECT_TRUE(CString(static_cast<const char *>(nullptr)).IsEmpty());
    EXPECT_TRUE(CStringA(static_cast<const wchar_t *>(nullptr)).IsEmpty());
    EXPECT_EQ(L"ab", W(CString::FromUtf8("abcdef", 2)));
    EXPECT_EQ(L"\u00e9", W(CString("\xc3\xa9xyz", 2)));
    EXPECT_THROW(CString("abc", -2), CInvalidArgException);
}

} // namespace
