// Converts 32 bytes of UTF-8 per step, for processors with AVX2.
//
// The algorithm is that of the AVX-512 kernel, except that a shuffle from a table compacts the units of eight bytes.
// The scalar loop converts steps that contain ill-formed text, and the SSE2 kernel the end of the input.
#include <Text/Utf.h>
#include <Text/UtfAvx2.h>
#include <Text/UtfCharacter.h>
#include <Text/UtfStep.h>

#include <array>
#include <cstdint>
#include <cstring>

namespace tvxcore {
namespace utf {

namespace {

TVX_AVX2_INLINE __m256i All(int inByte)
{
    return _mm256_set1_epi8(static_cast<char>(inByte));
}

// Looks up each byte in one table of 16 bytes.
TVX_AVX2_INLINE __m256i LookUp(const unsigned char (&inTable)[16], __m256i inIndex)
{
    const __m128i table = _mm_loadu_si128(reinterpret_cast<const __m128i*>(inTable));
    return _mm256_shuffle_epi8(_mm256_broadcastsi128_si256(table), inIndex);
}

TVX_AVX2_INLINE std::uint32_t SignBits(__m256i inBytes)
{
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(inBytes));
}

TVX_AVX2_INLINE __m256i IsAtLeast(__m256i inBytes, int inByte)
{
    return _mm256_cmpeq_epi8(_mm256_max_epu8(inBytes, All(inByte)), inBytes);
}

TVX_AVX2_INLINE __m256i ShiftLeft(__m256i inBytes, int inBits, int inMask)
{
    return _mm256_and_si256(_mm256_slli_epi16(inBytes, inBits), All(inMask));
}

TVX_AVX2_INLINE __m256i ShiftRight(__m256i inBytes, int inBits, int inMask)
{
    return _mm256_and_si256(_mm256_srli_epi16(inBytes, inBits), All(inMask));
}

// The shuffle that compacts each subset of eight bytes.
constexpr std::array<std::array<unsigned char, 8>, 256> MakeChoiceOfEight()
{
    std::array<std::array<unsigned char, 8>, 256> table{};
    for (unsigned choice = 0; choice < 256; ++choice) {
        unsigned count = 0;
        for (unsigned char place = 0; place < 8; ++place) {
            if ((choice >> place & 1) != 0) {
                table[choice][count++] = place;
            }
        }
        while (count < 8) {
            table[choice][count++] = 0x80;
        }
    }
    return table;
}

constexpr std::array<std::array<unsigned char, 8>, 256> kChoiceOfEight = MakeChoiceOfEight();

// The positions and kinds of the characters in one step: as byte masks, and as bit masks.
struct Classes
{
    __m256i mLead3Bytes;
    __m256i mLead4Bytes;
    std::uint32_t mLead; // leads of 2-byte and longer characters: includes mLead3 and mLead4
    std::uint32_t mLead3;
    std::uint32_t mLead4;
    std::uint32_t mContinuation;
};

TVX_AVX2_INLINE Classes Classify(__m256i inBytes, std::uint32_t inNotAscii)
{
    Classes classes;
    classes.mLead3Bytes = IsAtLeast(inBytes, 0xE0);
    classes.mLead4Bytes = IsAtLeast(inBytes, 0xF0);
    classes.mLead = SignBits(IsAtLeast(inBytes, 0xC0));
    classes.mLead3 = SignBits(classes.mLead3Bytes);
    classes.mLead4 = SignBits(classes.mLead4Bytes);
    classes.mContinuation = inNotAscii & ~classes.mLead;
    return classes;
}

TVX_AVX2_INLINE std::size_t WholeCharacters(const Classes& inClasses)
{
    const std::uint32_t cut =
        (inClasses.mLead & 0x80000000u) | (inClasses.mLead3 & 0xC0000000u) | (inClasses.mLead4 & 0xE0000000u);
    return cut != 0 ? static_cast<std::size_t>(_tzcnt_u32(cut)) : 32;
}

// Errors that two adjacent bytes reveal: the bits common to three table lookups, by the first byte's upper half, its
// lower half, and the second byte's upper half.
constexpr unsigned char kOverlong2 = 1; // C0 C1
constexpr unsigned char kOverlong3 = 2; // E0 followed by 80 to 9F
constexpr unsigned char kSurrogate = 4; // ED followed by A0 to BF
constexpr unsigned char kOverlong4 = 8; // F0 followed by 80 to 8F
constexpr unsigned char kTooLarge = 16; // F4 followed by 90 to BF
constexpr unsigned char kNoLead = 32;   // F5 and above

constexpr unsigned char kByFirstUpper[16] = {
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, kOverlong2, 0, kOverlong3 | kSurrogate, kOverlong4 | kTooLarge | kNoLead};
constexpr unsigned char kByFirstLower[16] = {kOverlong2 | kOverlong3 | kOverlong4,
                                             kOverlong2,
                                             0,
                                             0,
                                             kTooLarge,
                                             kNoLead,
                                             kNoLead,
                                             kNoLead,
                                             kNoLead,
                                             kNoLead,
                                             kNoLead,
                                             kNoLead,
                                             kNoLead,
                                             kNoLead | kSurrogate,
                                             kNoLead,
                                             kNoLead};
constexpr unsigned char kBySecondUpper[16] = {0,
                                              0,
                                              0,
                                              0,
                                              0,
                                              0,
                                              0,
                                              0,
                                              kOverlong2 | kNoLead | kOverlong3 | kOverlong4,
                                              kOverlong2 | kNoLead | kOverlong3 | kTooLarge,
                                              kOverlong2 | kNoLead | kSurrogate | kTooLarge,
                                              kOverlong2 | kNoLead | kSurrogate | kTooLarge,
                                              0,
                                              0,
                                              0,
                                              0};

TVX_AVX2_INLINE bool IsWellFormed(__m256i inBytes, const Classes& inClasses, std::uint32_t inWhole)
{
    // Also detects a character cut short by the next lead byte: its missing continuation byte is outside inWhole.
    const std::uint32_t expected =
        (inClasses.mLead & inWhole) << 1 | (inClasses.mLead3 & inWhole) << 2 | (inClasses.mLead4 & inWhole) << 3;
    const __m256i upper = ShiftRight(inBytes, 4, 0x0F);
    const __m256i lower = _mm256_and_si256(inBytes, All(0x0F));
    const __m256i first = _mm256_and_si256(LookUp(kByFirstUpper, upper), LookUp(kByFirstLower, lower));
    const __m256i bad = _mm256_and_si256(Before<1>(first), LookUp(kBySecondUpper, upper));
    const std::uint32_t good = SignBits(_mm256_cmpeq_epi8(bad, _mm256_setzero_si256()));
    return ((expected ^ (inClasses.mContinuation & inWhole)) | (~good & inWhole)) == 0;
}

// Removes the tag bits from the bytes.
TVX_AVX2_INLINE __m256i Fields(__m256i inBytes)
{
    constexpr unsigned char kMasks[16] = {0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F,
                                          0x3F, 0x3F, 0x3F, 0x3F, 0x1F, 0x1F, 0x0F, 0x07};
    return _mm256_and_si256(inBytes, LookUp(kMasks, ShiftRight(inBytes, 4, 0x0F)));
}

// The units of a step before compaction: low bytes and high bytes, at the positions marked in mUnits.
struct Units
{
    __m256i mLow;
    __m256i mHigh;
    std::uint32_t mUnits;
};

// Combines the three fields of a unit at the position of its last byte: 6 (or 7) bits, 6 bits, 4 bits.
TVX_AVX2_INLINE Units Join(__m256i inLow, __m256i inMiddle, __m256i inHigh, std::uint32_t inUnits)
{
    Units units;
    units.mLow = _mm256_or_si256(inLow, ShiftLeft(inMiddle, 6, 0xC0));
    units.mHigh = _mm256_or_si256(ShiftRight(inMiddle, 2, 0x0F), ShiftLeft(inHigh, 4, 0xF0));
    units.mUnits = inUnits;
    return units;
}

// In hex, the high surrogate is D800 + (point - 10000) / 400: fields D, 1F + the top five bits, and the next six bits.
TVX_AVX2_INLINE Units JoinWithPairs(__m256i inFields, __m256i inMiddle, __m256i inHigh, const Classes& inClasses,
                                    std::uint32_t inEnds)
{
    const __m256i third = Before<2>(inClasses.mLead4Bytes);
    const __m256i fourth = Before<1>(third);
    const __m256i second = Before<1>(inFields);
    const __m256i first = Before<2>(inFields);
    const __m256i upperLow = _mm256_or_si256(ShiftLeft(second, 2, 0x3C), ShiftRight(inFields, 4, 0x03));
    const __m256i upperMiddle =
        _mm256_add_epi8(_mm256_or_si256(ShiftLeft(first, 2, 0x1C), ShiftRight(second, 4, 0x03)), All(0x1F));
    const __m256i lowerMiddle = _mm256_or_si256(_mm256_and_si256(second, All(0x0F)), All(0x30));
    const __m256i low = _mm256_blendv_epi8(inFields, upperLow, third);
    const __m256i middle = _mm256_blendv_epi8(_mm256_blendv_epi8(inMiddle, upperMiddle, third), lowerMiddle, fourth);
    const __m256i high = _mm256_blendv_epi8(inHigh, All(0x0D), _mm256_or_si256(third, fourth));
    return Join(low, middle, high, inEnds | inClasses.mLead4 << 2);
}

TVX_AVX2_INLINE Units Decode(__m256i inBytes, const Classes& inClasses, std::uint32_t inWhole)
{
    const std::uint32_t ends = ~(inClasses.mContinuation >> 1) & inWhole;
    const __m256i fields = Fields(inBytes);
    // As a signed number, a continuation byte is less than C0.
    const __m256i continuation = _mm256_cmpgt_epi8(All(0xC0), inBytes);
    const __m256i middle = _mm256_and_si256(Before<1>(fields), continuation);
    const __m256i high = _mm256_and_si256(Before<2>(fields), Before<2>(inClasses.mLead3Bytes));
    if ((inClasses.mLead4 & inWhole) == 0) {
        return Join(fields, middle, high, ends);
    }
    Units units = JoinWithPairs(fields, middle, high, inClasses, ends);
    units.mUnits &= inWhole;
    return units;
}

TVX_AVX2_INLINE long long ChoiceOfEight(std::uint32_t inUnits, int inGroup)
{
    long long shuffle;
    std::memcpy(&shuffle, kChoiceOfEight[inUnits >> (8 * inGroup) & 0xFF].data(), sizeof(shuffle));
    return shuffle;
}

// Compacts and writes each group of up to eight units; advances by the number of units in it.
TVX_AVX2_INLINE std::size_t Store(const Units& inUnits, unsigned short* outText)
{
    const std::uint32_t units = inUnits.mUnits;
    const __m256i groups = _mm256_set_epi64x(ChoiceOfEight(units, 3), ChoiceOfEight(units, 2), ChoiceOfEight(units, 1),
                                             ChoiceOfEight(units, 0));
    const __m256i shuffle = _mm256_add_epi8(groups, _mm256_set_epi64x(0x0808080808080808, 0, 0x0808080808080808, 0));
    const __m256i low = _mm256_shuffle_epi8(inUnits.mLow, shuffle);
    const __m256i high = _mm256_shuffle_epi8(inUnits.mHigh, shuffle);
    const __m256i even = _mm256_unpacklo_epi8(low, high);
    const __m256i odd = _mm256_unpackhi_epi8(low, high);
    unsigned short* out = outText;
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(even));
    out += _mm_popcnt_u32(units & 0xFF);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(odd));
    out += _mm_popcnt_u32(units >> 8 & 0xFF);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_extracti128_si256(even, 1));
    out += _mm_popcnt_u32(units >> 16 & 0xFF);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_extracti128_si256(odd, 1));
    out += _mm_popcnt_u32(units >> 24);
    return static_cast<std::size_t>(out - outText);
}

TVX_AVX2_INLINE Progress StepUTF16(__m256i inBytes, unsigned short* outText)
{
    const std::uint32_t notAscii = SignBits(inBytes);
    if (notAscii == 0) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(outText), _mm256_cvtepu8_epi16(_mm256_castsi256_si128(inBytes)));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(outText + 16),
                            _mm256_cvtepu8_epi16(_mm256_extracti128_si256(inBytes, 1)));
        return {32, 32};
    }
    const Classes classes = Classify(inBytes, notAscii);
    const std::size_t count = WholeCharacters(classes);
    const std::uint32_t whole = 0xFFFFFFFFu >> (32 - count);
    if (!IsWellFormed(inBytes, classes, whole)) {
        return {0, 0};
    }
    return {count, Store(Decode(inBytes, classes, whole), outText)};
}

} // namespace

TVX_AVX2 std::size_t ToUTF16Avx2(const unsigned char* inText, std::size_t inLength, unsigned short* outText) noexcept
{
    const unsigned char* const end = inText + inLength;
    unsigned short* out = outText;
    while (end - inText >= 32) {
        const Progress progress = StepUTF16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(inText)), out);
        if (progress.mRead != 0) {
            inText += progress.mRead;
            out += progress.mWritten;
        } else {
            const std::size_t piece = PieceOfUTF8(inText, static_cast<std::size_t>(end - inText), 32);
            out += ToUTF16Plain(inText, piece, out);
            inText += piece;
        }
    }
    out += ToUTF16Sse2(inText, static_cast<std::size_t>(end - inText), out);
    return static_cast<std::size_t>(out - outText);
}

} // namespace utf
} // namespace tvxcore
