// Floor: Platform
// What pictures need of the system: a decoder that gives access to 32-bit pixels, and bitmaps.
//
// Statuses are the decoder's own; 0 is success. Formats are the home platform's numbers.
#pragma once

#include <ORLNativeHandles.h>
#include <tvxcore/String.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace ORL {
namespace Images {

inline constexpr int kFormat32bppARGB = 0x26200A; // alpha in bits 24 to 31, then red, green, blue
inline constexpr int kFormat32bppPARGB = 0xE200B; // the same, premultiplied

inline constexpr unsigned int kLockRead = 1;
inline constexpr unsigned int kLockReadWrite = 3;

namespace Platform {

/// A picture of the decoder, with the status of its making.
struct Picture;

/// Bytes that the decoder reads, which may move in memory until then. Null if there is no memory.
struct MemoryCopy;
MemoryCopy* CopyToMemory_Impl(const void* inData, std::size_t inSize);

/// A stream over a copy, which it takes over. Null if it cannot be made; the copy is then freed.
struct Stream;
Stream* CreateStream_Impl(MemoryCopy* inCopy);
void ReleaseStream_Impl(Stream* inStream);

/// Null if there is no memory for the object itself; every other failure stands in its status. The stream must outlive
/// the picture.
Picture* CreateFromStream_Impl(Stream* inStream);
Picture* CreateFromFile_Impl(const UTF16String& inPath);

/// A picture over a block of the caller's, which must outlive it.
Picture* CreateOnBlock_Impl(unsigned int inWidth, unsigned int inHeight, std::size_t inStride, int inFormat,
                            unsigned char* inBlock);

int GetLastStatus_Impl(const Picture* inPicture);
unsigned int GetWidth_Impl(const Picture* inPicture);
unsigned int GetHeight_Impl(const Picture* inPicture);
void DisposePicture_Impl(Picture* inPicture);

/// Pixels of a locked picture. A failed lock leaves none.
struct LockedPixels
{
    unsigned char* mPixels = nullptr; // the row at the top
    std::ptrdiff_t mStride = 0;       // bytes from one row to the next
    void* mLock = nullptr;            // the platform's
};

/// Gives access to the whole picture in a format. Returns the status. A success owes UnlockPixels_Impl.
int LockPixels_Impl(Picture* inPicture, unsigned int inMode, int inFormat, LockedPixels& outPixels);
void UnlockPixels_Impl(Picture* inPicture, LockedPixels& ioPixels);

/// Makes a native bitmap of a picture over a block, transparent where the picture is. Returns the status. A platform
/// whose bitmaps are such blocks takes the block over.
int CreateBitmap_Impl(Picture* inPicture, std::unique_ptr<unsigned char[]>& ioBlock, HBITMAP& outBitmap);

void DeleteBitmap_Impl(HBITMAP inBitmap);

} // namespace Platform
} // namespace Images
} // namespace ORL
