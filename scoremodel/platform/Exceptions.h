// The platform's exceptions, thrown by value and caught by reference.
//
// The model itself reports failures through 0, -1 or null results; only the
// platform throws: archive errors, invalid arguments (a bad array index) and
// file errors. Out of memory is std::bad_alloc.
#pragma once

#include <scoremodel/Export.h>

#include <exception>
#include <string>

class SCOREMODEL_API CException : public std::exception
{
public:
    explicit CException(std::string message = "platform exception") : m_message(std::move(message)) {}
    const char *what() const noexcept override { return m_message.c_str(); }

protected:
    std::string m_message;
};

// A failure while storing or loading an archive. `m_cause` says which.
class SCOREMODEL_API CArchiveException : public CException
{
public:
    enum
    {
        none,
        genericException,
        readOnly,
        endOfFile,
        writeOnly,
        badIndex,
        badClass,
        badSchema
    };

    explicit CArchiveException(int cause = none, const std::string &detail = std::string());

    // A short English name of a cause ("endOfFile", "badClass"...).
    static const char *CauseName(int cause);

    int m_cause;
};

// An argument out of range: a bad array index, a null where an object is needed.
class SCOREMODEL_API CInvalidArgException : public CException
{
public:
    explicit CInvalidArgException(const std::string &detail = "invalid argument") : CException(detail) {}
};

// An operation the object does not support (a write to a read-only file).
class SCOREMODEL_API CNotSupportedException : public CException
{
public:
    explicit CNotSupportedException(const std::string &detail = "operation not supported") : CException(detail) {}
};

// A failure of the operating system's file interface. `m_lOsError` is errno.
class SCOREMODEL_API CFileException : public CException
{
public:
    enum
    {
        none,
        genericException,
        fileNotFound,
        badPath,
        tooManyOpenFiles,
        accessDenied,
        invalidFile,
        removeCurrentDir,
        directoryFull,
        badSeek,
        hardIO,
        sharingViolation,
        lockViolation,
        diskFull,
        endOfFile
    };

    CFileException(int cause, long osError, const std::string &fileName);

    // The platform cause that best matches an errno value.
    static int OsErrorToCause(long osError);
    // A short readable English reason for a cause ("disk full"); what()
    // uses it when there is no errno.
    static const char *CauseText(int cause);

    int m_cause;
    long m_lOsError;
    std::string m_strFileName;
};
