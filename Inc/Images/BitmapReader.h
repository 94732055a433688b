// Floor: System
// Reads bitmap resources (type 2): a header, masks or colours, and rows of pixels.
#pragma once

#include <Resources/ResourceReaders.h>

#include <cstdint>
#include <vector>

namespace ORL {
namespace Images {

struct PixelPicture
{
    unsigned int mWidth = 0;
    unsigned int mHeight = 0;
    std::vector<std::uint32_t> mPixels; // top row first; alpha in bits 24 to 31, then red, green, blue
};

/// Reads a bitmap with 1, 4, 8, 16, 24 or 32 bits per pixel, bottom-up or top-down, plain, run-length encoded or with
/// bit fields. The header may have any size of at least 12 bytes. Pixels are opaque, except that 32-bit pixels in
/// BGRA byte order use their fourth byte as alpha unless it is 0 in all of them; with alpha, colours must be
/// premultiplied. Pixels that no run covers are black.
///
/// Returns false, with outPicture untouched, if the data is truncated or the header is invalid. Memory use is bounded
/// by the size of the input: a run-length encoded bitmap may declare at most 2^24 pixels, or 1024 for each input byte
/// if that is more. Throws std::bad_alloc.
bool ReadBitmap(const Resources::Bytes& inBitmap, PixelPicture& outPicture);

} // namespace Images
} // namespace ORL
