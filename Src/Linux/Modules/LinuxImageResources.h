// Floor: System
// The resources of a module that the loader has mapped.
#pragma once

#include <ORLNativeHandles.h>
#include <Resources/ResourceReaders.h>

#include <vector>

namespace ORL {
namespace Linux {

/// The compiled resource files inside a loaded module, where the loader has mapped them. inModule is a handle of the
/// loader's, or null for the program itself.
std::vector<Resources::Bytes> FindImageResources(HINSTANCE inModule);

} // namespace Linux
} // namespace ORL
