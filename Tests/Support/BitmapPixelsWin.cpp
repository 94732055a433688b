#include "BitmapPixels.h"

#include <algorithm>

#include <windows.h>

#include <objidl.h>

namespace Gdiplus { // the GDI+ headers need min and max
using std::max;
using std::min;
} // namespace Gdiplus
#include <gdiplus.h>

namespace ORLTest {

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

BitmapPixels PixelsOf(HBITMAP inBitmap)
{
    BITMAP bitmap{};
    BitmapPixels pixels;
    if (inBitmap == nullptr || ::GetObjectW(inBitmap, sizeof(bitmap), &bitmap) == 0) {
        return pixels;
    }
    pixels.mWidth = bitmap.bmWidth;
    pixels.mHeight = bitmap.bmHeight;
    pixels.mPixels.resize(static_cast<std::size_t>(bitmap.bmWidth) * static_cast<std::size_t>(bitmap.bmHeight));
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = bitmap.bmWidth;
    info.bmiHeader.biHeight = -bitmap.bmHeight;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    const HDC screen = ::GetDC(nullptr);
    ::GetDIBits(screen, inBitmap, 0, static_cast<UINT>(bitmap.bmHeight), pixels.mPixels.data(), &info, DIB_RGB_COLORS);
    ::ReleaseDC(nullptr, screen);
    return pixels;
}

HBITMAP MakeBitmap()
{
    return ::CreateBitmap(2, 2, 1, 1, nullptr);
}

void DeleteBitmap(HBITMAP inBitmap)
{
    ::DeleteObject(inBitmap);
}

} // namespace ORLTest
