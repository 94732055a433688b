#include "PngReader.h"

#include <windows.h>

#include <objidl.h>

#include <gdiplus.h>

#include <memory>

namespace ORLTest {

namespace {

class ImageServices
{
public:
    ImageServices()
    {
        const Gdiplus::GdiplusStartupInput input;
        Gdiplus::GdiplusStartup(&mToken, &input, nullptr);
    }
    ~ImageServices() { Gdiplus::GdiplusShutdown(mToken); }
    ImageServices(const ImageServices&) = delete;
    ImageServices& operator=(const ImageServices&) = delete;

private:
    ULONG_PTR mToken = 0;
};

void CopyPixels(Gdiplus::Bitmap& ioBitmap, DecodedPicture& outPicture)
{
    outPicture.mWidth = ioBitmap.GetWidth();
    outPicture.mHeight = ioBitmap.GetHeight();
    for (UINT y = 0; y < ioBitmap.GetHeight(); ++y) {
        for (UINT x = 0; x < ioBitmap.GetWidth(); ++x) {
            Gdiplus::Color colour;
            ioBitmap.GetPixel(static_cast<INT>(x), static_cast<INT>(y), &colour);
            for (const BYTE part : {colour.GetR(), colour.GetG(), colour.GetB()}) {
                outPicture.mPixels.push_back(part);
            }
        }
    }
}

} // namespace

DecodedPicture ReadPng(const std::string& inPath)
{
    const ImageServices services;
    DecodedPicture picture;
    const std::wstring path(inPath.begin(), inPath.end()); // ASCII only
    Gdiplus::Bitmap bitmap(path.c_str());
    if (bitmap.GetLastStatus() == Gdiplus::Ok) {
        CopyPixels(bitmap, picture);
    }
    return picture;
}

} // namespace ORLTest
