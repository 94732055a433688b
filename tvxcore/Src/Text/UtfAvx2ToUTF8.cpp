// Converts 16 units of UTF-16 per step, for processors with AVX2.
//
// The algorithm is that of the AVX-512 kernel, except that a shuffle from a table compacts the bytes of four units. The
// scalar loop converts steps that contain ill-formed text, and the SSE2 kernel the end of the input.
#include <Text/Utf.h>
#include <Text/UtfAvx2.h>
#include <Text/UtfCharacter.h>
#include <Text/UtfStep.h>

#include <array>
#include <cstdint>

namespace tvxcore {
namespace utf {

namespace {

// The shuffles that compact four units of one to three UTF-8 bytes, which are in the upper bytes of 32-bit lanes. The
// low four bits of the index mark units of two bytes or more, the next four bits those of three.
constexpr std::array<std::array<unsigned char, 16>, 256> MakeChoiceOfFour()
{
    std::array<std::array<unsigned char, 16>, 256> table{};
    for (unsigned choice = 0; choice < 256; ++choice) {
        unsigned count = 0;
        for (unsigned word = 0; word < 4; ++word) {
            const unsigned length = 1 + (choice >> word & 1) + (choice >> (word + 4) & 1);
            for (unsigned byte = 4 - length; byte < 4; ++byte) {
                table[choice][count++] = static_cast<unsigned char>(4 * word + byte);
            }
        }
        while (count < 16) {
            table[choice][count++] = 0x80;
        }
    }
    return table;
}

constexpr std::array<std::array<unsigned char, 16>, 256> kChoiceOfFour = MakeChoiceOfFour();

TVX_AVX2_INLINE std::uint32_t WordBits(__m256i inWords)
{
    return static_cast<std::uint32_t>(_mm256_movemask_ps(_mm256_castsi256_ps(inWords)));
}

TVX_AVX2_INLINE __m256i IsAbove(__m256i inWords, int inNumber)
{
    return _mm256_cmpgt_epi32(inWords, _mm256_set1_epi32(inNumber));
}

// Prepares the surrogates for splitting into six-bit fields. A low surrogate receives the last two bits of the high
// surrogate before it; a high surrogate keeps its upper eight bits, plus the 0x10000 offset.
TVX_AVX2_INLINE __m256i MovePairs(__m256i inWords, __m256i inHigh, __m256i inLow)
{
    const __m256i bits = _mm256_and_si256(inWords, _mm256_set1_epi32(0x3FF));
    const __m256i rest = _mm256_slli_epi32(_mm256_and_si256(Before<4>(inWords), _mm256_set1_epi32(3)), 10);
    const __m256i upper = _mm256_srli_epi32(_mm256_add_epi32(bits, _mm256_set1_epi32(0x40)), 2);
    return _mm256_blendv_epi8(_mm256_blendv_epi8(inWords, upper, inHigh), _mm256_or_si256(bits, rest), inLow);
}

TVX_AVX2_INLINE __m256i Field(__m256i inWords, int inMask, int inShift)
{
    const __m256i field = _mm256_and_si256(inWords, _mm256_set1_epi32(inMask));
    return inShift >= 0 ? _mm256_slli_epi32(field, inShift) : _mm256_srli_epi32(field, -inShift);
}

// Writes the UTF-8 bytes of eight lanes; kChoiceOfFour compacts each group of four lanes.
TVX_AVX2_INLINE std::size_t Store(__m256i inWords, std::uint32_t inTwo, std::uint32_t inThree, std::size_t inCount,
                                  unsigned char* outText)
{
    const std::uint32_t first = (inTwo & 0x0F) | (inThree & 0x0F) << 4;
    const std::uint32_t second = inTwo >> 4 | (inThree & 0xF0);
    const __m256i shuffle =
        _mm256_setr_m128i(_mm_loadu_si128(reinterpret_cast<const __m128i*>(kChoiceOfFour[first].data())),
                          _mm_loadu_si128(reinterpret_cast<const __m128i*>(kChoiceOfFour[second].data())));
    const __m256i text = _mm256_shuffle_epi8(inWords, shuffle);
    const std::size_t lengthOfFirst = 4 + static_cast<std::size_t>(_mm_popcnt_u32(first));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(outText), _mm256_castsi256_si128(text));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(outText + lengthOfFirst), _mm256_extracti128_si256(text, 1));
    const std::uint32_t whole = 0xFFu >> (8 - inCount);
    return inCount + static_cast<std::size_t>(_mm_popcnt_u32((inTwo & whole) | (inThree & whole) << 8));
}

// Converts eight units in 32-bit lanes. Leaves a high surrogate in the last lane to the next step.
TVX_AVX2_INLINE Progress StepUTF8(__m256i inUnits, unsigned char* outText)
{
    const __m256i kind = _mm256_and_si256(inUnits, _mm256_set1_epi32(0xFC00));
    const __m256i high = _mm256_cmpeq_epi32(kind, _mm256_set1_epi32(0xD800));
    const __m256i low = _mm256_cmpeq_epi32(kind, _mm256_set1_epi32(0xDC00));
    const __m256i pairs = _mm256_or_si256(high, low);
    std::size_t count = 8;
    __m256i words = inUnits;
    if (_mm256_testz_si256(pairs, pairs) == 0) {
        const std::uint32_t highBits = WordBits(high);
        count -= highBits >> 7;
        const std::uint32_t whole = 0xFFu >> (8 - count);
        if (((highBits & whole) << 1 ^ (WordBits(low) & whole)) != 0) {
            return {0, 0};
        }
        words = MovePairs(inUnits, high, low);
    }
    const __m256i two = IsAbove(inUnits, 0x7F);
    const __m256i three = _mm256_andnot_si256(pairs, IsAbove(inUnits, 0x7FF));
    __m256i tags = _mm256_set1_epi32(static_cast<int>(0x80C00000));
    tags = _mm256_blendv_epi8(tags, _mm256_set1_epi32(static_cast<int>(0x8080E000)), three);
    tags = _mm256_blendv_epi8(tags, _mm256_set1_epi32(static_cast<int>(0x80F00000)), high);
    tags = _mm256_blendv_epi8(tags, _mm256_set1_epi32(static_cast<int>(0x80800000)), low);
    const __m256i fields =
        _mm256_or_si256(_mm256_or_si256(Field(words, 0x3F, 24), Field(words, 0xFC0, 10)), Field(words, 0xF000, -4));
    const __m256i bytes = _mm256_blendv_epi8(_mm256_slli_epi32(inUnits, 24), _mm256_or_si256(fields, tags), two);
    return {count, Store(bytes, WordBits(two), WordBits(three), count, outText)};
}

TVX_AVX2_INLINE bool NarrowStep(__m256i inUnits, unsigned char* outText)
{
    if (_mm256_testz_si256(inUnits, _mm256_set1_epi16(static_cast<short>(0xFF80))) == 0) {
        return false;
    }
    const __m128i bytes = _mm_packus_epi16(_mm256_castsi256_si128(inUnits), _mm256_extracti128_si256(inUnits, 1));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(outText), bytes);
    return true;
}

} // namespace

TVX_AVX2 std::size_t ToUTF8Avx2(const unsigned short* inText, std::size_t inLength, unsigned char* outText) noexcept
{
    const unsigned short* const end = inText + inLength;
    unsigned char* out = outText;
    while (end - inText >= 16) {
        const __m256i units = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(inText));
        if (NarrowStep(units, out)) {
            inText += 16;
            out += 16;
            continue;
        }
        const Progress progress = StepUTF8(_mm256_cvtepu16_epi32(_mm256_castsi256_si128(units)), out);
        if (progress.mRead != 0) {
            inText += progress.mRead;
            out += progress.mWritten;
        } else {
            const std::size_t piece = PieceOfUTF16(inText, static_cast<std::size_t>(end - inText), 16);
            out += ToUTF8Plain(inText, piece, out);
            inText += piece;
        }
    }
    out += ToUTF8Sse2(inText, static_cast<std::size_t>(end - inText), out);
    return static_cast<std::size_t>(out - outText);
}

} // namespace utf
} // namespace tvxcore
