// Shared by both directions of the AVX2 kernel.
#pragma once

#include <immintrin.h>

#define TVX_AVX2 __attribute__((target("avx2,bmi,popcnt")))
#define TVX_AVX2_INLINE TVX_AVX2 __attribute__((always_inline)) inline

namespace tvxcore {
namespace utf {

/// Shifts all bytes up by kPlaces positions: each position holds the byte kPlaces before it, the lowest kPlaces hold 0.
template <int kPlaces>
TVX_AVX2_INLINE __m256i Before(__m256i inBytes)
{
    return _mm256_alignr_epi8(inBytes, _mm256_permute2x128_si256(inBytes, inBytes, 0x08), 16 - kPlaces);
}

} // namespace utf
} // namespace tvxcore
