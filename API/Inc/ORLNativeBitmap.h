// Floor: System
// Native bitmaps on Linux: what stands behind an HBITMAP there.
//
// These functions exist in the Linux library alone; a host that runs on both platforms calls them from its Linux
// sources.
#pragma once

#include <ORLConfig.h>
#include <ORLNativeHandles.h>

#include <cstddef>

namespace ORL {
namespace Images {
namespace Linux {

/// One pixel is 32 bits in the machine's order: alpha in bits 24 to 31, then red, green, blue. Colours are
/// premultiplied by alpha. Rows stand from the top.
struct BitmapInfo
{
    int mWidth;             ///< in pixels
    int mHeight;            ///< in rows
    std::size_t mStride;    ///< bytes from one row to the next
    unsigned char* mPixels; ///< belongs to the bitmap; aligned to 16 bytes
};

/// Describes a bitmap. Returns false, with outInfo untouched, for null. Thread-safe; a writer of pixels must
/// exclude readers.
ORL_API bool GetBitmapInfo(HBITMAP inBitmap, BitmapInfo& outInfo);

/// Creates a bitmap of transparent pixels, which the caller deletes or passes to an OSImageHandle. Returns null if a side
/// is not positive, if the pixels need 2 GiB or more, or if there is no memory. Never throws.
ORL_API HBITMAP CreateBitmap(int inWidth, int inHeight);

/// Deletes a bitmap. Null is ignored.
ORL_API void DeleteBitmap(HBITMAP inBitmap);

} // namespace Linux
} // namespace Images
} // namespace ORL
