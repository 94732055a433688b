// A thread-local word in the image's own thread-local section. The compiler would keep it in an emulation that takes a
// call, a lock and memory of its own; the loader's way takes three loads.
#pragma once

#include <tvxcore/SmallBlockCache.h>

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

/// The calling thread's copy.
inline CacheHead*& CurrentCacheWord() noexcept
{
    // The system's record of the thread holds at 0x58 the blocks of all images; this image's index among them is the
    // linker's _tls_index.
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
