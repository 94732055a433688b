// What the small block allocator needs of the system.
#pragma once

#include <tvxcore/SmallBlockCache.h>

#include <cstddef>

namespace tvxcore {
namespace utility {
namespace Platform {

/// Fresh zeroed memory of the system, readable and writable. inAlignment is a power of two. Null when there is none.
void* MapPages_Impl(std::size_t inSize, std::size_t inAlignment) noexcept;

/// Gives memory of MapPages_Impl back, with the same size.
void UnmapPages_Impl(void* inPages, std::size_t inSize) noexcept;

/// Has inEnded called on each thread that ends after WatchThisThread_Impl, with what was given there. To be called
/// once, before that. False when the system cannot.
bool WatchThreadEnds_Impl(void (*inEnded)(SmallBlocks::CacheHead* inCache)) noexcept;
bool WatchThisThread_Impl(SmallBlocks::CacheHead* inCache) noexcept;

/// Ends the watch on all threads: nothing of ours is called when they end.
void ForgetThreadEnds_Impl() noexcept;

/// Has inBefore called before the process is forked, and inAfter after it in both processes. Nothing where processes
/// are not forked.
void WatchForks_Impl(void (*inBefore)(), void (*inAfter)()) noexcept;

/// True while this library is unloaded from a process that goes on without it. For our static destructors: these run at the
/// end of the process too, where other threads may still use the library.
bool IsUnloading_Impl() noexcept;

} // namespace Platform
} // namespace utility
} // namespace tvxcore
