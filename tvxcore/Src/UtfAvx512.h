// What both directions of the AVX-512 kernel share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <immintrin.h>

#if !defined(__clang__)
// The compiler's own headers leave operands undefined that a full mask makes meaningless, and it warns of them here.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

// Byte compress and byte permute are the newest that the kernel needs.
#define TVX_AVX512 __attribute__((target("avx512f,avx512bw,avx512vl,avx512vbmi,avx512vbmi2,bmi,bmi2,lzcnt,popcnt")))
#define TVX_AVX512_INLINE TVX_AVX512 __attribute__((always_inline)) inline

namespace tvxcore {
namespace utf {

constexpr std::uint64_t LowBits(std::size_t inCount) noexcept
{
    return inCount >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << inCount) - 1;
}

} // namespace utf
} // namespace tvxcore
