// Converts between double-byte code pages and 16-bit text with AVX-512: 64 bytes or 32 units at a time.
//
// No branch depends on which characters are two bytes, so mixed text causes no mispredictions. Each gather instruction
// reads sixteen entries of a table.
#include "LinuxCodePageAVX512.h"
#include "LinuxCodePageKernels.h"

namespace ORL {
namespace Linux {

namespace {

constexpr std::size_t kGather = 16; // entries

// Stores the bytes marked in inValid as units. All bytes are ASCII.
ORL_AVX512_INLINE void StoreASCII(__m512i inBytes, std::uint64_t inValid, unsigned short* outUnits) noexcept
{
    const __m512i low = _mm512_cvtepu8_epi16(_mm512_castsi512_si256(inBytes));
    const __m512i high = _mm512_cvtepu8_epi16(_mm512_extracti64x4_epi64(inBytes, 1));
    if (inValid == kAll) {
        _mm512_storeu_si512(outUnits, low);
        _mm512_storeu_si512(outUnits + kBlockUnits, high);
        return;
    }
    _mm512_mask_storeu_epi16(outUnits, static_cast<__mmask32>(inValid), low);
    const auto highValid = static_cast<__mmask32>(inValid >> kBlockUnits);
    if (highValid != 0) {
        _mm512_mask_storeu_epi16(outUnits + kBlockUnits, highValid, high);
    }
}

class Decoder
{
public:
    ORL_AVX512_INLINE explicit Decoder(const DoubleBytePage& inPage) noexcept
        : mLowRows(_mm512_loadu_si512(inPage.mRowNumbers)), mHighRows(_mm512_loadu_si512(inPage.mRowNumbers + kBlock)),
          mUnits(inPage.mUnits)
    {
    }

    // Converts the bytes marked in inValid, which include the first. inFollowing contains the byte after each byte,
    // and 0 after the last byte of the text. Returns the end of the units written.
    ORL_AVX512_INLINE unsigned short* Convert(__m512i inBytes, __m512i inFollowing, std::uint64_t inValid,
                                              unsigned short* outUnits) noexcept
    {
        const std::uint64_t notASCII = _mm512_movepi8_mask(inBytes);
        if ((notASCII | mIsTrail) == 0) {
            StoreASCII(inBytes, inValid, outUnits);
            return outUnits + _mm_popcnt_u64(inValid);
        }
        const __m512i rows = _mm512_maskz_permutex2var_epi8(notASCII, mLowRows, inBytes, mHighRows);
        const std::uint64_t leads = _mm512_test_epi8_mask(rows, rows);
        // A lead byte before a zero byte is a character by itself.
        const std::uint64_t starts = ~(FindTrails(leads) & _mm512_test_epi8_mask(inBytes, inBytes)) & inValid;
        const std::uint64_t pairs = starts & leads & _mm512_test_epi8_mask(inFollowing, inFollowing);
        // A pair is an entry of the row of its lead byte, and a single byte is an entry of row 0.
        alignas(kBlock) unsigned char entries[kBlock];
        alignas(kBlock) unsigned char entryRows[kBlock];
        _mm512_store_si512(entries,
                           _mm512_maskz_compress_epi8(starts, _mm512_mask_blend_epi8(pairs, inBytes, inFollowing)));
        _mm512_store_si512(entryRows, _mm512_maskz_compress_epi8(starts, _mm512_maskz_mov_epi8(pairs, rows)));
        const auto count = static_cast<std::size_t>(_mm_popcnt_u64(starts));
        for (std::size_t i = 0; i < count; i += kGather) {
            Gather(entries + i, entryRows + i, count - i, outUnits + i);
        }
        return outUnits + count;
    }

private:
    // Returns a mask of the second bytes of pairs, and of zero bytes after lead bytes. In a run of bytes that can be
    // lead bytes, these are the second, the fourth and so on, and the byte after a run of odd length. The subtraction
    // borrows through each run, and its result depends on whether the run starts at an odd bit.
    std::uint64_t FindTrails(std::uint64_t inLeads) noexcept
    {
        constexpr std::uint64_t odd = 0xAAAAAAAAAAAAAAAA;
        const std::uint64_t candidates = inLeads & ~mIsTrail;
        const std::uint64_t runs = ((candidates << 1 | odd) - candidates) ^ odd;
        const std::uint64_t trails = runs ^ (inLeads | mIsTrail);
        mIsTrail = (runs & inLeads) >> 63;
        return trails;
    }

    ORL_AVX512_INLINE void Gather(const unsigned char* inEntries, const unsigned char* inRows, std::size_t inLeft,
                                  unsigned short* outUnits) const noexcept
    {
        const __m512i entries = _mm512_cvtepu8_epi32(_mm_load_si128(reinterpret_cast<const __m128i*>(inEntries)));
        const __m512i rows = _mm512_cvtepu8_epi32(_mm_load_si128(reinterpret_cast<const __m128i*>(inRows)));
        const __m512i indices = _mm512_or_si512(_mm512_slli_epi32(rows, 8), entries);
        const __m256i units = _mm512_cvtepi32_epi16(_mm512_i32gather_epi32(indices, mUnits, 2));
        if (inLeft >= kGather) {
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(outUnits), units);
        } else {
            _mm256_mask_storeu_epi16(outUnits, static_cast<__mmask16>(LowBits(inLeft)), units);
        }
    }

    __m512i mLowRows;
    __m512i mHighRows;
    const std::uint16_t* mUnits;
    // 1 if the last byte of the previous block was the first of a pair, or a lead byte before a zero byte.
    std::uint64_t mIsTrail = 0;
};

class Encoder
{
public:
    explicit Encoder(const DoubleBytePage& inPage) noexcept : mCodes(inPage.mBytes) {}

    // Converts the first inCount units. Returns the end of the bytes written.
    ORL_AVX512_INLINE unsigned char* Convert(__m512i inUnits, std::size_t inCount,
                                             unsigned char* outBytes) const noexcept
    {
        const std::uint64_t valid = LowBits(inCount);
        if (_mm512_test_epi16_mask(inUnits, _mm512_set1_epi16(static_cast<short>(0xFF80))) == 0) {
            _mm256_mask_storeu_epi8(outBytes, static_cast<__mmask32>(valid), _mm512_cvtepi16_epi8(inUnits));
            return outBytes + inCount;
        }
        const __m256i low = Gather(_mm512_castsi512_si256(inUnits));
        const __m256i high = inCount > kGather ? Gather(_mm512_extracti64x4_epi64(inUnits, 1)) : low;
        const __m512i bytes = LeadsFirst(_mm512_inserti64x4(_mm512_castsi256_si512(low), high, 1));
        constexpr std::uint64_t second = 0xAAAAAAAAAAAAAAAA; // a number below 0x100 has only one byte
        const std::uint64_t kept = (_mm512_test_epi8_mask(bytes, bytes) | second) & LowBits(2 * inCount);
        const auto count = static_cast<std::size_t>(_mm_popcnt_u64(kept));
        _mm512_mask_storeu_epi8(outBytes, LowBits(count), _mm512_maskz_compress_epi8(kept, bytes));
        return outBytes + count;
    }

private:
    ORL_AVX512_INLINE __m256i Gather(__m256i inUnits) const noexcept
    {
        const __m512i units = _mm512_cvtepu16_epi32(inUnits);
        const __m512i offsets = _mm512_i32gather_epi32(_mm512_srli_epi32(units, 6), mCodes.mOffsets, 2);
        const __m512i indices = _mm512_and_si512(_mm512_add_epi32(offsets, units), _mm512_set1_epi32(0xFFFF));
        return _mm512_cvtepi32_epi16(_mm512_i32gather_epi32(indices, mCodes.mBlocks, 2));
    }

    ORL_AVX512_INLINE static __m512i LeadsFirst(__m512i inCodes) noexcept
    {
        return _mm512_or_si512(_mm512_slli_epi16(inCodes, 8), _mm512_srli_epi16(inCodes, 8));
    }

    BlockTable<std::uint16_t> mCodes;
};

} // namespace

ORL_AVX512 std::size_t PairsToUnitsAVX512(const DoubleBytePage& inPage, const unsigned char* inText,
                                          std::size_t inBytes, unsigned short* outUnits) noexcept
{
    Decoder decoder(inPage);
    unsigned short* next = outUnits;
    for (; inBytes > kBlock; inBytes -= kBlock, inText += kBlock) { // at least one byte follows each block
        next = decoder.Convert(_mm512_loadu_si512(inText), _mm512_loadu_si512(inText + 1), kAll, next);
    }
    const __m512i following = inBytes > 1 ? LoadEnd(inText + 1, inBytes - 1) : _mm512_setzero_si512();
    next = decoder.Convert(LoadEnd(inText, inBytes), following, LowBits(inBytes), next);
    return static_cast<std::size_t>(next - outUnits);
}

ORL_AVX512 std::size_t PairsToBytesAVX512(const DoubleBytePage& inPage, const unsigned short* inText,
                                          std::size_t inUnits, unsigned char* outBytes) noexcept
{
    const Encoder encoder(inPage);
    unsigned char* next = outBytes;
    for (; inUnits > kBlockUnits; inUnits -= kBlockUnits, inText += kBlockUnits) {
        next = encoder.Convert(_mm512_loadu_si512(inText), kBlockUnits, next);
    }
    next = encoder.Convert(LoadEnd(inText, sizeof(*inText) * inUnits), inUnits, next);
    return static_cast<std::size_t>(next - outBytes);
}

} // namespace Linux
} // namespace ORL
