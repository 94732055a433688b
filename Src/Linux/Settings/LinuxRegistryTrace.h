// Floor: System
// Traces events of the stores in the category "ORL.Registry".
#pragma once

#include <Platform/Registry.h>

namespace ORL {
namespace Registry {
namespace Linux {

void TraceSetAside(const Platform::SetAside& inSetAside);

/// Reports a store that cannot be opened.
void TraceOpenError(const std::string& inFile, SystemError inError);

} // namespace Linux
} // namespace Registry
} // namespace ORL
