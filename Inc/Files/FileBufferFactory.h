// The factory that the host has set. The foundation lock guards the factory.
#pragma once

#include <ORLFile.h>

namespace ORL {
namespace Foundation {

/// Returns a counted copy, or null if none is set. Takes the foundation lock.
InterfaceRef<IFileBufferFactory, IFileBufferFactory> GetFileBufferFactory();

} // namespace Foundation
} // namespace ORL
