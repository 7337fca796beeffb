// SCOREMODEL_API marks what the shared library exports.
//
// The library is built with hidden visibility: a class, function or variable
// is part of its binary interface only when its declaration carries this
// mark (`class SCOREMODEL_API ECNote`, `SCOREMODEL_API CString MCGetUserFolder();`,
// `extern SCOREMODEL_API int g_value;`). Members, vtables and type information
// of a marked class are exported with it. Unmarked classes and functions
// (pools, queues, test hooks) stay inside the library, so a host can't come to
// depend on them and they may change without an ABI break.
#pragma once

#if defined(__GNUC__) || defined(__clang__)
#define SCOREMODEL_API __attribute__((visibility("default")))
#else
#define SCOREMODEL_API
#endif
