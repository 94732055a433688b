#include <Platform/CodePages.h>

#include "LinuxCodePageTables.h"

#include <climits>
#include <emmintrin.h>

namespace ORL {
namespace StringUtils {
namespace Platform {

namespace {

using ORL::Linux::CodePageTable;
using ORL::Linux::DoubleBytePage;
using ORL::Linux::FindCodePage;
using ORL::Linux::SingleBytePage;

// ASCII goes sixteen at a time. Where a step meets anything else, the next sixteen go one by one: looking again at once
// would cost mixed text more than the step saves.
constexpr std::size_t kStep = 16;

const __m128i* AsVector(const void* inAddress)
{
    return static_cast<const __m128i*>(inAddress);
}

bool AreSixteenASCII(const unsigned char* inBytes)
{
    return _mm_movemask_epi8(_mm_loadu_si128(AsVector(inBytes))) == 0;
}

bool AreSixteenASCII(const unsigned short* inUnits)
{
    const __m128i all = _mm_or_si128(_mm_loadu_si128(AsVector(inUnits)), _mm_loadu_si128(AsVector(inUnits + 8)));
    const __m128i high = _mm_and_si128(all, _mm_set1_epi16(static_cast<short>(0xFF80)));
    return _mm_movemask_epi8(_mm_cmpeq_epi16(high, _mm_setzero_si128())) == 0xFFFF;
}

void WidenSixteen(const unsigned char* inBytes, unsigned short* outUnits)
{
    const __m128i bytes = _mm_loadu_si128(AsVector(inBytes));
    __m128i* const units = reinterpret_cast<__m128i*>(outUnits);
    _mm_storeu_si128(units, _mm_unpacklo_epi8(bytes, _mm_setzero_si128()));
    _mm_storeu_si128(units + 1, _mm_unpackhi_epi8(bytes, _mm_setzero_si128()));
}

void NarrowSixteen(const unsigned short* inUnits, unsigned char* outBytes)
{
    const __m128i low = _mm_loadu_si128(AsVector(inUnits));
    const __m128i high = _mm_loadu_si128(AsVector(inUnits + 8));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(outBytes), _mm_packus_epi16(low, high));
}

// Calls inOfASCII(at) for each sixteen of ASCII, and for the rest inOfOther(at, end), which returns how far it came.
template <class Element, class OfASCII, class OfOther>
void Walk(const Element* inText, std::size_t inCount, OfASCII inOfASCII, OfOther inOfOther)
{
    std::size_t at = 0;
    while (at + kStep <= inCount) {
        if (AreSixteenASCII(inText + at)) {
            inOfASCII(at);
            at += kStep;
        } else {
            at = inOfOther(at, at + kStep);
        }
    }
    if (at < inCount) {
        inOfOther(at, inCount);
    }
}

// A lead byte in front of a zero byte, or at the end, stands alone.
bool IsPair(const DoubleBytePage& inPage, const unsigned char* inText, std::size_t inAt, std::size_t inCount)
{
    return inPage.mRows[inText[inAt]] != 0 && inAt + 1 < inCount && inText[inAt + 1] != 0;
}

unsigned short UnitOfPair(const DoubleBytePage& inPage, unsigned char inLead, unsigned char inTrail)
{
    const unsigned column = inTrail - DoubleBytePage::kFirstTrail; // wraps below the first
    const unsigned row = inPage.mRows[inLead] - 1u;
    return column < DoubleBytePage::kTrails ? inPage.mPairs[row * DoubleBytePage::kTrails + column]
                                            : inPage.mUnits[inLead];
}

std::size_t CountUnits(const DoubleBytePage& inPage, const unsigned char* inText, std::size_t inBytes)
{
    std::size_t count = inBytes;
    Walk(
        inText, inBytes, [](std::size_t) {},
        [&](std::size_t at, std::size_t end) {
            while (at < end) {
                const std::size_t taken = IsPair(inPage, inText, at, inBytes) ? 2 : 1;
                count -= taken - 1;
                at += taken;
            }
            return at;
        });
    return count;
}

std::size_t ToUnits(const DoubleBytePage& inPage, const unsigned char* inText, std::size_t inBytes,
                    unsigned short* outUnits)
{
    unsigned short* out = outUnits;
    Walk(
        inText, inBytes,
        [&](std::size_t at) {
            WidenSixteen(inText + at, out);
            out += kStep;
        },
        [&](std::size_t at, std::size_t end) {
            while (at < end) {
                if (IsPair(inPage, inText, at, inBytes)) {
                    *out++ = UnitOfPair(inPage, inText[at], inText[at + 1]);
                    at += 2;
                } else {
                    *out++ = inPage.mUnits[inText[at++]];
                }
            }
            return at;
        });
    return static_cast<std::size_t>(out - outUnits);
}

std::size_t ToUnits(const SingleBytePage& inPage, const unsigned char* inText, std::size_t inBytes,
                    unsigned short* outUnits)
{
    Walk(
        inText, inBytes, [&](std::size_t at) { WidenSixteen(inText + at, outUnits + at); },
        [&](std::size_t at, std::size_t end) {
            for (; at < end; ++at) {
                outUnits[at] = inPage.mUnits[inText[at]];
            }
            return end;
        });
    return inBytes;
}

std::size_t CountBytes(const DoubleBytePage& inPage, const unsigned short* inText, std::size_t inUnits)
{
    std::size_t count = inUnits;
    Walk(
        inText, inUnits, [](std::size_t) {},
        [&](std::size_t at, std::size_t end) {
            for (; at < end; ++at) {
                count += inPage.mBytes[inText[at]] > 0xFF ? 1 : 0;
            }
            return end;
        });
    return count;
}

std::size_t ToBytes(const DoubleBytePage& inPage, const unsigned short* inText, std::size_t inUnits,
                    unsigned char* outBytes)
{
    unsigned char* out = outBytes;
    Walk(
        inText, inUnits,
        [&](std::size_t at) {
            NarrowSixteen(inText + at, out);
            out += kStep;
        },
        [&](std::size_t at, std::size_t end) {
            for (; at < end; ++at) {
                const unsigned code = inPage.mBytes[inText[at]];
                if (code > 0xFF) {
                    *out++ = static_cast<unsigned char>(code >> 8);
                }
                *out++ = static_cast<unsigned char>(code & 0xFF);
            }
            return end;
        });
    return static_cast<std::size_t>(out - outBytes);
}

std::size_t ToBytes(const SingleBytePage& inPage, const unsigned short* inText, std::size_t inUnits,
                    unsigned char* outBytes)
{
    Walk(
        inText, inUnits, [&](std::size_t at) { NarrowSixteen(inText + at, outBytes + at); },
        [&](std::size_t at, std::size_t end) {
            for (; at < end; ++at) {
                outBytes[at] = inPage.mBytes[inText[at]];
            }
            return end;
        });
    return inUnits;
}

// The sizes of the home platform's calls are 32-bit.
std::size_t Limited(std::size_t inCount)
{
    return inCount <= INT_MAX ? inCount : 0;
}

const unsigned char* AsBytes(const char* inText)
{
    return reinterpret_cast<const unsigned char*>(inText);
}

} // namespace

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
    if (page == nullptr) {
        return 0;
    }
    return page->mSingle != nullptr ? ToUnits(*page->mSingle, AsBytes(inText), inBytes, outUnits)
                                    : ToUnits(*page->mDouble, AsBytes(inText), inBytes, outUnits);
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
    if (page == nullptr) {
        return 0;
    }
    unsigned char* const bytes = reinterpret_cast<unsigned char*>(outBytes);
    return page->mSingle != nullptr ? ToBytes(*page->mSingle, inText, inUnits, bytes)
                                    : ToBytes(*page->mDouble, inText, inUnits, bytes);
}

} // namespace Platform
} // namespace StringUtils
} // namespace ORL
