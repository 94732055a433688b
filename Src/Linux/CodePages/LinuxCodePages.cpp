#include <Platform/CodePages.h>

#include "LinuxCodePageKernels.h"
#include "LinuxCodePageTables.h"

#include <climits>
#include <cstddef>

namespace ORL {
namespace StringUtils {
namespace Platform {

namespace {

using ORL::Linux::BestCodePageKernel;
using ORL::Linux::CodePageTable;
using ORL::Linux::DoubleBytePage;
using ORL::Linux::FindCodePage;

// Up to this number of elements, converting one character at a time is faster: the caller copies a short result
// immediately, and that load would stall on a masked store of the same bytes.
constexpr std::size_t kShort = 16;

std::size_t PairsToUnits(const DoubleBytePage& inPage, const unsigned char* inText, std::size_t inBytes,
                         unsigned short* outUnits)
{
    return inBytes <= kShort ? ORL::Linux::PairsToUnitsPlain(inPage, inText, inBytes, outUnits)
                             : BestCodePageKernel().mPairsToUnits(inPage, inText, inBytes, outUnits);
}

std::size_t PairsToBytes(const DoubleBytePage& inPage, const unsigned short* inText, std::size_t inUnits,
                         unsigned char* outBytes)
{
    if (inUnits > kShort) {
        return BestCodePageKernel().mPairsToBytes(inPage, inText, inUnits, outBytes);
    }
    const auto codes = inPage.mBytes;
    unsigned char* next = outBytes;
    for (std::size_t i = 0; i < inUnits; ++i) {
        const unsigned code = codes[inText[i]];
        if (code > 0xFF) {
            *next++ = static_cast<unsigned char>(code >> 8);
        }
        *next++ = static_cast<unsigned char>(code);
    }
    return static_cast<std::size_t>(next - outBytes);
}

// Returns 0 for a count above 2^31 - 1, because the Windows functions use 32-bit sizes.
std::size_t Limited(std::size_t inCount)
{
    return inCount <= INT_MAX ? inCount : 0;
}

const unsigned char* AsBytes(const char* inText)
{
    return reinterpret_cast<const unsigned char*>(inText);
}

} // namespace

std::size_t MaxUnits_Impl(unsigned int inCodePage, std::size_t inBytes)
{
    return FindCodePage(inCodePage) != nullptr ? Limited(inBytes) : 0;
}

std::size_t MeasureUnits_Impl(unsigned int inCodePage, const char* inText, std::size_t inBytes)
{
    const CodePageTable* const page = FindCodePage(inCodePage);
    if (page == nullptr || Limited(inBytes) == 0) {
        return 0;
    }
    return page->mSingle != nullptr ? inBytes : ORL::Linux::CountUnits(*page->mDouble, AsBytes(inText), inBytes);
}

std::size_t ToUnits_Impl(unsigned int inCodePage, const char* inText, std::size_t inBytes, unsigned short* outUnits,
                         std::size_t)
{
    const CodePageTable* const page = FindCodePage(inCodePage);
    if (page == nullptr || Limited(inBytes) == 0) {
        return 0;
    }
    return page->mSingle != nullptr
               ? BestCodePageKernel().mSinglesToUnits(*page->mSingle, AsBytes(inText), inBytes, outUnits)
               : PairsToUnits(*page->mDouble, AsBytes(inText), inBytes, outUnits);
}

std::size_t MaxBytes_Impl(unsigned int inCodePage, std::size_t inUnits)
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
    return page->mSingle != nullptr ? inUnits : Limited(ORL::Linux::CountBytes(*page->mDouble, inText, inUnits));
}

std::size_t ToBytes_Impl(unsigned int inCodePage, const unsigned short* inText, std::size_t inUnits, char* outBytes,
                         std::size_t)
{
    const CodePageTable* const page = FindCodePage(inCodePage);
    if (page == nullptr || Limited(inUnits) == 0) {
        return 0;
    }
    unsigned char* const bytes = reinterpret_cast<unsigned char*>(outBytes);
    return page->mSingle != nullptr ? ORL::Linux::SinglesToBytes(*page->mSingle, inText, inUnits, bytes)
                                    : Limited(PairsToBytes(*page->mDouble, inText, inUnits, bytes));
}

} // namespace Platform
} // namespace StringUtils
} // namespace ORL
