#include <scoremodel/version.h>

// Compiled into the library, so these answer with the version of the
// library that is loaded, not of the headers the host saw.
const char *MCGetLibraryVersion()
{
    return SCOREMODEL_VERSION_STRING;
}

int MCGetLibraryVersionNumber()
{
    return SCOREMODEL_VERSION_NUMBER;
}
