// Floor: System
// The record that an HBITMAP refers to.
#pragma once

#include <ORLNativeHandles.h>

#include <cstddef>
#include <memory>

namespace ORL {
namespace Linux {

struct NativeBitmap
{
    unsigned int mWidth;
    unsigned int mHeight;
    std::size_t mStride;
    std::unique_ptr<unsigned char[]> mPixels;
};

inline NativeBitmap* BitmapOf(HBITMAP inBitmap) noexcept
{
    return reinterpret_cast<NativeBitmap*>(inBitmap);
}

inline HBITMAP HandleOf(NativeBitmap* inBitmap) noexcept
{
    return reinterpret_cast<HBITMAP>(inBitmap);
}

/// Computes the size of the pixels in bytes. Returns false if the size is 2 GiB or more, or 0.
inline bool SizeOfPixels(std::size_t inWidth, std::size_t inHeight, std::size_t& outSize) noexcept
{
    constexpr std::size_t kLargest = 0x7FFFFFFF / 4;
    if (inWidth == 0 || inHeight == 0 || inWidth > kLargest / inHeight) {
        return false;
    }
    outSize = inWidth * inHeight * 4;
    return true;
}

} // namespace Linux
} // namespace ORL
