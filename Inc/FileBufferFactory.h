// Floor: Files
// The factory that the host has set. It is kept with the start and stop of the library, whose lock guards it.
#pragma once

#include <ORLFile.h>

namespace ORL {
namespace Foundation {

/// A counted copy; null when none is set. Takes the foundation lock.
InterfaceRef<IFileBufferFactory, IFileBufferFactory> GetFileBufferFactory();

} // namespace Foundation
} // namespace ORL
