// Converts between single-byte code pages and 16-bit text on every processor.
#include "LinuxASCIISteps.h"
#include "LinuxCodePageKernels.h"

namespace ORL {
namespace Linux {

namespace {

constexpr int kMaxOthers = 5; // if at most this many elements cannot be copied, copying all sixteen first is faster

// Returns a mask of the non-ASCII bytes below inFirstSame among the next sixteen. The comparison is signed, so bytes
// from 0x80 on are negative.
unsigned FindBytesBelow(unsigned inFirstSame, const unsigned char* inBytes)
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

// Converts single-byte text to 16-bit text or back. inTable contains the result for each element. inFindOthers returns
// a mask of those among sixteen elements that cannot be copied.
template <class Table, class Source, class Result, class FindOthers>
std::size_t ConvertSingles(Table inTable, const Source* inText, std::size_t inCount, Result* outText,
                           FindOthers inFindOthers)
{
    const Source* const end = inText + inCount;
    for (; end - inText >= kStep; inText += kStep, outText += kStep) {
        unsigned others = inFindOthers(inText);
        if (HasMoreThan<kMaxOthers>(others)) {
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

} // namespace

std::size_t SinglesToUnitsPlain(const SingleBytePage& inPage, const unsigned char* inText, std::size_t inBytes,
                                unsigned short* outUnits) noexcept
{
    return ConvertSingles(
        inPage.mUnits, inText, inBytes, outUnits,
        [same = inPage.mFirstSame](const unsigned char* inSixteen) { return FindBytesBelow(same, inSixteen); });
}

std::size_t SinglesToBytes(const SingleBytePage& inPage, const unsigned short* inText, std::size_t inUnits,
                           unsigned char* outBytes) noexcept
{
    return ConvertSingles(inPage.mBytes, inText, inUnits, outBytes,
                          [](const unsigned short* inSixteen) { return FindNonASCII(inSixteen); });
}

} // namespace Linux
} // namespace ORL
