#include <Images/BitmapReader.h>

#include "BitmapHeader.h"
#include "BitmapRuns.h"

#include "../Resources/ByteReader.h"

#include <algorithm>

namespace ORL {
namespace Images {

using Resources::Bytes;
using Resources::NumberAt;
using Resources::PartOf;

namespace {

constexpr std::uint32_t kOpaque = 0xFF000000;

// Run-length encoding can skip pixels, so the number of bytes does not limit the size of the picture. These constants
// limit the size.
constexpr std::uint64_t kRunPixels = std::uint64_t{1} << 24;
constexpr std::uint64_t kRunPixelsInByte = 1024;

bool HasUsualMasks(const BitmapHeader& inHeader) noexcept
{
    return inHeader.mMasks[0] == 0x00FF0000 && inHeader.mMasks[1] == 0x0000FF00 && inHeader.mMasks[2] == 0x000000FF;
}

// Writes the pixels of one row.
class RowReader
{
public:
    explicit RowReader(const BitmapHeader& inHeader) : mHeader(inHeader) {}

    bool SetFields() noexcept
    {
        return mRed.Set(mHeader.mMasks[0]) && mGreen.Set(mHeader.mMasks[1]) && mBlue.Set(mHeader.mMasks[2]);
    }

    void Read(const Bytes& inRow, std::uint32_t* outPixels) const noexcept
    {
        switch (mHeader.mBits) {
        case 16: ReadFields<std::uint16_t>(inRow, outPixels); break;
        case 24: ReadBytes(inRow, outPixels); break;
        case 32:
            if (HasUsualMasks(mHeader)) {
                std::copy_n(inRow.mData, std::size_t{mHeader.mWidth} * 4, reinterpret_cast<unsigned char*>(outPixels));
            } else {
                ReadFields<std::uint32_t>(inRow, outPixels);
            }
            break;
        default: ReadNumbers(inRow, outPixels);
        }
    }

private:
    void ReadNumbers(const Bytes& inRow, std::uint32_t* outPixels) const noexcept
    {
        const unsigned int bits = mHeader.mBits;
        const unsigned int mask = (1u << bits) - 1;
        for (std::size_t x = 0; x < mHeader.mWidth; ++x) {
            const std::size_t bit = x * bits;
            outPixels[x] = mHeader.mColours[inRow.mData[bit / 8] >> (8 - bits - bit % 8) & mask];
        }
    }

    void ReadBytes(const Bytes& inRow, std::uint32_t* outPixels) const noexcept
    {
        for (std::size_t x = 0; x < mHeader.mWidth; ++x) {
            const unsigned char* const pixel = inRow.mData + x * 3;
            outPixels[x] =
                kOpaque | std::uint32_t{pixel[2]} << 16 | std::uint32_t{pixel[1]} << 8 | std::uint32_t{pixel[0]};
        }
    }

    template <class Pixel>
    void ReadFields(const Bytes& inRow, std::uint32_t* outPixels) const noexcept
    {
        for (std::size_t x = 0; x < mHeader.mWidth; ++x) {
            const std::uint32_t pixel = NumberAt<Pixel>(inRow, x * sizeof(Pixel));
            outPixels[x] = kOpaque | mRed.Read(pixel) << 16 | mGreen.Read(pixel) << 8 | mBlue.Read(pixel);
        }
    }

    const BitmapHeader& mHeader;
    BitField mRed;
    BitField mGreen;
    BitField mBlue;
};

// Makes all pixels opaque if the fourth byte is 0 in all of them, because it is then padding.
void FillAlpha(std::vector<std::uint32_t>& ioPixels) noexcept
{
    const bool hasAlpha =
        std::any_of(ioPixels.begin(), ioPixels.end(), [](std::uint32_t inPixel) { return (inPixel & kOpaque) != 0; });
    if (!hasAlpha) {
        for (std::uint32_t& pixel : ioPixels) {
            pixel |= kOpaque;
        }
    }
}

bool ReadRows(const BitmapHeader& inHeader, std::vector<std::uint32_t>& outPixels)
{
    const std::uint64_t rowSize = (std::uint64_t{inHeader.mWidth} * inHeader.mBits + 31) / 32 * 4;
    RowReader reader(inHeader);
    if (rowSize > inHeader.mPixels.mSize / inHeader.mHeight || !reader.SetFields()) {
        return false;
    }
    outPixels.resize(std::size_t{inHeader.mWidth} * inHeader.mHeight);
    for (std::size_t y = 0; y < inHeader.mHeight; ++y) {
        const std::size_t place = inHeader.mIsTopDown ? y : inHeader.mHeight - 1 - y;
        reader.Read(PartOf(inHeader.mPixels, place * rowSize, rowSize), outPixels.data() + y * inHeader.mWidth);
    }
    if (inHeader.mBits == 32) {
        FillAlpha(outPixels);
    }
    return true;
}

bool ReadRunLengths(const BitmapHeader& inHeader, std::vector<std::uint32_t>& outPixels)
{
    const std::uint64_t count = std::uint64_t{inHeader.mWidth} * inHeader.mHeight;
    if (count > std::max(kRunPixels, inHeader.mPixels.mSize * kRunPixelsInByte)) {
        return false;
    }
    outPixels.assign(static_cast<std::size_t>(count), kOpaque);
    return ReadRuns(inHeader, outPixels.data());
}

} // namespace

bool ReadBitmap(const Bytes& inBitmap, PixelPicture& outPicture)
{
    BitmapHeader header;
    if (!ReadBitmapHeader(inBitmap, header)) {
        return false;
    }
    PixelPicture picture;
    picture.mWidth = header.mWidth;
    picture.mHeight = header.mHeight;
    const bool hasRuns =
        header.mCompression == BitmapHeader::kRunLength8 || header.mCompression == BitmapHeader::kRunLength4;
    if (!(hasRuns ? ReadRunLengths(header, picture.mPixels) : ReadRows(header, picture.mPixels))) {
        return false;
    }
    outPicture = std::move(picture);
    return true;
}

} // namespace Images
} // namespace ORL
