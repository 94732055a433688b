// Shared by the conversions that use AVX-512.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <immintrin.h>

#if !defined(__clang__)
// GCC's headers leave operands undefined where a full mask makes them irrelevant, and GCC warns about these
// operands.
#  pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

// avx512vbmi2 is needed for byte compress, avx512vbmi for byte permute.
#define ORL_AVX512 __attribute__((target("avx512f,avx512bw,avx512vl,avx512vbmi,avx512vbmi2,bmi,bmi2,popcnt")))
#define ORL_AVX512_INLINE ORL_AVX512 __attribute__((always_inline)) inline

namespace ORL {
namespace Linux {

constexpr std::size_t kBlock = 64; // bytes in a register
constexpr std::size_t kBlockUnits = kBlock / sizeof(unsigned short);
constexpr std::uint64_t kAll = ~std::uint64_t{0};

// inCount must be in [1, 64].
inline std::uint64_t LowBits(std::size_t inCount) noexcept
{
    return kAll >> (64 - inCount);
}

// Loads the last inBytes bytes of the text, padded with zeros. Near the end of a page it copies them first: a masked
// load that extends into an unmapped page is correct, but takes over 100 ns on Intel processors.
ORL_AVX512_INLINE __m512i LoadEnd(const void* inText, std::size_t inBytes) noexcept
{
    if ((reinterpret_cast<std::uintptr_t>(inText) & 4095) > 4096 - kBlock) {
        unsigned char bytes[kBlock] = {};
        std::memcpy(bytes, inText, inBytes);
        return _mm512_loadu_si512(bytes);
    }
    return _mm512_maskz_loadu_epi8(LowBits(inBytes), inText);
}

} // namespace Linux
} // namespace ORL
