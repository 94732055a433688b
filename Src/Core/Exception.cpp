#include <ORLException.h>

namespace ORL {

Exception::Exception() = default;
Exception::Exception(const Exception&) = default;
Exception& Exception::operator=(const Exception&) = default;
Exception::~Exception() = default;

const char* Exception::what() const noexcept
{
    return "class ORL::Exception";
}

void Exception::Initialize()
{
}

void Exception::Terminate()
{
}

exClassNotFound::~exClassNotFound() = default;

const char* exClassNotFound::what() const noexcept
{
    return "Class not found.";
}

eNotADirectoryPath::~eNotADirectoryPath() = default;

const char* eNotADirectoryPath::what() const noexcept
{
    return "Directory object cannot construct with this path.";
}

eDirectoryNoLongerValid::~eDirectoryNoLongerValid() = default;

const char* eDirectoryNoLongerValid::what() const noexcept
{
    return "Directory no longer exists.";
}

eDirectoryNotListed::~eDirectoryNotListed() = default;

const char* eDirectoryNotListed::what() const noexcept
{
    return "Directory could not be listed whole.";
}

StartupException::StartupException(Result inResult) : mResult(inResult)
{
}

StartupException::~StartupException() = default;

const char* StartupException::what() const noexcept
{
    return "StartupException";
}

Result StartupException::GetResult() const
{
    return mResult;
}

NullInterfaceException::~NullInterfaceException() = default;

const char* NullInterfaceException::what() const noexcept
{
    return "A NULL interface pointer has been dereferenced.";
}

EventFailure::~EventFailure() = default;

const char* EventFailure::what() const noexcept
{
    return "ORL::EventFailure exception";
}

SuiteCallFailed::~SuiteCallFailed() = default;

const char* SuiteCallFailed::what() const noexcept
{
    return "A suite function failed!";
}

} // namespace ORL
