// What stands in front of the pixels of a bitmap resource.
#pragma once

#include <Resources/ResourceReaders.h>

#include <cstdint>
#include <vector>

namespace ORL {
namespace Images {

/// A colour among the bits of a pixel.
class BitField
{
public:
    /// False if the bits are not adjacent. No bits at all are a colour that is always 0.
    bool Set(std::uint32_t inMask) noexcept;

    /// The colour as 8 bits: shorter ones are repeated to fill them, as displays have them.
    std::uint32_t Read(std::uint32_t inPixel) const noexcept { return mColours[(inPixel & mMask) >> mShift]; }

private:
    std::uint32_t mMask = 0;
    unsigned int mShift = 0;
    std::uint8_t mColours[256] = {}; // of the upper 8 bits, where there are more
};

struct BitmapHeader
{
    enum Compression : std::uint32_t { kPlain = 0, kRunLength8 = 1, kRunLength4 = 2, kBitFields = 3 };

    unsigned int mWidth = 0;
    unsigned int mHeight = 0;
    bool mIsTopDown = false;
    unsigned int mBits = 0;
    std::uint32_t mCompression = kPlain;
    std::uint32_t mMasks[3] = {}; // red, green, blue, of 16 and 32 bits
    std::vector<std::uint32_t> mColours;
    Resources::Bytes mPixels; // all that follows
};

/// Reads header, masks and colours. False if they are not whole or say what cannot be. Throws std::bad_alloc.
bool ReadBitmapHeader(const Resources::Bytes& inBitmap, BitmapHeader& outHeader);

} // namespace Images
} // namespace ORL
