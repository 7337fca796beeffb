// A host that includes the X11 headers (or here, their macros, so that the
// check needs no X11 package) and a Windows-style min/max before the library,
// and formats a double: it must compile without a word from the compiler.
#define Bool int
#define Status int
#define True 1
#define False 0
#define None 0L
#define Success 0
#define Always 2
#define Above 0
#define Below 1
#define Complex 0
#define Convex 2
#define CurrentTime 0L
#define KeyPress 2
#define FocusIn 9
#define DestroyAll 0
#define min(a, b) (((a) < (b)) ? (a) : (b))
#define max(a, b) (((a) > (b)) ? (a) : (b))

#include <scoremodel/scoremodel.h>

#include <cstdio>

int main()
{
    CString text;
    text.Format(L"%.2f %Lf", 1.5, 2.5L);
    CArray<int, int> numbers;
    numbers.SetSize(3);
    std::printf("%s %d %s\n", text.ToUtf8().c_str(), (int)numbers.GetSize(), MCGetLibraryVersion());
    return text == L"1.50 2.500000" && MCGetLibraryVersionNumber() == SCOREMODEL_VERSION_NUMBER ? 0 : 1;
}
