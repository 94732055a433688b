// Floor: System
// Finds the resources of a module that the loader has mapped.
#pragma once

#include <ORLNativeHandles.h>
#include <Resources/ResourceReaders.h>

#include <vector>

namespace ORL {
namespace Linux {

/// Returns the compiled resource files in a loaded module, without copying their mapped bytes. inModule is a handle of
/// the loader, or null for the program itself.
std::vector<Resources::Bytes> FindImageResources(HINSTANCE inModule);

} // namespace Linux
} // namespace ORL
