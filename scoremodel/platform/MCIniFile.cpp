#include <scoremodel/platform/MCIniFile.h>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
bool IsBlank(char c)
{
    return c == ' ' || c == '\t';
}

std::string_view Trim(std::string_view s)
{
    while (!s.empty() && IsBlank(s.front()))
        s.remove_prefix(1);
    while (!s.empty() && IsBlank(s.back()))
        s.remove_suffix(1);
    return s;
}

// The lookup form of a name: trimmed, ASCII letters lowered. Bytes above 0x7F
// stay, so non-ASCII names match exactly.
std::string Fold(std::string_view name)
{
    name = Trim(name);
    std::string folded(name);
    for (char &c : folded)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return folded;
}

bool HasLineBreakOrNul(std::string_view s)
{
    return s.find_first_of(std::string_view("\n\r\0", 3)) != std::string_view::npos;
}
} // namespace

bool MCIniFile::IsValidUtf8(std::string_view text)
{
    size_t i = 0;
    const size_t n = text.size();
    while (i < n)
    {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        if (c < 0x80)
        {
            ++i;
            continue;
        }
        int extra;
        unsigned long cp;
        if (c >= 0xC2 && c <= 0xDF)
        {
            extra = 1;
            cp = c & 0x1F;
        }
        else if (c >= 0xE0 && c <= 0xEF)
        {
            extra = 2;
            cp = c & 0x0F;
        }
        else if (c >= 0xF0 && c <= 0xF4)
        {
            extra = 3;
            cp = c & 0x07;
        }
        else
            return false;
        if (n - i <= static_cast<size_t>(extra))
            return false;
        for (int k = 1; k <= extra; ++k)
        {
            const unsigned char cc = static_cast<unsigned char>(text[i + k]);
            if ((cc & 0xC0) != 0x80)
                return false;
            cp = (cp << 6) | (cc & 0x3F);
        }
        // Overlong forms, surrogates and values past U+10FFFF.
        if ((extra == 2 && cp < 0x800) || (extra == 3 && cp < 0x10000) || (cp >= 0xD800 && cp <= 0xDFFF) ||
            cp > 0x10FFFF)
            return false;
        i += static_cast<size_t>(extra) + 1;
    }
    return true;
}

bool MCIniFile::IsValidSectionName(std::string_view name)
{
    name = Trim(name);
    return !name.empty() && !HasLineBreakOrNul(name) && IsValidUtf8(name);
}

bool MCIniFile::IsValidKeyName(std::string_view name)
{
    name = Trim(name);
    if (name.empty() || HasLineBreakOrNul(name) || name.find('=') != std::string_view::npos)
        return false;
    if (name.front() == '[' || name.front() == ';' || name.front() == '#')
        return false;
    return IsValidUtf8(name);
}

std::string MCIniFile::EscapeText(std::string_view text)
{
    std::string out;
    out.reserve(text.size() + 8);
    for (size_t i = 0; i < text.size(); ++i)
    {
        const char c = text[i];
        switch (c)
        {
        case '\\': out += "\\\\"; break;
        case '\n': out += "\\n"; break;
        case '\r': out += "\\r"; break;
        case '\t': out += "\\t"; break;
        case ' ':
            // Reading trims blanks, so blanks at either end must be spelled out.
            if (i == 0 || i + 1 == text.size())
                out += "\\s";
            else
                out += ' ';
            break;
        default: out += c; break;
        }
    }
    return out;
}

std::string MCIniFile::UnescapeText(std::string_view text)
{
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i)
    {
        const char c = text[i];
        if (c != '\\' || i + 1 == text.size())
        {
            out += c;
            continue;
        }
        switch (text[i + 1])
        {
        case 'n': out += '\n'; ++i; break;
        case 'r': out += '\r'; ++i; break;
        case 't': out += '\t'; ++i; break;
        case 's': out += ' '; ++i; break;
        case '\\': out += '\\'; ++i; break;
        default: out += c; break; // kept as written
        }
    }
    return out;
}

void MCIniFile::Clear()
{
    m_sections.clear();
    m_index.clear();
}

MCIniFile::Status MCIniFile::Load(const std::string &path)
{
    Clear();
    // Non-blocking, so that a FIFO planted at the path cannot hang us; only
    // regular files are read.
    int fd;
    do
        fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    while (fd < 0 && errno == EINTR);
    if (fd < 0)
        return (errno == ENOENT || errno == ENOTDIR) ? notFound : unreadable;

    struct stat st;
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) || static_cast<unsigned long long>(st.st_size) > MaxFileSize)
    {
        ::close(fd);
        return unreadable;
    }

    std::string text;
    text.reserve(static_cast<size_t>(st.st_size));
    char buffer[8192];
    for (;;)
    {
        const ssize_t got = ::read(fd, buffer, sizeof buffer);
        if (got < 0)
        {
            if (errno == EINTR)
                continue;
            ::close(fd);
            return unreadable;
        }
        if (got == 0)
            break;
        text.append(buffer, static_cast<size_t>(got));
        if (text.size() > MaxFileSize) // grew while we read it
        {
            ::close(fd);
            return unreadable;
        }
    }
    ::close(fd);
    Parse(text);
    return ok;
}

void MCIniFile::Parse(std::string_view text)
{
    Clear();
    if (text.substr(0, 3) == "\xEF\xBB\xBF")
        text.remove_prefix(3);

    Section *current = nullptr;
    while (!text.empty())
    {
        const size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        line = Trim(line);
        if (line.empty() || line.front() == ';' || line.front() == '#')
            continue;

        const bool readable = IsValidUtf8(line) && line.find('\0') == std::string_view::npos;
        if (line.front() == '[')
        {
            const size_t close = line.rfind(']');
            current = nullptr;
            if (readable && close != std::string_view::npos && close > 0)
            {
                const std::string_view name = line.substr(1, close - 1);
                if (IsValidSectionName(name))
                    current = &GetOrAddSection(name);
            }
            continue;
        }
        if (!readable || current == nullptr)
            continue;
        const size_t eq = line.find('=');
        if (eq == std::string_view::npos)
            continue;
        const std::string_view key = line.substr(0, eq);
        if (!IsValidKeyName(key))
            continue;
        SetInSection(*current, key, UnescapeText(Trim(line.substr(eq + 1))));
    }
}

const std::string *MCIniFile::Find(std::string_view section, std::string_view key) const
{
    const auto s = m_index.find(Fold(section));
    if (s == m_index.end())
        return nullptr;
    const Section &sec = m_sections[s->second];
    const auto k = sec.index.find(Fold(key));
    if (k == sec.index.end())
        return nullptr;
    return &sec.entries[k->second].second;
}

bool MCIniFile::Set(std::string_view section, std::string_view key, std::string_view text)
{
    if (!IsValidSectionName(section) || !IsValidKeyName(key) || !IsValidUtf8(text) ||
        text.find('\0') != std::string_view::npos)
        return false;
    SetInSection(GetOrAddSection(section), key, std::string(text));
    return true;
}

std::string MCIniFile::Serialize() const
{
    std::string out;
    for (size_t i = 0; i < m_sections.size(); ++i)
    {
        const Section &sec = m_sections[i];
        if (i > 0)
            out += '\n';
        out += '[';
        out += sec.name;
        out += "]\n";
        for (const auto &[key, text] : sec.entries)
        {
            out += key;
            out += '=';
            out += EscapeText(text);
            out += '\n';
        }
    }
    return out;
}

MCIniFile::Section &MCIniFile::GetOrAddSection(std::string_view name)
{
    name = Trim(name);
    std::string folded = Fold(name);
    const auto found = m_index.find(folded);
    if (found != m_index.end())
        return m_sections[found->second];
    m_index.emplace(std::move(folded), m_sections.size());
    m_sections.push_back(Section{std::string(name), {}, {}});
    return m_sections.back();
}

void MCIniFile::SetInSection(Section &section, std::string_view key, std::string value)
{
    key = Trim(key);
    std::string folded = Fold(key);
    const auto found = section.index.find(folded);
    if (found != section.index.end())
    {
        section.entries[found->second].second = std::move(value);
        return;
    }
    section.index.emplace(std::move(folded), section.entries.size());
    section.entries.emplace_back(std::string(key), std::move(value));
}
