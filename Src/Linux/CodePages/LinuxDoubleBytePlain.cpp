// Converts between double-byte code pages and 16-bit text on every processor.
#include "LinuxASCIISteps.h"
#include "LinuxCodePageKernels.h"

#include <cstring>

namespace ORL {
namespace Linux {

namespace {

// Converts double-byte text to 16-bit text or back. inConvertOne converts the next character, which may be ASCII, and
// advances both pointers. Returns the number of elements written.
template <class Source, class Result, class ConvertOne>
std::size_t ConvertDoubleByte(const Source* inText, std::size_t inCount, Result* outText, ConvertOne inConvertOne)
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

// Returns the unit of a pair of bytes; 0 if the first byte is a character by itself.
unsigned short UnitOfPair(const DoubleBytePage& inPage, const unsigned char* inText, const unsigned char* inEnd)
{
    return inEnd - inText > 1 ? inPage.mUnits[inPage.mRows[inText[0]] + inText[1]] : static_cast<unsigned short>(0);
}

} // namespace

std::size_t CountUnits(const DoubleBytePage& inPage, const unsigned char* inText, std::size_t inBytes) noexcept
{
    const unsigned char* const end = inText + inBytes;
    std::size_t count = 0;
    for (; inText != end; ++count) {
        inText += UnitOfPair(inPage, inText, end) != 0 ? 2 : 1;
    }
    return count;
}

std::size_t CountBytes(const DoubleBytePage& inPage, const unsigned short* inText, std::size_t inUnits) noexcept
{
    std::size_t count = inUnits;
    for (std::size_t i = 0; i < inUnits; ++i) {
        count += inPage.mBytes[inText[i]] > 0xFF ? 1 : 0;
    }
    return count;
}

std::size_t PairsToUnitsPlain(const DoubleBytePage& inPage, const unsigned char* inText, std::size_t inBytes,
                              unsigned short* outUnits) noexcept
{
    const unsigned char* const end = inText + inBytes;
    return ConvertDoubleByte(inText, inBytes, outUnits,
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

std::size_t PairsToBytesPlain(const DoubleBytePage& inPage, const unsigned short* inText, std::size_t inUnits,
                              unsigned char* outBytes) noexcept
{
    return ConvertDoubleByte(inText, inUnits, outBytes,
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

} // namespace Linux
} // namespace ORL
