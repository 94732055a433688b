#include "LinuxRegistryTrace.h"

#include <tvxcore/Trace.h>

namespace ORL {
namespace Registry {
namespace Linux {

namespace {

tvxcore::debug::TraceSite sSite("ORL.Registry", 0, true);

} // namespace

void TraceSetAside(const Platform::SetAside& inSetAside)
{
    if (sSite.IsEnabled()) {
        tvxcore::debug::TraceLine(sSite) << "A damaged settings database was set aside as \""
                                         << inSetAside.mFile.c_str() << "\": " << inSetAside.mReason.c_str() << "\n";
    }
}

void TraceOpenError(const std::string& inFile, SystemError inError)
{
    if (sSite.IsEnabled()) {
        tvxcore::debug::TraceLine(sSite) << "The settings database \"" << inFile.c_str() << "\" cannot be used: error "
                                         << inError << "\n";
    }
}

} // namespace Linux
} // namespace Registry
} // namespace ORL
