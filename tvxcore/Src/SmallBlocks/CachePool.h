// Assigns caches to threads.
#pragma once

#include <SmallBlocks/Guard.h>
#include <SmallBlocks/ThreadCache.h>

#include <cstddef>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

/// Returns the calling thread's cache; creates one if needed. Returns null if the thread has none: it is exiting and
/// has returned its cache, or there is no memory for one. The thread then uses the shared cache.
ThreadCache* CacheOfThisThread() noexcept;

/// Locks and uses the shared cache, for threads without a cache. The shared cache starts empty in static memory, so it
/// works even if no memory can be mapped.
class SharedCacheUse
{
public:
    SharedCacheUse() noexcept;
    ~SharedCacheUse();
    SharedCacheUse(const SharedCacheUse&) = delete;
    SharedCacheUse& operator=(const SharedCacheUse&) = delete;

    ThreadCache* operator->() const noexcept;

private:
    const Guard mGuard;
};

/// Frees the memory of every cache and cluster if no block is allocated, so that unloading the library leaks nothing.
/// Otherwise does nothing: the blocks stay valid and may still be freed.
void ReleaseAllIfUnused() noexcept;

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
