// Decodes a PNG file when its picture is created, so locking the pixels cannot fail.
#include <Platform/Images.h>

#include "LinuxNativeBitmap.h"
#include "LinuxPNG.h"

#include "../Calls/SystemCalls.h"
#include "../Files/LinuxDescriptor.h"
#include "../Modules/LinuxDataModule.h"
#include "../Paths/LinuxHostPath.h"

#include <cstring>
#include <new>

namespace ORL {
namespace Images {
namespace Platform {

namespace {

// Status numbers of the Windows decoder.
constexpr int kOk = 0;
constexpr int kOutOfMemory = 3;
constexpr int kWrongState = 8;
constexpr int kUnknownImageFormat = 13;

Resources::Bytes BytesOf(const unsigned char* inData, std::size_t inSize) noexcept
{
    Resources::Bytes bytes;
    bytes.mData = inData;
    bytes.mSize = inSize;
    return bytes;
}

} // namespace

struct MemoryCopy
{
    std::unique_ptr<unsigned char[]> mBytes;
    std::size_t mSize;
};

struct Stream
{
    std::unique_ptr<MemoryCopy> mCopy;
};

struct Picture
{
    unsigned int mWidth = 0;
    unsigned int mHeight = 0;
    std::size_t mStride = 0;
    int mFormat = 0;
    unsigned char* mPixels = nullptr;
    std::unique_ptr<unsigned char[]> mOwnedPixels; // null if the block belongs to the caller
    int mStatus = kUnknownImageFormat;
};

namespace {

Picture* Decode(const Resources::Bytes& inFile)
{
    auto* const picture = new (std::nothrow) Picture;
    ORL::Linux::DecodedPNG decoded;
    if (picture != nullptr && ORL::Linux::DecodePNG(inFile, decoded)) {
        picture->mWidth = decoded.mWidth;
        picture->mHeight = decoded.mHeight;
        picture->mStride = std::size_t{decoded.mWidth} * 4;
        picture->mFormat = kFormat32bppARGB;
        picture->mOwnedPixels = std::move(decoded.mPixels);
        picture->mPixels = picture->mOwnedPixels.get();
        picture->mStatus = kOk;
    }
    return picture;
}

} // namespace

MemoryCopy* CopyToMemory_Impl(const void* inData, std::size_t inSize)
{
    std::unique_ptr<unsigned char[]> bytes(new (std::nothrow) unsigned char[inSize]);
    if (bytes == nullptr) {
        return nullptr;
    }
    std::memcpy(bytes.get(), inData, inSize);
    return new (std::nothrow) MemoryCopy{std::move(bytes), inSize};
}

Stream* CreateStream_Impl(MemoryCopy* inCopy)
{
    std::unique_ptr<MemoryCopy> copy(inCopy);
    auto* const stream = new (std::nothrow) Stream;
    if (stream != nullptr) {
        stream->mCopy = std::move(copy);
    }
    return stream;
}

void ReleaseStream_Impl(Stream* inStream)
{
    delete inStream;
}

Picture* CreateFromStream_Impl(Stream* inStream)
{
    return Decode(BytesOf(inStream->mCopy->mBytes.get(), inStream->mCopy->mSize));
}

Picture* CreateFromFile_Impl(const UTF16String& inPath)
{
    ORL::Linux::HostPath path;
    if (ORL::Linux::ResolveHostPath(inPath, path) != SystemErrors::kNoError) {
        return nullptr;
    }
    // O_NONBLOCK: otherwise opening a pipe without a writer would block.
    const ORL::Linux::Descriptor file = ORL::Linux::OpenByPath(path.mPath.c_str(), O_RDONLY | O_NONBLOCK);
    ORL::Linux::DataModule contents;
    if (!file || contents.Read(file.Get()) != SystemErrors::kNoError) {
        return nullptr;
    }
    return Decode(contents.Contents());
}

Picture* CreateOnBlock_Impl(unsigned int inWidth, unsigned int inHeight, std::size_t inStride, int inFormat,
                            unsigned char* inBlock)
{
    auto* const picture = new (std::nothrow) Picture;
    if (picture != nullptr) {
        picture->mWidth = inWidth;
        picture->mHeight = inHeight;
        picture->mStride = inStride;
        picture->mFormat = inFormat;
        picture->mPixels = inBlock;
        picture->mStatus = kOk;
    }
    return picture;
}

int GetLastStatus_Impl(const Picture* inPicture)
{
    return inPicture->mStatus;
}

unsigned int GetWidth_Impl(const Picture* inPicture)
{
    return inPicture->mWidth;
}

unsigned int GetHeight_Impl(const Picture* inPicture)
{
    return inPicture->mHeight;
}

void DisposePicture_Impl(Picture* inPicture)
{
    delete inPicture;
}

int LockPixels_Impl(Picture* inPicture, unsigned int, int inFormat, LockedPixels& outPixels)
{
    inPicture->mStatus = inPicture->mFormat == inFormat ? kOk : kWrongState;
    if (inPicture->mStatus == kOk) {
        outPixels.mPixels = inPicture->mPixels;
        outPixels.mStride = static_cast<std::ptrdiff_t>(inPicture->mStride);
    }
    return inPicture->mStatus;
}

void UnlockPixels_Impl(Picture*, LockedPixels& ioPixels)
{
    ioPixels = LockedPixels();
}

int CreateBitmap_Impl(Picture* inPicture, std::unique_ptr<unsigned char[]>& ioBlock, HBITMAP& outBitmap)
{
    auto* const bitmap =
        new (std::nothrow) ORL::Linux::NativeBitmap{inPicture->mWidth, inPicture->mHeight, inPicture->mStride, nullptr};
    if (bitmap == nullptr) {
        inPicture->mStatus = kOutOfMemory;
        return kOutOfMemory;
    }
    bitmap->mPixels = std::move(ioBlock);
    outBitmap = ORL::Linux::HandleOf(bitmap);
    return kOk;
}

} // namespace Platform
} // namespace Images
} // namespace ORL
