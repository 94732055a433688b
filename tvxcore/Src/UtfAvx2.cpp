// 32 bytes, or 16 units, at a step for processors with AVX2.
//
// The ways are those of the AVX-512 kernel; what moves the bytes of a step together is a shuffle from a table, for eight
// bytes at once to UTF-16 and for four units at once to UTF-8. A step with anything ill-formed is left to the plain
// loop, and the end of a text to the SSE2 kernel.
#include <Utf.h>
#include <UtfCharacter.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <immintrin.h>

#define TVX_AVX2 __attribute__((target("avx2,bmi,popcnt")))
#define TVX_AVX2_INLINE TVX_AVX2 __attribute__((always_inline)) inline

namespace tvxcore {
namespace utf {

namespace {

struct Progress
{
    std::size_t mRead;    // 0: not well formed
    std::size_t mWritten;
};

TVX_AVX2_INLINE __m256i All(int inByte)
{
    return _mm256_set1_epi8(static_cast<char>(inByte));
}

// One table of 16 bytes for each half of a register.
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

// Every byte at the place of the one that many places behind it; the first ones become zero.
template <int kPlaces>
TVX_AVX2_INLINE __m256i Before(__m256i inBytes)
{
    return _mm256_alignr_epi8(inBytes, _mm256_permute2x128_si256(inBytes, inBytes, 0x08), 16 - kPlaces);
}

// ---- to UTF-16 ----

// For each choice of eight bytes, the shuffle that moves the chosen ones together.
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

// Where the characters of one step begin and what they are: as bytes of all ones, and as bits.
struct Classes
{
    __m256i mLead3Bytes;
    __m256i mLead4Bytes;
    std::uint32_t mLead; // of two bytes or more, as those below are contained in it
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
    const std::uint32_t cut = (inClasses.mLead & 0x80000000u) | (inClasses.mLead3 & 0xC0000000u)
                              | (inClasses.mLead4 & 0xE0000000u);
    return cut != 0 ? static_cast<std::size_t>(_tzcnt_u32(cut)) : 32;
}

// What two neighbours rule out, found by three tables and their common bits: by the first byte's upper half, its lower
// half, and the second byte's upper half.
constexpr unsigned char kOverlong2 = 1;   // C0 C1
constexpr unsigned char kOverlong3 = 2;   // E0 before 80 to 9F
constexpr unsigned char kSurrogate = 4;   // ED before A0 to BF
constexpr unsigned char kOverlong4 = 8;   // F0 before 80 to 8F
constexpr unsigned char kTooLarge = 16;   // F4 before 90 to BF
constexpr unsigned char kNoLead = 32;     // F5 and above

constexpr unsigned char kByFirstUpper[16] = {
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, kOverlong2, 0, kOverlong3 | kSurrogate, kOverlong4 | kTooLarge | kNoLead};
constexpr unsigned char kByFirstLower[16] = {
    kOverlong2 | kOverlong3 | kOverlong4, kOverlong2, 0, 0, kTooLarge, kNoLead, kNoLead, kNoLead,
    kNoLead, kNoLead, kNoLead, kNoLead, kNoLead, kNoLead | kSurrogate, kNoLead, kNoLead};
constexpr unsigned char kBySecondUpper[16] = {
    0, 0, 0, 0, 0, 0, 0, 0,
    kOverlong2 | kNoLead | kOverlong3 | kOverlong4,
    kOverlong2 | kNoLead | kOverlong3 | kTooLarge,
    kOverlong2 | kNoLead | kSurrogate | kTooLarge,
    kOverlong2 | kNoLead | kSurrogate | kTooLarge,
    0, 0, 0, 0};

TVX_AVX2_INLINE bool IsWellFormed(__m256i inBytes, const Classes& inClasses, std::uint32_t inWhole)
{
    // A character that is cut into by the next lead promises a byte behind the whole ones, so it is found here too.
    const std::uint32_t expected = (inClasses.mLead & inWhole) << 1 | (inClasses.mLead3 & inWhole) << 2
                                   | (inClasses.mLead4 & inWhole) << 3;
    const __m256i upper = ShiftRight(inBytes, 4, 0x0F);
    const __m256i lower = _mm256_and_si256(inBytes, All(0x0F));
    const __m256i first = _mm256_and_si256(LookUp(kByFirstUpper, upper), LookUp(kByFirstLower, lower));
    const __m256i bad = _mm256_and_si256(Before<1>(first), LookUp(kBySecondUpper, upper));
    const std::uint32_t good = SignBits(_mm256_cmpeq_epi8(bad, _mm256_setzero_si256()));
    return ((expected ^ (inClasses.mContinuation & inWhole)) | (~good & inWhole)) == 0;
}

// The bytes without their tags.
TVX_AVX2_INLINE __m256i Fields(__m256i inBytes)
{
    constexpr unsigned char kMasks[16] = {0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F,
                                          0x3F, 0x3F, 0x3F, 0x3F, 0x1F, 0x1F, 0x0F, 0x07};
    return _mm256_and_si256(inBytes, LookUp(kMasks, ShiftRight(inBytes, 4, 0x0F)));
}

// The units of a step, before they are moved together: low bytes and high bytes at the places that mUnits marks.
struct Units
{
    __m256i mLow;
    __m256i mHigh;
    std::uint32_t mUnits;
};

// Takes the three fields of a unit at the place of its last byte: 6 (or 7) bits, 6 bits, 4 bits.
TVX_AVX2_INLINE Units Join(__m256i inLow, __m256i inMiddle, __m256i inHigh, std::uint32_t inUnits)
{
    Units units;
    units.mLow = _mm256_or_si256(inLow, ShiftLeft(inMiddle, 6, 0xC0));
    units.mHigh = _mm256_or_si256(ShiftRight(inMiddle, 2, 0x0F), ShiftLeft(inHigh, 4, 0xF0));
    units.mUnits = inUnits;
    return units;
}

// The high unit is D800 + (point - 10000) / 400, which is the fields D, 1F + the top five bits, and the next six.
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
    // As a signed number, a continuation byte is below C0.
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

// Writes up to eight units of each group of eight bytes, moving on by those that there are.
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

// ---- to UTF-8 ----

// For four units of one to three bytes in the upper bytes of their words: the shuffle that moves the bytes together.
// The index has a bit for each unit of two bytes or more, and above those a bit for each of three.
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

// The halves of pairs as fields of six bits: a low half takes the two bits that the high half before it has left over;
// a high half gives its upper eight bits, with what the first 0x10000 code points add.
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

// Writes the text of eight words; the index of four is that of kChoiceOfFour.
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

// Eight units in words of 32 bits. A high half in the last place waits for the next step.
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
    const __m256i fields = _mm256_or_si256(_mm256_or_si256(Field(words, 0x3F, 24), Field(words, 0xFC0, 10)),
                                           Field(words, 0xF000, -4));
    const __m256i bytes =
        _mm256_blendv_epi8(_mm256_slli_epi32(inUnits, 24), _mm256_or_si256(fields, tags), two);
    return {count, Store(bytes, WordBits(two), WordBits(three), count, outText)};
}

TVX_AVX2_INLINE bool NarrowStep(__m256i inUnits, unsigned char* outText)
{
    if (_mm256_testz_si256(inUnits, _mm256_set1_epi16(static_cast<short>(0xFF80))) == 0) {
        return false;
    }
    const __m128i bytes =
        _mm_packus_epi16(_mm256_castsi256_si128(inUnits), _mm256_extracti128_si256(inUnits, 1));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(outText), bytes);
    return true;
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
