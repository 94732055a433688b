// Creates, reads and deletes native bitmaps.
#pragma once

#include <ORLNativeHandles.h>

#include <cstdint>
#include <vector>

namespace ORLTest {

/// While an instance exists, the library can decode pictures: on Windows the constructor starts GDI+.
class PictureDecoder
{
public:
    PictureDecoder();
    ~PictureDecoder();
    PictureDecoder(const PictureDecoder&) = delete;
    PictureDecoder& operator=(const PictureDecoder&) = delete;

private:
    [[maybe_unused]] std::uintptr_t mToken = 0; // from GDI+
};

struct BitmapPixels
{
    int mWidth = 0;
    int mHeight = 0;
    std::vector<std::uint32_t> mPixels; // row by row, from the top
};

/// Returns the pixels that the OS reads from the bitmap, or no pixels if inBitmap is null.
BitmapPixels PixelsOf(HBITMAP inBitmap);

/// Create and delete a bitmap of 2 by 2 pixels.
HBITMAP MakeBitmap();
void DeleteBitmap(HBITMAP inBitmap);

} // namespace ORLTest
