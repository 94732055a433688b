// Whether every block comes from the C library's allocator.
#pragma once

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

#if defined(__SANITIZE_ADDRESS__)
#  define TVXCORE_UNDER_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#  if __has_feature(address_sanitizer)
#    define TVXCORE_UNDER_ADDRESS_SANITIZER 1
#  endif
#endif

/// AddressSanitizer detects overruns, use after free and leaks only for blocks from its own allocator.
#if defined(TVXCORE_UNDER_ADDRESS_SANITIZER)
inline constexpr bool kBlocksAreTheSystems = true;
#else
inline constexpr bool kBlocksAreTheSystems = false;
#endif

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
