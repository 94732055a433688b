// The tables of the code pages: the conversions of Windows, as recorded by Scripts/make-code-pages.cpp.
//
// Every page is ASCII-compatible, and no ASCII byte is a lead byte.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ORL {
namespace Linux {

/// A table of 65,536 entries in blocks of 64; equal blocks are stored once. The offset of a block is the index of its
/// first entry in mBlocks minus the unit of that entry, so adding a unit yields the index of its entry. The arithmetic
/// wraps at 65,536. In a double-byte page both arrays have one more entry, so a 32-bit load of the last one is safe.
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

/// A single-byte code page.
struct SingleBytePage
{
    const std::uint16_t* mUnits; // the unit of each byte
    BlockTable<std::uint8_t> mBytes;
    unsigned mFirstSame; // from this byte to 0xFF each byte equals its unit; 0x100 if there is no such byte
};

/// A double-byte code page: each character is one or two bytes.
struct DoubleBytePage
{
    static constexpr std::size_t kRow = 256;

    // The units, in rows of kRow units. Row 0 has the unit of each single byte; for a lead byte, the page's default
    // character. Row 1 contains only zeros. Each other row has a unit for each trail byte of a lead byte, and 0 for the
    // zero byte, which is not a trail byte. The array has one more unit at its end, so a 32-bit load of the last one is
    // safe.
    const std::uint16_t* mUnits;
    const std::uint16_t* mRows;       // the offset in mUnits of the row of each lead byte; of row 1 for all other bytes
    const std::uint8_t* mRowNumbers;  // for the bytes from 0x80 on: the row number of a lead byte, else 0
    BlockTable<std::uint16_t> mBytes; // a number from 0x100 on is lead byte * 256 + trail byte
};

/// Exactly one of the two pointers is null.
struct CodePageTable
{
    unsigned int mNumber;
    const SingleBytePage* mSingle;
    const DoubleBytePage* mDouble;
};

/// Returns the table of a page, or null for an unknown page.
const CodePageTable* FindCodePage(unsigned int inNumber) noexcept;

} // namespace Linux
} // namespace ORL
