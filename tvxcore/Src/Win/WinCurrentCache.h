// A thread-local pointer in the image's TLS section. The compiler's emulated TLS needs a call, a lock and memory;
// native TLS needs three loads.
#pragma once

#include <tvxcore/SmallBlockCache.h>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

/// Returns the calling thread's copy.
inline CacheHead*& CurrentCacheWord() noexcept
{
    // At offset 0x58 the thread's TEB points to the TLS blocks of all images; the linker's _tls_index is this image's
    // index.
    char* address;
    unsigned long long index;
    __asm__("movl _tls_index(%%rip), %k1\n\t"
            "movq %%gs:0x58, %0\n\t"
            "movq (%0,%1,8), %0\n\t"
            "leaq tvxcoreThreadCache@SECREL32(%0), %0"
            : "=&r"(address), "=&r"(index));
    return *reinterpret_cast<CacheHead**>(address);
}

inline CacheHead* GetCurrentCache() noexcept
{
    return CurrentCacheWord();
}

inline void SetCurrentCache(CacheHead* inCache) noexcept
{
    CurrentCacheWord() = inCache;
}

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
