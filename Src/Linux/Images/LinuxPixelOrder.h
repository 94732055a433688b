// Floor: System
// Converts pixels from the byte order of PNG files, red first, to that of 32-bit pixels, blue first.
#pragma once

#include <cstddef>
#include <cstring>
#include <emmintrin.h>

namespace ORL {
namespace Linux {

/// Converts pixels of 4 bytes. The blocks must be identical or disjoint.
inline void SwapRedAndBlue(const unsigned char* inPixels, unsigned char* outPixels, std::size_t inCount) noexcept
{
    const __m128i greenAndAlpha = _mm_set1_epi32(static_cast<int>(0xFF00FF00));
    std::size_t i = 0;
    for (; i + 4 <= inCount; i += 4) {
        const __m128i pixels = _mm_loadu_si128(reinterpret_cast<const __m128i*>(inPixels + i * 4));
        const __m128i others = _mm_andnot_si128(greenAndAlpha, pixels);
        const __m128i swapped = _mm_or_si128(_mm_slli_epi32(others, 16), _mm_srli_epi32(others, 16));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(outPixels + i * 4),
                         _mm_or_si128(_mm_and_si128(greenAndAlpha, pixels), swapped));
    }
    for (; i < inCount; ++i) {
        const unsigned char pixel[] = {inPixels[i * 4 + 2], inPixels[i * 4 + 1], inPixels[i * 4], inPixels[i * 4 + 3]};
        std::memcpy(outPixels + i * 4, pixel, 4);
    }
}

/// Converts pixels of 3 bytes to opaque pixels of 4 bytes.
inline void ExpandToOpaque(const unsigned char* inPixels, unsigned char* outPixels, std::size_t inCount) noexcept
{
    for (std::size_t i = 0; i < inCount; ++i) {
        const unsigned char pixel[] = {inPixels[i * 3 + 2], inPixels[i * 3 + 1], inPixels[i * 3], 0xFF};
        std::memcpy(outPixels + i * 4, pixel, 4);
    }
}

} // namespace Linux
} // namespace ORL
