// Floor: System
// Bitmaps as resources hold them (type 2): a header, masks or colours, and rows of pixels.
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
    std::vector<std::uint32_t> mPixels; // rows from the top; alpha in bits 24 to 31, then red, green, blue
};

/// Reads a bitmap of 1, 4, 8, 16, 24 or 32 bits, in either order of rows, plain, run-length encoded or with bit fields.
/// The header is of any size from 12 bytes on. Pixels are opaque, except that 32-bit pixels of the usual layout keep
/// their fourth byte as it stands unless it is 0 in all of them; so such a bitmap holds premultiplied colours if it has
/// alpha. Pixels that no run reaches are black.
///
/// Returns false, with outPicture untouched, if data is missing or the header is invalid. Memory stays in
/// proportion to their number: run-length encoding may declare 2^24 pixels, or 1024 a byte if that is more. Throws
/// std::bad_alloc.
bool ReadBitmap(const Resources::Bytes& inBitmap, PixelPicture& outPicture);

} // namespace Images
} // namespace ORL
