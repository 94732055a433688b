// Floor: System
// One resource of a string table: sixteen entries, each a unit count followed by the units, without padding.
#pragma once

#include <cstddef>
#include <cstring>

namespace ORL {
namespace Resources {

inline constexpr unsigned short kStringType = 6;

/// The number of strings in a block. Determines an identifier's block, and its index in the block.
inline constexpr unsigned int kStringsInBlock = 16;

constexpr unsigned short BlockOfString(unsigned int inID) noexcept
{
    return static_cast<unsigned short>(inID / kStringsInBlock + 1);
}

/// Iterates over the entries. Never reads outside the bytes, even if the block is damaged. The bytes need not be
/// aligned.
class StringBlock
{
public:
    StringBlock(const void* inData, std::size_t inSize)
        : mData(static_cast<const unsigned char*>(inData)), mEnd(mData + inSize)
    {
    }

    /// Skips inCount entries, but not past the end.
    void Skip(unsigned int inCount) noexcept
    {
        for (unsigned int k = 0; k < inCount && HasEntry(); ++k) {
            mData += 2 + 2 * std::size_t{Length()};
        }
    }

    /// Returns whether there is a complete entry at this position.
    bool HasEntry() const noexcept
    {
        return mEnd - mData >= 2 && static_cast<std::size_t>(mEnd - mData - 2) >= 2 * std::size_t{Length()};
    }

    /// Returns the number of units of the current entry.
    unsigned short Length() const noexcept
    {
        unsigned short length;
        std::memcpy(&length, mData, sizeof(length));
        return length;
    }

    /// Returns the units of the current entry.
    const unsigned char* Text() const noexcept { return mData + 2; }

private:
    const unsigned char* mData;
    const unsigned char* const mEnd;
};

} // namespace Resources
} // namespace ORL
