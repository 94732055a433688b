// Floor: Core
// The exceptions of the library, for errors that a Result cannot report.
#pragma once

#include <ORLConfig.h>
#include <ORLResult.h>

#include <exception>

namespace ORL {

/// The base class of the library's exceptions.
///
/// Owner:    thrown by value.
/// Threads:  thread-safe: the objects are values, and what() returns a static string in all classes of this header.
/// Failure:  no member function throws.
class ORL_API Exception : public std::exception
{
public:
    Exception();
    Exception(const Exception&);
    Exception& operator=(const Exception&);
    ~Exception() override;
    const char* what() const noexcept override;

    /// Called when the library starts and stops. Both do nothing.
    static void Initialize();
    static void Terminate();
};

/// No class is registered under the requested identifier.
class ORL_API exClassNotFound : public Exception
{
public:
    ~exClassNotFound() override;
    const char* what() const noexcept override;
};

/// A Directory was constructed from a path that is not a directory.
class ORL_API eNotADirectoryPath : public Exception
{
public:
    ~eNotADirectoryPath() override;
    const char* what() const noexcept override;
};

/// The directory of a Directory object no longer exists.
class ORL_API eDirectoryNoLongerValid : public Exception
{
public:
    ~eDirectoryNoLongerValid() override;
    const char* what() const noexcept override;
};

/// A directory could not be listed completely: the system aborted the listing or was out of resources.
class ORL_API eDirectoryNotListed : public Exception
{
public:
    ~eDirectoryNotListed() override;
    const char* what() const noexcept override;
};

/// Thrown by hosts whose start-up fails with a Result. The library does not throw this exception.
class ORL_API StartupException : public Exception
{
public:
    explicit StartupException(Result inResult);
    ~StartupException() override;
    const char* what() const noexcept override;
    Result GetResult() const; ///< returns the result of the failed start-up

private:
    Result mResult;
};

/// A null InterfaceRef was dereferenced.
class ORL_API NullInterfaceException : public Exception
{
public:
    ~NullInterfaceException() override;
    const char* what() const noexcept override;
};

/// The system could not create or signal an event.
class ORL_API EventFailure : public Exception
{
public:
    ~EventFailure() override;
    const char* what() const noexcept override;
};

/// Thrown by hosts whose call to a suite function fails. The library does not throw this exception.
class ORL_API SuiteCallFailed : public Exception
{
public:
    ~SuiteCallFailed() override;
    const char* what() const noexcept override;
};

} // namespace ORL
