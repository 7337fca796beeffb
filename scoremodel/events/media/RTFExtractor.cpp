#include <scoremodel/events/media/RTFExtractor.h>

#include <cctype>
#include <cstring>
#include <string>
#include <vector>

namespace
{
// What a group inherits from its parent and may change for itself.
struct GroupState
{
    bool skip = false;  // the group holds no text
    int fallback = 1;   // \ucN: characters that follow a \uN
};

// Windows-1252 where it differs from Latin-1 (0x80 to 0x9F); 0 where the
// code page has no character.
const wchar_t kCp1252High[32] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                 0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                 0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

wchar_t FromCodePage(unsigned char byte)
{
    if (byte >= 0x80 && byte < 0xA0)
        return kCp1252High[byte - 0x80];
    return static_cast<wchar_t>(byte);
}

bool IsSkippedDestination(const std::string &word)
{
    static const char *const kWords[] = {"fonttbl", "colortbl", "stylesheet", "info",    "pict",
                                         "object",  "header",   "footer",     "headerl", "headerr",
                                         "headerf", "footerl",  "footerr",    "footerf", "listtable",
                                         "listoverridetable", "themedata", "datastore", "xmlnstbl", "rsidtbl"};
    for (const char *w : kWords)
        if (word == w)
            return true;
    return false;
}

wchar_t TypographicWord(const std::string &word)
{
    struct Entry
    {
        const char *word;
        wchar_t ch;
    };
    static const Entry kEntries[] = {{"emdash", 0x2014}, {"endash", 0x2013},    {"bullet", 0x2022},
                                     {"lquote", 0x2018}, {"rquote", 0x2019},    {"ldblquote", 0x201C},
                                     {"rdblquote", 0x201D}, {"emspace", 0x2003}, {"enspace", 0x2002}};
    for (const Entry &e : kEntries)
        if (word == e.word)
            return e.ch;
    return 0;
}

int HexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

class Extractor
{
public:
    Extractor(const char *text, size_t length) : m_p(text), m_end(text + length) {}

    std::wstring Run()
    {
        m_groups.push_back(GroupState());
        bool groupStart = false; // the next control word is the first of its group
        while (m_p < m_end)
        {
            const char c = *m_p++;
            if (c == '{')
            {
                m_groups.push_back(m_groups.back());
                groupStart = true;
                continue;
            }
            if (c == '}')
            {
                if (m_groups.size() > 1)
                    m_groups.pop_back();
                groupStart = false;
                continue;
            }
            const bool first = groupStart;
            groupStart = false;
            if (c == '\\')
                ControlSequence(first);
            else if (c != '\r' && c != '\n')
                Emit(FromCodePage(static_cast<unsigned char>(c)));
        }
        FlushSurrogate();
        return m_out;
    }

private:
    GroupState &Group() { return m_groups.back(); }

    // A character of the text: dropped in a skipped group or as a fallback
    // of a \uN.
    void Emit(wchar_t ch)
    {
        if (m_fallbackLeft > 0)
        {
            --m_fallbackLeft;
            return;
        }
        if (Group().skip || ch == 0)
            return;
        FlushSurrogate();
        m_out.push_back(ch);
    }

    void EmitUnicode(long value)
    {
        if (value < 0)
            value += 65536;
        m_fallbackLeft = Group().fallback;
        if (Group().skip)
            return;
        if (value >= 0xD800 && value < 0xDC00)
        {
            FlushSurrogate();
            m_highSurrogate = static_cast<wchar_t>(value);
            return;
        }
        if (value >= 0xDC00 && value < 0xE000)
        {
            if (m_highSurrogate)
            {
                const long code = 0x10000 + ((m_highSurrogate - 0xD800) << 10) + (value - 0xDC00);
                m_highSurrogate = 0;
                m_out.push_back(static_cast<wchar_t>(code));
            }
            return; // a low half alone is dropped
        }
        FlushSurrogate();
        if (value > 0)
            m_out.push_back(static_cast<wchar_t>(value));
    }

    // A high half without its low half is dropped.
    void FlushSurrogate() { m_highSurrogate = 0; }

    void ControlSequence(bool firstInGroup)
    {
        if (m_p >= m_end)
            return;
        const char c = *m_p;
        if (!std::isalpha(static_cast<unsigned char>(c)))
        {
            ++m_p;
            switch (c)
            {
            case '\\':
            case '{':
            case '}': Emit(static_cast<wchar_t>(c)); break;
            case '~': Emit(0x00A0); break;
            case '_': Emit(0x2011); break;
            case '\n':
            case '\r': Emit(L'\n'); break;
            case '*':
                if (firstInGroup)
                    Group().skip = true;
                break;
            case '\'':
            {
                const int high = m_p < m_end ? HexDigit(m_p[0]) : -1;
                const int low = m_p + 1 < m_end ? HexDigit(m_p[1]) : -1;
                if (high >= 0 && low >= 0)
                {
                    m_p += 2;
                    Emit(FromCodePage(static_cast<unsigned char>(high * 16 + low)));
                }
                break;
            }
            default: break; // \- and other symbols carry no text
            }
            return;
        }
        std::string word;
        while (m_p < m_end && std::isalpha(static_cast<unsigned char>(*m_p)) && word.size() < 32)
            word.push_back(*m_p++);
        while (m_p < m_end && std::isalpha(static_cast<unsigned char>(*m_p)))
            ++m_p; // an overlong word is cut, not read as text
        bool hasNumber = false;
        long number = 0;
        bool negative = false;
        if (m_p < m_end && *m_p == '-')
        {
            negative = true;
            ++m_p;
        }
        int digits = 0;
        while (m_p < m_end && std::isdigit(static_cast<unsigned char>(*m_p)))
        {
            if (digits++ < 10)
                number = number * 10 + (*m_p - '0');
            hasNumber = true;
            ++m_p;
        }
        if (negative)
            number = -number;
        if (m_p < m_end && *m_p == ' ')
            ++m_p; // the delimiter belongs to the word

        if (firstInGroup && IsSkippedDestination(word))
            Group().skip = true;
        else if (word == "par" || word == "line")
            Emit(L'\n');
        else if (word == "tab")
            Emit(L'\t');
        else if (word == "u" && hasNumber && number >= -32768 && number <= 65535)
            EmitUnicode(number);
        else if (word == "uc" && hasNumber)
            Group().fallback = number < 0 ? 0 : static_cast<int>(number > 8 ? 8 : number);
        else if (wchar_t ch = TypographicWord(word))
            Emit(ch);
    }

    const char *m_p;
    const char *m_end;
    std::vector<GroupState> m_groups;
    std::wstring m_out;
    int m_fallbackLeft = 0;
    wchar_t m_highSurrogate = 0;
};
} // namespace

CString RTFExtractor::Extract(const CStringA &rtf)
{
    return Extract(rtf.GetString(), rtf.GetLength());
}

CString RTFExtractor::Extract(const char *rtf, int length)
{
    if (!rtf || length <= 0)
        return CString();
    const size_t size = static_cast<size_t>(length);
    if (size < 5 || std::strncmp(rtf, "{\\rtf", 5) != 0)
        return CString::FromUtf8(rtf, length);
    const std::wstring text = Extractor(rtf, size).Run();
    return CString(text.c_str());
}
