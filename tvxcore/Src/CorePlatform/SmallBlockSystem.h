// The system functions that the small block allocator needs.
#pragma once

#include <tvxcore/SmallBlockCache.h>

#include <cstddef>

namespace tvxcore {
namespace utility {
namespace Platform {

/// Maps new zeroed memory, readable and writable. inAlignment is a power of two. Returns null if out of memory.
void* MapPages_Impl(std::size_t inSize, std::size_t inAlignment) noexcept;

/// Unmaps memory from MapPages_Impl. inSize must be the same.
void UnmapPages_Impl(void* inPages, std::size_t inSize) noexcept;

/// Registers inEnded. Each thread that has called WatchThisThread_Impl then calls inEnded when it exits, with the same
/// inCache. Register once, before any WatchThisThread_Impl. Both return false on failure.
bool WatchThreadEnds_Impl(void (*inEnded)(SmallBlocks::CacheHead* inCache)) noexcept;
bool WatchThisThread_Impl(SmallBlocks::CacheHead* inCache) noexcept;

/// Stops watching all threads: their exits no longer call a function of this library.
void ForgetThreadEnds_Impl() noexcept;

/// Registers inBefore, which is called before the process forks, and inAfter, which is called after it in both
/// processes. Does nothing on systems without fork.
void WatchForks_Impl(void (*inBefore)(), void (*inAfter)()) noexcept;

/// Returns whether this library is being unloaded from a process that continues. Static destructors call it: they also
/// run at process exit, when other threads may still use the library.
bool IsUnloading_Impl() noexcept;

} // namespace Platform
} // namespace utility
} // namespace tvxcore
