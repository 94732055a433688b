// Converts 16 or 32 units of UTF-16 per step, for processors with AVX-512 VBMI2.
//
// Each UTF-16 unit is expanded to a 32-bit lane that holds its UTF-8 bytes; a byte-compress instruction removes the
// unused bytes. A surrogate yields two of the four bytes of its pair.
//
// The scalar loop converts steps that contain ill-formed text, since only that loop computes the replacements.
#include <Text/Utf.h>
#include <Text/UtfAvx512.h>
#include <Text/UtfCharacter.h>
#include <Text/UtfStep.h>

namespace tvxcore {
namespace utf {

namespace {

// Writes up to 32 units, all below U+0080.
TVX_AVX512_INLINE void StoreAscii(__m512i inUnits, std::size_t inCount, unsigned char* outText)
{
    const __m256i bytes = _mm512_cvtepi16_epi8(inUnits);
    if (inCount >= 32) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(outText), bytes);
    } else {
        StoreEnd(outText, _mm512_castsi256_si512(bytes), inCount);
    }
}

// Writes 32 units, all below U+0800; must not be used for the end of the input. Each lane receives the lead and the
// continuation byte; for an ASCII unit only the second byte is kept.
TVX_AVX512_INLINE std::size_t StoreTwoBytes(__m512i inUnits, std::uint32_t inNotAscii, unsigned char* outText)
{
    const __m512i first = _mm512_srli_epi16(inUnits, 6);
    const __m512i second = _mm512_slli_epi16(_mm512_and_si512(inUnits, _mm512_set1_epi16(0x3F)), 8);
    const __m512i tagged =
        _mm512_or_si512(_mm512_or_si512(first, second), _mm512_set1_epi16(static_cast<short>(0x80C0)));
    const __m512i bytes = _mm512_mask_blend_epi16(inNotAscii, _mm512_slli_epi16(inUnits, 8), tagged);
    const std::uint64_t kept = 0xAAAAAAAAAAAAAAAAu | _pdep_u64(inNotAscii, 0x5555555555555555u);
    _mm512_storeu_si512(outText, _mm512_maskz_compress_epi8(kept, bytes));
    return 32 + static_cast<std::size_t>(_mm_popcnt_u32(inNotAscii));
}

// Prepares the surrogates in the 32-bit lanes for splitting into six-bit fields. A low surrogate receives the last two
// bits of the high surrogate before it; a high surrogate keeps its upper eight bits, plus the 0x10000 offset.
TVX_AVX512_INLINE __m512i MovePairs(__m512i inWords, __mmask16 inHigh, __mmask16 inLow)
{
    const __m512i bits = _mm512_and_si512(inWords, _mm512_set1_epi32(0x3FF));
    const __m512i before = _mm512_alignr_epi32(inWords, _mm512_setzero_si512(), 15);
    const __m512i rest = _mm512_slli_epi32(_mm512_and_si512(before, _mm512_set1_epi32(3)), 10);
    const __m512i upper = _mm512_srli_epi32(_mm512_add_epi32(bits, _mm512_set1_epi32(0x40)), 2);
    const __m512i words = _mm512_mask_mov_epi32(inWords, inHigh, upper);
    return _mm512_mask_or_epi32(words, inLow, bits, rest);
}

// Returns the UTF-8 bytes of each unit in the upper bytes of its lane. Sets the top bit of every used byte in
// outPlaces.
TVX_AVX512_INLINE __m512i TaggedFields(__m512i inUnits, __m512i inFields, __mmask16 inHigh, __mmask16 inLow,
                                       __m512i& outPlaces)
{
    const __mmask16 two = _mm512_cmpge_epu32_mask(inUnits, _mm512_set1_epi32(0x80));
    const __mmask16 three =
        _mm512_mask_cmpge_epu32_mask(static_cast<__mmask16>(~(inHigh | inLow)), inUnits, _mm512_set1_epi32(0x800));
    __m512i tags = _mm512_maskz_mov_epi32(two, _mm512_set1_epi32(static_cast<int>(0x80C00000)));
    tags = _mm512_mask_mov_epi32(tags, three, _mm512_set1_epi32(static_cast<int>(0x8080E000)));
    tags = _mm512_mask_mov_epi32(tags, inHigh, _mm512_set1_epi32(static_cast<int>(0x80F00000)));
    tags = _mm512_mask_mov_epi32(tags, inLow, _mm512_set1_epi32(static_cast<int>(0x80800000)));
    outPlaces = _mm512_or_si512(tags, _mm512_set1_epi32(static_cast<int>(0x80000000)));
    // Shifts by 12, 6 and 0 bits into the upper three bytes of each lane, so that memory holds the bytes in UTF-8
    // order.
    const __m512i shifts = _mm512_set1_epi64(0x20262C2000060C00);
    const __m512i fields =
        _mm512_and_si512(_mm512_multishift_epi64_epi8(shifts, inFields), _mm512_set1_epi32(0x3F3F3F00));
    return _mm512_mask_or_epi32(_mm512_slli_epi32(inUnits, 24), two, fields, tags);
}

// Converts up to 16 units in 32-bit lanes; the rest must be zero. Leaves a high surrogate in the last lane to the next
// step.
TVX_AVX512_INLINE Progress StepUTF8(__m512i inUnits, std::size_t inCount, bool inMayOverrun, unsigned char* outText)
{
    const __m512i kind = _mm512_and_si512(inUnits, _mm512_set1_epi32(0xFC00));
    const __mmask16 high = _mm512_cmpeq_epi32_mask(kind, _mm512_set1_epi32(0xD800));
    const __mmask16 low = _mm512_cmpeq_epi32_mask(kind, _mm512_set1_epi32(0xDC00));
    std::size_t count = inCount;
    __m512i fields = inUnits;
    if ((high | low) != 0) {
        count -= static_cast<std::size_t>(high >> (inCount - 1)) & 1;
        const std::uint64_t whole = LowBits(count);
        if (((high & whole) << 1 ^ (low & whole)) != 0) {
            return {0, 0};
        }
        fields = MovePairs(inUnits, high, low);
    }
    __m512i places;
    const __m512i bytes = TaggedFields(inUnits, fields, high, low, places);
    const std::uint64_t kept = _mm512_movepi8_mask(places) & LowBits(4 * count);
    const __m512i text = _mm512_maskz_compress_epi8(kept, bytes);
    const std::size_t written = static_cast<std::size_t>(_mm_popcnt_u64(kept));
    if (inMayOverrun) {
        _mm512_storeu_si512(outText, text);
    } else {
        StoreEnd(outText, text, written);
    }
    return {count, written};
}

} // namespace

TVX_AVX512 std::size_t ToUTF8Avx512(const unsigned short* inText, std::size_t inLength, unsigned char* outText) noexcept
{
    const unsigned short* const end = inText + inLength;
    unsigned char* out = outText;
    while (inText != end) {
        const std::size_t left = static_cast<std::size_t>(end - inText);
        const bool midst = left >= 32;
        const __m512i units = midst ? _mm512_loadu_si512(inText) : LoadEnd(inText, 2 * left);
        const std::uint32_t notAscii = _mm512_cmpge_epu16_mask(units, _mm512_set1_epi16(0x80));
        const std::size_t loaded = midst ? 32 : left;
        if (notAscii == 0) {
            StoreAscii(units, loaded, out);
            inText += loaded;
            out += loaded;
            continue;
        }
        if (midst && _mm512_cmpge_epu16_mask(units, _mm512_set1_epi16(0x800)) == 0) {
            out += StoreTwoBytes(units, notAscii, out);
            inText += 32;
            continue;
        }
        const std::size_t count = loaded < 16 ? loaded : 16;
        const Progress progress = StepUTF8(_mm512_cvtepu16_epi32(_mm512_castsi512_si256(units)), count, midst, out);
        if (progress.mRead != 0) {
            inText += progress.mRead;
            out += progress.mWritten;
        } else {
            const std::size_t piece = PieceOfUTF16(inText, left, 32);
            out += ToUTF8Plain(inText, piece, out);
            inText += piece;
        }
    }
    return static_cast<std::size_t>(out - outText);
}

} // namespace utf
} // namespace tvxcore
