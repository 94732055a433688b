// Native bitmaps as a host has them.
#pragma once

#include <ORLNativeHandles.h>

#include <cstdint>
#include <vector>

namespace ORLTest {

/// The decoder of pictures works while it lives: on Windows it starts GDI+.
class PictureDecoder
{
public:
    PictureDecoder();
    ~PictureDecoder();
    PictureDecoder(const PictureDecoder&) = delete;
    PictureDecoder& operator=(const PictureDecoder&) = delete;

private:
    std::uintptr_t mToken = 0;
};

struct BitmapPixels
{
    int mWidth = 0;
    int mHeight = 0;
    std::vector<std::uint32_t> mPixels; // rows from the top
};

/// The pixels as the system reads them; none for null.
BitmapPixels PixelsOf(HBITMAP inBitmap);

/// A bitmap of 2 by 2 pixels, and its end.
HBITMAP MakeBitmap();
void DeleteBitmap(HBITMAP inBitmap);

} // namespace ORLTest
