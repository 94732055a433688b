#include "BitmapPixels.h"

#include <ORLNativeBitmap.h>

#include <cstring>

namespace ORLTest {

using namespace ORL::Images::Linux;

PictureDecoder::PictureDecoder() = default;
PictureDecoder::~PictureDecoder() = default;

BitmapPixels PixelsOf(HBITMAP inBitmap)
{
    BitmapInfo info{};
    BitmapPixels pixels;
    if (!GetBitmapInfo(inBitmap, info)) {
        return pixels;
    }
    pixels.mWidth = info.mWidth;
    pixels.mHeight = info.mHeight;
    const auto width = static_cast<std::size_t>(info.mWidth);
    pixels.mPixels.resize(width * static_cast<std::size_t>(info.mHeight));
    for (std::size_t y = 0; y < static_cast<std::size_t>(info.mHeight); ++y) {
        std::memcpy(pixels.mPixels.data() + y * width, info.mPixels + y * info.mStride, width * 4);
    }
    return pixels;
}

HBITMAP MakeBitmap()
{
    return CreateBitmap(2, 2);
}

void DeleteBitmap(HBITMAP inBitmap)
{
    ORL::Images::Linux::DeleteBitmap(inBitmap);
}

} // namespace ORLTest
