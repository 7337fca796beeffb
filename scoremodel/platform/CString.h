// The platform's string classes: `CString` (wide, wchar_t) and `CStringA`
// (narrow, char, holding UTF-8).
//
// Both are one template, `CStringT<XCHAR>`, over a std::basic_string. They are
// values: copying is a deep copy, and a string is safe to read from several
// threads at once but not to change while another thread reads it.
//
// Conversion between the widths always goes through UTF-8, whatever the
// process locale: `CString(const char *)` decodes, `CStringA(const wchar_t *)`
// encodes. Invalid UTF-8 decodes to U+FFFD; an unpaired surrogate or a value
// beyond U+10FFFF encodes as U+FFFD. wchar_t is 32 bits here, so a wide
// string holds code points; a surrogate pair that slips in is joined when
// encoding.
//
// Indexes and counts are `int`, as on the platform. Out-of-range arguments to
// the substring functions clamp (a negative count is 0, a count past the end
// is the rest); only character access out of range throws
// CInvalidArgException.
//
//     CString name = CString::FromUtf8(u8"Fl\u00f6te");
//     CString title;
//     title.Format(L"%s, %d staves", name, 2);   // %s is wide in a CString
//     std::string bytes = title.ToUtf8();
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/Exceptions.h>
#include <scoremodel/platform/Types.h>

#include <compare>
#include <concepts>
#include <cstdarg>
#include <functional>
#include <string>
#include <string_view>
#include <type_traits>

// One argument of CStringT::Format, captured with its type so that a format
// and its arguments that disagree are caught instead of read as garbage.
// Made by MakeFormatArg; not for other use.
struct SCOREMODEL_API CStringFormatArg
{
    enum Kind : unsigned char
    {
        none,
        integer,         // bits hold the value sign-extended to 64
        unsignedInteger, // bits hold the value zero-extended to 64
        floating,
        longFloating,
        narrowText,
        wideText,
        pointer // bits hold the address
    };
    Kind kind = none;
    unsigned char bytes = 0; // width of an integer's own type
    union
    {
        ULONGLONG bits = 0;
        double d;
        // A long double is held by address (the argument outlives the
        // Format call): a long double in a union passed by value makes GCC
        // print its x86-64 ABI change note in every host that formats.
        const long double *ld;
        const char *narrow;
        const wchar_t *wide;
    };
};

template <typename XCHAR>
class CStringT;

template <typename T>
CStringFormatArg MakeFormatArg(const T &value);

template <typename XCHAR>
class SCOREMODEL_API CStringT
{
    static_assert(std::is_same_v<XCHAR, char> || std::is_same_v<XCHAR, wchar_t>,
                  "CStringT exists for char and wchar_t only");

public:
    // The character type of the other width.
    using YCHAR = std::conditional_t<std::is_same_v<XCHAR, char>, wchar_t, char>;
    using StringType = std::basic_string<XCHAR>;
    using PXSTR = XCHAR *;
    using PCXSTR = const XCHAR *;
    using PCYSTR = const YCHAR *;

    // ---- Construction -----------------------------------------------------

    CStringT() = default;
    // A null pointer makes an empty string.
    CStringT(PCXSTR psz) { if (psz) m_str.assign(psz); }
    // REQUIRES: nLength >= 0 and psz points at nLength characters (may hold NULs).
    // Throws CInvalidArgException otherwise.
    CStringT(PCXSTR psz, int nLength);
    // nRepeat copies of ch; a negative count makes an empty string.
    CStringT(XCHAR ch, int nRepeat = 1) { if (nRepeat > 0) m_str.assign(static_cast<size_t>(nRepeat), ch); }
    // From the other width, through UTF-8 (see the header comment).
    CStringT(PCYSTR psz);
    CStringT(PCYSTR psz, int nLength);
    CStringT(const CStringT<YCHAR> &other);
    explicit CStringT(std::basic_string_view<XCHAR> sv) : m_str(sv) {}
    CStringT(const CStringT &) = default;
    CStringT(CStringT &&) noexcept = default;
    CStringT &operator=(const CStringT &) = default;
    CStringT &operator=(CStringT &&) noexcept = default;
    CStringT &operator=(PCXSTR psz) { if (psz) m_str.assign(psz); else m_str.clear(); return *this; }
    CStringT &operator=(XCHAR ch) { m_str.assign(1, ch); return *this; }
    CStringT &operator=(PCYSTR psz) { return *this = CStringT(psz); }
    CStringT &operator=(const CStringT<YCHAR> &other) { return *this = CStringT(other); }

    // UTF-8 of this string. For a CStringA, its bytes unchanged.
    std::string ToUtf8() const;
    // A string decoded from UTF-8; nLength < 0 means up to the terminating NUL.
    // For a CStringA, the bytes unchanged. A null pointer gives an empty string.
    static CStringT FromUtf8(const char *psz, int nLength = -1);
    static CStringT FromUtf8(const char8_t *psz, int nLength = -1)
    {
        return FromUtf8(reinterpret_cast<const char *>(psz), nLength);
    }

    // ---- Access -------------------------------------------------------------

    int GetLength() const { return static_cast<int>(m_str.size()); }
    bool IsEmpty() const { return m_str.empty(); }
    void Empty() { m_str.clear(); }
    // Always NUL-terminated; valid until the string changes.
    PCXSTR GetString() const { return m_str.c_str(); }
    operator PCXSTR() const { return m_str.c_str(); }
    const StringType &Str() const { return m_str; }
    std::basic_string_view<XCHAR> View() const { return m_str; }

    // The character at iChar; iChar == GetLength() reads the terminating NUL.
    // Throws CInvalidArgException outside 0..GetLength().
    XCHAR GetAt(int iChar) const;
    template <std::integral I>
    XCHAR operator[](I iChar) const
    {
        if constexpr (std::is_signed_v<I>)
            if (iChar < 0)
                ThrowIndex();
        if (static_cast<ULONGLONG>(iChar) > m_str.size())
            ThrowIndex();
        return m_str[static_cast<size_t>(iChar)];
    }
    // REQUIRES 0 <= iChar < GetLength(); throws CInvalidArgException otherwise.
    void SetAt(int iChar, XCHAR ch);

    void SetString(PCXSTR psz) { *this = psz; }
    void SetString(PCXSTR psz, int nLength) { *this = CStringT(psz, nLength); }
    void Append(PCXSTR psz) { if (psz) m_str.append(psz); }
    void Append(PCXSTR psz, int nLength) { m_str.append(CStringT(psz, nLength).m_str); }
    void Append(const CStringT &s) { m_str.append(s.m_str); }
    void AppendChar(XCHAR ch) { m_str.push_back(ch); }
    // Shortens to nNewLength; a longer or negative length throws CInvalidArgException.
    void Truncate(int nNewLength);

    // ---- Buffer access ------------------------------------------------------
    //
    // GetBuffer(n) returns room for at least n characters (and the current
    // contents); after writing, ReleaseBuffer(len) sets the length, or with -1
    // takes the length up to the first NUL. The pointer is invalid after any
    // other change to the string.

    PXSTR GetBuffer(int nMinBufferLength = 0);
    PXSTR GetBufferSetLength(int nLength);
    // nNewLength beyond the buffer is clamped to it.
    void ReleaseBuffer(int nNewLength = -1);
    void ReleaseBufferSetLength(int nNewLength) { ReleaseBuffer(nNewLength); }

    // ---- Comparison ---------------------------------------------------------

    // Ordinal: <0, 0 or >0. A narrow string compares bytes as unsigned.
    int Compare(PCXSTR psz) const;
    // Ordinal after folding case (ASCII, Latin-1, Latin Extended-A, Greek and
    // Cyrillic for wide strings; ASCII for narrow ones), independent of locale.
    int CompareNoCase(PCXSTR psz) const;
    int Compare(const CStringT &s) const;
    int CompareNoCase(const CStringT &s) const;

    friend bool operator==(const CStringT &a, const CStringT &b) { return a.m_str == b.m_str; }
    friend bool operator==(const CStringT &a, PCXSTR b) { return a.Compare(b) == 0; }
    friend std::strong_ordering operator<=>(const CStringT &a, const CStringT &b) { return a.Compare(b) <=> 0; }
    friend std::strong_ordering operator<=>(const CStringT &a, PCXSTR b) { return a.Compare(b) <=> 0; }

    // ---- Searching ----------------------------------------------------------
    //
    // Each returns a zero-based index, or -1 when nothing matches or iStart is
    // past the end. A negative iStart counts as 0. An empty psz matches at iStart.

    int Find(XCHAR ch, int iStart = 0) const;
    int Find(PCXSTR pszSub, int iStart = 0) const;
    int ReverseFind(XCHAR ch) const;
    int FindOneOf(PCXSTR pszCharSet) const;

    // ---- Substrings (clamping, see header) ----------------------------------

    CStringT Mid(int iFirst) const;
    CStringT Mid(int iFirst, int nCount) const;
    CStringT Left(int nCount) const;
    CStringT Right(int nCount) const;
    // The leading run of characters in (or not in) the set.
    CStringT SpanIncluding(PCXSTR pszCharSet) const;
    CStringT SpanExcluding(PCXSTR pszCharSet) const;
    // The next token at or after iStart, skipping leading delimiters; sets
    // iStart past the token's delimiter. When none is left, returns an empty
    // string and sets iStart to -1. With no delimiters, returns the rest.
    CStringT Tokenize(PCXSTR pszTokens, int &iStart) const;

    // ---- Changing -----------------------------------------------------------

    CStringT &MakeLower();
    CStringT &MakeUpper();
    CStringT &MakeReverse();
    // Each returns the number of characters removed or replacements made.
    int Remove(XCHAR ch);
    int Replace(XCHAR chOld, XCHAR chNew);
    // Left to right, non-overlapping; an empty or null pszOld replaces nothing.
    int Replace(PCXSTR pszOld, PCXSTR pszNew);
    // Insert at iIndex (clamped to 0..GetLength()); returns the new length.
    int Insert(int iIndex, XCHAR ch);
    int Insert(int iIndex, PCXSTR psz);
    // Removes up to nCount characters from iIndex (clamped); returns the new length.
    int Delete(int iIndex, int nCount = 1);

    // White space is Unicode White_Space for wide strings, ASCII for narrow.
    CStringT &Trim();
    CStringT &Trim(XCHAR chTarget);
    CStringT &Trim(PCXSTR pszTargets);
    CStringT &TrimLeft();
    CStringT &TrimLeft(XCHAR chTarget);
    CStringT &TrimLeft(PCXSTR pszTargets);
    CStringT &TrimRight();
    CStringT &TrimRight(XCHAR chTarget);
    CStringT &TrimRight(PCXSTR pszTargets);

    // ---- Formatting ---------------------------------------------------------
    //
    // printf style, with the platform's meaning of %s: in a CString %s and %c
    // are wide and %S and %C narrow; in a CStringA the reverse; %hs/%ls force
    // narrow/wide. Integers: %d %i %u %x %X %o with h, hh, l, ll, I64, I32, z,
    // j, t. Floats: %f %e %g %a (L for long double). %p, %%, flags, width,
    // precision and * all work. %n is ignored; an unknown conversion is copied
    // as written.
    //
    // Format and AppendFormat see the real type of each argument, so:
    //  - a CString or CStringA argument is taken as its text;
    //  - a string argument prints correctly whichever of %s/%S is used;
    //  - %ld takes a 32-bit LONG or DWORD as 32 bits and a 64-bit long as 64;
    //  - too few arguments, or one of the wrong kind (a number for %s, a
    //    string for %d), throw CInvalidArgException instead of reading garbage.
    // FormatV and AppendFormatV read a va_list blindly, as printf does, with
    // %ld as 32 bits. A width or precision above 1,000,000 or a null format
    // throws CInvalidArgException.

    template <typename... Args>
    void Format(PCXSTR pszFormat, const Args &...args)
    {
        const CStringFormatArg list[] = {MakeFormatArg(args)..., CStringFormatArg()};
        FormatArgs(pszFormat, list, sizeof...(Args), false);
    }
    template <typename... Args>
    void AppendFormat(PCXSTR pszFormat, const Args &...args)
    {
        const CStringFormatArg list[] = {MakeFormatArg(args)..., CStringFormatArg()};
        FormatArgs(pszFormat, list, sizeof...(Args), true);
    }
    void FormatV(PCXSTR pszFormat, va_list args);
    void AppendFormatV(PCXSTR pszFormat, va_list args);

    // ---- Concatenation ------------------------------------------------------

    CStringT &operator+=(const CStringT &s) { m_str.append(s.m_str); return *this; }
    CStringT &operator+=(PCXSTR psz) { Append(psz); return *this; }
    CStringT &operator+=(XCHAR ch) { m_str.push_back(ch); return *this; }
    CStringT &operator+=(PCYSTR psz) { return *this += CStringT(psz); }

    friend CStringT operator+(const CStringT &a, const CStringT &b) { CStringT r(a); r += b; return r; }
    friend CStringT operator+(CStringT &&a, const CStringT &b) { a += b; return std::move(a); }
    friend CStringT operator+(const CStringT &a, PCXSTR b) { CStringT r(a); r += b; return r; }
    friend CStringT operator+(CStringT &&a, PCXSTR b) { a += b; return std::move(a); }
    friend CStringT operator+(PCXSTR a, const CStringT &b) { CStringT r(a); r += b; return r; }
    friend CStringT operator+(const CStringT &a, XCHAR b) { CStringT r(a); r += b; return r; }
    friend CStringT operator+(CStringT &&a, XCHAR b) { a += b; return std::move(a); }
    friend CStringT operator+(XCHAR a, const CStringT &b) { CStringT r(a); r += b; return r; }

private:
    [[noreturn]] static void ThrowIndex();
    void FormatArgs(PCXSTR pszFormat, const CStringFormatArg *args, size_t count, bool append);

    StringType m_str;
};

template <typename T>
CStringFormatArg MakeFormatArg(const T &value)
{
    using D = std::remove_cv_t<T>;
    CStringFormatArg a;
    if constexpr (std::is_enum_v<D>)
        return MakeFormatArg(static_cast<std::underlying_type_t<D>>(value));
    else if constexpr (std::is_same_v<D, bool>)
    {
        a.kind = CStringFormatArg::integer;
        a.bytes = sizeof(int);
        a.bits = value ? 1 : 0;
    }
    else if constexpr (std::is_integral_v<D>)
    {
        a.bytes = sizeof(D);
        if constexpr (std::is_signed_v<D>)
        {
            a.kind = CStringFormatArg::integer;
            a.bits = static_cast<ULONGLONG>(static_cast<LONGLONG>(value));
        }
        else
        {
            a.kind = CStringFormatArg::unsignedInteger;
            a.bits = static_cast<ULONGLONG>(value);
        }
    }
    else if constexpr (std::is_same_v<D, float> || std::is_same_v<D, double>)
    {
        a.kind = CStringFormatArg::floating;
        a.d = value;
    }
    else if constexpr (std::is_same_v<D, long double>)
    {
        a.kind = CStringFormatArg::longFloating;
        a.ld = &value;
    }
    else if constexpr (std::is_same_v<D, CStringT<char>>)
    {
        a.kind = CStringFormatArg::narrowText;
        a.narrow = value.GetString();
    }
    else if constexpr (std::is_same_v<D, CStringT<wchar_t>>)
    {
        a.kind = CStringFormatArg::wideText;
        a.wide = value.GetString();
    }
    else if constexpr (std::is_array_v<D> || std::is_pointer_v<D>)
    {
        using E = std::remove_cv_t<std::remove_pointer_t<std::decay_t<D>>>;
        const auto *ptr = static_cast<const E *>(value);
        if constexpr (std::is_same_v<E, char>)
        {
            a.kind = CStringFormatArg::narrowText;
            a.narrow = ptr;
        }
        else if constexpr (std::is_same_v<E, wchar_t>)
        {
            a.kind = CStringFormatArg::wideText;
            a.wide = ptr;
        }
        else
        {
            a.kind = CStringFormatArg::pointer;
            a.bits = reinterpret_cast<UINT_PTR>(ptr);
        }
    }
    else if constexpr (std::is_same_v<D, std::nullptr_t>)
        a.kind = CStringFormatArg::pointer;
    else
        static_assert(std::is_same_v<D, void>, "Format takes numbers, characters, pointers and strings; "
                                               "pass other strings as pointers");
    return a;
}

extern template class CStringT<char>;
extern template class CStringT<wchar_t>;

typedef CStringT<wchar_t> CString;
typedef CStringT<char> CStringA;
typedef CStringT<wchar_t> CStringW;

#ifndef SCOREMODEL_DOXYGEN // the API reference lists the library's own classes
template <typename XCHAR>
struct std::hash<CStringT<XCHAR>>
{
    size_t operator()(const CStringT<XCHAR> &s) const noexcept
    {
        return std::hash<std::basic_string_view<XCHAR>>()(s.View());
    }
};
#endif
