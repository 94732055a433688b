// Which thread has which cache.
#pragma once

#include <SmallBlocks/Guard.h>
#include <SmallBlocks/ThreadCache.h>

#include <cstddef>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

/// The calling thread's cache, made if need be. Null when the thread has none: it is ending and has given it back, or
/// there is no memory for one. Then the shared cache serves it.
ThreadCache* CacheOfThisThread() noexcept;

/// The cache of the threads without one of their own, one after the other. Nothing is in it at first, and its memory is
/// static, so it serves where nothing else can.
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

/// Frees the memory of every cache and cluster when no block is outstanding, so that nothing stays behind when the
/// library is unloaded. Otherwise nothing happens: the blocks stay valid, and may still be given back.
void ReleaseAllIfUnused() noexcept;

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
