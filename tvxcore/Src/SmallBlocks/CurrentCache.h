// The thread-local pointer to a thread's cache.
#pragma once

#include <tvxcore/SmallBlockCache.h>

#if !TVXCORE_HAS_SHARED_THREAD_LOCALS
#  include <Win/WinCurrentCache.h>
#endif

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

/// Placeholders for a thread that has no cache yet, and for one that has returned its cache. Both placeholders send
/// every call to the slow path.
extern CacheHead sNewThreadCache;
extern CacheHead sEndedThreadCache;

#if TVXCORE_HAS_SHARED_THREAD_LOCALS
inline CacheHead* GetCurrentCache() noexcept
{
    return sThreadCache;
}

inline void SetCurrentCache(CacheHead* inCache) noexcept
{
    sThreadCache = inCache;
}
#endif

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
