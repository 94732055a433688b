// Reads the pixels of a native bitmap; the implementation differs between platforms.
#pragma once

#include <ORLNativeHandles.h>

#include <cstddef>
#include <cstdint>
#include <vector>

struct BitmapPixels
{
    std::size_t mWidth = 0;
    std::size_t mHeight = 0;
    std::vector<std::uint32_t>
        mPixels; // rows from the top; alpha in bits 24 to 31, then red, green, blue, premultiplied
};

/// The library can decode pictures while this object exists. On Windows the constructor starts GDI+, as the library
/// requires of its host.
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

BitmapPixels ReadPixels(HBITMAP inBitmap);
