// A small INI document in UTF-8, the format of the language files and of the
// preferences file.
//
//     ; a comment (also "#")
//     [Section name]
//     KEY=Text with \n for a line break
//
// Sections and keys are matched without regard to ASCII case, as the
// platform's profile files are. Names are trimmed of blanks. A section name
// runs from the first "[" to the last "]" of its line, so it may hold "]" and
// backslashes ("Settings\Tempo"). A key runs up to the first "=".
//
// Texts are trimmed of blanks and then unescaped: "\n" line feed, "\r"
// carriage return, "\t" tab, "\s" space (for a blank a text must keep at its
// ends), "\\" backslash. Any other backslash is kept as written, so "C:\x"
// reads as itself.
//
// Reading is forgiving: a line that is not valid UTF-8, holds a NUL byte or
// has no "=" is skipped, and after a section header that cannot be read the
// keys up to the next good header are skipped too, so that they never land in
// the wrong section. Keys before the first header are ignored. A later
// duplicate key replaces the earlier one. Comments are not kept.
//
// Not thread-safe: callers guard an instance themselves.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

class MCIniFile
{
public:
    enum Status
    {
        ok,
        notFound,   // no such file; the document is empty
        unreadable  // exists but cannot be read (permissions, not a regular
                    // file, too large); the document is empty
    };

    // Files larger than this are refused as unreadable: they are not ours.
    static constexpr size_t MaxFileSize = 16u * 1024u * 1024u;

    // ---- Reading ------------------------------------------------------------

    // Replaces the content with the file at path (UTF-8). Never throws except
    // std::bad_alloc.
    Status Load(const std::string &path);
    // Replaces the content with the parsed text.
    void Parse(std::string_view text);

    // The text of a key, or null when the section or key is absent. The
    // pointer is valid until the document changes.
    const std::string *Find(std::string_view section, std::string_view key) const;

    bool IsEmpty() const { return m_sections.empty(); }
    void Clear();

    // ---- Writing ------------------------------------------------------------

    // Sets a text, adding the section and key as needed; sections and keys
    // keep the order in which they first appeared. Returns false, changing
    // nothing, when a name cannot be written and read back (see
    // IsValidSectionName, IsValidKeyName) or the text is not valid UTF-8.
    bool Set(std::string_view section, std::string_view key, std::string_view text);

    // The whole document as file text, one "\n" per line.
    std::string Serialize() const;

    // ---- Helpers --------------------------------------------------------------

    // A section name is non-empty after trimming, valid UTF-8, and holds no
    // line break or NUL.
    static bool IsValidSectionName(std::string_view name);
    // A key name is non-empty after trimming, valid UTF-8, holds no line
    // break, NUL or "=", and does not start with "[", ";" or "#".
    static bool IsValidKeyName(std::string_view name);
    static bool IsValidUtf8(std::string_view text);
    static std::string EscapeText(std::string_view text);
    static std::string UnescapeText(std::string_view text);

private:
    struct Section
    {
        std::string name;
        std::vector<std::pair<std::string, std::string>> entries;
        std::unordered_map<std::string, size_t> index; // folded key -> entry
    };

    Section &GetOrAddSection(std::string_view name);
    static void SetInSection(Section &section, std::string_view key, std::string value);

    std::vector<Section> m_sections;
    std::unordered_map<std::string, size_t> m_index; // folded name -> section
};
