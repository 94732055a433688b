// Floor: Platform
// The system functions for pictures: a decoder that gives access to 32-bit pixels, and bitmaps.
//
// Statuses are the decoder's own; 0 is success. Formats are Windows numbers.
#pragma once

#include <ORLNativeHandles.h>
#include <tvxcore/String.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace ORL {
namespace Images {

inline constexpr int kFormat32bppARGB = 0x26200A; // alpha in bits 24 to 31, then red, green, blue
inline constexpr int kFormat32bppPARGB = 0xE200B; // the same layout, premultiplied

inline constexpr unsigned int kLockRead = 1;
inline constexpr unsigned int kLockReadWrite = 3;

namespace Platform {

/// A picture object of the decoder, and the status of its creation.
struct Picture;

/// Copies bytes for the decoder. The copy may move in memory until the decoder reads it. Returns null if out of memory.
struct MemoryCopy;
MemoryCopy* CopyToMemory_Impl(const void* inData, std::size_t inSize);

/// Returns a stream that owns the copy. Returns null and frees the copy if the stream cannot be created.
struct Stream;
Stream* CreateStream_Impl(MemoryCopy* inCopy);
void ReleaseStream_Impl(Stream* inStream);

/// Returns null if out of memory; the picture's status reports every other failure. The stream must outlive the
/// picture.
Picture* CreateFromStream_Impl(Stream* inStream);
Picture* CreateFromFile_Impl(const UTF16String& inPath);

/// Returns a picture over the caller's block, which must outlive the picture.
Picture* CreateOnBlock_Impl(unsigned int inWidth, unsigned int inHeight, std::size_t inStride, int inFormat,
                            unsigned char* inBlock);

int GetLastStatus_Impl(const Picture* inPicture);
unsigned int GetWidth_Impl(const Picture* inPicture);
unsigned int GetHeight_Impl(const Picture* inPicture);
void DisposePicture_Impl(Picture* inPicture);

/// The pixels of a locked picture. Empty after a failed lock.
struct LockedPixels
{
    unsigned char* mPixels = nullptr; // address of the top row
    std::ptrdiff_t mStride = 0;       // bytes from one row to the next
    void* mLock = nullptr;            // private to the platform
};

/// Locks the pixels of the whole picture in a format. Returns the status. After success the caller must call
/// UnlockPixels_Impl.
int LockPixels_Impl(Picture* inPicture, unsigned int inMode, int inFormat, LockedPixels& outPixels);
void UnlockPixels_Impl(Picture* inPicture, LockedPixels& ioPixels);

/// Creates a native bitmap from a picture that CreateOnBlock_Impl made; transparent pixels stay transparent. Returns
/// the status. On a platform whose bitmaps are such blocks, the bitmap takes ownership of the block.
int CreateBitmap_Impl(Picture* inPicture, std::unique_ptr<unsigned char[]>& ioBlock, HBITMAP& outBitmap);

void DeleteBitmap_Impl(HBITMAP inBitmap);

} // namespace Platform
} // namespace Images
} // namespace ORL
