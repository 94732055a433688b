// Reads bitmaps with unusual or damaged contents. Each bitmap is in a memory block of exactly its size, so that a
// sanitizer detects every read beyond the end.
#include "../../Fuzz/PictureFuzzTarget.h"

#include <Images/BitmapReader.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>

using namespace ORL::Images;

namespace {

using Contents = std::vector<unsigned char>;

bool Read(const Contents& inContents, PixelPicture& outPicture)
{
    const std::unique_ptr<unsigned char[]> copy(new unsigned char[inContents.size()]);
    std::copy(inContents.begin(), inContents.end(), copy.get());
    ORL::Resources::Bytes bytes;
    bytes.mData = copy.get();
    bytes.mSize = inContents.size();
    return ReadBitmap(bytes, outPicture);
}

template <class Number>
void Put(Contents& ioContents, Number inNumber)
{
    const auto* const bytes = reinterpret_cast<const unsigned char*>(&inNumber);
    ioContents.insert(ioContents.end(), bytes, bytes + sizeof(inNumber));
}

struct Header
{
    std::int32_t mWidth;
    std::int32_t mHeight;
    std::uint16_t mBits;
    std::uint32_t mCompression = 0;
    std::uint32_t mUsed = 0;
    std::uint16_t mPlanes = 1;
    std::uint32_t mSize = 40;
};

Contents HeaderOf(const Header& inHeader)
{
    Contents contents;
    Put(contents, inHeader.mSize);
    Put(contents, inHeader.mWidth);
    Put(contents, inHeader.mHeight);
    Put(contents, inHeader.mPlanes);
    Put(contents, inHeader.mBits);
    Put(contents, inHeader.mCompression);
    contents.resize(32);
    Put(contents, inHeader.mUsed);
    contents.resize(40);
    return contents;
}

Contents With(const Header& inHeader, const Contents& inRest)
{
    Contents contents = HeaderOf(inHeader);
    contents.insert(contents.end(), inRest.begin(), inRest.end());
    return contents;
}

Contents FileBody(const std::string& inName)
{
    std::ifstream file(std::filesystem::u8path(std::string(ORL_PICTURES) + "/" + inName), std::ios::binary);
    Contents contents((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    EXPECT_GT(contents.size(), 14u) << inName;
    return Contents(contents.begin() + std::min<std::ptrdiff_t>(14, static_cast<std::ptrdiff_t>(contents.size())),
                    contents.end());
}

const char* const kFiles[] = {"bits_1.bmp",           "bits_4.bmp",       "bits_8.bmp",      "bits_8_of_20_colours.bmp",
                              "bits_4_top_down.bmp",  "older_header.bmp", "bits_16.bmp",     "fields_565.bmp",
                              "bits_24.bmp",          "bits_32.bmp",      "fields_rgbx.bmp", "longer_header.bmp",
                              "bits_24_top_down.bmp", "runs_8.bmp",       "runs_4.bmp"};

} // namespace

TEST(BitmapReader, WhatCannotBe_IsRefused)
{
    const Contents kPixels(64, 0);
    const struct
    {
        const char* mWhat;
        Header mHeader;
    } kRows[] = {
        {"no width", {0, 1, 24}},
        {"no height", {1, 0, 24}},
        {"a negative width", {-1, 1, 24}},
        {"the lowest height", {1, std::numeric_limits<std::int32_t>::min(), 24}},
        {"0 bits", {1, 1, 0}},
        {"2 bits", {1, 1, 2}},
        {"64 bits", {1, 1, 64}},
        {"65535 bits", {1, 1, 65535}},
        {"two planes", {1, 1, 24, 0, 0, 2}},
        {"runs of 24 bits", {1, 1, 24, 1}},
        {"runs of 8 bits in 4", {1, 1, 4, 1}},
        {"runs of 4 bits in 8", {1, 1, 8, 2}},
        {"runs from the top", {1, -1, 8, 1, 1}},
        {"fields of 24 bits", {1, 1, 24, 3}},
        {"a JPEG inside", {1, 1, 24, 4}},
        {"a PNG inside", {1, 1, 24, 5}},
        {"a product beyond 64 bits", {0x7FFFFFFF, 0x7FFFFFFF, 32}},
        {"a product beyond 32 bits", {0x10000, 0x10000, 32}},
        {"100000 by 100000", {100000, 100000, 24}},
        {"100000 by 100000 in one bit", {100000, 100000, 1}},
        {"100000 by 100000 in runs", {100000, 100000, 8, 1, 1}},
        {"a row too many", {4, 5, 32}},
        {"colours beyond the bytes", {1, 1, 8, 0, 256}},
        {"a header of 11 bytes", {1, 1, 24, 0, 0, 1, 11}},
        {"a header of 39 bytes", {1, 1, 24, 0, 0, 1, 39}},
        {"a header beyond the bytes", {1, 1, 24, 0, 0, 1, 105}},
        {"a header of 4 GiB", {1, 1, 24, 0, 0, 1, 0xFFFFFFFF}},
    };
    for (const auto& row : kRows) {
        PixelPicture picture;
        EXPECT_FALSE(Read(With(row.mHeader, kPixels), picture)) << row.mWhat;
        EXPECT_EQ(0u, picture.mWidth);
        EXPECT_TRUE(picture.mPixels.empty());
    }
}

TEST(BitmapReader, TheSmallestBitmap_HasOnePixel)
{
    PixelPicture picture;
    ASSERT_TRUE(Read(With({1, 1, 24}, {1, 2, 3, 0}), picture));
    EXPECT_EQ(std::vector<std::uint32_t>{0xFF030201}, picture.mPixels);
    EXPECT_FALSE(Read(With({1, 1, 24}, {1, 2, 3}), picture)); // rejected: the padding of a row is required
}

TEST(BitmapReader, AFourthByte_StaysUnlessItIs0Everywhere)
{
    PixelPicture picture;
    ASSERT_TRUE(Read(With({2, 1, 32}, {1, 2, 3, 0, 4, 5, 6, 0}), picture));
    EXPECT_EQ((std::vector<std::uint32_t>{0xFF030201, 0xFF060504}), picture.mPixels);
    ASSERT_TRUE(Read(With({2, 1, 32}, {1, 2, 3, 0, 4, 5, 6, 0x80}), picture));
    EXPECT_EQ((std::vector<std::uint32_t>{0x00030201, 0x80060504}), picture.mPixels);
}

TEST(BitmapReader, ANumberBeyondTheTable_IsBlack)
{
    PixelPicture picture;
    ASSERT_TRUE(Read(With({2, 1, 8, 0, 1}, {9, 8, 7, 0, 0, 200, 0, 0}), picture));
    EXPECT_EQ((std::vector<std::uint32_t>{0xFF070809, 0xFF000000}), picture.mPixels);
}

TEST(BitmapReader, Fields_AreReadWhereverTheirBitsAre)
{
    const struct
    {
        const char* mWhat;
        std::uint32_t mMasks[3];
        std::uint32_t mPixel;
        std::uint32_t mExpected;
        bool mIsRead;
    } kRows[] = {
        {"ten bits", {0x3FF00000, 0x000FFC00, 0x000003FF}, 0x2AA7FC01, 0xFFAA7F00, true},
        {"one bit", {0x4, 0x2, 0x1}, 0x5, 0xFFFF00FF, true},
        {"three bits", {0xE0, 0x1C, 0x03}, 0xB6, 0xFFB6B6AA, true},
        {"no green", {0xFF0000, 0, 0xFF}, 0x123456, 0xFF120056, true},
        {"the highest bits", {0xFF000000, 0x00FF0000, 0x0000FF00}, 0x11223344, 0xFF112233, true},
        {"all bits for red", {0xFFFFFFFF, 0, 0}, 0x89ABCDEF, 0xFF890000, true},
        {"bits apart", {0xFF00FF, 0xFF00, 0}, 0, 0, false},
    };
    for (const auto& row : kRows) {
        Contents rest;
        for (const std::uint32_t mask : row.mMasks) {
            Put(rest, mask);
        }
        Put(rest, row.mPixel);
        PixelPicture picture;
        ASSERT_EQ(row.mIsRead, Read(With({1, 1, 32, 3}, rest), picture)) << row.mWhat;
        if (row.mIsRead) {
            EXPECT_EQ(std::vector<std::uint32_t>{row.mExpected}, picture.mPixels) << row.mWhat;
        }
    }
}

TEST(BitmapReader, Runs_StayInsideOfThePicture)
{
    constexpr std::uint32_t kRed = 0xFFFF0000;
    constexpr std::uint32_t kBlack = 0xFF000000;
    const struct
    {
        const char* mWhat;
        Contents mRuns;
        bool mIsRead;
        std::vector<std::uint32_t> mPixels; // the pixels of a 2 by 2 picture
    } kRows[] = {
        {"nothing but the end", {0, 1}, true, {kBlack, kBlack, kBlack, kBlack}},
        {"no end", {}, false, {}},
        {"half a code", {0}, false, {}},
        {"all rows, no end", {2, 0, 0, 0, 2, 0, 0, 0}, true, {kRed, kRed, kRed, kRed}},
        {"one row, no end", {2, 0, 0, 0}, false, {}},
        {"a run beyond the row", {255, 0, 0, 1}, true, {kBlack, kBlack, kRed, kRed}},
        {"pixels beyond the row", {0, 3, 0, 0, 0, 0, 0, 1}, true, {kBlack, kBlack, kRed, kRed}},
        {"pixels beyond the bytes", {0, 4, 0, 0}, false, {}},
        {"pixels without padding", {0, 3, 0, 0, 0}, false, {}},
        {"a move beyond the picture", {0, 2, 255, 255, 9, 0, 0, 1}, true, {kBlack, kBlack, kBlack, kBlack}},
        {"a move of half a code", {0, 2, 1}, false, {}},
        {"a move to the upper right", {0, 2, 1, 1, 1, 0, 0, 1}, true, {kBlack, kRed, kBlack, kBlack}},
        {"bytes behind the end", {0, 1, 9, 9, 9}, true, {kBlack, kBlack, kBlack, kBlack}},
    };
    for (const auto& row : kRows) {
        Contents rest = {0, 0, 255, 0};
        rest.insert(rest.end(), row.mRuns.begin(), row.mRuns.end());
        PixelPicture picture;
        ASSERT_EQ(row.mIsRead, Read(With({2, 2, 8, 1, 1}, rest), picture)) << row.mWhat;
        EXPECT_EQ(row.mPixels, picture.mPixels) << row.mWhat;
    }
}

TEST(BitmapReader, RunsMayLeaveOutAWholePicture_UpToABound)
{
    PixelPicture picture;
    EXPECT_TRUE(Read(With({4096, 4096, 8, 1, 1}, {0, 0, 255, 0, 0, 1}), picture));
    EXPECT_FALSE(Read(With({4097, 4096, 8, 1, 1}, {0, 0, 255, 0, 0, 1}), picture));
}

TEST(BitmapReader, EachLengthAndEachFlippedByte_IsReadInsideOfItsBytes)
{
    for (const char* const name : kFiles) {
        const Contents whole = FileBody(name);
        PixelPicture picture;
        ASSERT_TRUE(Read(whole, picture)) << name;
        for (std::size_t size = 0; size < whole.size(); ++size) {
            EXPECT_EQ(nullptr, ORLFuzz::CheckBitmap(whole.data(), size)) << name << " cut to " << size;
        }
        // Flips every bit of the header and the masks, but only the highest bit of each byte of colours and pixels.
        for (std::size_t place = 0; place < whole.size(); ++place) {
            for (int bit = place < 128 ? 0 : 7; bit < 8; ++bit) {
                Contents damaged = whole;
                damaged[place] = static_cast<unsigned char>(damaged[place] ^ 1 << bit);
                EXPECT_EQ(nullptr, ORLFuzz::CheckBitmap(damaged.data(), damaged.size())) << name << " at " << place;
            }
        }
    }
}

TEST(BitmapReader, EveryInputOfTheCorpus_Holds)
{
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(ORL_FUZZ_CORPUS "/BitmapFuzz")) {
        std::ifstream file(entry.path(), std::ios::binary);
        const Contents contents((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        EXPECT_EQ(nullptr, ORLFuzz::CheckBitmap(contents.data(), contents.size())) << entry.path();
        ++count;
    }
    EXPECT_GE(count, 15);
}
