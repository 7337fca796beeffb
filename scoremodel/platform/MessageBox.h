// The message box, as the library sees it: a text and a kind handed to the
// host, which decides how to show it and which button was pressed.
//
// The library draws nothing. The host installs a handler at start:
//
//     static int ShowBox(const CString &text, unsigned type) { ...; return IDOK; }
//     MCSetMessageBoxHandler(&ShowBox);
//
// Without a handler the text goes to stderr, one line prefixed with the kind
// of its icon ("information: ..."), and the call answers with the default
// button of the kind (the first button, or the one MB_DEFBUTTON2/3 names),
// so a program without a user interface never blocks on a question.
//
// The handler is called on the thread that shows the message (for the model,
// the document thread), while that thread may hold the document lock; it
// must not wait for another thread that takes the lock. Setting the handler
// is thread-safe.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CString.h>
#include <scoremodel/platform/Types.h>

// ---- Kinds: buttons (low 4 bits) ---------------------------------------------
#define MB_OK 0x00000000u
#define MB_OKCANCEL 0x00000001u
#define MB_ABORTRETRYIGNORE 0x00000002u
#define MB_YESNOCANCEL 0x00000003u
#define MB_YESNO 0x00000004u
#define MB_RETRYCANCEL 0x00000005u
#define MB_TYPEMASK 0x0000000Fu

// ---- Kinds: icons ---------------------------------------------------------------
#define MB_ICONERROR 0x00000010u
#define MB_ICONSTOP MB_ICONERROR
#define MB_ICONHAND MB_ICONERROR
#define MB_ICONQUESTION 0x00000020u
#define MB_ICONWARNING 0x00000030u
#define MB_ICONEXCLAMATION MB_ICONWARNING
#define MB_ICONINFORMATION 0x00000040u
#define MB_ICONASTERISK MB_ICONINFORMATION
#define MB_ICONMASK 0x000000F0u

// ---- Kinds: default button --------------------------------------------------------
#define MB_DEFBUTTON1 0x00000000u
#define MB_DEFBUTTON2 0x00000100u
#define MB_DEFBUTTON3 0x00000200u
#define MB_DEFMASK 0x00000F00u

// ---- Answers ----------------------------------------------------------------------
#define IDOK 1
#define IDCANCEL 2
#define IDABORT 3
#define IDRETRY 4
#define IDIGNORE 5
#define IDYES 6
#define IDNO 7

// What the host installs: shows text with the kind `type` (MB_ flags) and
// returns the button pressed (ID...).
typedef int (*MCMessageBoxHandler)(const CString &text, unsigned type);

// Installs handler and returns the one it replaces (null for the default).
// Null restores the default.
SCOREMODEL_API MCMessageBoxHandler MCSetMessageBoxHandler(MCMessageBoxHandler handler);

// Shows text through the handler and returns its answer.
SCOREMODEL_API int MCMessageBox(const CString &text, unsigned type = MB_OK);

// The platform's name for the same call; the help id is ignored.
SCOREMODEL_API int AfxMessageBox(const CString &text, UINT type = MB_OK, UINT helpId = 0);
