// Finds and copies ASCII sixteen elements at a time, with SSE2, which every 64-bit processor has.
#pragma once

#include <cstddef>
#include <emmintrin.h>

namespace ORL {
namespace Linux {

constexpr std::ptrdiff_t kStep = 16;

inline const __m128i* AsVector(const void* inAddress) noexcept
{
    return static_cast<const __m128i*>(inAddress);
}

// Returns a mask of the non-ASCII elements among the next sixteen. The first element is bit 0.
inline unsigned FindNonASCII(const unsigned char* inBytes) noexcept
{
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_loadu_si128(AsVector(inBytes))));
}

inline unsigned FindNonASCII(const unsigned short* inUnits) noexcept
{
    const __m128i mask = _mm_set1_epi16(static_cast<short>(0xFF80));
    const __m128i zero = _mm_setzero_si128();
    const __m128i low = _mm_cmpeq_epi16(_mm_and_si128(_mm_loadu_si128(AsVector(inUnits)), mask), zero);
    const __m128i high = _mm_cmpeq_epi16(_mm_and_si128(_mm_loadu_si128(AsVector(inUnits + 8)), mask), zero);
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(low, high))) ^ 0xFFFFu;
}

// Copies sixteen elements that have the same value in both encodings.
inline void CopySixteen(const unsigned char* inBytes, unsigned short* outUnits) noexcept
{
    const __m128i bytes = _mm_loadu_si128(AsVector(inBytes));
    __m128i* const units = reinterpret_cast<__m128i*>(outUnits);
    _mm_storeu_si128(units, _mm_unpacklo_epi8(bytes, _mm_setzero_si128()));
    _mm_storeu_si128(units + 1, _mm_unpackhi_epi8(bytes, _mm_setzero_si128()));
}

inline void CopySixteen(const unsigned short* inUnits, unsigned char* outBytes) noexcept
{
    const __m128i low = _mm_loadu_si128(AsVector(inUnits));
    const __m128i high = _mm_loadu_si128(AsVector(inUnits + 8));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(outBytes), _mm_packus_epi16(low, high));
}

} // namespace Linux
} // namespace ORL
