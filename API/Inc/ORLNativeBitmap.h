// Floor: System
// Functions for native bitmaps on Linux, where HBITMAP is a handle of this library. Only the Linux library exports
// them.
#pragma once

#include <ORLConfig.h>
#include <ORLNativeHandles.h>

#include <cstddef>

namespace ORL {
namespace Images {
namespace Linux {

/// The pixels of a bitmap. A pixel is a 32-bit number in native byte order: alpha in bits 24 to 31, then red,
/// green, blue, premultiplied by alpha. The top row comes first.
struct BitmapInfo
{
    int mWidth;             ///< in pixels
    int mHeight;            ///< in rows
    std::size_t mStride;    ///< bytes from one row to the next
    unsigned char* mPixels; ///< owned by the bitmap; aligned to 16 bytes
};

/// Gets the size and the pixels of a bitmap. Returns false, with outInfo unchanged, for null. Thread-safe; the caller
/// must synchronize access to the pixels.
ORL_API bool GetBitmapInfo(HBITMAP inBitmap, BitmapInfo& outInfo);

/// Creates a bitmap of transparent pixels, which the caller deletes or passes to an OSImageHandle. Returns null if the
/// width or height is not positive, if the pixels need 2 GiB or more, or if memory is exhausted. Never throws.
ORL_API HBITMAP CreateBitmap(int inWidth, int inHeight);

/// Deletes a bitmap. Ignores null.
ORL_API void DeleteBitmap(HBITMAP inBitmap);

} // namespace Linux
} // namespace Images
} // namespace ORL
