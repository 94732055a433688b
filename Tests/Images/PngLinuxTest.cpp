#include "../../Fuzz/PNGFuzzTarget.h"
#include "PngOracleLinux.h"

#include <atomic>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <new>
#include <zlib.h>

using namespace ORL::Linux;
using namespace ORLTest;

namespace {

// The size of the largest block that the decoder has requested for pixels.
std::atomic<std::size_t> sLargestRequest{0};

} // namespace

void* operator new[](std::size_t inSize, const std::nothrow_t&) noexcept
{
    if (inSize > sLargestRequest) {
        sLargestRequest = inSize;
    }
    try {
        return ::operator new[](inSize);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

namespace {

using Pixels = std::vector<unsigned char>;
using Road = bool(const ORL::Resources::Bytes&, DecodedPNG&) noexcept;

// Returns the pixels, or an empty vector for a file that is rejected.
Pixels Decode(Road& inRoad, const std::string& inFile)
{
    ORL::Resources::Bytes bytes;
    bytes.mData = reinterpret_cast<const unsigned char*>(inFile.data());
    bytes.mSize = inFile.size();
    DecodedPNG picture;
    if (!inRoad(bytes, picture)) {
        return Pixels();
    }
    const std::size_t size = std::size_t{picture.mWidth} * picture.mHeight * 4;
    return Pixels(picture.mPixels.get(), picture.mPixels.get() + size);
}

void AppendBigEndian(std::string& ioBytes, std::uint32_t inNumber)
{
    for (int shift = 24; shift >= 0; shift -= 8) {
        ioBytes += static_cast<char>(inNumber >> shift);
    }
}

std::string Chunk(const std::string& inName, const std::string& inContents)
{
    const std::string named = inName + inContents;
    std::string chunk;
    AppendBigEndian(chunk, static_cast<std::uint32_t>(inContents.size()));
    chunk += named;
    AppendBigEndian(chunk, static_cast<std::uint32_t>(::crc32(0, reinterpret_cast<const Bytef*>(named.data()),
                                                              static_cast<uInt>(named.size()))));
    return chunk;
}

std::string Header(std::uint32_t inWidth, std::uint32_t inHeight, char inDepth = 8, char inColour = 6)
{
    std::string header;
    AppendBigEndian(header, inWidth);
    AppendBigEndian(header, inHeight);
    header += {inDepth, inColour, 0, 0, 0};
    return std::string("\x89PNG\r\n\x1a\n", 8) + Chunk("IHDR", header);
}

std::string Packed(const std::string& inBytes)
{
    uLongf size = ::compressBound(static_cast<uLong>(inBytes.size()));
    std::string packed(size, '\0');
    ::compress(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(inBytes.data()),
               static_cast<uLong>(inBytes.size()));
    packed.resize(size);
    return packed;
}

const std::string kRowOfTwo("\0\1\2\3\4\5\6\7\x8", 9);

std::string FileOf(const std::string& inChunks)
{
    return Header(2, 1) + inChunks + Chunk("IEND", "");
}

} // namespace

TEST(Png, EveryKind_HasThePixelsThatLibpngReads)
{
    constexpr int kFilters[] = {PNG_FILTER_NONE, PNG_FILTER_SUB,   PNG_FILTER_UP,
                                PNG_FILTER_AVG,  PNG_FILTER_PAETH, PNG_ALL_FILTERS};
    const struct
    {
        int mColour;
        std::vector<int> mDepths;
        bool mMayBeKeyed;
    } kColours[] = {
        {PNG_COLOR_TYPE_GRAY, {1, 2, 4, 8, 16}, true}, {PNG_COLOR_TYPE_RGB, {8, 16}, true},
        {PNG_COLOR_TYPE_PALETTE, {1, 2, 4, 8}, true},  {PNG_COLOR_TYPE_GRAY_ALPHA, {8, 16}, false},
        {PNG_COLOR_TYPE_RGB_ALPHA, {8, 16}, false},
    };
    unsigned int seed = 0;
    int fast = 0;
    for (const auto& colour : kColours) {
        for (const int depth : colour.mDepths) {
            for (const int filters : kFilters) {
                for (const bool isInterlaced : {false, true}) {
                    for (const bool isKeyed : {false, true}) {
                        for (const unsigned int width : {1u, 5u, 33u}) {
                            if (isKeyed && !colour.mMayBeKeyed) {
                                continue;
                            }
                            const PngKind kind{colour.mColour, depth, filters, isInterlaced, isKeyed, width, 9};
                            const std::string file = WritePng(kind, ++seed);
                            const Pixels expected = ReadPng(file);
                            ASSERT_EQ(expected, Decode(DecodePNG, file))
                                << "colour " << colour.mColour << " depth " << depth << " filters " << filters
                                << (isInterlaced ? " interlaced" : "") << (isKeyed ? " keyed" : "") << " width "
                                << width;
                            const Pixels byFastRoad = Decode(DecodeCommonPNG, file);
                            fast += byFastRoad.empty() ? 0 : 1;
                            EXPECT_TRUE(byFastRoad.empty() || byFastRoad == expected);
                        }
                    }
                }
            }
        }
    }
    EXPECT_EQ(2 * 6 * 3, fast); // 8-bit true colour with and without alpha, six filters, three widths
}

TEST(Png, ManyPieces_AreOnePicture)
{
    const std::string packed = Packed(kRowOfTwo);
    std::string pieces;
    for (const char byte : packed) {
        pieces += Chunk("IDAT", std::string(1, byte));
    }
    const Pixels expected = {3, 2, 1, 4, 7, 6, 5, 8};
    EXPECT_EQ(expected, Decode(DecodeCommonPNG, FileOf(pieces)));
    EXPECT_EQ(expected, Decode(DecodeAnyPNG, FileOf(pieces)));
    EXPECT_EQ(expected, Decode(DecodeAnyPNG, FileOf(Chunk("IDAT", packed))));
}

TEST(Png, NoGammaIsApplied)
{
    std::string gamma;
    AppendBigEndian(gamma, 100000);
    const Pixels expected = {3, 2, 1, 4, 7, 6, 5, 8};
    const std::string file = FileOf(Chunk("gAMA", gamma) + Chunk("IDAT", Packed(kRowOfTwo)));
    EXPECT_EQ(expected, Decode(DecodeCommonPNG, file));
    EXPECT_EQ(expected, Decode(DecodeAnyPNG, file));
}

TEST(Png, WhatIsNotWhole_IsRefused)
{
    const std::string packed = Packed(kRowOfTwo);
    std::string wrongAdler = packed;
    wrongAdler.back() = static_cast<char>(wrongAdler.back() ^ 1);
    std::string wrongFilter = kRowOfTwo;
    wrongFilter[0] = 5;
    const struct
    {
        const char* mWhat;
        std::string mFile;
    } kRows[] = {
        {"nothing", ""},
        {"the signature alone", std::string("\x89PNG\r\n\x1a\n", 8)},
        {"no pixels", FileOf("")},
        {"no end", Header(2, 1) + Chunk("IDAT", packed)},
        {"an empty piece alone", FileOf(Chunk("IDAT", ""))},
        {"a row too few", Header(2, 2) + Chunk("IDAT", packed) + Chunk("IEND", "")},
        {"half of the pixels", FileOf(Chunk("IDAT", packed.substr(0, packed.size() / 2)))},
        {"a wrong check sum of the pixels", FileOf(Chunk("IDAT", wrongAdler))},
        {"a filter that there is none of", FileOf(Chunk("IDAT", Packed(wrongFilter)))},
        {"no width", Header(0, 1) + Chunk("IDAT", packed) + Chunk("IEND", "")},
        {"no height", Header(2, 0) + Chunk("IDAT", packed) + Chunk("IEND", "")},
        {"a depth of 3", Header(2, 1, 3) + Chunk("IDAT", packed) + Chunk("IEND", "")},
        {"a colour of 5", Header(2, 1, 8, 5) + Chunk("IDAT", packed) + Chunk("IEND", "")},
        {"an unknown chunk that matters", FileOf(Chunk("ORLX", "") + Chunk("IDAT", packed))},
        {"a second header behind the pixels",
         FileOf(Chunk("IDAT", packed) + Chunk("IHDR", std::string("\0\0\0\2\0\0\0\1\x8\x6\0\0\0", 13)))},
        {"a palette missing", Header(2, 1, 8, 3) + Chunk("IDAT", packed) + Chunk("IEND", "")},
        {"100000 by 100000", Header(100000, 100000) + Chunk("IDAT", packed) + Chunk("IEND", "")},
        {"100000 by 100000 in one bit", Header(100000, 100000, 1, 0) + Chunk("IDAT", packed) + Chunk("IEND", "")},
        {"the largest sides", Header(0x7FFFFFFF, 0x7FFFFFFF) + Chunk("IDAT", packed) + Chunk("IEND", "")},
        {"sides beyond the largest", Header(0xFFFFFFFF, 0xFFFFFFFF) + Chunk("IDAT", packed) + Chunk("IEND", "")},
    };
    for (const auto& row : kRows) {
        EXPECT_TRUE(Decode(DecodePNG, row.mFile).empty()) << row.mWhat;
        EXPECT_TRUE(Decode(DecodeCommonPNG, row.mFile).empty()) << row.mWhat;
    }
    EXPECT_FALSE(Decode(DecodePNG, FileOf(Chunk("IDAT", packed))).empty());
}

// Each chunk has a checksum, so every flipped bit is detected.
TEST(Png, EachFlippedBit_IsRefused)
{
    for (const int colour : {PNG_COLOR_TYPE_RGB_ALPHA, PNG_COLOR_TYPE_PALETTE}) {
        const std::string whole = WritePng({colour, 8, PNG_ALL_FILTERS, false, false, 4, 3}, 7);
        ASSERT_FALSE(Decode(DecodePNG, whole).empty());
        for (std::size_t place = 0; place < whole.size(); ++place) {
            for (int bit = 0; bit < 8; ++bit) {
                std::string damaged = whole;
                damaged[place] = static_cast<char>(damaged[place] ^ 1 << bit);
                ASSERT_TRUE(Decode(DecodePNG, damaged).empty()) << place << ", bit " << bit;
            }
        }
    }
}

TEST(Png, EachLength_IsRefused)
{
    for (const int colour : {PNG_COLOR_TYPE_RGB, PNG_COLOR_TYPE_GRAY}) {
        const std::string whole = WritePng({colour, 8, PNG_ALL_FILTERS, false, false, 4, 3}, 8);
        for (std::size_t size = 0; size < whole.size(); ++size) {
            ASSERT_TRUE(Decode(DecodePNG, whole.substr(0, size)).empty()) << size;
        }
        EXPECT_FALSE(Decode(DecodePNG, whole).empty());
    }
}

TEST(Png, ASmallFileThatDeclaresMuch_RequestsLittleMemory)
{
    for (const char depth : {'\1', '\x8', '\x10'}) {
        for (const char colour : {'\0', '\2', '\6'}) {
            const std::string file =
                Header(20000, 20000, depth, colour) + Chunk("IDAT", Packed(std::string(100, '\0'))) + Chunk("IEND", "");
            sLargestRequest = 0;
            EXPECT_TRUE(Decode(DecodeAnyPNG, file).empty());
            EXPECT_TRUE(Decode(DecodeCommonPNG, file).empty());
            EXPECT_LT(sLargestRequest, std::size_t{1} << 20);
        }
    }
}

TEST(Png, EveryInputOfTheCorpus_Holds)
{
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(ORL_FUZZ_CORPUS "/PNGFuzz")) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string contents((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        EXPECT_EQ(nullptr, ORLFuzz::CheckPNG(reinterpret_cast<const unsigned char*>(contents.data()), contents.size()))
            << entry.path();
        ++count;
    }
    EXPECT_GE(count, 8);
}
