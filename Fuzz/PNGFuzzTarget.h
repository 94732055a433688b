// Properties of reading arbitrary bytes as a PNG file. The fuzzer and the plain tests check the same properties.
#pragma once

#include <Linux/Images/LinuxPNG.h>

#include <algorithm>
#include <cstring>

namespace ORLFuzz {

/// Returns null, or a description of the property that failed. Decodes a copy of the input, in memory of exactly its
/// size, with both decoders: a file that the fast decoder accepts must decode to the same pixels with the other one.
inline const char* CheckPNG(const unsigned char* inData, std::size_t inSize)
{
    const std::unique_ptr<unsigned char[]> copy(new unsigned char[inSize]);
    std::copy_n(inData, inSize, copy.get());
    ORL::Resources::Bytes file;
    file.mData = copy.get();
    file.mSize = inSize;
    ORL::Linux::DecodedPNG fast;
    ORL::Linux::DecodedPNG safe;
    const bool isFast = ORL::Linux::DecodeCommonPNG(file, fast);
    const bool isSafe = ORL::Linux::DecodeAnyPNG(file, safe);
    if (!isFast) {
        return fast.mPixels == nullptr && (isSafe || safe.mPixels == nullptr) ? nullptr : "a refused file has pixels";
    }
    if (!isSafe || fast.mWidth != safe.mWidth || fast.mHeight != safe.mHeight) {
        return "the fast road takes what the other does not";
    }
    const std::size_t size = std::size_t{fast.mWidth} * fast.mHeight * 4;
    return std::memcmp(fast.mPixels.get(), safe.mPixels.get(), size) == 0 ? nullptr : "the roads make other pixels";
}

} // namespace ORLFuzz
