// Floor: System
// Reverses the filters of PNG rows.
#pragma once

#include <cstddef>
#include <cstring>
#include <emmintrin.h>

namespace ORL {
namespace Linux {

/// Reverses the filter of a row in place, for pixels of kBytes bytes (3 or 4). inAbove is the row above, already
/// restored. At least one byte after each of the two rows must be readable. Returns false for an unknown filter.
template <std::size_t kBytes>
class RowFilter
{
public:
    static bool Restore(unsigned char inFilter, unsigned char* ioRow, const unsigned char* inAbove,
                        std::size_t inSize) noexcept
    {
        switch (inFilter) {
        case 0: return true;
        case 1: RestoreSub(ioRow, inSize); return true;
        case 2: RestoreUp(ioRow, inAbove, inSize); return true;
        case 3: RestoreAverage(ioRow, inAbove, inSize); return true;
        case 4: RestorePaeth(ioRow, inAbove, inSize); return true;
        default: return false;
        }
    }

private:
    // Also reads the byte after a pixel of 3 bytes. This byte has no effect, as the lanes are computed independently.
    static __m128i Load(const unsigned char* inPixel) noexcept
    {
        int pixel;
        std::memcpy(&pixel, inPixel, sizeof(pixel));
        return _mm_cvtsi32_si128(pixel);
    }

    static void Store(unsigned char* outPixel, __m128i inPixel) noexcept
    {
        const int pixel = _mm_cvtsi128_si32(inPixel);
        std::memcpy(outPixel, &pixel, kBytes);
    }

    static void RestoreSub(unsigned char* ioRow, std::size_t inSize) noexcept
    {
        __m128i left = _mm_setzero_si128();
        for (std::size_t i = 0; i < inSize; i += kBytes) {
            left = _mm_add_epi8(left, Load(ioRow + i));
            Store(ioRow + i, left);
        }
    }

    static void RestoreUp(unsigned char* ioRow, const unsigned char* inAbove, std::size_t inSize) noexcept
    {
        std::size_t i = 0;
        for (; i + 16 <= inSize; i += 16) {
            auto* const place = reinterpret_cast<__m128i*>(ioRow + i);
            const __m128i above = _mm_loadu_si128(reinterpret_cast<const __m128i*>(inAbove + i));
            _mm_storeu_si128(place, _mm_add_epi8(_mm_loadu_si128(place), above));
        }
        for (; i < inSize; ++i) {
            ioRow[i] = static_cast<unsigned char>(ioRow[i] + inAbove[i]);
        }
    }

    // The processor's average instruction rounds up; the PNG filter rounds down.
    static void RestoreAverage(unsigned char* ioRow, const unsigned char* inAbove, std::size_t inSize) noexcept
    {
        const __m128i one = _mm_set1_epi8(1);
        __m128i left = _mm_setzero_si128();
        for (std::size_t i = 0; i < inSize; i += kBytes) {
            const __m128i above = Load(inAbove + i);
            const __m128i odd = _mm_and_si128(_mm_xor_si128(left, above), one);
            const __m128i average = _mm_sub_epi8(_mm_avg_epu8(left, above), odd);
            left = _mm_add_epi8(average, Load(ioRow + i));
            Store(ioRow + i, left);
        }
    }

    static __m128i Absolute(__m128i inNumbers) noexcept
    {
        return _mm_max_epi16(inNumbers, _mm_sub_epi16(_mm_setzero_si128(), inNumbers));
    }

    static __m128i Choose(__m128i inMask, __m128i inIfSet, __m128i inElse) noexcept
    {
        return _mm_or_si128(_mm_and_si128(inMask, inIfSet), _mm_andnot_si128(inMask, inElse));
    }

    // Predicts each byte as left, above or corner, the nearest to left + above - corner; the first of them on a tie.
    static void RestorePaeth(unsigned char* ioRow, const unsigned char* inAbove, std::size_t inSize) noexcept
    {
        const __m128i zero = _mm_setzero_si128();
        __m128i left = zero;
        __m128i corner = zero;
        for (std::size_t i = 0; i < inSize; i += kBytes) {
            const __m128i above = _mm_unpacklo_epi8(Load(inAbove + i), zero);
            const __m128i toLeftSigned = _mm_sub_epi16(above, corner);
            const __m128i toAboveSigned = _mm_sub_epi16(left, corner);
            const __m128i toLeft = Absolute(toLeftSigned);
            const __m128i toAbove = Absolute(toAboveSigned);
            const __m128i toCorner = Absolute(_mm_add_epi16(toLeftSigned, toAboveSigned));
            const __m128i least = _mm_min_epi16(toCorner, _mm_min_epi16(toLeft, toAbove));
            const __m128i nearest =
                Choose(_mm_cmpeq_epi16(least, toLeft), left, Choose(_mm_cmpeq_epi16(least, toAbove), above, corner));
            const __m128i pixel = _mm_add_epi8(_mm_packus_epi16(nearest, nearest), Load(ioRow + i));
            Store(ioRow + i, pixel);
            left = _mm_unpacklo_epi8(pixel, zero);
            corner = above;
        }
    }
};

} // namespace Linux
} // namespace ORL
