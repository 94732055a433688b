#include "LinuxPNG.h"

#include "LinuxNativeBitmap.h"
#include "LinuxPNGChunks.h"
#include "LinuxPixelOrder.h"

#include <new>
#include <spng.h>

namespace ORL {
namespace Linux {

using Resources::Bytes;

namespace {

// Size limits of one chunk and of all chunks together, without the pixels. Only a malicious file exceeds these limits.
constexpr std::size_t kLargestChunk = std::size_t{1} << 24;
constexpr std::size_t kLargestCache = std::size_t{1} << 25;
constexpr std::uint32_t kLargestSide = 0x7FFFFFFF;

struct Freer
{
    void operator()(spng_ctx* inContext) const noexcept { ::spng_ctx_free(inContext); }
};

using ContextPtr = std::unique_ptr<spng_ctx, Freer>;

bool Open(spng_ctx* inContext, const Bytes& inFile, spng_ihdr& outHeader) noexcept
{
    return ::spng_set_image_limits(inContext, kLargestSide, kLargestSide) == 0
           && ::spng_set_chunk_limits(inContext, kLargestChunk, kLargestCache) == 0
           && ::spng_set_crc_action(inContext, SPNG_CRC_ERROR, SPNG_CRC_ERROR) == 0
           && ::spng_set_png_buffer(inContext, inFile.mData, inFile.mSize) == 0
           && ::spng_get_ihdr(inContext, &outHeader) == 0;
}

// Returns a lower bound on the uncompressed size of all rows.
std::uint64_t MinUnpackedSize(const spng_ihdr& inHeader) noexcept
{
    constexpr unsigned int kChannels[] = {1, 0, 3, 1, 2, 0, 4};
    const std::uint64_t bits = std::uint64_t{inHeader.width} * kChannels[inHeader.color_type] * inHeader.bit_depth;
    return (bits / 8 + 1) * inHeader.height;
}

} // namespace

// Checks the chunks first, because libspng accepts a file whose IEND chunk is truncated.
bool DecodeAnyPNG(const Bytes& inFile, DecodedPNG& outPicture) noexcept
{
    if (!AreChunksComplete(inFile)) {
        return false;
    }
    const ContextPtr context(::spng_ctx_new(0));
    spng_ihdr header{};
    std::size_t size = 0;
    if (context == nullptr || !Open(context.get(), inFile, header) || !SizeOfPixels(header.width, header.height, size)
        || !CanExpandTo(inFile.mSize, MinUnpackedSize(header))) {
        return false;
    }
    std::unique_ptr<unsigned char[]> pixels(new (std::nothrow) unsigned char[size]);
    if (pixels == nullptr
        || ::spng_decode_image(context.get(), pixels.get(), size, SPNG_FMT_RGBA8, SPNG_DECODE_TRNS) != 0
        || ::spng_decode_chunks(context.get()) != 0) {
        return false;
    }
    SwapRedAndBlue(pixels.get(), pixels.get(), size / 4);
    outPicture.mWidth = header.width;
    outPicture.mHeight = header.height;
    outPicture.mPixels = std::move(pixels);
    return true;
}

bool DecodePNG(const Bytes& inFile, DecodedPNG& outPicture) noexcept
{
    return DecodeCommonPNG(inFile, outPicture) || DecodeAnyPNG(inFile, outPicture);
}

} // namespace Linux
} // namespace ORL
