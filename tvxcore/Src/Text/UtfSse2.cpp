// Converts sixteen ASCII characters per step, all others one by one. Runs on every x86-64 processor.
#include <Text/Utf.h>
#include <Text/UtfCharacter.h>

#include <emmintrin.h>

namespace tvxcore {
namespace utf {

namespace {

constexpr std::ptrdiff_t kStep = 16;

// Widens 16 bytes if they are ASCII.
bool WidenStep(const unsigned char* inText, unsigned short* outText) noexcept
{
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(inText));
    if (_mm_movemask_epi8(bytes) != 0) {
        return false;
    }
    const __m128i zero = _mm_setzero_si128();
    _mm_storeu_si128(reinterpret_cast<__m128i*>(outText), _mm_unpacklo_epi8(bytes, zero));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(outText + 8), _mm_unpackhi_epi8(bytes, zero));
    return true;
}

// Narrows 16 units if they are ASCII.
bool NarrowStep(const unsigned short* inText, unsigned char* outText) noexcept
{
    const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(inText));
    const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(inText + 8));
    const __m128i above = _mm_and_si128(_mm_or_si128(low, high), _mm_set1_epi16(static_cast<short>(0xFF80)));
    if (_mm_movemask_epi8(_mm_cmpeq_epi16(above, _mm_setzero_si128())) != 0xFFFF) {
        return false;
    }
    _mm_storeu_si128(reinterpret_cast<__m128i*>(outText), _mm_packus_epi16(low, high));
    return true;
}

} // namespace

std::size_t ToUTF16Sse2(const unsigned char* inText, std::size_t inLength, unsigned short* outText) noexcept
{
    const unsigned char* const end = inText + inLength;
    unsigned short* out = outText;
    while (end - inText >= kStep) {
        if (WidenStep(inText, out)) {
            inText += kStep;
            out += kStep;
            continue;
        }
        // Neighbours of a non-ASCII character are rarely ASCII, so the next sixteen bytes are converted one by one.
        const unsigned char* const retry = inText + kStep;
        while (inText < retry) {
            out = StepToUTF16(inText, end, out);
        }
    }
    while (inText != end) {
        out = StepToUTF16(inText, end, out);
    }
    return static_cast<std::size_t>(out - outText);
}

std::size_t ToUTF8Sse2(const unsigned short* inText, std::size_t inLength, unsigned char* outText) noexcept
{
    const unsigned short* const end = inText + inLength;
    unsigned char* out = outText;
    while (end - inText >= kStep) {
        if (NarrowStep(inText, out)) {
            inText += kStep;
            out += kStep;
            continue;
        }
        const unsigned short* const retry = inText + kStep;
        while (inText < retry) {
            out = StepToUTF8(inText, end, out);
        }
    }
    while (inText != end) {
        out = StepToUTF8(inText, end, out);
    }
    return static_cast<std::size_t>(out - outText);
}

} // namespace utf
} // namespace tvxcore
