#include "LinuxNativeBitmap.h"

#include <ORLNativeBitmap.h>
#include <Platform/Images.h>

#include <new>

namespace ORL {
namespace Images {

namespace Platform {

void DeleteBitmap_Impl(HBITMAP inBitmap)
{
    delete ORL::Linux::BitmapOf(inBitmap);
}

} // namespace Platform

namespace Linux {

using ORL::Linux::NativeBitmap;

bool GetBitmapInfo(HBITMAP inBitmap, BitmapInfo& outInfo)
{
    if (inBitmap == nullptr) {
        return false;
    }
    const NativeBitmap& bitmap = *ORL::Linux::BitmapOf(inBitmap);
    outInfo.mWidth = static_cast<int>(bitmap.mWidth);
    outInfo.mHeight = static_cast<int>(bitmap.mHeight);
    outInfo.mStride = bitmap.mStride;
    outInfo.mPixels = bitmap.mPixels.get();
    return true;
}

HBITMAP CreateBitmap(int inWidth, int inHeight)
{
    std::size_t size = 0;
    if (inWidth <= 0 || inHeight <= 0
        || !ORL::Linux::SizeOfPixels(static_cast<std::size_t>(inWidth), static_cast<std::size_t>(inHeight), size)) {
        return nullptr;
    }
    std::unique_ptr<unsigned char[]> pixels(new (std::nothrow) unsigned char[size]());
    if (pixels == nullptr) {
        return nullptr;
    }
    return ORL::Linux::HandleOf(
        new (std::nothrow) NativeBitmap{static_cast<unsigned int>(inWidth), static_cast<unsigned int>(inHeight),
                                        static_cast<std::size_t>(inWidth) * 4, std::move(pixels)});
}

void DeleteBitmap(HBITMAP inBitmap)
{
    delete ORL::Linux::BitmapOf(inBitmap);
}

} // namespace Linux
} // namespace Images
} // namespace ORL
