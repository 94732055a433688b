// What a library that may be unloaded has to know when its static objects are destroyed.
#pragma once

#include <tvxcore/Config.h>

namespace tvxcore {
namespace utility {

/// Whether the library that exports a symbol belongs to the program itself: linked into it, loaded together with it, or loaded
/// later for all to see. Such a library is not unloaded before the process ends. inExported is the address of an exported
/// function; true if that cannot be told. Call it while the library is loaded, not when it is unloaded. Thread-safe.
TVXCORE_API bool BelongsToProgram(const void* inExported) noexcept;

/// True once the system has begun to end the process and has stopped its other threads, wherever they were: nothing may wait
/// for them then, nor for a lock that they may hold, that of the C++ heap included. Always false on Linux, where threads run
/// until the very end. Thread-safe.
TVXCORE_API bool AreOtherThreadsStopped() noexcept;

} // namespace utility
} // namespace tvxcore
