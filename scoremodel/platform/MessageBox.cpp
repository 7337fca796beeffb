#include <scoremodel/platform/MessageBox.h>

#include <atomic>
#include <cstdio>
#include <string>

namespace
{
std::atomic<MCMessageBoxHandler> s_handler{nullptr};

// The buttons of a kind, in the order they appear on the box.
int Button(unsigned type, unsigned index)
{
    static const int buttons[][3] = {
        {IDOK, IDOK, IDOK},            // MB_OK
        {IDOK, IDCANCEL, IDCANCEL},    // MB_OKCANCEL
        {IDABORT, IDRETRY, IDIGNORE},  // MB_ABORTRETRYIGNORE
        {IDYES, IDNO, IDCANCEL},       // MB_YESNOCANCEL
        {IDYES, IDNO, IDNO},           // MB_YESNO
        {IDRETRY, IDCANCEL, IDCANCEL}, // MB_RETRYCANCEL
    };
    const unsigned kind = type & MB_TYPEMASK;
    if (kind >= sizeof buttons / sizeof buttons[0])
        return IDOK;
    return buttons[kind][index > 2 ? 0 : index];
}

const char *IconWord(unsigned type)
{
    switch (type & MB_ICONMASK)
    {
    case MB_ICONERROR: return "error: ";
    case MB_ICONQUESTION: return "question: ";
    case MB_ICONWARNING: return "warning: ";
    case MB_ICONINFORMATION: return "information: ";
    default: return "";
    }
}

int DefaultHandler(const CString &text, unsigned type)
{
    std::string line = IconWord(type);
    line += text.ToUtf8();
    line += '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
    std::fflush(stderr);
    return Button(type, (type & MB_DEFMASK) >> 8);
}
} // namespace

MCMessageBoxHandler MCSetMessageBoxHandler(MCMessageBoxHandler handler)
{
    return s_handler.exchange(handler);
}

int MCMessageBox(const CString &text, unsigned type)
{
    const MCMessageBoxHandler handler = s_handler.load();
    return handler ? handler(text, type) : DefaultHandler(text, type);
}

int AfxMessageBox(const CString &text, UINT type, UINT /*helpId*/)
{
    return MCMessageBox(text, type);
}
