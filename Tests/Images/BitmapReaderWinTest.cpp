// Compares the library's bitmap reader with the bitmap reader of Windows.
#include <Images/BitmapReader.h>

#include <BitmapPixels.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>

#include <windows.h>

using namespace ORL::Images;

namespace {

using Contents = std::vector<unsigned char>;

std::size_t PlaceOfPixels(const Contents& inBitmap)
{
    BITMAPINFOHEADER header{};
    std::memcpy(&header, inBitmap.data(), std::min(sizeof(header), inBitmap.size()));
    if (header.biSize == sizeof(BITMAPCOREHEADER)) {
        BITMAPCOREHEADER core{};
        std::memcpy(&core, inBitmap.data(), sizeof(core));
        return sizeof(core) + (core.bcBitCount <= 8 ? std::size_t{3} << core.bcBitCount : 0);
    }
    const std::size_t colours = header.biClrUsed != 0    ? header.biClrUsed
                                : header.biBitCount <= 8 ? std::size_t{1} << header.biBitCount
                                                         : 0;
    const bool hasMasks = header.biCompression == BI_BITFIELDS && header.biSize == sizeof(header);
    return header.biSize + (hasMasks ? 12 : 0) + 4 * colours;
}

// Returns the colours that Windows reads from the bitmap.
std::vector<std::uint32_t> BySystem(const Contents& inBitmap, const PixelPicture& inPicture)
{
    const HDC screen = ::GetDC(nullptr);
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = static_cast<LONG>(inPicture.mWidth);
    info.bmiHeader.biHeight = -static_cast<LONG>(inPicture.mHeight);
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* pixels = nullptr;
    const HBITMAP bitmap = ::CreateDIBSection(screen, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
    EXPECT_NE(nullptr, bitmap);
    ::SetDIBits(screen, bitmap, 0, inPicture.mHeight, inBitmap.data() + PlaceOfPixels(inBitmap),
                reinterpret_cast<const BITMAPINFO*>(inBitmap.data()), DIB_RGB_COLORS);
    std::vector<std::uint32_t> result(inPicture.mPixels.size());
    std::memcpy(result.data(), pixels, result.size() * 4);
    ::DeleteObject(bitmap);
    ::ReleaseDC(nullptr, screen);
    for (std::uint32_t& pixel : result) {
        pixel &= 0xFFFFFF;
    }
    return result;
}

void ExpectAsTheSystem(const Contents& inBitmap, const std::string& inWhat)
{
    ORL::Resources::Bytes bytes;
    bytes.mData = inBitmap.data();
    bytes.mSize = inBitmap.size();
    PixelPicture picture;
    ASSERT_TRUE(ReadBitmap(bytes, picture)) << inWhat;
    std::vector<std::uint32_t> colours = picture.mPixels;
    for (std::uint32_t& pixel : colours) {
        pixel &= 0xFFFFFF;
    }
    EXPECT_EQ(BySystem(inBitmap, picture), colours) << inWhat;
}

} // namespace

TEST(BitmapReader, EachForm_HasTheColoursThatTheSystemReads)
{
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(ORL_PICTURES)) {
        if (entry.path().extension() != ".bmp" || entry.path().filename() == "broken.bmp") {
            continue;
        }
        std::ifstream file(entry.path(), std::ios::binary);
        const Contents whole((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        ExpectAsTheSystem(Contents(whole.begin() + 14, whole.end()), entry.path().filename().string());
        ++count;
    }
    EXPECT_EQ(15, count);
}

TEST(BitmapReader, RandomPlainBitmaps_HaveTheColoursThatTheSystemReads)
{
    std::mt19937 random(1);
    for (const int bits : {1, 4, 8, 16, 24, 32}) {
        for (int i = 0; i < 20; ++i) {
            BITMAPINFOHEADER header{};
            header.biSize = sizeof(header);
            header.biWidth = static_cast<LONG>(1 + random() % 40);
            header.biHeight = static_cast<LONG>(1 + random() % 9) * (random() % 2 == 0 ? 1 : -1);
            header.biPlanes = 1;
            header.biBitCount = static_cast<WORD>(bits);
            Contents bitmap(reinterpret_cast<unsigned char*>(&header),
                            reinterpret_cast<unsigned char*>(&header) + sizeof(header));
            const std::size_t row =
                (static_cast<std::size_t>(header.biWidth) * static_cast<std::size_t>(bits) + 31) / 32 * 4;
            const std::size_t size = PlaceOfPixels(bitmap) + row * static_cast<std::size_t>(std::abs(header.biHeight));
            while (bitmap.size() < size) {
                bitmap.push_back(static_cast<unsigned char>(random()));
            }
            ExpectAsTheSystem(bitmap, std::to_string(bits) + " bits, number " + std::to_string(i));
        }
    }
}
