// The block cache factory that the host has set, guarded by the foundation lock.
#pragma once

#include <ORLFile.h>

namespace ORL {
namespace Foundation {

/// Returns a counted reference to the factory, or null if none is set. Takes the foundation lock.
InterfaceRef<IFileBufferFactory, IFileBufferFactory> GetFileBufferFactory();

} // namespace Foundation
} // namespace ORL
