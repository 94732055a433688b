#include <Resources/CursorReader.h>

#include "ByteReader.h"

#include <algorithm>
#include <cstdlib>

namespace ORL {
namespace Resources {

namespace {

constexpr int kPointerSize = 32;
constexpr std::size_t kGroupHeader = 6;
constexpr std::size_t kGroupEntry = 14;
constexpr std::uint16_t kCursorGroup = 2;

constexpr std::size_t kHotSpot = 4;
constexpr std::size_t kInfoHeader = 40;
constexpr std::int32_t kLargest = 1024; // the maximum width and height
constexpr std::uint32_t kOpaque = 0xFF000000;

struct Bitmap
{
    int mWidth;
    int mHeight;
    unsigned int mBits;
    Bytes mColours; // 4 bytes each
    Bytes mPicture; // bottom row first, rows padded to 4 bytes
    Bytes mMask;    // rows as in the picture, with 1 bit per pixel
};

std::uint64_t RowSize(const Bitmap& inBitmap, unsigned int inBits) noexcept
{
    return (std::uint64_t(inBitmap.mWidth) * inBits + 31) / 32 * 4;
}

bool ReadHeader(const Bytes& inInfo, Bitmap& outBitmap, std::uint64_t& outColours)
{
    std::uint32_t headerSize = 0;
    if (!ReadNumber(inInfo, 0, headerSize) || headerSize < kInfoHeader || !IsInside(inInfo, 0, headerSize)) {
        return false;
    }
    outBitmap.mWidth = NumberAt<std::int32_t>(inInfo, 4);
    const std::int32_t doubleHeight = NumberAt<std::int32_t>(inInfo, 8); // height of picture and mask together
    outBitmap.mBits = NumberAt<std::uint16_t>(inInfo, 14);
    const std::uint32_t compression = NumberAt<std::uint32_t>(inInfo, 16);
    const std::uint32_t used = NumberAt<std::uint32_t>(inInfo, 32);
    outBitmap.mHeight = doubleHeight / 2;
    const unsigned int bits = outBitmap.mBits;
    if (outBitmap.mWidth <= 0 || outBitmap.mWidth > kLargest || outBitmap.mHeight <= 0 || outBitmap.mHeight > kLargest
        || compression != 0 || (bits != 1 && bits != 4 && bits != 8 && bits != 24 && bits != 32)) {
        return false;
    }
    outColours = bits <= 8 ? std::min(used != 0 ? used : 1u << bits, 1u << bits) : used;
    return true;
}

bool ReadBitmap(const Bytes& inInfo, Bitmap& outBitmap)
{
    std::uint64_t colours = 0;
    if (!ReadHeader(inInfo, outBitmap, colours)) {
        return false;
    }
    const std::uint64_t table = NumberAt<std::uint32_t>(inInfo, 0);
    const std::uint64_t picture = table + colours * 4;
    const std::uint64_t pictureSize = RowSize(outBitmap, outBitmap.mBits) * std::uint64_t(outBitmap.mHeight);
    const std::uint64_t maskSize = RowSize(outBitmap, 1) * std::uint64_t(outBitmap.mHeight);
    if (!IsInside(inInfo, picture, pictureSize + maskSize)) {
        return false;
    }
    outBitmap.mColours = PartOf(inInfo, table, colours * 4);
    outBitmap.mPicture = PartOf(inInfo, picture, pictureSize);
    outBitmap.mMask = PartOf(inInfo, picture + pictureSize, maskSize);
    return true;
}

// Returns pixel inX of a row with inBits bits per pixel. The leftmost pixel is in the highest bits.
unsigned int BitsAt(const Bytes& inRow, int inX, unsigned int inBits) noexcept
{
    const unsigned int bit = static_cast<unsigned int>(inX) * inBits;
    return (inRow.mData[bit / 8] >> (8 - inBits - bit % 8)) & ((1u << inBits) - 1);
}

std::uint32_t ColourAt(const Bitmap& inBitmap, const Bytes& inRow, int inX) noexcept
{
    const unsigned int bits = inBitmap.mBits;
    if (bits == 32) {
        return NumberAt<std::uint32_t>(inRow, std::uint64_t(inX) * 4);
    }
    if (bits == 24) {
        const unsigned char* const pixel = inRow.mData + std::size_t(inX) * 3;
        return std::uint32_t{pixel[0]} | std::uint32_t{pixel[1]} << 8 | std::uint32_t{pixel[2]} << 16;
    }
    std::uint32_t colour = 0; // remains black for an index beyond the table
    ReadNumber(inBitmap.mColours, std::uint64_t{BitsAt(inRow, inX, bits)} * 4, colour);
    return colour & ~kOpaque;
}

std::uint32_t PixelOf(std::uint32_t inColour, bool inIsMasked, bool inHasAlpha) noexcept
{
    if (inHasAlpha) {
        return inColour;
    }
    const std::uint32_t colour = inColour & ~kOpaque;
    if (!inIsMasked) {
        return colour | kOpaque;
    }
    return colour != 0 ? kOpaque : 0;
}

bool AnyAlpha(const Bitmap& inBitmap) noexcept
{
    if (inBitmap.mBits != 32) {
        return false;
    }
    for (std::size_t place = 3; place < inBitmap.mPicture.mSize; place += 4) {
        if (inBitmap.mPicture.mData[place] != 0) {
            return true;
        }
    }
    return false;
}

std::vector<std::uint32_t> PixelsOf(const Bitmap& inBitmap)
{
    const bool hasAlpha = AnyAlpha(inBitmap);
    const std::uint64_t rowSize = RowSize(inBitmap, inBitmap.mBits);
    const std::uint64_t maskRowSize = RowSize(inBitmap, 1);
    std::vector<std::uint32_t> pixels;
    pixels.reserve(std::size_t(inBitmap.mWidth) * std::size_t(inBitmap.mHeight));
    for (int y = inBitmap.mHeight; y-- > 0;) {
        const Bytes row = PartOf(inBitmap.mPicture, std::uint64_t(y) * rowSize, rowSize);
        const Bytes maskRow = PartOf(inBitmap.mMask, std::uint64_t(y) * maskRowSize, maskRowSize);
        for (int x = 0; x < inBitmap.mWidth; ++x) {
            pixels.push_back(PixelOf(ColourAt(inBitmap, row, x), BitsAt(maskRow, x, 1) != 0, hasAlpha));
        }
    }
    return pixels;
}

} // namespace

bool ChooseCursor(const Bytes& inGroup, unsigned short& outID) noexcept
{
    if (!IsInside(inGroup, 0, kGroupHeader) || NumberAt<std::uint16_t>(inGroup, 2) != kCursorGroup) {
        return false;
    }
    const unsigned int count = NumberAt<std::uint16_t>(inGroup, 4);
    bool isFound = false;
    int bestDistance = 0;
    unsigned int bestBits = 0;
    for (unsigned int i = 0; i < count; ++i) {
        const std::uint64_t entry = kGroupHeader + i * kGroupEntry;
        if (!IsInside(inGroup, entry, kGroupEntry)) {
            break;
        }
        const int distance = std::abs(NumberAt<std::uint16_t>(inGroup, entry) - kPointerSize);
        const unsigned int bits = NumberAt<std::uint16_t>(inGroup, entry + 6);
        if (!isFound || distance < bestDistance || (distance == bestDistance && bits > bestBits)) {
            isFound = true;
            bestDistance = distance;
            bestBits = bits;
            outID = NumberAt<std::uint16_t>(inGroup, entry + 12);
        }
    }
    return isFound;
}

bool ReadCursor(const Bytes& inCursor, Linux::CursorPicture& outPicture)
{
    Bitmap bitmap{};
    if (!IsInside(inCursor, 0, kHotSpot)
        || !ReadBitmap(PartOf(inCursor, kHotSpot, inCursor.mSize - kHotSpot), bitmap)) {
        return false;
    }
    Linux::CursorPicture picture{bitmap.mWidth, bitmap.mHeight, NumberAt<std::uint16_t>(inCursor, 0),
                                 NumberAt<std::uint16_t>(inCursor, 2), PixelsOf(bitmap)};
    outPicture = std::move(picture);
    return true;
}

} // namespace Resources
} // namespace ORL
