// RTFExtractor: the plain text of a rich text (RTF) block, as texts and
// lyrics pasted from a word processor arrive.
//
//     CString text = RTFExtractor::Extract("{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}Allegro\\par ma non troppo}");
//     // L"Allegro\nma non troppo"
//
// What it understands: groups, the escapes \\ \{ \}, \par and \line (a line
// break), \tab, \~ (no-break space), \'hh (a byte of the ANSI code page,
// taken as Windows-1252), \uN with its \ucN fallback characters (surrogate
// pairs are joined), and a few typographic words (\emdash, \endash,
// \bullet, \lquote, \rquote, \ldblquote, \rdblquote). Groups that are not
// text are dropped whole: those starting with \* and the font, colour and
// style tables, \info, \pict, \object, headers and footers. Every other
// control word is ignored.
//
// Text that does not start with "{\rtf" is not RTF and comes back as it is
// (read as UTF-8). Broken RTF never fails: an unknown word is skipped, a
// missing closing brace ends the text, an extra one is ignored. Nesting
// depth costs memory, not stack.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CString.h>

class SCOREMODEL_API RTFExtractor
{
public:
    // The plain text of `rtf` (see above).
    static CString Extract(const CStringA &rtf);
    static CString Extract(const char *rtf, int length);
};
