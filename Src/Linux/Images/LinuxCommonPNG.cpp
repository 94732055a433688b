// Decodes the common kind of PNG file with libdeflate, which inflates the whole picture in one call: about twice as
// fast as zlib piece by piece, and thirty times as fast for flat pictures. The output buffer has exactly the size that
// the header implies.
#include "LinuxPNG.h"

#include "LinuxNativeBitmap.h"
#include "LinuxPNGChunks.h"
#include "LinuxPNGFilters.h"
#include "LinuxPixelOrder.h"

#include <libdeflate.h>
#include <new>

namespace ORL {
namespace Linux {

using Resources::Bytes;

namespace {

constexpr std::size_t kHeaderSize = 13;
constexpr unsigned char kTrueColour = 2;
constexpr unsigned char kTrueColourWithAlpha = 6;
constexpr std::size_t kReadablePadding = 16; // bytes after the last row, which filters may read

struct Layout
{
    unsigned int mWidth = 0;
    unsigned int mHeight = 0;
    std::size_t mBytesInPixel = 0;
    std::size_t mPixelsSize = 0; // bytes of the decoded picture

    std::size_t RowSize() const noexcept { return mWidth * mBytesInPixel; }
    std::size_t FilteredSize() const noexcept { return (RowSize() + 1) * mHeight; } // each row begins with its filter
};

bool ReadLayout(ChunkReader& ioReader, Layout& outLayout) noexcept
{
    Chunk chunk;
    if (!ioReader.ReadSignature() || !ioReader.Read(chunk) || !chunk.Is("IHDR")
        || chunk.mContents.mSize != kHeaderSize) {
        return false;
    }
    const unsigned char* const header = chunk.mContents.mData;
    const unsigned char colour = header[9];
    const bool isCommon = header[8] == 8 && (colour == kTrueColour || colour == kTrueColourWithAlpha) && header[10] == 0
                          && header[11] == 0 && header[12] == 0;
    outLayout.mWidth = BigEndianAt(header);
    outLayout.mHeight = BigEndianAt(header + 4);
    outLayout.mBytesInPixel = colour == kTrueColour ? 3 : 4;
    return isCommon && SizeOfPixels(outLayout.mWidth, outLayout.mHeight, outLayout.mPixelsSize);
}

// Chunks that do not affect the decoded pixels. Files with any other chunk are left to libspng.
bool IsIgnorable(const Chunk& inChunk) noexcept
{
    return inChunk.Is("tEXt") || inChunk.Is("gAMA") || inChunk.Is("sRGB") || inChunk.Is("pHYs") || inChunk.Is("tIME");
}

// The compressed pixels: the concatenated contents of all IDAT chunks.
class PackedPixels
{
public:
    // Reads up to the IEND chunk. Returns false if a chunk is damaged, unexpected or out of order, or if out of memory.
    bool Read(ChunkReader& ioReader, std::size_t inFileSize) noexcept
    {
        Chunk chunk;
        bool isOver = false;
        while (ioReader.Read(chunk)) {
            if (chunk.Is("IEND")) {
                return mBytes.mSize != 0 && chunk.mContents.mSize == 0;
            }
            const bool isPiece = chunk.Is("IDAT");
            if (isPiece ? isOver || !Add(chunk.mContents, inFileSize) : !IsIgnorable(chunk)) {
                return false;
            }
            isOver = isOver || (!isPiece && mBytes.mSize != 0);
        }
        return false;
    }

    const Bytes& Get() const noexcept { return mBytes; }

private:
    // A single piece is used in place, without a copy.
    bool Add(const Bytes& inPiece, std::size_t inFileSize) noexcept
    {
        if (inPiece.mSize == 0) {
            return false;
        }
        if (mBytes.mSize == 0) {
            mBytes = inPiece;
            return true;
        }
        if (mJoined == nullptr) {
            mJoined.reset(new (std::nothrow) unsigned char[inFileSize]);
            if (mJoined == nullptr) {
                return false;
            }
            std::memcpy(mJoined.get(), mBytes.mData, mBytes.mSize);
            mBytes.mData = mJoined.get();
        }
        std::memcpy(mJoined.get() + mBytes.mSize, inPiece.mData, inPiece.mSize);
        mBytes.mSize += inPiece.mSize;
        return true;
    }

    std::unique_ptr<unsigned char[]> mJoined;
    Bytes mBytes;
};

bool Inflate(const Bytes& inPacked, unsigned char* outBytes, std::size_t inSize) noexcept
{
    libdeflate_decompressor* const decompressor = ::libdeflate_alloc_decompressor();
    if (decompressor == nullptr) {
        return false;
    }
    std::size_t used = 0;
    std::size_t made = 0;
    const libdeflate_result result =
        ::libdeflate_zlib_decompress_ex(decompressor, inPacked.mData, inPacked.mSize, outBytes, inSize, &used, &made);
    ::libdeflate_free_decompressor(decompressor);
    return result == LIBDEFLATE_SUCCESS && used == inPacked.mSize && made == inSize;
}

// Converts each row right after restoring it, while it is still in the processor's cache.
template <std::size_t kBytes>
bool RestoreRows(const Layout& inLayout, unsigned char* ioRows, const unsigned char* inZeros,
                 unsigned char* outPixels) noexcept
{
    const std::size_t rowSize = inLayout.RowSize();
    const unsigned char* above = inZeros;
    for (std::size_t y = 0; y < inLayout.mHeight; ++y) {
        unsigned char* const row = ioRows + y * (rowSize + 1) + 1;
        if (!RowFilter<kBytes>::Restore(row[-1], row, above, rowSize)) {
            return false;
        }
        unsigned char* const pixels = outPixels + y * inLayout.mWidth * 4;
        if (kBytes == 4) {
            SwapRedAndBlue(row, pixels, inLayout.mWidth);
        } else {
            ExpandToOpaque(row, pixels, inLayout.mWidth);
        }
        above = row;
    }
    return true;
}

} // namespace

bool DecodeCommonPNG(const Bytes& inFile, DecodedPNG& outPicture) noexcept
{
    ChunkReader reader(inFile);
    Layout layout;
    PackedPixels packed;
    if (!ReadLayout(reader, layout) || !CanExpandTo(inFile.mSize, layout.FilteredSize())
        || !packed.Read(reader, inFile.mSize)) {
        return false;
    }
    const std::size_t rowsSize = layout.FilteredSize() + kReadablePadding;
    const std::unique_ptr<unsigned char[]> rows(new (std::nothrow) unsigned char[rowsSize]);
    const std::unique_ptr<unsigned char[]> zeros(
        new (std::nothrow) unsigned char[layout.RowSize() + kReadablePadding]());
    std::unique_ptr<unsigned char[]> pixels(new (std::nothrow) unsigned char[layout.mPixelsSize]);
    if (rows == nullptr || zeros == nullptr || pixels == nullptr
        || !Inflate(packed.Get(), rows.get(), layout.FilteredSize())) {
        return false;
    }
    std::memset(rows.get() + layout.FilteredSize(), 0, kReadablePadding);
    const bool isRestored = layout.mBytesInPixel == 4 ? RestoreRows<4>(layout, rows.get(), zeros.get(), pixels.get())
                                                      : RestoreRows<3>(layout, rows.get(), zeros.get(), pixels.get());
    if (!isRestored) {
        return false;
    }
    outPicture.mWidth = layout.mWidth;
    outPicture.mHeight = layout.mHeight;
    outPicture.mPixels = std::move(pixels);
    return true;
}

} // namespace Linux
} // namespace ORL
