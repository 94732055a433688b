// The code pages as tables. They hold the home platform's own answers: Scripts/make-code-pages.cpp writes them.
//
// In every page the ASCII bytes are the ASCII characters, and no lead byte is among them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ORL {
namespace Linux {

/// A table of 65,536 entries in blocks of 64, of which equal ones stand once. An offset is the place of a block's first
/// entry less the unit that it is for, so that the unit itself can be added. All of it wraps at 65,536.
template <class Entry>
struct BlockTable
{
    const std::uint16_t* mOffsets;
    const Entry* mBlocks;

    Entry operator[](unsigned short inUnit) const noexcept
    {
        return mBlocks[static_cast<std::uint16_t>(mOffsets[inUnit >> 6] + inUnit)];
    }
};

/// A page whose characters take one byte each.
struct SingleBytePage
{
    const std::uint16_t* mUnits; // of each byte
    BlockTable<std::uint8_t> mBytes;
    unsigned mFirstSame; // this byte and all after it, up to 0xFF, are the units of their own number; 0x100 for none
};

/// A page whose characters take one byte or two.
struct DoubleBytePage
{
    static constexpr std::size_t kRow = 256;

    const std::uint16_t* mUnits; // of each byte that no other follows up; of a lead byte, the page's default character
    // Where in mPairs the row of a lead byte begins: a unit for each trail byte, but 0 for the zero byte, before which
    // a lead byte stands alone. All other bytes have the row at 0, which is 0 throughout.
    const std::uint16_t* mRows;
    const std::uint16_t* mPairs;
    BlockTable<std::uint16_t> mBytes; // two bytes from 0x100 on, the lead byte above the trail byte
};

/// One of the two pointers is null.
struct CodePageTable
{
    unsigned int mNumber;
    const SingleBytePage* mSingle;
    const DoubleBytePage* mDouble;
};

/// Returns the table of a page, or null if there is none.
const CodePageTable* FindCodePage(unsigned int inNumber) noexcept;

} // namespace Linux
} // namespace ORL
