// Properties of reading arbitrary bytes as a bitmap. The fuzzer and the plain tests check the same properties.
#pragma once

#include <Images/BitmapReader.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace ORLFuzz {

/// Returns null, or a description of the property that failed. Reads a copy of the input in memory of exactly its size.
inline const char* CheckBitmap(const std::uint8_t* inData, std::size_t inSize)
{
    const std::unique_ptr<unsigned char[]> copy(new unsigned char[inSize]);
    std::copy_n(inData, inSize, copy.get());
    ORL::Resources::Bytes bytes;
    bytes.mData = copy.get();
    bytes.mSize = inSize;
    ORL::Images::PixelPicture picture;
    if (!ORL::Images::ReadBitmap(bytes, picture)) {
        return picture.mPixels.empty() && picture.mWidth == 0 ? nullptr : "a refused bitmap has pixels";
    }
    const std::uint64_t count = std::uint64_t{picture.mWidth} * picture.mHeight;
    if (count == 0 || picture.mPixels.size() != count) {
        return "the pixels are not as many as the sides say";
    }
    const std::uint64_t most = std::max<std::uint64_t>(std::uint64_t{1} << 24, std::uint64_t{inSize} * 1024);
    return count <= most ? nullptr : "a few bytes made many pixels";
}

} // namespace ORLFuzz
