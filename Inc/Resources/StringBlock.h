// Floor: System
// One resource of a string table: sixteen entries, each a count of units and the units, without padding.
#pragma once

#include <cstddef>
#include <cstring>

namespace ORL {
namespace Resources {

inline constexpr unsigned short kStringType = 6;

/// The block of an identifier, and the place in it.
inline constexpr unsigned int kStringsInBlock = 16;

constexpr unsigned short BlockOfString(unsigned int inID) noexcept
{
    return static_cast<unsigned short>(inID / kStringsInBlock + 1);
}

/// Walks over the entries. A block that somebody has damaged does not lead out of its bytes, which need not be aligned.
class StringBlock
{
public:
    StringBlock(const void* inData, std::size_t inSize)
        : mData(static_cast<const unsigned char*>(inData)), mEnd(mData + inSize)
    {
    }

    /// Steps over entries, to the end at most.
    void StepOver(unsigned int inCount) noexcept
    {
        for (unsigned int k = 0; k < inCount && HasEntry(); ++k) {
            mData += 2 + 2 * std::size_t{Length()};
        }
    }

    /// Whether an entry stands here, wholly.
    bool HasEntry() const noexcept
    {
        return mEnd - mData >= 2 && static_cast<std::size_t>(mEnd - mData - 2) >= 2 * std::size_t{Length()};
    }

    /// The count of units of the entry here.
    unsigned short Length() const noexcept
    {
        unsigned short length;
        std::memcpy(&length, mData, sizeof(length));
        return length;
    }

    /// The units of the entry here.
    const unsigned char* Text() const noexcept { return mData + 2; }

private:
    const unsigned char* mData;
    const unsigned char* const mEnd;
};

} // namespace Resources
} // namespace ORL
