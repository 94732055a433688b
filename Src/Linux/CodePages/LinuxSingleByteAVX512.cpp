// Converts single-byte code pages to 16-bit text with AVX-512. Four registers contain the units of the bytes from 0x80
// on, so two permutes convert 32 bytes.
#include "LinuxCodePageAVX512.h"
#include "LinuxCodePageKernels.h"

namespace ORL {
namespace Linux {

namespace {

class UpperHalf
{
public:
    ORL_AVX512_INLINE explicit UpperHalf(const std::uint16_t* inUnits) noexcept
        : mFrom80(_mm512_loadu_si512(inUnits + 0x80)), mFromA0(_mm512_loadu_si512(inUnits + 0xA0)),
          mFromC0(_mm512_loadu_si512(inUnits + 0xC0)), mFromE0(_mm512_loadu_si512(inUnits + 0xE0))
    {
    }

    // Each permute uses the lower six bits of a byte as the index.
    ORL_AVX512_INLINE __m512i Convert(__m256i inBytes) const noexcept
    {
        const __m512i bytes = _mm512_cvtepu8_epi16(inBytes);
        const __mmask32 isUpper = _mm256_movepi8_mask(inBytes);
        const __mmask32 isLast = _mm512_mask_test_epi16_mask(isUpper, bytes, _mm512_set1_epi16(0x40));
        const __m512i units = _mm512_mask_mov_epi16(bytes, isUpper, _mm512_permutex2var_epi16(mFrom80, bytes, mFromA0));
        return _mm512_mask_mov_epi16(units, isLast, _mm512_permutex2var_epi16(mFromC0, bytes, mFromE0));
    }

private:
    __m512i mFrom80;
    __m512i mFromA0;
    __m512i mFromC0;
    __m512i mFromE0;
};

} // namespace

ORL_AVX512 std::size_t SinglesToUnitsAVX512(const SingleBytePage& inPage, const unsigned char* inText,
                                            std::size_t inBytes, unsigned short* outUnits) noexcept
{
    const UpperHalf upper(inPage.mUnits);
    std::size_t left = inBytes;
    for (; left >= kBlockUnits; left -= kBlockUnits, inText += kBlockUnits, outUnits += kBlockUnits) {
        const __m256i bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(inText));
        _mm512_storeu_si512(outUnits, upper.Convert(bytes));
    }
    if (left != 0) {
        const __m256i bytes = _mm512_castsi512_si256(LoadEnd(inText, left));
        _mm512_mask_storeu_epi16(outUnits, static_cast<__mmask32>(LowBits(left)), upper.Convert(bytes));
    }
    return inBytes;
}

} // namespace Linux
} // namespace ORL
