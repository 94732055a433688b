// Shared by both directions of the AVX-512 kernel.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <immintrin.h>

#if !defined(__clang__)
// The compiler's headers leave operands undefined where a full mask makes them irrelevant, and the compiler warns about
// those operands.
#  pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

// Byte compress and byte permute are the newest instructions that the kernel needs.
#define TVX_AVX512 __attribute__((target("avx512f,avx512bw,avx512vl,avx512vbmi,avx512vbmi2,bmi,bmi2,lzcnt,popcnt")))
#define TVX_AVX512_INLINE TVX_AVX512 __attribute__((always_inline)) inline

namespace tvxcore {
namespace utf {

constexpr std::uint64_t LowBits(std::size_t inCount) noexcept
{
    return inCount >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << inCount) - 1;
}

/// Returns whether a 64-byte access at inText crosses a page boundary. If the second page is absent or untouched, the
/// processor repeats a masked move in microcode although the mask excludes that page: more than 100 ns on Intel
/// processors, against 5 ns for a copy.
inline bool ReachesIntoAnotherPage(const void* inText) noexcept
{
    return (reinterpret_cast<std::uintptr_t>(inText) & 4095) > 4096 - 64;
}

/// Loads the last inBytes (fewer than 64) of the input, padded with zeros.
TVX_AVX512_INLINE __m512i LoadEnd(const void* inText, std::size_t inBytes) noexcept
{
    if (ReachesIntoAnotherPage(inText)) {
        unsigned char bytes[64] = {};
        std::memcpy(bytes, inText, inBytes);
        return _mm512_loadu_si512(bytes);
    }
    return _mm512_maskz_loadu_epi8(LowBits(inBytes), inText);
}

/// Stores the first inBytes of a register, up to 64.
TVX_AVX512_INLINE void StoreEnd(void* outText, __m512i inRegister, std::size_t inBytes) noexcept
{
    if (ReachesIntoAnotherPage(outText)) {
        unsigned char bytes[64];
        _mm512_storeu_si512(bytes, inRegister);
        std::memcpy(outText, bytes, inBytes);
    } else {
        _mm512_mask_storeu_epi8(outText, LowBits(inBytes), inRegister);
    }
}

} // namespace utf
} // namespace tvxcore
