#include <Platform/CodePages.h>

#include "LinuxCodePageTables.h"

#include <climits>
#include <cstddef>
#include <cstring>
#include <emmintrin.h>

namespace ORL {
namespace StringUtils {
namespace Platform {

namespace {

using ORL::Linux::CodePageTable;
using ORL::Linux::DoubleBytePage;
using ORL::Linux::FindCodePage;
using ORL::Linux::SingleBytePage;

// ASCII is converted sixteen elements at a time.
constexpr std::ptrdiff_t kStep = 16;
constexpr int kFewOthers = 5; // up to this number, it is faster to copy all sixteen and then convert the others

const __m128i* AsVector(const void* inAddress)
{
    return static_cast<const __m128i*>(inAddress);
}

// Returns a mask of the non-ASCII elements among the next sixteen. The first element is bit 0.
unsigned FindNonASCII(const unsigned char* inBytes)
{
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_loadu_si128(AsVector(inBytes))));
}

unsigned FindNonASCII(const unsigned short* inUnits)
{
    const __m128i mask = _mm_set1_epi16(static_cast<short>(0xFF80));
    const __m128i zero = _mm_setzero_si128();
    const __m128i low = _mm_cmpeq_epi16(_mm_and_si128(_mm_loadu_si128(AsVector(inUnits)), mask), zero);
    const __m128i high = _mm_cmpeq_epi16(_mm_and_si128(_mm_loadu_si128(AsVector(inUnits + 8)), mask), zero);
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(low, high))) ^ 0xFFFFu;
}

// The same, but bytes from inFirstSame on count as ASCII. The comparison is signed, so bytes from 0x80 on are negative.
unsigned FindBytesBefore(unsigned inFirstSame, const unsigned char* inBytes)
{
    const __m128i limit = _mm_set1_epi8(static_cast<char>(inFirstSame));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmplt_epi8(_mm_loadu_si128(AsVector(inBytes)), limit)));
}

std::ptrdiff_t IndexOfFirst(unsigned inBits)
{
    return __builtin_ctz(inBits);
}

// Returns whether more than Count bits are set.
template <int Count>
bool HasMoreThan(unsigned inBits)
{
    for (int i = 0; i < Count; ++i) {
        inBits &= inBits - 1;
    }
    return inBits != 0;
}

// Copies sixteen elements that have the same number in both texts.
void CopySixteen(const unsigned char* inBytes, unsigned short* outUnits)
{
    const __m128i bytes = _mm_loadu_si128(AsVector(inBytes));
    __m128i* const units = reinterpret_cast<__m128i*>(outUnits);
    _mm_storeu_si128(units, _mm_unpacklo_epi8(bytes, _mm_setzero_si128()));
    _mm_storeu_si128(units + 1, _mm_unpackhi_epi8(bytes, _mm_setzero_si128()));
}

void CopySixteen(const unsigned short* inUnits, unsigned char* outBytes)
{
    const __m128i low = _mm_loadu_si128(AsVector(inUnits));
    const __m128i high = _mm_loadu_si128(AsVector(inUnits + 8));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(outBytes), _mm_packus_epi16(low, high));
}

// Converts between texts that have one byte for each unit. inTable contains the result for each element. inFindOthers
// returns a mask of those among sixteen elements that cannot be copied.
template <class Table, class Source, class Result, class FindOthers>
std::size_t ConvertSingles(Table inTable, const Source* inText, std::size_t inCount, Result* outText,
                           FindOthers inFindOthers)
{
    const Source* const end = inText + inCount;
    for (; end - inText >= kStep; inText += kStep, outText += kStep) {
        unsigned others = inFindOthers(inText);
        if (HasMoreThan<kFewOthers>(others)) {
            for (std::ptrdiff_t i = 0; i < kStep; ++i) {
                outText[i] = inTable[inText[i]];
            }
            continue;
        }
        CopySixteen(inText, outText);
        for (; others != 0; others &= others - 1) {
            const std::ptrdiff_t index = IndexOfFirst(others);
            outText[index] = inTable[inText[index]];
        }
    }
    for (; inText != end; ++inText, ++outText) {
        *outText = inTable[*inText];
    }
    return inCount;
}

// Converts a text in which a character is one or two bytes. inConvertOne converts the next character, which may be
// ASCII, and advances both pointers. Returns the number of elements written.
template <class Source, class Result, class ConvertOne>
std::size_t ConvertPairs(const Source* inText, std::size_t inCount, Result* outText, ConvertOne inConvertOne)
{
    const Source* const end = inText + inCount;
    Result* next = outText;
    while (end - inText >= kStep) {
        if (FindNonASCII(inText) == 0) {
            CopySixteen(inText, next);
            inText += kStep;
            next += kStep;
            continue;
        }
        // Does not skip to the first non-ASCII element: the next load would depend on its index, whereas the processor
        // predicts the branches for single elements.
        const Source* const stop = inText + kStep;
        do {
            inConvertOne(inText, next);
        } while (inText < stop);
    }
    while (inText != end) {
        inConvertOne(inText, next);
    }
    return static_cast<std::size_t>(next - outText);
}

std::size_t ToUnits(const SingleBytePage& inPage, const unsigned char* inText, std::size_t inBytes,
                    unsigned short* outUnits)
{
    return ConvertSingles(
        inPage.mUnits, inText, inBytes, outUnits,
        [same = inPage.mFirstSame](const unsigned char* inSixteen) { return FindBytesBefore(same, inSixteen); });
}

std::size_t ToBytes(const SingleBytePage& inPage, const unsigned short* inText, std::size_t inUnits,
                    unsigned char* outBytes)
{
    return ConvertSingles(inPage.mBytes, inText, inUnits, outBytes,
                          [](const unsigned short* inSixteen) { return FindNonASCII(inSixteen); });
}

// Returns the unit of a pair of bytes; 0 if the first byte is a character by itself.
unsigned short UnitOfPair(const DoubleBytePage& inPage, const unsigned char* inText, const unsigned char* inEnd)
{
    return inEnd - inText > 1 ? inPage.mPairs[inPage.mRows[inText[0]] + inText[1]] : static_cast<unsigned short>(0);
}

std::size_t CountUnits(const DoubleBytePage& inPage, const unsigned char* inText, std::size_t inBytes)
{
    const unsigned char* const end = inText + inBytes;
    std::size_t count = 0;
    for (; inText != end; ++count) {
        inText += UnitOfPair(inPage, inText, end) != 0 ? 2 : 1;
    }
    return count;
}

std::size_t CountBytes(const DoubleBytePage& inPage, const unsigned short* inText, std::size_t inUnits)
{
    std::size_t count = inUnits;
    for (std::size_t i = 0; i < inUnits; ++i) {
        count += inPage.mBytes[inText[i]] > 0xFF ? 1 : 0;
    }
    return count;
}

std::size_t ToUnits(const DoubleBytePage& inPage, const unsigned char* inText, std::size_t inBytes,
                    unsigned short* outUnits)
{
    const unsigned char* const end = inText + inBytes;
    return ConvertPairs(inText, inBytes, outUnits,
                        [page = inPage, end](const unsigned char*& ioText, unsigned short*& ioNext) {
                            const unsigned char first = *ioText;
                            if (first < 0x80) {
                                *ioNext++ = first;
                                ++ioText;
                                return;
                            }
                            const unsigned short unit = UnitOfPair(page, ioText, end);
                            if (unit != 0) {
                                *ioNext++ = unit;
                                ioText += 2;
                            } else {
                                *ioNext++ = page.mUnits[*ioText++];
                            }
                        });
}

std::size_t ToBytes(const DoubleBytePage& inPage, const unsigned short* inText, std::size_t inUnits,
                    unsigned char* outBytes)
{
    return ConvertPairs(inText, inUnits, outBytes,
                        [codes = inPage.mBytes](const unsigned short*& ioText, unsigned char*& ioNext) {
                            const unsigned code = codes[*ioText++];
                            if (code > 0xFF) {
                                const auto swapped = static_cast<std::uint16_t>(code >> 8 | code << 8);
                                std::memcpy(ioNext, &swapped, sizeof(swapped));
                                ioNext += 2;
                            } else {
                                *ioNext++ = static_cast<unsigned char>(code);
                            }
                        });
}

// Returns 0 for a count above 2^31 - 1, because the calls of Windows have 32-bit sizes.
std::size_t Limited(std::size_t inCount)
{
    return inCount <= INT_MAX ? inCount : 0;
}

const unsigned char* AsBytes(const char* inText)
{
    return reinterpret_cast<const unsigned char*>(inText);
}

} // namespace

std::size_t MostUnits_Impl(unsigned int inCodePage, std::size_t inBytes)
{
    return FindCodePage(inCodePage) != nullptr ? Limited(inBytes) : 0;
}

std::size_t MeasureUnits_Impl(unsigned int inCodePage, const char* inText, std::size_t inBytes)
{
    const CodePageTable* const page = FindCodePage(inCodePage);
    if (page == nullptr || Limited(inBytes) == 0) {
        return 0;
    }
    return page->mSingle != nullptr ? inBytes : CountUnits(*page->mDouble, AsBytes(inText), inBytes);
}

std::size_t ToUnits_Impl(unsigned int inCodePage, const char* inText, std::size_t inBytes, unsigned short* outUnits,
                         std::size_t)
{
    const CodePageTable* const page = FindCodePage(inCodePage);
    if (page == nullptr || Limited(inBytes) == 0) {
        return 0;
    }
    return page->mSingle != nullptr ? ToUnits(*page->mSingle, AsBytes(inText), inBytes, outUnits)
                                    : ToUnits(*page->mDouble, AsBytes(inText), inBytes, outUnits);
}

std::size_t MostBytes_Impl(unsigned int inCodePage, std::size_t inUnits)
{
    const CodePageTable* const page = FindCodePage(inCodePage);
    return page == nullptr ? 0 : page->mSingle != nullptr ? Limited(inUnits) : 2 * Limited(inUnits);
}

std::size_t MeasureBytes_Impl(unsigned int inCodePage, const unsigned short* inText, std::size_t inUnits)
{
    const CodePageTable* const page = FindCodePage(inCodePage);
    if (page == nullptr || Limited(inUnits) == 0) {
        return 0;
    }
    return page->mSingle != nullptr ? inUnits : Limited(CountBytes(*page->mDouble, inText, inUnits));
}

std::size_t ToBytes_Impl(unsigned int inCodePage, const unsigned short* inText, std::size_t inUnits, char* outBytes,
                         std::size_t)
{
    const CodePageTable* const page = FindCodePage(inCodePage);
    if (page == nullptr || Limited(inUnits) == 0) {
        return 0;
    }
    unsigned char* const bytes = reinterpret_cast<unsigned char*>(outBytes);
    return page->mSingle != nullptr ? ToBytes(*page->mSingle, inText, inUnits, bytes)
                                    : Limited(ToBytes(*page->mDouble, inText, inUnits, bytes));
}

} // namespace Platform
} // namespace StringUtils
} // namespace ORL
