// Converts 64 bytes of UTF-8 per step, for processors with AVX-512 VBMI2.
//
// Without its tag bits, a character of up to three bytes consists of fields of 4, 6 and 6 bits (or of 5 and 6, or of
// 7). Byte permutes gather the fields at the position of its last byte, where they form the low and the high byte of
// its UTF-16 unit. Compressing the low and the high bytes yields adjacent units. A character of four bytes yields one
// unit at its third byte and one at its fourth, from shifted fields.
//
// The scalar loop converts steps that contain ill-formed text, since only that loop computes the replacements.
#include <Text/Utf.h>
#include <Text/UtfAvx512.h>
#include <Text/UtfCharacter.h>
#include <Text/UtfStep.h>

namespace tvxcore {
namespace utf {

namespace {

// The positions and kinds of the characters in one step.
struct Classes
{
    std::uint64_t mNotAscii;
    std::uint64_t mLead;  // leads of 2-byte and longer characters: includes mLead3 and mLead4
    std::uint64_t mLead3; // leads of 3-byte and longer characters
    std::uint64_t mLead4; // leads of 4-byte characters
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

// Returns the number of bytes of complete characters. An incomplete character is left to the next step.
TVX_AVX512_INLINE std::size_t WholeCharacters(const Classes& inClasses, std::size_t inCount)
{
    const std::size_t missing = 64 - inCount;
    const std::uint64_t cut = (inClasses.mLead & (std::uint64_t{1} << 63 >> missing))
                              | (inClasses.mLead3 & (std::uint64_t{3} << 62 >> missing))
                              | (inClasses.mLead4 & (std::uint64_t{7} << 61 >> missing));
    return cut != 0 ? static_cast<std::size_t>(_tzcnt_u64(cut)) : inCount;
}

// Returns, for each position, the index of the byte inBack positions before it. The first inBack results are
// meaningless.
TVX_AVX512_INLINE __m512i Places(int inBack)
{
    const __m512i places =
        _mm512_set_epi8(63, 62, 61, 60, 59, 58, 57, 56, 55, 54, 53, 52, 51, 50, 49, 48, 47, 46, 45, 44, 43, 42, 41, 40,
                        39, 38, 37, 36, 35, 34, 33, 32, 31, 30, 29, 28, 27, 26, 25, 24, 23, 22, 21, 20, 19, 18, 17, 16,
                        15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
    return _mm512_sub_epi8(places, _mm512_set1_epi8(static_cast<char>(inBack)));
}

// For each lead byte, indexed by its low six bits, the invalid second bytes: bit 0 for 80 to 8F, bit 1 for 90 to 9F,
// bit 2 for A0 to BF.
alignas(64) constexpr unsigned char kSecondByteErrors[64] = {
    7, 7, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, // C0 C1 are never valid
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, //
    3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 4, 0, 0, // E0 overlong, ED surrogates
    1, 0, 0, 0, 6, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, // F0 overlong, F4 and above beyond the last code point
};

TVX_AVX512_INLINE bool IsWellFormed(__m512i inBytes, const Classes& inClasses, std::uint64_t inWhole)
{
    // Also detects a character cut short by the next lead byte: its missing continuation byte is outside inWhole.
    const std::uint64_t expected =
        (inClasses.mLead & inWhole) << 1 | (inClasses.mLead3 & inWhole) << 2 | (inClasses.mLead4 & inWhole) << 3;
    const __m512i previous = _mm512_permutexvar_epi8(Places(1), inBytes);
    const __m512i errors =
        _mm512_maskz_permutexvar_epi8(inClasses.mLead << 1, previous, _mm512_load_si512(kSecondByteErrors));
    const __m512i nibbles = _mm512_and_si512(_mm512_srli_epi16(inBytes, 4), _mm512_set1_epi8(0x0F));
    const __m512i groupOfNibble = _mm512_broadcast_i32x4(_mm_setr_epi8(0, 0, 0, 0, 0, 0, 0, 0, 1, 2, 4, 4, 0, 0, 0, 0));
    const std::uint64_t bad = _mm512_test_epi8_mask(errors, _mm512_shuffle_epi8(groupOfNibble, nibbles));
    return ((expected ^ (inClasses.mContinuation & inWhole)) | (bad & inWhole)) == 0;
}

// The units of a step before compaction: low bytes and high bytes, at the positions marked in mUnits.
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

// Removes the tag bits from the bytes.
TVX_AVX512_INLINE __m512i Fields(__m512i inBytes, const Classes& inClasses)
{
    __m512i fields =
        _mm512_mask_sub_epi8(inBytes, inClasses.mContinuation, inBytes, _mm512_set1_epi8(static_cast<char>(0x80)));
    fields = _mm512_mask_sub_epi8(fields, inClasses.mLead, fields, _mm512_set1_epi8(static_cast<char>(0xC0)));
    fields = _mm512_mask_sub_epi8(fields, inClasses.mLead3, fields, _mm512_set1_epi8(0x20));
    return _mm512_mask_sub_epi8(fields, inClasses.mLead4, fields, _mm512_set1_epi8(0x10));
}

// Combines the three fields of a unit at the position of its last byte: 6 (or 7) bits, 6 bits, 4 bits.
TVX_AVX512_INLINE Units Join(__m512i inLow, __m512i inMiddle, __m512i inHigh, std::uint64_t inUnits)
{
    Units units;
    units.mLow = _mm512_or_si512(inLow, ShiftLeft(inMiddle, 6, 0xC0));
    units.mHigh = _mm512_or_si512(ShiftRight(inMiddle, 2, 0x0F), ShiftLeft(inHigh, 4, 0xF0));
    units.mUnits = inUnits;
    return units;
}

// In hex, the high surrogate is D800 + (point - 10000) / 400: fields D, 1F + the top five bits, and the next six bits.
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
    const __m512i lowerMiddle =
        _mm512_or_si512(_mm512_and_si512(second, _mm512_set1_epi8(0x0F)), _mm512_set1_epi8(0x30));
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

// Writes at most inCapacity units; pass 64 except at the end of the input.
TVX_AVX512_INLINE void Store(__m512i inLow, __m512i inHigh, std::size_t inCapacity, unsigned short* outText)
{
    const __m512i first = Widen(_mm512_castsi512_si256(inLow), _mm512_castsi512_si256(inHigh));
    const __m512i second = Widen(_mm512_extracti64x4_epi64(inLow, 1), _mm512_extracti64x4_epi64(inHigh, 1));
    if (inCapacity >= 64) {
        _mm512_storeu_si512(outText, first);
        _mm512_storeu_si512(outText + 32, second);
    } else {
        const std::size_t firstCapacity = inCapacity < 32 ? inCapacity : 32;
        StoreEnd(outText, first, 2 * firstCapacity);
        if (inCapacity > 32) {
            StoreEnd(outText + 32, second, 2 * (inCapacity - 32));
        }
    }
}

// Converts inCount bytes, 1 to 64. The rest of the register must be zero.
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

} // namespace

TVX_AVX512 std::size_t ToUTF16Avx512(const unsigned char* inText, std::size_t inLength,
                                     unsigned short* outText) noexcept
{
    const unsigned char* const end = inText + inLength;
    unsigned short* out = outText;
    while (inText != end) {
        const std::size_t left = static_cast<std::size_t>(end - inText);
        const std::size_t count = left < 64 ? left : 64;
        const __m512i bytes = left < 64 ? LoadEnd(inText, left) : _mm512_loadu_si512(inText);
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

} // namespace utf
} // namespace tvxcore
