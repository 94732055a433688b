// Floor: System
// What the store reports to the trace, under category "ORL.Registry".
#pragma once

#include <Platform/Registry.h>

namespace ORL {
namespace Registry {
namespace Linux {

void TraceSetAside(const Platform::SetAside& inSetAside);

/// A store that cannot be opened.
void TraceRefusal(const std::string& inFile, SystemError inError);

} // namespace Linux
} // namespace Registry
} // namespace ORL
