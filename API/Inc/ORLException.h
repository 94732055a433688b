// Floor: Core
// The exceptions of the library: errors that no Result can carry.
#pragma once

#include <ORLConfig.h>
#include <ORLResult.h>

#include <exception>

namespace ORL {

/// The base of all of them.
class ORL_API Exception : public std::exception
{
public:
    Exception();
    Exception(const Exception&);
    Exception& operator=(const Exception&);
    ~Exception() override;
    const char* what() const noexcept override;

    /// Actions of the start and the stop of the library. There is nothing to do in them.
    static void Initialize();
    static void Terminate();
};

/// No class is registered under the identifier that was asked for.
class ORL_API exClassNotFound : public Exception
{
public:
    ~exClassNotFound() override;
    const char* what() const noexcept override;
};

/// A Directory was made from a path that cannot name a directory.
class ORL_API eNotADirectoryPath : public Exception
{
public:
    ~eNotADirectoryPath() override;
    const char* what() const noexcept override;
};

/// The directory behind a Directory is gone.
class ORL_API eDirectoryNoLongerValid : public Exception
{
public:
    ~eDirectoryNoLongerValid() override;
    const char* what() const noexcept override;
};

/// A directory could not be listed whole: the system broke off, or had no room for it.
class ORL_API eDirectoryNotListed : public Exception
{
public:
    ~eDirectoryNotListed() override;
    const char* what() const noexcept override;
};

/// For hosts, whose start-up failed with a Result. The library does not throw it.
class ORL_API StartupException : public Exception
{
public:
    explicit StartupException(Result inResult);
    ~StartupException() override;
    const char* what() const noexcept override;
    Result GetResult() const;

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

/// The system refused an event or an operation on it.
class ORL_API EventFailure : public Exception
{
public:
    ~EventFailure() override;
    const char* what() const noexcept override;
};

/// For hosts, whose call of a suite function failed. The library does not throw it.
class ORL_API SuiteCallFailed : public Exception
{
public:
    ~SuiteCallFailed() override;
    const char* what() const noexcept override;
};

} // namespace ORL
