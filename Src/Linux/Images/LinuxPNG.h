// Floor: System
// PNG files as 32-bit pixels.
#pragma once

#include <Resources/ResourceReaders.h>

#include <memory>

namespace ORL {
namespace Linux {

struct DecodedPNG
{
    unsigned int mWidth = 0;
    unsigned int mHeight = 0;
    std::unique_ptr<unsigned char[]>
        mPixels; // rows from the top without gaps; blue, green, red, alpha, not premultiplied
};

/// Decodes a PNG file of any kind. No gamma is applied; 16-bit channels keep their upper 8 bits. Returns false, with
/// outPicture untouched, if a chunk's or the pixels' check sum is wrong, if the file is not whole to its end mark, if
/// the pixels need 2 GiB or more, or if there is no memory. Memory stays in proportion to the file's size. Never
/// throws.
bool DecodePNG(const Resources::Bytes& inFile, DecodedPNG& outPicture) noexcept;

/// The two decoders behind DecodePNG. DecodeCommonPNG is the fast one. It supports only 8-bit true colour with or without
/// alpha and without interlacing, and returns false for every other or doubtful file. DecodeAnyPNG uses libspng and
/// decides about the rest.
bool DecodeCommonPNG(const Resources::Bytes& inFile, DecodedPNG& outPicture) noexcept;
bool DecodeAnyPNG(const Resources::Bytes& inFile, DecodedPNG& outPicture) noexcept;

/// Whether deflate could pack that many bytes into a file of that size. So a small file cannot ask for much memory.
inline bool CanHold(std::size_t inFileSize, std::uint64_t inBytes) noexcept
{
    constexpr std::uint64_t kBestRatio = 1032; // 258 bytes for two bits
    return inBytes / kBestRatio <= inFileSize;
}

} // namespace Linux
} // namespace ORL
