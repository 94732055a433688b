#include <Platform/Images.h>

#include "../Calls/WinText.h"

#include <algorithm>
#include <cstring>
#include <new>

#include <windows.h>

#include <objidl.h>

namespace Gdiplus { // the headers of GDI+ use unqualified min and max
using std::max;
using std::min;
} // namespace Gdiplus
#include <gdiplus.h>

namespace ORL {
namespace Images {
namespace Platform {

namespace Flat = Gdiplus::DllExports;

struct Picture
{
    Gdiplus::GpBitmap* mBitmap = nullptr;
    int mStatus = Gdiplus::Ok;
};

namespace {

HGLOBAL AsGlobal(MemoryCopy* inCopy) noexcept
{
    return static_cast<HGLOBAL>(static_cast<void*>(inCopy));
}

IStream* AsStream(Stream* inStream) noexcept
{
    return reinterpret_cast<IStream*>(inStream);
}

} // namespace

MemoryCopy* CopyToMemory_Impl(const void* inData, std::size_t inSize)
{
    const HGLOBAL copy = ::GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, inSize);
    if (copy == nullptr) {
        return nullptr;
    }
    if (void* const bytes = ::GlobalLock(copy)) {
        std::memcpy(bytes, inData, inSize);
        ::GlobalUnlock(copy);
    }
    return static_cast<MemoryCopy*>(static_cast<void*>(copy));
}

Stream* CreateStream_Impl(MemoryCopy* inCopy)
{
    IStream* stream = nullptr;
    if (FAILED(::CreateStreamOnHGlobal(AsGlobal(inCopy), TRUE, &stream))) {
        ::GlobalFree(AsGlobal(inCopy));
        return nullptr;
    }
    return reinterpret_cast<Stream*>(stream);
}

void ReleaseStream_Impl(Stream* inStream)
{
    AsStream(inStream)->Release();
}

Picture* CreateFromStream_Impl(Stream* inStream)
{
    auto* const picture = new (std::nothrow) Picture;
    if (picture != nullptr) {
        picture->mStatus = Flat::GdipCreateBitmapFromStream(AsStream(inStream), &picture->mBitmap);
    }
    return picture;
}

Picture* CreateFromFile_Impl(const UTF16String& inPath)
{
    auto* const picture = new (std::nothrow) Picture;
    if (picture != nullptr) {
        picture->mStatus = Flat::GdipCreateBitmapFromFile(ORL::Win::AsWide(inPath.c_str()), &picture->mBitmap);
    }
    return picture;
}

Picture* CreateOnBlock_Impl(unsigned int inWidth, unsigned int inHeight, std::size_t inStride, int inFormat,
                            unsigned char* inBlock)
{
    auto* const picture = new (std::nothrow) Picture;
    if (picture != nullptr) {
        picture->mStatus =
            Flat::GdipCreateBitmapFromScan0(static_cast<INT>(inWidth), static_cast<INT>(inHeight),
                                            static_cast<INT>(inStride), inFormat, inBlock, &picture->mBitmap);
    }
    return picture;
}

int GetLastStatus_Impl(const Picture* inPicture)
{
    return inPicture->mStatus;
}

unsigned int GetWidth_Impl(const Picture* inPicture)
{
    UINT width = 0;
    Flat::GdipGetImageWidth(inPicture->mBitmap, &width);
    return width;
}

unsigned int GetHeight_Impl(const Picture* inPicture)
{
    UINT height = 0;
    Flat::GdipGetImageHeight(inPicture->mBitmap, &height);
    return height;
}

void DisposePicture_Impl(Picture* inPicture)
{
    if (inPicture->mBitmap != nullptr) {
        Flat::GdipDisposeImage(inPicture->mBitmap);
    }
    delete inPicture;
}

int LockPixels_Impl(Picture* inPicture, unsigned int inMode, int inFormat, LockedPixels& outPixels)
{
    auto* const data = new (std::nothrow) Gdiplus::BitmapData();
    if (data == nullptr) {
        inPicture->mStatus = Gdiplus::OutOfMemory;
        return inPicture->mStatus;
    }
    const Gdiplus::Rect all(0, 0, static_cast<INT>(GetWidth_Impl(inPicture)),
                            static_cast<INT>(GetHeight_Impl(inPicture)));
    inPicture->mStatus = Flat::GdipBitmapLockBits(inPicture->mBitmap, &all, inMode, inFormat, data);
    if (inPicture->mStatus != Gdiplus::Ok) {
        delete data;
        return inPicture->mStatus;
    }
    outPixels.mPixels = static_cast<unsigned char*>(data->Scan0);
    outPixels.mStride = data->Stride;
    outPixels.mLock = data;
    return Gdiplus::Ok;
}

void UnlockPixels_Impl(Picture* inPicture, LockedPixels& ioPixels)
{
    auto* const data = static_cast<Gdiplus::BitmapData*>(ioPixels.mLock);
    inPicture->mStatus = Flat::GdipBitmapUnlockBits(inPicture->mBitmap, data);
    delete data;
    ioPixels = LockedPixels();
}

int CreateBitmap_Impl(Picture* inPicture, std::unique_ptr<unsigned char[]>&, HBITMAP& outBitmap)
{
    inPicture->mStatus = Flat::GdipCreateHBITMAPFromBitmap(inPicture->mBitmap, &outBitmap, 0);
    return inPicture->mStatus;
}

void DeleteBitmap_Impl(HBITMAP inBitmap)
{
    ::DeleteObject(inBitmap);
}

} // namespace Platform
} // namespace Images
} // namespace ORL
