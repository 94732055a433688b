// Raises errors, each with a level, a package and an identifier, and passes them to the host's handler.
#pragma once

#include <tvxcore/Config.h>

#include <boost/function.hpp>
#include <cstddef>

namespace tvxcore {
namespace config {

/// Level 0 is an error, which a host may throw as an exception; level 1 is a warning, which is only reported.
enum ErrorLevel : int { kErrorLevel_Error = 0, kErrorLevel_Warning = 1 };

/// The value of one parameter of an error message.
class TVXCORE_API ReplacementValue
{
public:
    ReplacementValue() noexcept;
    ~ReplacementValue();
};

/// The host's error handler.
///
/// Owner:    the host. The handler must live as long as it is installed.
/// Threads:  its functions are called on any thread, and concurrently.
/// Failure:  exceptions from a handler propagate to the caller that raised the error.
class TVXCORE_API ErrorManager
{
public:
    virtual ~ErrorManager();

    /// Called if inBytes of memory cannot be allocated. Returns true to request another attempt.
    virtual bool OnAllocationFailure(std::size_t inBytes);

    /// Handles one error. inZString has the form "$$$/" key "=" default text. May return instead of throwing.
    /// The built-in manager writes one line to standard error: the string that the installed localiser returns, or the
    /// default text if the localiser throws or itself raises the error.
    virtual void ThrowError(ErrorLevel inLevel, const char* inZString, unsigned long inPackage, long inErrorID, bool,
                            const ReplacementValue&, const ReplacementValue&, const ReplacementValue&,
                            const ReplacementValue&) const;

    /// Calls inFunction and returns its result. A host's manager may catch what it throws; the built-in one does not.
    virtual long ExecuteFunctionWithTopLevelExceptionHandler(boost::function0<long> inFunction);

    /// Returns the installed manager. If none is installed, returns the built-in one if inAllowDefault is true, else
    /// null.
    static ErrorManager* Get(bool inAllowDefault);
};

/// Installs the host's manager and returns the previous one. Null restores the built-in manager, which writes one line
/// to standard error and returns. Thread-safe.
TVXCORE_API ErrorManager* InstallErrorManager(ErrorManager* inManager);

/// Passes the error to the installed manager. Returns if the manager returns. Thread-safe.
TVXCORE_API void ThrowError(ErrorLevel inLevel, const char* inZString, unsigned long inPackage, long inErrorID, bool,
                            const ReplacementValue&, const ReplacementValue&, const ReplacementValue&,
                            const ReplacementValue&);

} // namespace config
} // namespace tvxcore
