// Notifications from the system's loader about this library.
#pragma once

#include <ORLModule.h>

namespace ORL {

/// Called once, at load: creates the library's own module from its handle.
void OnLibraryLoad(HINSTANCE inModule);

/// Called once, at unload: releases the library's own module.
void OnLibraryUnload();

} // namespace ORL
