// Fixed-width scalar types, handles and helpers with the platform's names.
//
// The archive format and the model's bit fields depend on these widths, so
// they are pinned here: DWORD and LONG are 32 bits on every platform, unlike
// `unsigned long` and `long`, which stay 64 bits where a signature says so.
#pragma once

#include <scoremodel/Export.h>

#include <cstddef>
#include <cstdint>

typedef std::uint8_t BYTE;
typedef std::uint16_t WORD;
typedef std::uint32_t DWORD;
typedef std::int32_t LONG;
typedef std::uint32_t ULONG;
typedef long long LONGLONG; // not int64_t: that is `long` here, which the archive writes as 4 bytes
typedef unsigned long long ULONGLONG;
typedef unsigned int UINT;
typedef int BOOL;
typedef std::uintptr_t UINT_PTR;
typedef std::intptr_t INT_PTR;
typedef std::intptr_t LONG_PTR;
typedef std::uintptr_t DWORD_PTR;
typedef UINT_PTR WPARAM;
typedef LONG_PTR LPARAM;
typedef LONG_PTR LRESULT;
typedef DWORD COLORREF;
typedef wchar_t WCHAR;
typedef wchar_t TCHAR;
typedef const wchar_t *LPCWSTR;
typedef wchar_t *LPWSTR;
typedef const wchar_t *LPCTSTR;
typedef wchar_t *LPTSTR;
typedef const char *LPCSTR;
typedef char *LPSTR;
typedef void *LPVOID;
typedef const void *LPCVOID;

#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif

#ifndef _T
#define _T(x) L##x
#endif

// An opaque iterator into a list: a pointer to one of its nodes. It stays
// valid until that node is removed.
struct SCOREMODEL_API __POSITION
{
};
typedef __POSITION *POSITION;

// Marks "before the first element" where a list walk needs a start value.
#define BEFORE_START_POSITION ((POSITION)-1L)

#define LOBYTE(w) ((BYTE)(((UINT_PTR)(w)) & 0xff))
#define HIBYTE(w) ((BYTE)((((UINT_PTR)(w)) >> 8) & 0xff))
#define LOWORD(l) ((WORD)(((UINT_PTR)(l)) & 0xffff))
#define HIWORD(l) ((WORD)((((UINT_PTR)(l)) >> 16) & 0xffff))
#define MAKEWORD(a, b) ((WORD)(((BYTE)(((UINT_PTR)(a)) & 0xff)) | ((WORD)((BYTE)(((UINT_PTR)(b)) & 0xff))) << 8))
#define MAKELONG(a, b) ((LONG)(((WORD)(((UINT_PTR)(a)) & 0xffff)) | ((DWORD)((WORD)(((UINT_PTR)(b)) & 0xffff))) << 16))

#define RGB(r, g, b) ((COLORREF)(((BYTE)(r) | ((WORD)((BYTE)(g)) << 8)) | (((DWORD)(BYTE)(b)) << 16)))
#define GetRValue(rgb) (LOBYTE(rgb))
#define GetGValue(rgb) (LOBYTE(((WORD)(rgb)) >> 8))
#define GetBValue(rgb) (LOBYTE((rgb) >> 16))

static_assert(sizeof(BYTE) == 1 && sizeof(WORD) == 2 && sizeof(DWORD) == 4 && sizeof(LONG) == 4,
              "the archive format relies on these widths");
