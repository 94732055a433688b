#include "BitmapHeader.h"

#include "../Resources/ByteReader.h"

#include <algorithm>
#include <limits>

namespace ORL {
namespace Images {

using Resources::Bytes;
using Resources::IsInside;
using Resources::NumberAt;
using Resources::PartOf;
using Resources::ReadNumber;

namespace {

constexpr std::uint32_t kCoreHeader = 12; // the older format, with 16-bit dimensions and 3 bytes per colour
constexpr std::uint32_t kInfoHeader = 40;
constexpr std::uint32_t kMaxColours = 256;
constexpr std::uint32_t kOpaque = 0xFF000000;

struct Table
{
    std::uint64_t mOffset;
    std::uint32_t mCount;
    std::uint32_t mEntrySize;
};

bool SetSize(std::int64_t inWidth, std::int64_t inHeight, BitmapHeader& outHeader) noexcept
{
    const std::int64_t height = inHeight < 0 ? -inHeight : inHeight;
    if (inWidth <= 0 || height == 0 || height > std::numeric_limits<std::int32_t>::max()) {
        return false;
    }
    outHeader.mWidth = static_cast<unsigned int>(inWidth);
    outHeader.mHeight = static_cast<unsigned int>(height);
    outHeader.mIsTopDown = inHeight < 0;
    return true;
}

bool IsPossible(const BitmapHeader& inHeader) noexcept
{
    const unsigned int bits = inHeader.mBits;
    switch (inHeader.mCompression) {
    case BitmapHeader::kPlain: return bits == 1 || bits == 4 || bits == 8 || bits == 16 || bits == 24 || bits == 32;
    case BitmapHeader::kRunLength8: return bits == 8 && !inHeader.mIsTopDown;
    case BitmapHeader::kRunLength4: return bits == 4 && !inHeader.mIsTopDown;
    case BitmapHeader::kBitFields: return bits == 16 || bits == 32;
    default: return false;
    }
}

bool ReadCoreHeader(const Bytes& inBitmap, BitmapHeader& outHeader, Table& outTable) noexcept
{
    if (!IsInside(inBitmap, 0, kCoreHeader) || NumberAt<std::uint16_t>(inBitmap, 8) != 1) {
        return false;
    }
    outHeader.mBits = NumberAt<std::uint16_t>(inBitmap, 10);
    outTable = {kCoreHeader, outHeader.mBits <= 8 ? 1u << outHeader.mBits : 0u, 3};
    return SetSize(NumberAt<std::uint16_t>(inBitmap, 4), NumberAt<std::uint16_t>(inBitmap, 6), outHeader);
}

void SetPlainMasks(BitmapHeader& ioHeader) noexcept
{
    const bool isShort = ioHeader.mBits == 16;
    ioHeader.mMasks[0] = isShort ? 0x7C00 : 0x00FF0000;
    ioHeader.mMasks[1] = isShort ? 0x03E0 : 0x0000FF00;
    ioHeader.mMasks[2] = isShort ? 0x001F : 0x000000FF;
}

bool ReadInfoHeader(const Bytes& inBitmap, std::uint32_t inSize, BitmapHeader& outHeader, Table& outTable) noexcept
{
    if (inSize < kInfoHeader || !IsInside(inBitmap, 0, inSize) || NumberAt<std::uint16_t>(inBitmap, 12) != 1
        || !SetSize(NumberAt<std::int32_t>(inBitmap, 4), NumberAt<std::int32_t>(inBitmap, 8), outHeader)) {
        return false;
    }
    outHeader.mBits = NumberAt<std::uint16_t>(inBitmap, 14);
    outHeader.mCompression = NumberAt<std::uint32_t>(inBitmap, 16);
    SetPlainMasks(outHeader);
    std::uint64_t place = inSize;
    if (outHeader.mCompression == BitmapHeader::kBitFields) {
        // The masks follow the short header and are part of the longer ones, at the same offset.
        for (std::uint32_t i = 0; i < 3; ++i) {
            if (!ReadNumber(inBitmap, kInfoHeader + i * 4, outHeader.mMasks[i])) {
                return false;
            }
        }
        place = std::max<std::uint64_t>(inSize, kInfoHeader + 3 * 4);
    }
    const std::uint32_t used = std::min(NumberAt<std::uint32_t>(inBitmap, 32), kMaxColours);
    const bool hasTable = outHeader.mBits <= 8;
    outTable = {place, used == 0 && hasTable ? 1u << outHeader.mBits : used, 4};
    return true;
}

void ReadColours(const Bytes& inBitmap, const Table& inTable, BitmapHeader& outHeader)
{
    outHeader.mColours.assign(std::size_t{1} << outHeader.mBits, kOpaque); // indices beyond the table are black
    const std::size_t count = std::min<std::size_t>(inTable.mCount, outHeader.mColours.size());
    for (std::size_t i = 0; i < count; ++i) {
        const unsigned char* const entry = inBitmap.mData + inTable.mOffset + i * inTable.mEntrySize;
        outHeader.mColours[i] =
            kOpaque | std::uint32_t{entry[2]} << 16 | std::uint32_t{entry[1]} << 8 | std::uint32_t{entry[0]};
    }
}

} // namespace

bool BitField::Set(std::uint32_t inMask) noexcept
{
    if (inMask == 0) {
        return true;
    }
    const auto lowest = static_cast<unsigned int>(__builtin_ctz(inMask));
    const unsigned int width = 32 - static_cast<unsigned int>(__builtin_clz(inMask)) - lowest;
    const std::uint64_t whole = ((std::uint64_t{1} << width) - 1) << lowest;
    if (whole != inMask) {
        return false;
    }
    const unsigned int kept = std::min(width, 8u);
    mShift = lowest + width - kept;
    mMask = inMask & ~((std::uint32_t{1} << mShift) - 1);
    for (std::uint32_t value = 0; value < 1u << kept; ++value) {
        std::uint32_t colour = 0;
        for (int room = 8; room > 0; room -= static_cast<int>(kept)) {
            const int shift = room - static_cast<int>(kept);
            colour |= shift >= 0 ? value << shift : value >> -shift;
        }
        mColours[value] = static_cast<std::uint8_t>(colour);
    }
    return true;
}

bool ReadBitmapHeader(const Bytes& inBitmap, BitmapHeader& outHeader)
{
    std::uint32_t size = 0;
    Table table{};
    if (!ReadNumber(inBitmap, 0, size)) {
        return false;
    }
    const bool isRead = size == kCoreHeader ? ReadCoreHeader(inBitmap, outHeader, table)
                                            : ReadInfoHeader(inBitmap, size, outHeader, table);
    const std::uint64_t tableSize = std::uint64_t{table.mCount} * table.mEntrySize;
    if (!isRead || !IsPossible(outHeader) || !IsInside(inBitmap, table.mOffset, tableSize)) {
        return false;
    }
    if (outHeader.mBits <= 8) {
        ReadColours(inBitmap, table, outHeader);
    }
    const std::uint64_t pixels = table.mOffset + tableSize;
    outHeader.mPixels = PartOf(inBitmap, pixels, inBitmap.mSize - pixels);
    return true;
}

} // namespace Images
} // namespace ORL
