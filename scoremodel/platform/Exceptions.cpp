#include <scoremodel/platform/Exceptions.h>

#include <cerrno>
#include <cstring>

const char *CArchiveException::CauseName(int cause)
{
    switch (cause)
    {
    case none: return "none";
    case genericException: return "genericException";
    case readOnly: return "readOnly";
    case endOfFile: return "endOfFile";
    case writeOnly: return "writeOnly";
    case badIndex: return "badIndex";
    case badClass: return "badClass";
    case badSchema: return "badSchema";
    default: return "unknown";
    }
}

CArchiveException::CArchiveException(int cause, const std::string &detail)
    : CException(std::string("archive error (") + CauseName(cause) + ")" + (detail.empty() ? "" : ": " + detail)),
      m_cause(cause)
{
}

int CFileException::OsErrorToCause(long osError)
{
    switch (osError)
    {
    case 0: return none;
    case ENOENT: return fileNotFound;
    case ENOTDIR:
    case ENAMETOOLONG:
    case ELOOP: return badPath;
    case EMFILE:
    case ENFILE: return tooManyOpenFiles;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR: return accessDenied;
    case EBADF: return invalidFile;
    case ESPIPE:
    case EINVAL: return badSeek;
    case EIO: return hardIO;
    case EBUSY:
    case ETXTBSY: return sharingViolation;
    case ENOSPC:
    case EDQUOT: return diskFull;
    default: return genericException;
    }
}

const char *CFileException::CauseText(int cause)
{
    switch (cause)
    {
    case none: return "no error";
    case genericException: return "unspecified error";
    case fileNotFound: return "file not found";
    case badPath: return "invalid path";
    case tooManyOpenFiles: return "too many open files";
    case accessDenied: return "access denied";
    case invalidFile: return "invalid file handle";
    case removeCurrentDir: return "cannot remove the current folder";
    case directoryFull: return "folder full";
    case badSeek: return "cannot seek (not a regular file?)";
    case hardIO: return "input/output error";
    case sharingViolation: return "file in use";
    case lockViolation: return "region locked";
    case diskFull: return "disk full";
    case endOfFile: return "end of file reached";
    default: return "unknown cause";
    }
}

// The reason is errno's text when there is one, else the cause's, so that
// what() never ends at the file's name.
CFileException::CFileException(int cause, long osError, const std::string &fileName)
    : CException("file error on '" + fileName + "': " + (osError ? std::strerror((int)osError) : CauseText(cause))),
      m_cause(cause), m_lOsError(osError), m_strFileName(fileName)
{
}
