// Floor: System
// What the system's loader tells this library about itself.
#pragma once

#include <ORLModule.h>

namespace ORL {

/// At load, once: makes the library's own module of its handle.
void OnLibraryLoad(HINSTANCE inModule);

/// At unload, once: lets the library's own module go.
void OnLibraryUnload();

} // namespace ORL
