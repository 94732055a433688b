// The word that leads a thread to its cache.
#pragma once

#include <tvxcore/SmallBlockCache.h>

#if !TVXCORE_HAS_SHARED_THREAD_LOCALS
#  include <Win/WinCurrentCache.h>
#endif

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

/// What the word shows on a thread that has no cache yet, and on one that has given its cache back. Both send every
/// call the slow way.
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
