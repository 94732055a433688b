#include "BitmapPixels.h"

#include <algorithm>

#include <windows.h>

#include <objidl.h>

namespace Gdiplus { // the headers of GDI+ need min and max
using std::max;
using std::min;
} // namespace Gdiplus
#include <gdiplus.h>

PictureDecoder::PictureDecoder()
{
    const Gdiplus::GdiplusStartupInput input;
    ULONG_PTR token = 0;
    Gdiplus::GdiplusStartup(&token, &input, nullptr);
    mToken = token;
}

PictureDecoder::~PictureDecoder()
{
    Gdiplus::GdiplusShutdown(mToken);
}

namespace {

// A bitmap resource has no alpha. If alpha is 0 everywhere, the picture is opaque.
void FillAlpha(std::vector<std::uint32_t>& ioPixels)
{
    const auto hasAlpha = [](std::uint32_t inPixel) { return inPixel >> 24 != 0; };
    if (std::none_of(ioPixels.begin(), ioPixels.end(), hasAlpha)) {
        for (std::uint32_t& pixel : ioPixels) {
            pixel |= 0xFF000000;
        }
    }
}

} // namespace

BitmapPixels ReadPixels(HBITMAP inBitmap)
{
    BITMAP bitmap{};
    BitmapPixels pixels;
    if (::GetObjectW(inBitmap, sizeof(bitmap), &bitmap) == 0) {
        return pixels;
    }
    pixels.mWidth = static_cast<std::size_t>(bitmap.bmWidth);
    pixels.mHeight = static_cast<std::size_t>(bitmap.bmHeight);
    pixels.mPixels.resize(pixels.mWidth * pixels.mHeight);
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = bitmap.bmWidth;
    info.bmiHeader.biHeight = -bitmap.bmHeight;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    const HDC screen = ::GetDC(nullptr);
    ::GetDIBits(screen, inBitmap, 0, static_cast<UINT>(bitmap.bmHeight), pixels.mPixels.data(), &info, DIB_RGB_COLORS);
    ::ReleaseDC(nullptr, screen);
    FillAlpha(pixels.mPixels);
    return pixels;
}
