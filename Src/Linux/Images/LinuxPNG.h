// Floor: System
// Decodes PNG files to 32-bit pixels.
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

/// Decodes a PNG file of any kind. Applies no gamma; 16-bit channels keep their upper 8 bits. Returns false, with
/// outPicture untouched, if the checksum of a chunk or of the pixels is wrong, if the file is truncated, if the pixels
/// need 2 GiB or more, or if out of memory. Memory is proportional to the file's size. Never throws.
bool DecodePNG(const Resources::Bytes& inFile, DecodedPNG& outPicture) noexcept;

/// The two decoders that DecodePNG uses. DecodeCommonPNG is faster, but supports only 8-bit true colour with or without
/// alpha and without interlacing, and returns false for every other file, damaged ones included. DecodeAnyPNG decodes
/// any kind with libspng.
bool DecodeCommonPNG(const Resources::Bytes& inFile, DecodedPNG& outPicture) noexcept;
bool DecodeAnyPNG(const Resources::Bytes& inFile, DecodedPNG& outPicture) noexcept;

/// Returns whether deflate can compress inBytes bytes into a file of inFileSize bytes. This bounds what a small file
/// can make the decoder allocate.
inline bool CanExpandTo(std::size_t inFileSize, std::uint64_t inBytes) noexcept
{
    constexpr std::uint64_t kBestRatio = 1032; // two bits can represent 258 bytes
    return inBytes / kBestRatio <= inFileSize;
}

} // namespace Linux
} // namespace ORL
