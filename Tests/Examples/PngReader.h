// Reads a PNG file with an independent library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace ORLTest {

struct DecodedPicture
{
    std::size_t mWidth = 0; // 0 if the file could not be decoded
    std::size_t mHeight = 0;
    std::vector<std::uint8_t> mPixels; // red, green, blue, row by row

    const std::uint8_t* At(std::size_t inX, std::size_t inY) const { return &mPixels[(inY * mWidth + inX) * 3]; }
};

DecodedPicture ReadPng(const std::string& inPath);

} // namespace ORLTest
