#include <scoremodel/platform/CMap.h>

void CMapThrowNullPosition()
{
    throw CInvalidArgException("CMap::GetNextAssoc: null POSITION (the walk has ended)");
}

IMPLEMENT_DYNAMIC(CMapPtrToPtr, CObject)
IMPLEMENT_DYNAMIC(CMapStringToPtr, CObject)
