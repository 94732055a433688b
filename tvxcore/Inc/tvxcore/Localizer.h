// Translation of ZStrings into the user's language.
#pragma once

#include <tvxcore/Config.h>
#include <tvxcore/String.h>

namespace tvxcore {
namespace config {

/// Translates strings. A host derives its message catalogue from this class.
///
/// Owner:    the host. The catalogue must live as long as it is installed.
/// Threads:  its functions are called on any thread, and concurrently.
/// Failure:  exceptions propagate to the caller.
class TVXCORE_API Localizer
{
public:
    virtual ~Localizer();

    /// Returns the translation of a ZString ("$$$/" key "=" default text). The built-in localiser returns the default
    /// text, and a string that is not a ZString unchanged.
    virtual UTF16String Localize(const char* inZString);

    /// Returns the installed localiser. Never null.
    static Localizer* Get();
};

/// Installs the host's localiser, which must live as long as it is installed, and returns the previous one. Null
/// restores the built-in one. Thread-safe.
TVXCORE_API Localizer* InstallLocalizer(Localizer* inLocalizer);

} // namespace config
} // namespace tvxcore
