// Whether blocks go to the system's allocator one by one.
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

/// AddressSanitizer sees overruns, late uses and leaks only of blocks that are its own.
#if defined(TVXCORE_UNDER_ADDRESS_SANITIZER)
inline constexpr bool kBlocksAreTheSystems = true;
#else
inline constexpr bool kBlocksAreTheSystems = false;
#endif

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
