// 64 bytes, or 16 to 32 units, at a step for processors with AVX-512 VBMI2 (byte compress and byte permute).
//
// To UTF-16. Each byte loses its tag bits, so that a character of up to three bytes is fields of 4, 6 and 6 bits (or of
// 5 and 6, or of 7). At the place of a character's last byte the fields before it are brought together by permutes; they
// make the low and the high byte of its unit. Compressing both rows of bytes leaves the units side by side. A character
// of four bytes yields one unit at its third byte and one at its fourth, from the same fields moved.
//
// To UTF-8. Each unit becomes a word of 32 bits whose bytes are the fields with their tags; compressing the words leaves
// the text. Half of a pair yields two bytes, like a unit below U+0800, from fields moved likewise.
//
// A step with anything ill-formed is left to the plain loop, which alone knows what replaces it.
#include <Utf.h>
#include <UtfCharacter.h>

#include <cstdint>
#include <immintrin.h>

#if !defined(__clang__)
// The compiler's own headers leave operands undefined that a full mask makes meaningless, and it warns of them here.
#  pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

#define TVX_AVX512 __attribute__((target("avx512f,avx512bw,avx512vl,avx512vbmi,avx512vbmi2,bmi,bmi2,lzcnt,popcnt")))
#define TVX_AVX512_INLINE TVX_AVX512 __attribute__((always_inline)) inline

namespace tvxcore {
namespace utf {

namespace {

struct Progress
{
    std::size_t mRead;    // 0: not well formed
    std::size_t mWritten;
};

constexpr std::uint64_t LowBits(std::size_t inCount)
{
    return inCount >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << inCount) - 1;
}

// ---- to UTF-16 ----

// Where the characters of one step begin and what they are.
struct Classes
{
    std::uint64_t mNotAscii;
    std::uint64_t mLead;         // of two bytes or more, as those below are contained in it
    std::uint64_t mLead3;        // of three bytes or more
    std::uint64_t mLead4;        // of four bytes
    std::uint64_t mContinuation;
};

TVX_AVX512_INLINE Classes Classify(__m512i inBytes, std::uint64_t inNotAscii)
{
    Classes classes;
    classes.mNotAscii = inNotAscii;
    classes.mLead = _mm512_cmpge_epu8_mask(inBytes, _mm512_set1_epi8(static_cast<char>(0xC0)));
    classes.mLead3 = _mm512_cmpge_epu8_mask(inBytes, _mm512_set1_epi8(static_cast<char>(0xE0)));
    classes.mLead4 = _mm512_cmpge_epu8_mask(inBytes, _mm512_set1_epi8(static_cast<char>(0xF0)));
    classes.mContinuation = inNotAscii & ~classes.mLead;
    return classes;
}

// How many of the bytes belong to characters that end among them. What is cut off waits for the next step.
TVX_AVX512_INLINE std::size_t WholeCharacters(const Classes& inClasses, std::size_t inCount)
{
    const std::size_t missing = 64 - inCount;
    const std::uint64_t cut = (inClasses.mLead & (std::uint64_t{1} << 63 >> missing))
                              | (inClasses.mLead3 & (std::uint64_t{3} << 62 >> missing))
                              | (inClasses.mLead4 & (std::uint64_t{7} << 61 >> missing));
    return cut != 0 ? static_cast<std::size_t>(_tzcnt_u64(cut)) : inCount;
}

// Every byte at the place of the one inBack places behind it. The first ones are of no meaning.
TVX_AVX512_INLINE __m512i Places(int inBack)
{
    const __m512i places = _mm512_set_epi8(
        63, 62, 61, 60, 59, 58, 57, 56, 55, 54, 53, 52, 51, 50, 49, 48, 47, 46, 45, 44, 43, 42, 41, 40, 39, 38, 37, 36,
        35, 34, 33, 32, 31, 30, 29, 28, 27, 26, 25, 24, 23, 22, 21, 20, 19, 18, 17, 16, 15, 14, 13, 12, 11, 10, 9, 8, 7,
        6, 5, 4, 3, 2, 1, 0);
    return _mm512_sub_epi8(places, _mm512_set1_epi8(static_cast<char>(inBack)));
}

// For each lead byte, by its low six bits, which second bytes are not for it: bit 0 stands for 80 to 8F, bit 1 for 90
// to 9F, bit 2 for A0 to BF.
alignas(64) constexpr unsigned char kSecondByteErrors[64] = {
    7, 7, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, // C0 C1 begin nothing
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, //
    3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 4, 0, 0, // E0 overlong, ED surrogates
    1, 0, 0, 0, 6, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, // F0 overlong, F4 and above beyond the last code point
};

TVX_AVX512_INLINE bool IsWellFormed(__m512i inBytes, const Classes& inClasses, std::uint64_t inWhole)
{
    // A character that is cut into by the next lead promises a byte behind the whole ones, so it is found here too.
    const std::uint64_t expected = (inClasses.mLead & inWhole) << 1 | (inClasses.mLead3 & inWhole) << 2
                                   | (inClasses.mLead4 & inWhole) << 3;
    const __m512i previous = _mm512_permutexvar_epi8(Places(1), inBytes);
    const __m512i errors =
        _mm512_maskz_permutexvar_epi8(inClasses.mLead << 1, previous, _mm512_load_si512(kSecondByteErrors));
    const __m512i nibbles = _mm512_and_si512(_mm512_srli_epi16(inBytes, 4), _mm512_set1_epi8(0x0F));
    const __m512i groupOfNibble = _mm512_broadcast_i32x4(_mm_setr_epi8(0, 0, 0, 0, 0, 0, 0, 0, 1, 2, 4, 4, 0, 0, 0, 0));
    const std::uint64_t bad = _mm512_test_epi8_mask(errors, _mm512_shuffle_epi8(groupOfNibble, nibbles));
    return ((expected ^ (inClasses.mContinuation & inWhole)) | (bad & inWhole)) == 0;
}

// The units of a step, before they are moved together: low bytes and high bytes at the places that mUnits marks.
struct Units
{
    __m512i mLow;
    __m512i mHigh;
    std::uint64_t mUnits;
};

TVX_AVX512_INLINE __m512i ShiftLeft(__m512i inBytes, unsigned inBits, int inMask)
{
    return _mm512_and_si512(_mm512_slli_epi16(inBytes, inBits), _mm512_set1_epi8(static_cast<char>(inMask)));
}

TVX_AVX512_INLINE __m512i ShiftRight(__m512i inBytes, unsigned inBits, int inMask)
{
    return _mm512_and_si512(_mm512_srli_epi16(inBytes, inBits), _mm512_set1_epi8(static_cast<char>(inMask)));
}

// The bytes without their tags.
TVX_AVX512_INLINE __m512i Fields(__m512i inBytes, const Classes& inClasses)
{
    __m512i fields = _mm512_mask_sub_epi8(inBytes, inClasses.mContinuation, inBytes,
                                          _mm512_set1_epi8(static_cast<char>(0x80)));
    fields = _mm512_mask_sub_epi8(fields, inClasses.mLead, fields, _mm512_set1_epi8(static_cast<char>(0xC0)));
    fields = _mm512_mask_sub_epi8(fields, inClasses.mLead3, fields, _mm512_set1_epi8(0x20));
    return _mm512_mask_sub_epi8(fields, inClasses.mLead4, fields, _mm512_set1_epi8(0x10));
}

// Takes the three fields of a unit at the place of its last byte: 6 (or 7) bits, 6 bits, 4 bits.
TVX_AVX512_INLINE Units Join(__m512i inLow, __m512i inMiddle, __m512i inHigh, std::uint64_t inUnits)
{
    Units units;
    units.mLow = _mm512_or_si512(inLow, ShiftLeft(inMiddle, 6, 0xC0));
    units.mHigh = _mm512_or_si512(ShiftRight(inMiddle, 2, 0x0F), ShiftLeft(inHigh, 4, 0xF0));
    units.mUnits = inUnits;
    return units;
}

// The high unit is D800 + (point - 10000) / 400, which is the fields D, 1F + the top five bits, and the next six.
TVX_AVX512_INLINE Units JoinWithPairs(__m512i inFields, __m512i inMiddle, __m512i inHigh, const Classes& inClasses,
                                      std::uint64_t inEnds)
{
    const std::uint64_t third = inClasses.mLead4 << 2;
    const std::uint64_t fourth = inClasses.mLead4 << 3;
    const __m512i second = _mm512_permutexvar_epi8(Places(1), inFields);
    const __m512i first = _mm512_permutexvar_epi8(Places(2), inFields);
    const __m512i upperLow = _mm512_or_si512(ShiftLeft(second, 2, 0x3C), ShiftRight(inFields, 4, 0x03));
    const __m512i upperMiddle = _mm512_add_epi8(_mm512_or_si512(ShiftLeft(first, 2, 0x1C), ShiftRight(second, 4, 0x03)),
                                                _mm512_set1_epi8(0x1F));
    const __m512i lowerMiddle = _mm512_or_si512(_mm512_and_si512(second, _mm512_set1_epi8(0x0F)), _mm512_set1_epi8(0x30));
    const __m512i low = _mm512_mask_mov_epi8(inFields, third, upperLow);
    const __m512i middle =
        _mm512_mask_mov_epi8(_mm512_mask_mov_epi8(inMiddle, third, upperMiddle), fourth, lowerMiddle);
    const __m512i high = _mm512_mask_mov_epi8(inHigh, third | fourth, _mm512_set1_epi8(0x0D));
    return Join(low, middle, high, inEnds | third);
}

TVX_AVX512_INLINE Units Decode(__m512i inBytes, const Classes& inClasses, std::uint64_t inWhole)
{
    const std::uint64_t ends = ~(inClasses.mContinuation >> 1) & inWhole;
    const __m512i fields = Fields(inBytes, inClasses);
    const __m512i middle = _mm512_maskz_permutexvar_epi8(inClasses.mContinuation, Places(1), fields);
    const __m512i high = _mm512_maskz_permutexvar_epi8(inClasses.mLead3 << 2, Places(2), fields);
    Units units;
    if ((inClasses.mLead4 & inWhole) != 0) {
        units = JoinWithPairs(fields, middle, high, inClasses, ends);
        units.mUnits &= inWhole;
    } else {
        units = Join(fields, middle, high, ends);
    }
    return units;
}

TVX_AVX512_INLINE __m512i Widen(__m256i inLow, __m256i inHigh)
{
    return _mm512_or_si512(_mm512_cvtepu8_epi16(inLow), _mm512_slli_epi16(_mm512_cvtepu8_epi16(inHigh), 8));
}

// inRoom units may be written: all 64 in the midst of a text.
TVX_AVX512_INLINE void Store(__m512i inLow, __m512i inHigh, std::size_t inRoom, unsigned short* outText)
{
    const __m512i first = Widen(_mm512_castsi512_si256(inLow), _mm512_castsi512_si256(inHigh));
    const __m512i second = Widen(_mm512_extracti64x4_epi64(inLow, 1), _mm512_extracti64x4_epi64(inHigh, 1));
    if (inRoom >= 64) {
        _mm512_storeu_si512(outText, first);
        _mm512_storeu_si512(outText + 32, second);
    } else {
        const std::uint64_t room = LowBits(inRoom);
        _mm512_mask_storeu_epi16(outText, static_cast<__mmask32>(room), first);
        if (inRoom > 32) {
            _mm512_mask_storeu_epi16(outText + 32, static_cast<__mmask32>(room >> 32), second);
        }
    }
}

// inCount bytes, 1 to 64, of which the register holds zeros behind.
TVX_AVX512_INLINE Progress StepUTF16(__m512i inBytes, std::size_t inCount, unsigned short* outText)
{
    const std::uint64_t notAscii = _mm512_movepi8_mask(inBytes);
    if (notAscii == 0) {
        Store(inBytes, _mm512_setzero_si512(), inCount, outText);
        return {inCount, inCount};
    }
    const Classes classes = Classify(inBytes, notAscii);
    const std::size_t count = WholeCharacters(classes, inCount);
    const std::uint64_t whole = LowBits(count);
    if (!IsWellFormed(inBytes, classes, whole)) {
        return {0, 0};
    }
    const Units units = Decode(inBytes, classes, whole);
    const std::size_t written = static_cast<std::size_t>(_mm_popcnt_u64(units.mUnits));
    Store(_mm512_maskz_compress_epi8(units.mUnits, units.mLow), _mm512_maskz_compress_epi8(units.mUnits, units.mHigh),
          inCount == 64 ? 64 : written, outText);
    return {count, written};
}

// ---- to UTF-8 ----

// 32 units below U+0080 each.
TVX_AVX512_INLINE void StoreAscii(__m512i inUnits, std::size_t inCount, unsigned char* outText)
{
    const __m256i bytes = _mm512_cvtepi16_epi8(inUnits);
    if (inCount >= 32) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(outText), bytes);
    } else {
        _mm256_mask_storeu_epi8(outText, static_cast<__mmask32>(LowBits(inCount)), bytes);
    }
}

// 32 units below U+0800 each, in the midst of a text. Each becomes its tagged fields in the order of the text, and an
// ASCII one leaves its first byte out.
TVX_AVX512_INLINE std::size_t StoreTwoBytes(__m512i inUnits, std::uint32_t inNotAscii, unsigned char* outText)
{
    const __m512i first = _mm512_srli_epi16(inUnits, 6);
    const __m512i second = _mm512_slli_epi16(_mm512_and_si512(inUnits, _mm512_set1_epi16(0x3F)), 8);
    const __m512i tagged = _mm512_or_si512(_mm512_or_si512(first, second), _mm512_set1_epi16(static_cast<short>(0x80C0)));
    const __m512i bytes = _mm512_mask_blend_epi16(inNotAscii, _mm512_slli_epi16(inUnits, 8), tagged);
    const std::uint64_t kept = 0xAAAAAAAAAAAAAAAAu | _pdep_u64(inNotAscii, 0x5555555555555555u);
    _mm512_storeu_si512(outText, _mm512_maskz_compress_epi8(kept, bytes));
    return 32 + static_cast<std::size_t>(_mm_popcnt_u32(inNotAscii));
}

// The halves of pairs as fields of six bits. In words: a low half takes the two bits that the high half before it has
// left over; a high half gives its upper eight bits, with what the first 0x10000 code points add.
TVX_AVX512_INLINE __m512i MovePairs(__m512i inWords, __mmask16 inHigh, __mmask16 inLow)
{
    const __m512i bits = _mm512_and_si512(inWords, _mm512_set1_epi32(0x3FF));
    const __m512i before = _mm512_alignr_epi32(inWords, _mm512_setzero_si512(), 15);
    const __m512i rest = _mm512_slli_epi32(_mm512_and_si512(before, _mm512_set1_epi32(3)), 10);
    const __m512i upper = _mm512_srli_epi32(_mm512_add_epi32(bits, _mm512_set1_epi32(0x40)), 2);
    const __m512i words = _mm512_mask_mov_epi32(inWords, inHigh, upper);
    return _mm512_mask_or_epi32(words, inLow, bits, rest);
}

// Each word's text in its upper bytes, tagged. The top bit of every byte that is used is set in outPlaces.
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
    // Shifts of 12, 6 and 0 bits into the upper three bytes of each word, so that the text's order is the memory's.
    const __m512i shifts = _mm512_set1_epi64(0x20262C2000060C00);
    const __m512i fields =
        _mm512_and_si512(_mm512_multishift_epi64_epi8(shifts, inFields), _mm512_set1_epi32(0x3F3F3F00));
    return _mm512_mask_or_epi32(_mm512_slli_epi32(inUnits, 24), two, fields, tags);
}

// Up to 16 units in words of 32 bits, with zeros behind. A high half in the last place waits for the next step.
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
        _mm512_mask_storeu_epi8(outText, LowBits(written), text);
    }
    return {count, written};
}

} // namespace

TVX_AVX512 std::size_t ToUTF16Avx512(const unsigned char* inText, std::size_t inLength,
                                     unsigned short* outText) noexcept
{
    const unsigned char* const end = inText + inLength;
    unsigned short* out = outText;
    while (inText != end) {
        const std::size_t left = static_cast<std::size_t>(end - inText);
        const std::size_t count = left < 64 ? left : 64;
        const __m512i bytes = left < 64 ? _mm512_maskz_loadu_epi8(LowBits(left), inText) : _mm512_loadu_si512(inText);
        const Progress progress = StepUTF16(bytes, count, out);
        if (progress.mRead != 0) {
            inText += progress.mRead;
            out += progress.mWritten;
        } else {
            const std::size_t piece = PieceOfUTF8(inText, left, 64);
            out += ToUTF16Plain(inText, piece, out);
            inText += piece;
        }
    }
    return static_cast<std::size_t>(out - outText);
}

TVX_AVX512 std::size_t ToUTF8Avx512(const unsigned short* inText, std::size_t inLength,
                                    unsigned char* outText) noexcept
{
    const unsigned short* const end = inText + inLength;
    unsigned char* out = outText;
    while (inText != end) {
        const std::size_t left = static_cast<std::size_t>(end - inText);
        const bool midst = left >= 32;
        const __m512i units = midst ? _mm512_loadu_si512(inText)
                                    : _mm512_maskz_loadu_epi16(static_cast<__mmask32>(LowBits(left)), inText);
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
        const Progress progress =
            StepUTF8(_mm512_cvtepu16_epi32(_mm512_castsi512_si256(units)), count, midst, out);
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
