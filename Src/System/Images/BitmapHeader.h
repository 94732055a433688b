// Reads the header, masks and colours that precede the pixels of a bitmap resource.
#pragma once

#include <Resources/ResourceReaders.h>

#include <cstdint>
#include <vector>

namespace ORL {
namespace Images {

/// The bits of one colour channel in a pixel.
class BitField
{
public:
    /// Returns false if the bits are not adjacent. With mask 0 the channel is always 0.
    bool Set(std::uint32_t inMask) noexcept;

    /// Returns the channel as 8 bits. Repeats the bits of a shorter channel, so that its largest value becomes 255.
    std::uint32_t Read(std::uint32_t inPixel) const noexcept { return mColours[(inPixel & mMask) >> mShift]; }

private:
    std::uint32_t mMask = 0;
    unsigned int mShift = 0;
    std::uint8_t mColours[256] = {}; // indexed by the upper 8 bits if the mask has more bits
};

struct BitmapHeader
{
    enum Compression : std::uint32_t { kPlain = 0, kRunLength8 = 1, kRunLength4 = 2, kBitFields = 3 };

    unsigned int mWidth = 0;
    unsigned int mHeight = 0;
    bool mIsTopDown = false;
    unsigned int mBits = 0;
    std::uint32_t mCompression = kPlain;
    std::uint32_t mMasks[3] = {}; // of red, green and blue, for 16 and 32 bits
    std::vector<std::uint32_t> mColours;
    Resources::Bytes mPixels; // all bytes after the colours
};

/// Reads header, masks and colours. Returns false if these are truncated or invalid. Throws std::bad_alloc.
bool ReadBitmapHeader(const Resources::Bytes& inBitmap, BitmapHeader& outHeader);

} // namespace Images
} // namespace ORL
