// A tiny program built against the installed package.
#include <scoremodel/scoremodel.h>

#include <cstdio>

int main()
{
    CRuntimeClass *pClass = CRuntimeClass::FromName("CObject");
    if (!pClass)
    {
        std::fprintf(stderr, "the run-time class table is empty\n");
        return 1;
    }
    std::printf("consumer sees %s\n", pClass->m_lpszClassName);
    return 0;
}
