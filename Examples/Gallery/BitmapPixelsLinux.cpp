#include "BitmapPixels.h"

#include <ORLNativeBitmap.h>

#include <cstring>

PictureDecoder::PictureDecoder() = default;
PictureDecoder::~PictureDecoder() = default;

BitmapPixels ReadPixels(HBITMAP inBitmap)
{
    ORL::Images::Linux::BitmapInfo info{};
    BitmapPixels pixels;
    if (!ORL::Images::Linux::GetBitmapInfo(inBitmap, info)) {
        return pixels;
    }
    pixels.mWidth = static_cast<std::size_t>(info.mWidth);
    pixels.mHeight = static_cast<std::size_t>(info.mHeight);
    pixels.mPixels.resize(pixels.mWidth * pixels.mHeight);
    for (std::size_t y = 0; y < pixels.mHeight; ++y) {
        std::memcpy(&pixels.mPixels[y * pixels.mWidth], info.mPixels + y * info.mStride, pixels.mWidth * 4);
    }
    return pixels;
}
