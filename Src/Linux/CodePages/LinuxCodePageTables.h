// The code pages as tables. They hold the home platform's own answers: Scripts/make-code-pages.cpp writes them.
//
// In every page the ASCII bytes are the ASCII characters, and no lead byte is among them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ORL {
namespace Linux {

/// A table of 65,536 entries in blocks of 64, of which equal ones stand once.
template <class Entry>
struct BlockTable
{
    const Entry* mIndex;
    const Entry* mBlocks;

    Entry operator[](unsigned short inUnit) const noexcept
    {
        return mBlocks[(static_cast<std::size_t>(mIndex[inUnit >> 6]) << 6) + (inUnit & 63u)];
    }
};

/// A page whose characters take one byte each.
struct SingleBytePage
{
    const std::uint16_t* mUnits; // of each byte
    BlockTable<std::uint8_t> mBytes;
};

/// A page whose characters take one byte or two.
struct DoubleBytePage
{
    static constexpr unsigned kFirstTrail = 0x40;
    static constexpr unsigned kTrails = 0xFE - kFirstTrail + 1;

    const std::uint16_t* mUnits; // of each byte that no other follows up; of a lead byte, the page's default character
    const std::uint8_t* mRows;   // of each lead byte: 1 and its row in mPairs; 0 for all other bytes
    const std::uint16_t* mPairs; // rows of kTrails units. A trail byte outside of them makes the default character.
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
