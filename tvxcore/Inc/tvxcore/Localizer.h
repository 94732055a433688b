// The text of a ZString in the user's language.
#pragma once

#include <tvxcore/Config.h>
#include <tvxcore/String.h>

namespace tvxcore {
namespace config {

/// The host's catalogue. Operations may be called from any thread.
class TVXCORE_API Localizer
{
public:
    virtual ~Localizer();

    /// The text for a ZString ("$$$/" key "=" default text). The built-in localiser gives the default text; a text
    /// that is no ZString comes back whole.
    virtual UTF16String Localize(const char* inZString);

    /// The installed localiser, never null.
    static Localizer* Get();
};

/// Installs the host's localiser, which must outlive its installation, and gives back the earlier one. Null goes
/// back to the built-in one.
TVXCORE_API Localizer* InstallLocalizer(Localizer* inLocalizer);

} // namespace config
} // namespace tvxcore
