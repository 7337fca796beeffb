#include <scoremodel/platform/CString.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <cwctype>
#include <locale.h>
#include <wctype.h>

namespace
{

constexpr char32_t kReplacement = 0xFFFD;

// Widths and precisions beyond this are a caller's mistake, not a layout.
constexpr int kMaxFormatWidth = 1000000;

// ---- UTF-8 ----------------------------------------------------------------

// Decodes strictly: overlong forms, surrogates and values past U+10FFFF are
// invalid, and each maximal invalid subpart becomes one U+FFFD, so a damaged
// byte costs one character and never the rest of the text.
void DecodeUtf8(std::wstring &out, const char *s, size_t n)
{
    out.reserve(out.size() + n);
    size_t i = 0;
    while (i < n)
    {
        const unsigned char b = static_cast<unsigned char>(s[i]);
        if (b < 0x80)
        {
            out.push_back(static_cast<wchar_t>(b));
            ++i;
            continue;
        }
        int need;
        char32_t cp;
        unsigned char lo = 0x80, hi = 0xBF;
        if (b >= 0xC2 && b <= 0xDF)
        {
            need = 1;
            cp = b & 0x1F;
        }
        else if (b >= 0xE0 && b <= 0xEF)
        {
            need = 2;
            cp = b & 0x0F;
            if (b == 0xE0)
                lo = 0xA0; // overlong below U+0800
            else if (b == 0xED)
                hi = 0x9F; // surrogates
        }
        else if (b >= 0xF0 && b <= 0xF4)
        {
            need = 3;
            cp = b & 0x07;
            if (b == 0xF0)
                lo = 0x90; // overlong below U+10000
            else if (b == 0xF4)
                hi = 0x8F; // past U+10FFFF
        }
        else
        {
            out.push_back(static_cast<wchar_t>(kReplacement));
            ++i;
            continue;
        }
        ++i;
        bool ok = true;
        for (int k = 0; k < need; ++k)
        {
            if (i >= n)
            {
                ok = false;
                break;
            }
            const unsigned char c = static_cast<unsigned char>(s[i]);
            if (c < lo || c > hi)
            {
                ok = false;
                break;
            }
            cp = (cp << 6) | (c & 0x3F);
            lo = 0x80;
            hi = 0xBF;
            ++i;
        }
        out.push_back(static_cast<wchar_t>(ok ? cp : kReplacement));
    }
}

void AppendUtf8(std::string &out, char32_t cp)
{
    if (cp < 0x80)
        out.push_back(static_cast<char>(cp));
    else if (cp < 0x800)
    {
        out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    }
    else if (cp < 0x10000)
    {
        out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    }
    else
    {
        out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    }
}

// Joins a UTF-16 surrogate pair if one slipped into the wide text (text read
// from a UTF-16 source without conversion); anything else unencodable becomes
// U+FFFD.
void EncodeUtf8(std::string &out, const wchar_t *s, size_t n)
{
    out.reserve(out.size() + n);
    for (size_t i = 0; i < n; ++i)
    {
        char32_t cp = static_cast<char32_t>(static_cast<std::uint32_t>(s[i]));
        if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < n)
        {
            const char32_t low = static_cast<char32_t>(static_cast<std::uint32_t>(s[i + 1]));
            if (low >= 0xDC00 && low <= 0xDFFF)
            {
                cp = 0x10000 + ((cp - 0xD800) << 10) + (low - 0xDC00);
                ++i;
            }
        }
        if ((cp >= 0xD800 && cp <= 0xDFFF) || cp > 0x10FFFF)
            cp = kReplacement;
        AppendUtf8(out, cp);
    }
}

// ---- Character classes ------------------------------------------------------

// Case mapping of the whole of Unicode, as the C library knows it, under a
// locale that is the same on every machine (C.UTF-8, built into the C
// library), so that the host's locale never changes how names compare. Made
// once and kept for the life of the process.
locale_t CaseLocale()
{
    static const locale_t s_locale = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", static_cast<locale_t>(0));
    return s_locale;
}

wchar_t LowerW(wchar_t c)
{
    if (c < 0x80)
        return (c >= L'A' && c <= L'Z') ? static_cast<wchar_t>(c + 32) : c;
    const locale_t locale = CaseLocale();
    return locale ? static_cast<wchar_t>(::towlower_l(static_cast<wint_t>(c), locale)) : c;
}

wchar_t UpperW(wchar_t c)
{
    if (c < 0x80)
        return (c >= L'a' && c <= L'z') ? static_cast<wchar_t>(c - 32) : c;
    const locale_t locale = CaseLocale();
    return locale ? static_cast<wchar_t>(::towupper_l(static_cast<wint_t>(c), locale)) : c;
}

char LowerA(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c + 32) : c; }
char UpperA(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 32) : c; }

wchar_t Lower(wchar_t c) { return LowerW(c); }
char Lower(char c) { return LowerA(c); }
wchar_t Upper(wchar_t c) { return UpperW(c); }
char Upper(char c) { return UpperA(c); }

bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool IsSpace(wchar_t c)
{
    if (c < 0x80)
        return c == L' ' || (c >= L'\t' && c <= L'\r');
    return c == 0x85 || c == 0xA0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200A) || c == 0x2028 ||
           c == 0x2029 || c == 0x202F || c == 0x205F || c == 0x3000;
}

template <typename X>
size_t Length(const X *p)
{
    return p ? std::char_traits<X>::length(p) : 0;
}

template <typename X>
bool InSet(X c, std::basic_string_view<X> set)
{
    return set.find(c) != std::basic_string_view<X>::npos;
}

// Ordinal order of a character as an unsigned value, so bytes >= 0x80 sort
// after ASCII.
inline std::uint32_t Ord(char c) { return static_cast<unsigned char>(c); }
inline std::uint32_t Ord(wchar_t c) { return static_cast<std::uint32_t>(c); }

template <typename X, typename Fold>
int CompareWith(std::basic_string_view<X> a, std::basic_string_view<X> b, Fold fold)
{
    const size_t n = std::min(a.size(), b.size());
    for (size_t i = 0; i < n; ++i)
    {
        const std::uint32_t ca = Ord(fold(a[i])), cb = Ord(fold(b[i]));
        if (ca != cb)
            return ca < cb ? -1 : 1;
    }
    if (a.size() == b.size())
        return 0;
    return a.size() < b.size() ? -1 : 1;
}

// ---- Width conversion ---------------------------------------------------------

void Convert(std::wstring &out, const char *s, size_t n) { DecodeUtf8(out, s, n); }
void Convert(std::string &out, const wchar_t *s, size_t n) { EncodeUtf8(out, s, n); }
void Convert(std::string &out, const char *s, size_t n) { out.append(s, n); }
void Convert(std::wstring &out, const wchar_t *s, size_t n) { out.append(s, n); }

// ---- Formatting ---------------------------------------------------------------

enum class LengthMod
{
    none,
    hh,
    h,
    l,
    ll,
    bigL,
    size, // z, t, I: pointer-sized
    i64,
    i32,
    w
};

template <typename X>
void AppendAscii(std::basic_string<X> &out, const char *s, size_t n)
{
    for (size_t i = 0; i < n; ++i)
        out.push_back(static_cast<X>(static_cast<unsigned char>(s[i])));
}

template <typename X>
void AppendPadded(std::basic_string<X> &out, std::basic_string_view<X> body, int width, bool left)
{
    const size_t pad = (width > 0 && static_cast<size_t>(width) > body.size())
                           ? static_cast<size_t>(width) - body.size()
                           : 0;
    if (!left)
        out.append(pad, static_cast<X>(' '));
    out.append(body);
    if (left)
        out.append(pad, static_cast<X>(' '));
}

// Numbers are ASCII, so the C library formats them in a narrow buffer with a
// spec we rebuild ourselves; this keeps the wide path free of the locale's
// multibyte conversion.
template <typename X, typename T>
void AppendNumber(std::basic_string<X> &out, const std::string &flags, int width, int precision,
                  const char *lengthAndConv, T value)
{
    std::string spec = "%" + flags;
    if (width >= 0)
        spec += std::to_string(width);
    if (precision >= 0)
        spec += "." + std::to_string(precision);
    spec += lengthAndConv;
    char small[128];
    const int n = std::snprintf(small, sizeof small, spec.c_str(), value);
    if (n < 0)
        throw CInvalidArgException("Format: the C library refused a conversion");
    if (static_cast<size_t>(n) < sizeof small)
    {
        AppendAscii(out, small, static_cast<size_t>(n));
        return;
    }
    std::string big(static_cast<size_t>(n) + 1, '\0');
    std::snprintf(big.data(), big.size(), spec.c_str(), value);
    AppendAscii(out, big.data(), static_cast<size_t>(n));
}

template <typename X>
int ParseNumber(const X *&p)
{
    long long v = 0;
    while (*p >= '0' && *p <= '9')
    {
        v = v * 10 + (*p - '0');
        if (v > kMaxFormatWidth)
            throw CInvalidArgException("Format: width or precision too large");
        ++p;
    }
    return static_cast<int>(v);
}

template <typename X>
void AppendText(std::basic_string<X> &out, const char *s, int precision, int width, bool left)
{
    std::basic_string<X> body;
    if (!s)
        s = "(null)";
    if constexpr (std::is_same_v<X, char>)
    {
        const size_t n = precision >= 0 ? strnlen(s, static_cast<size_t>(precision)) : std::strlen(s);
        body.assign(s, n);
    }
    else
    {
        Convert(body, s, std::strlen(s));
        if (precision >= 0 && body.size() > static_cast<size_t>(precision))
            body.resize(static_cast<size_t>(precision));
    }
    AppendPadded<X>(out, body, width, left);
}

template <typename X>
void AppendText(std::basic_string<X> &out, const wchar_t *s, int precision, int width, bool left)
{
    std::basic_string<X> body;
    if (!s)
        s = L"(null)";
    size_t n = 0;
    // Bounded scan: with a precision the text need not be terminated.
    while ((precision < 0 || n < static_cast<size_t>(precision)) && s[n] != 0)
        ++n;
    Convert(body, s, n);
    AppendPadded<X>(out, body, width, left);
}

// ---- Argument sources ---------------------------------------------------------------
//
// The engine asks a source for each argument by what the conversion needs.
// VaSource reads a C va_list blindly, as printf does; ArgSource reads the
// typed list that Format builds, so it knows the real type and width of each
// argument and refuses a mismatch instead of reading garbage.

struct IntValue
{
    ULONGLONG bits;
    int bytes; // significant width; the engine sign- or zero-extends from it
};

struct FloatValue
{
    bool isLong;
    double d;
    long double ld;
};

struct TextValue
{
    const char *narrow;
    const wchar_t *wide;
    bool isWide;
};

struct CharValue
{
    char32_t code;
    bool isWide;
};

class VaSource
{
public:
    explicit VaSource(va_list src) { va_copy(m_ap, src); }
    ~VaSource() { va_end(m_ap); }
    VaSource(const VaSource &) = delete;
    VaSource &operator=(const VaSource &) = delete;

    int Int() { return va_arg(m_ap, int); }

    IntValue Integer(LengthMod len)
    {
        switch (len)
        {
        case LengthMod::hh: return {va_arg(m_ap, unsigned), 1};
        case LengthMod::h: return {va_arg(m_ap, unsigned), 2};
        case LengthMod::ll:
        case LengthMod::i64: return {va_arg(m_ap, unsigned long long), 8};
        case LengthMod::size: return {va_arg(m_ap, std::uintptr_t), static_cast<int>(sizeof(std::uintptr_t))};
        default: return {va_arg(m_ap, unsigned), 4}; // %ld is 32 bits, as long is on the platform
        }
    }

    FloatValue Float(bool isLong)
    {
        if (isLong)
            return {true, 0.0, va_arg(m_ap, long double)};
        return {false, va_arg(m_ap, double), 0.0L};
    }

    CharValue Char(bool wantWide)
    {
        const int v = va_arg(m_ap, int);
        if (wantWide)
            return {static_cast<char32_t>(static_cast<std::uint32_t>(v)), true};
        return {static_cast<unsigned char>(v), false};
    }

    TextValue Text(bool wantWide)
    {
        if (wantWide)
            return {nullptr, va_arg(m_ap, const wchar_t *), true};
        return {va_arg(m_ap, const char *), nullptr, false};
    }

    ULONGLONG Pointer() { return reinterpret_cast<std::uintptr_t>(va_arg(m_ap, void *)); }

    void Skip() { (void)va_arg(m_ap, void *); }

private:
    va_list m_ap;
};

class ArgSource
{
public:
    ArgSource(const CStringFormatArg *args, size_t count) : m_args(args), m_count(count) {}

    int Int()
    {
        const CStringFormatArg &a = Next("a width or precision");
        if (!IsInteger(a))
            Mismatch("an integer width or precision");
        return static_cast<int>(static_cast<LONGLONG>(a.bits));
    }

    IntValue Integer(LengthMod len)
    {
        const CStringFormatArg &a = Next("an integer");
        if (a.kind == CStringFormatArg::pointer)
            return {a.bits, 8};
        if (!IsInteger(a))
            Mismatch("an integer");
        // The modifier narrows (h, hh, none) but never reads past the
        // argument's own width; %ld takes a long at whatever width it has.
        int modBytes;
        switch (len)
        {
        case LengthMod::hh: modBytes = 1; break;
        case LengthMod::h: modBytes = 2; break;
        case LengthMod::l: modBytes = 8; break;
        case LengthMod::ll:
        case LengthMod::i64:
        case LengthMod::size: modBytes = 8; break;
        default: modBytes = 4; break;
        }
        return {a.bits, std::min<int>(modBytes, a.bytes)};
    }

    FloatValue Float(bool isLong)
    {
        const CStringFormatArg &a = Next("a number");
        long double v;
        switch (a.kind)
        {
        case CStringFormatArg::floating: v = a.d; break;
        case CStringFormatArg::longFloating: v = *a.ld; break;
        case CStringFormatArg::integer: v = static_cast<long double>(static_cast<LONGLONG>(a.bits)); break;
        case CStringFormatArg::unsignedInteger: v = static_cast<long double>(a.bits); break;
        default: Mismatch("a number");
        }
        if (isLong)
            return {true, 0.0, v};
        return {false, static_cast<double>(v), 0.0L};
    }

    CharValue Char(bool wantWide)
    {
        const CStringFormatArg &a = Next("a character");
        if (!IsInteger(a))
            Mismatch("a character");
        // A char argument is a byte whatever the conversion says.
        if (a.bytes == 1 || !wantWide)
            return {static_cast<unsigned char>(a.bits), false};
        return {static_cast<char32_t>(static_cast<std::uint32_t>(a.bits)), true};
    }

    TextValue Text(bool)
    {
        // The argument's own width wins over %s and %S: a narrow string given
        // to a wide %s is still read as UTF-8.
        const CStringFormatArg &a = Next("a string");
        switch (a.kind)
        {
        case CStringFormatArg::narrowText: return {a.narrow, nullptr, false};
        case CStringFormatArg::wideText: return {nullptr, a.wide, true};
        case CStringFormatArg::pointer:
        case CStringFormatArg::integer:
        case CStringFormatArg::unsignedInteger:
            if (a.bits == 0) // NULL in any of its spellings
                return {nullptr, nullptr, true};
            break;
        default: break;
        }
        Mismatch("a string");
    }

    ULONGLONG Pointer()
    {
        const CStringFormatArg &a = Next("a pointer");
        switch (a.kind)
        {
        case CStringFormatArg::narrowText: return reinterpret_cast<std::uintptr_t>(a.narrow);
        case CStringFormatArg::wideText: return reinterpret_cast<std::uintptr_t>(a.wide);
        case CStringFormatArg::pointer:
        case CStringFormatArg::integer:
        case CStringFormatArg::unsignedInteger: return a.bits;
        default: Mismatch("a pointer");
        }
    }

    void Skip() { (void)Next("an argument"); }

private:
    static bool IsInteger(const CStringFormatArg &a)
    {
        return a.kind == CStringFormatArg::integer || a.kind == CStringFormatArg::unsignedInteger;
    }

    const CStringFormatArg &Next(const char *what)
    {
        if (m_index >= m_count)
            throw CInvalidArgException(std::string("Format: missing argument ") + std::to_string(m_index + 1) +
                                       ", " + what + " was expected");
        return m_args[m_index++];
    }

    [[noreturn]] void Mismatch(const char *what) const
    {
        throw CInvalidArgException(std::string("Format: argument ") + std::to_string(m_index) + " is not " + what);
    }

    const CStringFormatArg *m_args;
    size_t m_count;
    size_t m_index = 0;
};

LONGLONG SignExtend(ULONGLONG bits, int bytes)
{
    if (bytes >= 8)
        return static_cast<LONGLONG>(bits);
    const int shift = 64 - 8 * bytes;
    return static_cast<LONGLONG>(bits << shift) >> shift;
}

ULONGLONG ZeroExtend(ULONGLONG bits, int bytes)
{
    return bytes >= 8 ? bits : bits & ((1ULL << (8 * bytes)) - 1);
}

template <typename X, typename Source>
void FormatInto(std::basic_string<X> &out, const X *fmt, Source &src)
{
    if (!fmt)
        throw CInvalidArgException("Format: null format string");
    constexpr bool wideDest = std::is_same_v<X, wchar_t>;

    const X *p = fmt;
    while (*p)
    {
        if (*p != '%')
        {
            const X *q = p;
            while (*q && *q != '%')
                ++q;
            out.append(p, q);
            p = q;
            continue;
        }
        const X *specStart = p;
        ++p;
        if (*p == '%')
        {
            out.push_back(static_cast<X>('%'));
            ++p;
            continue;
        }

        std::string flags;
        bool left = false;
        while (*p == '-' || *p == '+' || *p == ' ' || *p == '#' || *p == '0')
        {
            if (*p == '-')
                left = true;
            flags.push_back(static_cast<char>(*p));
            ++p;
        }
        int width = -1;
        if (*p == '*')
        {
            long long w = src.Int();
            if (w < 0)
            {
                left = true;
                flags.push_back('-');
                w = -w;
            }
            if (w > kMaxFormatWidth)
                throw CInvalidArgException("Format: width too large");
            width = static_cast<int>(w);
            ++p;
        }
        else if (*p >= '0' && *p <= '9')
            width = ParseNumber(p);
        int precision = -1;
        if (*p == '.')
        {
            ++p;
            if (*p == '*')
            {
                const int v = src.Int();
                if (v > kMaxFormatWidth)
                    throw CInvalidArgException("Format: precision too large");
                precision = v < 0 ? -1 : v;
                ++p;
            }
            else
                precision = ParseNumber(p);
        }

        LengthMod len = LengthMod::none;
        switch (*p)
        {
        case 'h':
            ++p;
            if (*p == 'h')
            {
                ++p;
                len = LengthMod::hh;
            }
            else
                len = LengthMod::h;
            break;
        case 'l':
            ++p;
            if (*p == 'l')
            {
                ++p;
                len = LengthMod::ll;
            }
            else
                len = LengthMod::l;
            break;
        case 'L':
            ++p;
            len = LengthMod::bigL;
            break;
        case 'q':
        case 'j':
            ++p;
            len = LengthMod::ll;
            break;
        case 'z':
        case 't':
            ++p;
            len = LengthMod::size;
            break;
        case 'w':
            ++p;
            len = LengthMod::w;
            break;
        case 'I':
            if (p[1] == '6' && p[2] == '4')
            {
                p += 3;
                len = LengthMod::i64;
            }
            else if (p[1] == '3' && p[2] == '2')
            {
                p += 3;
                len = LengthMod::i32;
            }
            else
            {
                ++p;
                len = LengthMod::size;
            }
            break;
        default:
            break;
        }

        const X conv = *p;
        if (conv == 0)
        {
            // A spec cut off by the end of the format is shown as written.
            out.append(specStart, p);
            break;
        }
        ++p;

        const bool forceNarrow = len == LengthMod::h || len == LengthMod::hh;
        const bool forceWide = len == LengthMod::l || len == LengthMod::w;
        // In a wide string %s and %c are wide and %S and %C narrow; in a
        // narrow string the reverse. h and l/w override.
        auto wantsWide = [&](X lower) {
            if (forceNarrow)
                return false;
            if (forceWide)
                return true;
            return (conv == lower) == wideDest;
        };
        switch (conv)
        {
        case 'd':
        case 'i':
        {
            const IntValue v = src.Integer(len);
            AppendNumber(out, flags, width, precision, "lld", SignExtend(v.bits, v.bytes));
            break;
        }
        case 'u':
        case 'x':
        case 'X':
        case 'o':
        {
            const IntValue v = src.Integer(len);
            const char lc[] = {'l', 'l', static_cast<char>(conv), '\0'};
            AppendNumber(out, flags, width, precision, lc, ZeroExtend(v.bits, v.bytes));
            break;
        }
        case 'f':
        case 'F':
        case 'e':
        case 'E':
        case 'g':
        case 'G':
        case 'a':
        case 'A':
        {
            const FloatValue v = src.Float(len == LengthMod::bigL);
            if (v.isLong)
            {
                const char lc[] = {'L', static_cast<char>(conv), '\0'};
                AppendNumber(out, flags, width, precision, lc, v.ld);
            }
            else
            {
                const char lc[] = {static_cast<char>(conv), '\0'};
                AppendNumber(out, flags, width, precision, lc, v.d);
            }
            break;
        }
        case 'p':
        {
            // The platform shows a pointer as its full width of upper-case hex.
            std::basic_string<X> digits;
            AppendNumber(digits, "0", static_cast<int>(sizeof(void *) * 2), -1, "llX",
                         static_cast<unsigned long long>(src.Pointer()));
            AppendPadded<X>(out, digits, width, left);
            break;
        }
        case 'c':
        case 'C':
        {
            const CharValue v = src.Char(wantsWide('c'));
            std::basic_string<X> body;
            if (v.isWide)
            {
                const wchar_t ch = static_cast<wchar_t>(v.code);
                Convert(body, &ch, 1);
            }
            else
            {
                const char ch = static_cast<char>(v.code);
                Convert(body, &ch, 1);
            }
            AppendPadded<X>(out, body, width, left);
            break;
        }
        case 's':
        case 'S':
        {
            const TextValue v = src.Text(wantsWide('s'));
            if (v.isWide)
                AppendText(out, v.wide, precision, width, left);
            else
                AppendText(out, v.narrow, precision, width, left);
            break;
        }
        case 'n':
            // Writing through an argument is a classic exploit; ignore it.
            src.Skip();
            break;
        default:
            // Unknown conversion: show it as written; no argument is consumed.
            out.append(specStart, p);
            break;
        }
    }
}

} // namespace

// ---- CStringT -------------------------------------------------------------------

template <typename XCHAR>
void CStringT<XCHAR>::ThrowIndex()
{
    throw CInvalidArgException("CString: character index out of range");
}

template <typename XCHAR>
CStringT<XCHAR>::CStringT(PCXSTR psz, int nLength)
{
    if (nLength < 0 || (!psz && nLength > 0))
        throw CInvalidArgException("CString: bad pointer or length");
    if (nLength > 0)
        m_str.assign(psz, static_cast<size_t>(nLength));
}

template <typename XCHAR>
CStringT<XCHAR>::CStringT(PCYSTR psz)
{
    if (psz)
        Convert(m_str, psz, Length(psz));
}

template <typename XCHAR>
CStringT<XCHAR>::CStringT(PCYSTR psz, int nLength)
{
    if (nLength < 0 || (!psz && nLength > 0))
        throw CInvalidArgException("CString: bad pointer or length");
    if (nLength > 0)
        Convert(m_str, psz, static_cast<size_t>(nLength));
}

template <typename XCHAR>
CStringT<XCHAR>::CStringT(const CStringT<YCHAR> &other)
{
    Convert(m_str, other.GetString(), static_cast<size_t>(other.GetLength()));
}

template <typename XCHAR>
std::string CStringT<XCHAR>::ToUtf8() const
{
    std::string out;
    Convert(out, m_str.data(), m_str.size());
    return out;
}

template <typename XCHAR>
CStringT<XCHAR> CStringT<XCHAR>::FromUtf8(const char *psz, int nLength)
{
    CStringT r;
    if (!psz)
        return r;
    const size_t n = nLength < 0 ? std::strlen(psz) : static_cast<size_t>(nLength);
    Convert(r.m_str, psz, n);
    return r;
}

template <typename XCHAR>
XCHAR CStringT<XCHAR>::GetAt(int iChar) const
{
    return (*this)[iChar];
}

template <typename XCHAR>
void CStringT<XCHAR>::SetAt(int iChar, XCHAR ch)
{
    if (iChar < 0 || iChar >= GetLength())
        ThrowIndex();
    m_str[static_cast<size_t>(iChar)] = ch;
}

template <typename XCHAR>
void CStringT<XCHAR>::Truncate(int nNewLength)
{
    if (nNewLength < 0 || nNewLength > GetLength())
        throw CInvalidArgException("CString: Truncate beyond the length");
    m_str.resize(static_cast<size_t>(nNewLength));
}

template <typename XCHAR>
typename CStringT<XCHAR>::PXSTR CStringT<XCHAR>::GetBuffer(int nMinBufferLength)
{
    if (nMinBufferLength > GetLength())
        m_str.resize(static_cast<size_t>(nMinBufferLength));
    return m_str.data();
}

template <typename XCHAR>
typename CStringT<XCHAR>::PXSTR CStringT<XCHAR>::GetBufferSetLength(int nLength)
{
    if (nLength < 0)
        throw CInvalidArgException("CString: negative buffer length");
    m_str.resize(static_cast<size_t>(nLength));
    return m_str.data();
}

template <typename XCHAR>
void CStringT<XCHAR>::ReleaseBuffer(int nNewLength)
{
    size_t n;
    if (nNewLength < 0)
    {
        n = m_str.find(XCHAR(0));
        if (n == StringType::npos)
            n = m_str.size();
    }
    else
        n = std::min(static_cast<size_t>(nNewLength), m_str.size());
    m_str.resize(n);
}

template <typename XCHAR>
int CStringT<XCHAR>::Compare(PCXSTR psz) const
{
    return CompareWith<XCHAR>(m_str, std::basic_string_view<XCHAR>(psz ? psz : m_str.data() + m_str.size()),
                              [](XCHAR c) { return c; });
}

template <typename XCHAR>
int CStringT<XCHAR>::Compare(const CStringT &s) const
{
    return CompareWith<XCHAR>(m_str, s.m_str, [](XCHAR c) { return c; });
}

template <typename XCHAR>
int CStringT<XCHAR>::CompareNoCase(PCXSTR psz) const
{
    return CompareWith<XCHAR>(m_str, std::basic_string_view<XCHAR>(psz ? psz : m_str.data() + m_str.size()),
                              [](XCHAR c) { return Lower(c); });
}

template <typename XCHAR>
int CStringT<XCHAR>::CompareNoCase(const CStringT &s) const
{
    return CompareWith<XCHAR>(m_str, s.m_str, [](XCHAR c) { return Lower(c); });
}

template <typename XCHAR>
int CStringT<XCHAR>::Find(XCHAR ch, int iStart) const
{
    if (iStart < 0)
        iStart = 0;
    if (iStart > GetLength())
        return -1;
    const size_t at = m_str.find(ch, static_cast<size_t>(iStart));
    return at == StringType::npos ? -1 : static_cast<int>(at);
}

template <typename XCHAR>
int CStringT<XCHAR>::Find(PCXSTR pszSub, int iStart) const
{
    if (iStart < 0)
        iStart = 0;
    if (iStart > GetLength())
        return -1;
    const size_t at = m_str.find(std::basic_string_view<XCHAR>(pszSub ? pszSub : m_str.data() + m_str.size()),
                                 static_cast<size_t>(iStart));
    return at == StringType::npos ? -1 : static_cast<int>(at);
}

template <typename XCHAR>
int CStringT<XCHAR>::ReverseFind(XCHAR ch) const
{
    const size_t at = m_str.rfind(ch);
    return at == StringType::npos ? -1 : static_cast<int>(at);
}

template <typename XCHAR>
int CStringT<XCHAR>::FindOneOf(PCXSTR pszCharSet) const
{
    if (!pszCharSet || !*pszCharSet)
        return -1;
    const size_t at = m_str.find_first_of(pszCharSet);
    return at == StringType::npos ? -1 : static_cast<int>(at);
}

template <typename XCHAR>
CStringT<XCHAR> CStringT<XCHAR>::Mid(int iFirst) const
{
    return Mid(iFirst, GetLength());
}

template <typename XCHAR>
CStringT<XCHAR> CStringT<XCHAR>::Mid(int iFirst, int nCount) const
{
    const int len = GetLength();
    if (iFirst < 0)
        iFirst = 0;
    if (nCount < 0 || iFirst >= len)
        return CStringT();
    if (nCount > len - iFirst)
        nCount = len - iFirst;
    return CStringT(m_str.substr(static_cast<size_t>(iFirst), static_cast<size_t>(nCount)));
}

template <typename XCHAR>
CStringT<XCHAR> CStringT<XCHAR>::Left(int nCount) const
{
    return Mid(0, nCount);
}

template <typename XCHAR>
CStringT<XCHAR> CStringT<XCHAR>::Right(int nCount) const
{
    const int len = GetLength();
    if (nCount < 0)
        nCount = 0;
    if (nCount > len)
        nCount = len;
    return Mid(len - nCount, nCount);
}

template <typename XCHAR>
CStringT<XCHAR> CStringT<XCHAR>::SpanIncluding(PCXSTR pszCharSet) const
{
    if (!pszCharSet)
        return CStringT();
    const size_t n = m_str.find_first_not_of(pszCharSet);
    return n == StringType::npos ? *this : Left(static_cast<int>(n));
}

template <typename XCHAR>
CStringT<XCHAR> CStringT<XCHAR>::SpanExcluding(PCXSTR pszCharSet) const
{
    if (!pszCharSet || !*pszCharSet)
        return *this;
    const size_t n = m_str.find_first_of(pszCharSet);
    return n == StringType::npos ? *this : Left(static_cast<int>(n));
}

template <typename XCHAR>
CStringT<XCHAR> CStringT<XCHAR>::Tokenize(PCXSTR pszTokens, int &iStart) const
{
    const int len = GetLength();
    if (iStart < 0 || iStart >= len)
    {
        iStart = -1;
        return CStringT();
    }
    if (!pszTokens || !*pszTokens)
    {
        // No delimiters: the rest is one token, and the next call ends.
        CStringT rest = Mid(iStart);
        iStart = len + 1;
        return rest;
    }
    const size_t from = m_str.find_first_not_of(pszTokens, static_cast<size_t>(iStart));
    if (from == StringType::npos)
    {
        iStart = -1;
        return CStringT();
    }
    size_t to = m_str.find_first_of(pszTokens, from);
    if (to == StringType::npos)
        to = m_str.size();
    iStart = static_cast<int>(to) + 1;
    return CStringT(m_str.substr(from, to - from));
}

template <typename XCHAR>
CStringT<XCHAR> &CStringT<XCHAR>::MakeLower()
{
    for (XCHAR &c : m_str)
        c = Lower(c);
    return *this;
}

template <typename XCHAR>
CStringT<XCHAR> &CStringT<XCHAR>::MakeUpper()
{
    for (XCHAR &c : m_str)
        c = Upper(c);
    return *this;
}

template <typename XCHAR>
CStringT<XCHAR> &CStringT<XCHAR>::MakeReverse()
{
    std::reverse(m_str.begin(), m_str.end());
    return *this;
}

template <typename XCHAR>
int CStringT<XCHAR>::Remove(XCHAR ch)
{
    const size_t before = m_str.size();
    m_str.erase(std::remove(m_str.begin(), m_str.end(), ch), m_str.end());
    return static_cast<int>(before - m_str.size());
}

template <typename XCHAR>
int CStringT<XCHAR>::Replace(XCHAR chOld, XCHAR chNew)
{
    int count = 0;
    for (XCHAR &c : m_str)
        if (c == chOld)
        {
            c = chNew;
            ++count;
        }
    return count;
}

template <typename XCHAR>
int CStringT<XCHAR>::Replace(PCXSTR pszOld, PCXSTR pszNew)
{
    const std::basic_string_view<XCHAR> from(pszOld ? pszOld : m_str.data() + m_str.size());
    const std::basic_string_view<XCHAR> to(pszNew ? pszNew : m_str.data() + m_str.size());
    if (from.empty())
        return 0;
    StringType out;
    int count = 0;
    size_t pos = 0;
    for (;;)
    {
        const size_t at = m_str.find(from, pos);
        if (at == StringType::npos)
            break;
        out.append(m_str, pos, at - pos);
        out.append(to);
        pos = at + from.size();
        ++count;
    }
    if (count == 0)
        return 0;
    out.append(m_str, pos, StringType::npos);
    m_str = std::move(out);
    return count;
}

template <typename XCHAR>
int CStringT<XCHAR>::Insert(int iIndex, XCHAR ch)
{
    iIndex = std::clamp(iIndex, 0, GetLength());
    m_str.insert(m_str.begin() + iIndex, ch);
    return GetLength();
}

template <typename XCHAR>
int CStringT<XCHAR>::Insert(int iIndex, PCXSTR psz)
{
    iIndex = std::clamp(iIndex, 0, GetLength());
    if (psz)
    {
        // psz may point into this string; copy before inserting.
        const StringType piece(psz);
        m_str.insert(static_cast<size_t>(iIndex), piece);
    }
    return GetLength();
}

template <typename XCHAR>
int CStringT<XCHAR>::Delete(int iIndex, int nCount)
{
    const int len = GetLength();
    if (iIndex < 0)
        iIndex = 0;
    if (nCount > 0 && iIndex < len)
        m_str.erase(static_cast<size_t>(iIndex), static_cast<size_t>(std::min(nCount, len - iIndex)));
    return GetLength();
}

template <typename XCHAR>
CStringT<XCHAR> &CStringT<XCHAR>::TrimLeft()
{
    size_t i = 0;
    while (i < m_str.size() && IsSpace(m_str[i]))
        ++i;
    m_str.erase(0, i);
    return *this;
}

template <typename XCHAR>
CStringT<XCHAR> &CStringT<XCHAR>::TrimRight()
{
    size_t n = m_str.size();
    while (n > 0 && IsSpace(m_str[n - 1]))
        --n;
    m_str.resize(n);
    return *this;
}

template <typename XCHAR>
CStringT<XCHAR> &CStringT<XCHAR>::TrimLeft(XCHAR chTarget)
{
    const size_t i = m_str.find_first_not_of(chTarget);
    m_str.erase(0, i == StringType::npos ? m_str.size() : i);
    return *this;
}

template <typename XCHAR>
CStringT<XCHAR> &CStringT<XCHAR>::TrimRight(XCHAR chTarget)
{
    const size_t i = m_str.find_last_not_of(chTarget);
    m_str.resize(i == StringType::npos ? 0 : i + 1);
    return *this;
}

template <typename XCHAR>
CStringT<XCHAR> &CStringT<XCHAR>::TrimLeft(PCXSTR pszTargets)
{
    if (!pszTargets || !*pszTargets)
        return *this;
    const size_t i = m_str.find_first_not_of(pszTargets);
    m_str.erase(0, i == StringType::npos ? m_str.size() : i);
    return *this;
}

template <typename XCHAR>
CStringT<XCHAR> &CStringT<XCHAR>::TrimRight(PCXSTR pszTargets)
{
    if (!pszTargets || !*pszTargets)
        return *this;
    const size_t i = m_str.find_last_not_of(pszTargets);
    m_str.resize(i == StringType::npos ? 0 : i + 1);
    return *this;
}

template <typename XCHAR>
CStringT<XCHAR> &CStringT<XCHAR>::Trim()
{
    return TrimRight().TrimLeft();
}

template <typename XCHAR>
CStringT<XCHAR> &CStringT<XCHAR>::Trim(XCHAR chTarget)
{
    return TrimRight(chTarget).TrimLeft(chTarget);
}

template <typename XCHAR>
CStringT<XCHAR> &CStringT<XCHAR>::Trim(PCXSTR pszTargets)
{
    return TrimRight(pszTargets).TrimLeft(pszTargets);
}

template <typename XCHAR>
void CStringT<XCHAR>::FormatV(PCXSTR pszFormat, va_list args)
{
    // Built aside: the format or an argument may point into this string.
    StringType out;
    VaSource src(args);
    FormatInto(out, pszFormat, src);
    m_str = std::move(out);
}

template <typename XCHAR>
void CStringT<XCHAR>::AppendFormatV(PCXSTR pszFormat, va_list args)
{
    StringType out;
    VaSource src(args);
    FormatInto(out, pszFormat, src);
    m_str += out;
}

template <typename XCHAR>
void CStringT<XCHAR>::FormatArgs(PCXSTR pszFormat, const CStringFormatArg *args, size_t count, bool append)
{
    StringType out;
    ArgSource src(args, count);
    FormatInto(out, pszFormat, src);
    if (append)
        m_str += out;
    else
        m_str = std::move(out);
}

template class CStringT<char>;
template class CStringT<wchar_t>;
