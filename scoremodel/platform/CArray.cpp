#include <scoremodel/platform/CArray.h>

#include <string>

void CArrayThrowBadIndex(const char *operation, INT_PTR nIndex, INT_PTR nSize)
{
    throw CInvalidArgException(std::string(operation) + ": index " + std::to_string(nIndex) +
                               " outside an array of " + std::to_string(nSize) + " elements");
}

void CArrayThrowInvalidArg(const char *operation, const char *what)
{
    throw CInvalidArgException(std::string(operation) + ": " + what);
}

void CArrayThrowEndOfFile()
{
    throw CArchiveException(CArchiveException::endOfFile, "the archive ends inside an array");
}

IMPLEMENT_SERIAL(CByteArray, CObject, 0)
IMPLEMENT_SERIAL(CWordArray, CObject, 0)
IMPLEMENT_SERIAL(CDWordArray, CObject, 0)
IMPLEMENT_SERIAL(CUIntArray, CObject, 0)
IMPLEMENT_DYNAMIC(CPtrArray, CObject)
IMPLEMENT_SERIAL(CObArray, CObject, 0)
IMPLEMENT_SERIAL(CStringArray, CObject, 0)

void CPtrArray::Serialize(CArchive &)
{
    // Addresses mean nothing in another process; writing them would only
    // produce a file that loads as garbage.
    throw CNotSupportedException("CPtrArray cannot be archived");
}

void CObArray::Serialize(CArchive &ar)
{
    CObject::Serialize(ar);
    if (ar.IsStoring())
    {
        ar.WriteCount((DWORD_PTR)GetSize());
        for (CObject *pObject : *this)
            ar.WriteObject(pObject);
    }
    else
    {
        // Each element is at least a WORD tag.
        LoadInChunks(ar, 2, [&ar](CObject **pElements, INT_PTR nCount) {
            for (INT_PTR i = 0; i < nCount; i++)
                pElements[i] = ar.ReadObject(nullptr);
        });
    }
}
