// Where errors that are raised by level, package and identifier go.
#pragma once

#include <tvxcore/Config.h>

#include <boost/function.hpp>
#include <cstddef>

namespace tvxcore {
namespace config {

/// Level 0 is an error, which a manager raises as an exception; level 1 is a warning, traced and swallowed.
enum ErrorLevel : int { kErrorLevel_Error = 0, kErrorLevel_Warning = 1 };

/// A value that stands for one parameter of an error message.
class TVXCORE_API ReplacementValue
{
public:
    ReplacementValue() noexcept;
    ~ReplacementValue();
};

/// The host's handler of errors. Operations may be called from any thread.
class TVXCORE_API ErrorManager
{
public:
    virtual ~ErrorManager();

    /// Memory for inBytes could not be had. True asks the caller to try once more.
    virtual bool OnAllocationFailure(std::size_t inBytes);

    /// Takes one error. inZString is "$$$/" key "=" default text. May return.
    virtual void ThrowError(ErrorLevel inLevel, const char* inZString, unsigned long inPackage, long inErrorID, bool,
                            const ReplacementValue&, const ReplacementValue&, const ReplacementValue&,
                            const ReplacementValue&) const;

    /// Runs inFunction and keeps an unhandled exception from leaving it.
    virtual long ExecuteFunctionWithTopLevelExceptionHandler(boost::function0<long> inFunction);

    /// The installed manager. With none installed: the built-in one when inAllowDefault is true, else null.
    static ErrorManager* Get(bool inAllowDefault);
};

/// Installs the host's manager, which must outlive its installation, and gives back the earlier one. Null goes
/// back to the built-in one, which writes one line to standard error and returns.
TVXCORE_API ErrorManager* InstallErrorManager(ErrorManager* inManager);

/// Hands the error to the installed manager. May return.
TVXCORE_API void ThrowError(ErrorLevel inLevel, const char* inZString, unsigned long inPackage, long inErrorID, bool,
                            const ReplacementValue&, const ReplacementValue&, const ReplacementValue&,
                            const ReplacementValue&);

} // namespace config
} // namespace tvxcore
