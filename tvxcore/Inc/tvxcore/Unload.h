// Process state queries for libraries that destroy their static objects on unload.
#pragma once

#include <tvxcore/Config.h>

namespace tvxcore {
namespace utility {

/// Returns whether the library that exports a symbol belongs to the program: linked into it, loaded together with it,
/// or loaded later with global visibility. Such a library is not unloaded before the process exits. inExported is the
/// address of an exported function; returns true if the library cannot be determined. Call this function while the
/// library is loaded, not while it is being unloaded. Thread-safe.
TVXCORE_API bool BelongsToProgram(const void* inExported) noexcept;

/// Returns whether process exit has already stopped all other threads, at arbitrary points. The caller must then not
/// wait for them, or for a lock that they may hold, including that of the C++ heap. Always false on Linux, where
/// threads run until the very end. Thread-safe.
TVXCORE_API bool AreOtherThreadsStopped() noexcept;

} // namespace utility
} // namespace tvxcore
